#include "cli/CmdDossier.h"

#include "cli/CmdSafety.h"
#include "core/ProgramFolder.h"
#include "core/ProgramInfo.h"
#include "dossier/DossierPage.h"
#include "dossier/Storico.h"
#include "metastock/Master.h"
#include "store/Backup.h"
#include "store/Database.h"

#include <QDir>
#include <QGuiApplication>

#include <array>
#include <charconv>
#include <cmath>

namespace vm::dossier {

namespace {

void usage(QTextStream &s)
{
    s << "Uso: valorimetrico-cli dossier [--cartella DIR] [--csv] [--registra] [--pdf FILE]\n\n"
         "Valuta i titoli del dossier con l'ultima quotazione degli archivi MetaStock e stampa\n"
         "acquisto, data, valore attuale, differenza e percentuale di ogni titolo, con i totali.\n\n"
         "  --csv       una riga CSV per titolo: id,simbolo,descrizione,acquisto,data,attuale,\n"
         "              differenza,percentuale,stato (punto decimale, data aaaa-mm-gg)\n"
         "  --registra  registra il valore del giorno nello storico, se non è già presente\n"
         "  --pdf FILE  scrive nel file PDF la pagina stampata del dossier\n\n"
         "Gli avvisi vanno sull'errore standard. Esce con 0 se la valutazione è stata eseguita,\n"
         "con 1 se il database non si apre o il PDF non è stato scritto. Con --registra non registra\n"
         "nulla ed esce con 3 se una cartella non si legge o un titolo non ha quotazione: il totale\n"
         "sarebbe sbagliato.\n";
}

// The shortest text that reads back as the same double, in plain decimal notation.
QString numeroCsv(double valore)
{
    if (valore == 0 || !std::isfinite(valore))
        return QStringLiteral("0");
    std::array<char, 400> buffer;
    const auto esito = std::to_chars(buffer.data(), buffer.data() + buffer.size(), valore, std::chars_format::fixed);
    return QString::fromLatin1(buffer.data(), esito.ptr - buffer.data());
}

// What keeps an unattended run from recording the day's total: every configured folder must be read whole and
// every title valued at a quote of its own, or the total would be short of the true one by what is missing.
QStringList ostacoliRegistrazione(const QStringList &cartelle, qsizetype titoli, const Valutazione &v)
{
    QStringList ostacoli;
    // An empty dossier without folders (a first start) has nothing to value: its total of 0 is right.
    if (!v.eseguita && titoli > 0)
        ostacoli << QStringLiteral("nessuna cartella MetaStock impostata");
    for (const QString &percorso : cartelle) {
        const metastock::CartellaMS c = metastock::CartellaMS::leggi(percorso);
        const QString nativo = QDir::toNativeSeparators(percorso);
        if (c.danneggiata())
            ostacoli << QStringLiteral("cartella %1: %2").arg(nativo, c.danno);
        else if (c.stato == metastock::CartellaMS::Stato::CartellaMancante)
            ostacoli << QStringLiteral("cartella %1: non trovata").arg(nativo);
        else if (!c.leggibile())
            ostacoli << QStringLiteral("cartella %1: manca il file MASTER").arg(nativo);
    }
    for (const RigaDossier &r : v.righe) {
        if (r.stato == StatoTitolo::NonTrovato)
            ostacoli << QStringLiteral("titolo %1: non trovato nelle cartelle").arg(r.simbolo);
        else if (r.quotazioniIlleggibili || r.chiusura == 0.0f)
            ostacoli << QStringLiteral("titolo %1: nessuna quotazione leggibile").arg(r.simbolo);
    }
    return ostacoli;
}

} // namespace

bool chiedePdf(const QStringList &args)
{
    return args.size() > 1 && args.first() == QLatin1String("dossier") && args.contains(QLatin1String("--pdf"));
}

QString csvDossier(const QList<RigaDossier> &righe)
{
    QString csv = QStringLiteral("id,simbolo,descrizione,acquisto,data,attuale,differenza,percentuale,stato\n");
    for (const RigaDossier &r : righe) {
        const QStringList campi { QString::number(r.idTitolo), vm::cli::csvText(r.simbolo),
            vm::cli::csvText(r.descrizione), numeroCsv(r.acquisto),
            r.dataUltima.isValid() ? r.dataUltima.toString(Qt::ISODate) : QString(), numeroCsv(r.attuale),
            numeroCsv(r.differenza), numeroCsv(r.percentuale), nomeStato(r.stato) };
        csv += campi.join(u',') + u'\n';
    }
    return csv;
}

QString tabellaDossier(const Valutazione &valutazione)
{
    // Descrizione left-aligned, the figures right-aligned under their headers.
    const QStringList intestazioni { QStringLiteral("Descrizione"), QStringLiteral("Acquisto"), QStringLiteral("data"),
        QStringLiteral("Attuale"), QStringLiteral(" +/-     "), QStringLiteral(" Perc.   ") };
    QList<QStringList> righe;
    for (const RigaDossier &r : valutazione.righe) {
        righe.append(
            { r.descrizione, r.testoAcquisto, r.testoData, r.testoAttuale, r.testoDifferenza, r.testoPercentuale });
    }
    QList<qsizetype> larghezze;
    for (const QString &h : intestazioni)
        larghezze.append(h.size());
    for (const QStringList &r : righe) {
        for (int c = 0; c < r.size(); ++c)
            larghezze[c] = std::max(larghezze[c], r[c].size());
    }
    const auto linea = [&](const QStringList &celle, bool intestazione) {
        QStringList parti;
        for (int c = 0; c < celle.size(); ++c) {
            const bool sinistra = c == 0 || intestazione;
            parti.append(sinistra ? celle[c].leftJustified(larghezze[c]) : celle[c].rightJustified(larghezze[c]));
        }
        return parti.join(QStringLiteral("  ")).trimmed() + u'\n';
    };

    QString testo = linea(intestazioni, true);
    for (const QStringList &r : righe)
        testo += linea(r, false);
    const TotaliDossier &t = valutazione.totali;
    const QList<std::pair<QString, QString>> totali { { QStringLiteral("Acquisto"), t.acquisto },
        { QStringLiteral("Attuale"), t.attuale }, { QStringLiteral("Differenza"), t.differenza },
        { QStringLiteral("Perc."), t.percentuale } };
    qsizetype larghezzaValori = 0;
    for (const auto &[nome, valore] : totali)
        larghezzaValori = std::max(larghezzaValori, valore.size());
    testo += u'\n';
    for (const auto &[nome, valore] : totali)
        testo += (nome.leftJustified(11) + valore.rightJustified(larghezzaValori)).trimmed() + u'\n';
    return testo;
}

int cmdDossier(const QStringList &arguments, cli::Io &io)
{
    if (cli::wantsHelp(arguments)) {
        usage(io.out);
        return cli::Ok;
    }
    QStringList args = arguments;
    const auto cartella = cli::programFolderOf(args, io);
    if (!cartella)
        return cli::Usage;
    QString errore;
    const bool csv = args.removeAll(QStringLiteral("--csv")) > 0;
    const bool registra = args.removeAll(QStringLiteral("--registra")) > 0;
    QString pdf;
    if (const qsizetype i = args.indexOf(QStringLiteral("--pdf")); i >= 0) {
        if (i + 1 >= args.size() || args[i + 1].isEmpty()) {
            io.err << "Manca il nome del file dopo --pdf\n";
            usage(io.err);
            return cli::Usage;
        }
        pdf = args[i + 1];
        args.remove(i, 2);
    }
    if (!args.isEmpty()) {
        io.err << "Argomento non previsto: " << args.first() << "\n";
        usage(io.err);
        return cli::Usage;
    }
    // Painting needs the GUI side of Qt running (main() starts it when --pdf is asked for).
    if (!pdf.isEmpty() && !qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        io.err << "Esportazione PDF non disponibile in questo programma\n";
        return cli::Failure;
    }
    if (!cartella->prepare(store::Database::createIfMissing, errore)) {
        io.err << errore << "\n";
        return cli::Failure;
    }

    store::Database db;
    if (!cli::openDatabase(db, *cartella, io, !registra))
        return cli::Failure;
    // The scheduled run is often the day's first: it keeps the day's copy as the program's start would.
    if (registra) {
        const store::StoreError copia = store::backup::daily(db);
        if (copia.failed())
            io.err << errorText(copia.number, copia.message) << "\n";
    }
    const std::optional<QStringList> cartelle = db.folders();
    if (!cartelle) {
        io.err << store::readFailure(QString::fromUtf8(store::kWhatFolders), db.lastError()) << "\n";
        return cli::Failure;
    }
    const std::optional<QList<store::DossierRow>> titoli = db.dossierRows();
    if (!titoli) {
        io.err << store::readFailure(QString::fromUtf8(store::kWhatDossier), db.lastError()) << "\n";
        return cli::Failure;
    }
    const Valutazione v = PreparaDati(*cartelle, *titoli);

    // The same message for every title that meets a missing folder: said once is enough here.
    QStringList detti;
    for (const Message &a : v.avvisi) {
        if (detti.contains(a.text))
            continue;
        detti.append(a.text);
        io.err << a.title << ": " << QString(a.text).trimmed() << "\n";
    }
    io.out << (csv ? csvDossier(v.righe) : tabellaDossier(v));
    // The printed page shows what was valued, whether or not the day's total may be recorded; a page that
    // could not be written does not keep the day's total from the history.
    bool pdfScritto = true;
    if (!pdf.isEmpty()
        && !scriviPdf(paginaDossier(righeStampa(v.righe), v.totali, QDate::currentDate()), pdf, &errore)) {
        io.err << errore << "\n";
        pdfScritto = false;
    }

    if (!registra)
        return pdfScritto ? cli::Ok : cli::Failure;
    if (const QStringList ostacoli = ostacoliRegistrazione(*cartelle, titoli->size(), v); !ostacoli.isEmpty()) {
        io.err << "Valore del giorno non registrato nello storico: il totale non comprende tutto il dossier.\n";
        for (const QString &o : ostacoli)
            io.err << "  " << o << "\n";
        return cli::Incomplete;
    }
    if (Storico(db, v.totali, QDate::currentDate()) == EsitoStorico::Errore) {
        io.err << errorText(db.lastError().number, db.lastError().message) << "\n";
        return cli::Failure;
    }
    return pdfScritto ? cli::Ok : cli::Failure;
}

} // namespace vm::dossier
