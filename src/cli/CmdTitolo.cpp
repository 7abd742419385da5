#include "cli/CmdTitolo.h"

#include "cli/CmdSafety.h"
#include "core/ProgramFolder.h"
#include "metastock/Master.h"
#include "store/Database.h"

#include <array>
#include <charconv>
#include <cmath>

namespace vm::operations {

namespace {

void usage(QTextStream &s)
{
    s << "Uso: valorimetrico-cli titolo SIMBOLO [--cartella DIR] [--csv]\n\n"
         "Stampa la situazione di un titolo del dossier: quantità, prezzo medio, "
         "valore attuale\n"
         "con l'ultima quotazione degli archivi MetaStock, differenza, dividendo "
         "e rendimento;\n"
         "poi le sue operazioni e la performance su sette periodi.\n\n"
         "  --csv  tre tabelle CSV separate da una riga vuota: situazione, "
         "operazioni, periodi\n"
         "         (punto decimale, date aaaa-mm-gg, percentuali come "
         "frazioni)\n\n"
         "Esce con 0 se il titolo è nel dossier, con 1 se non c'è o se il "
         "database non si apre.\n";
}

// The shortest text that reads back as the same double, in plain decimal
// notation.
QString numero(double valore)
{
    if (valore == 0 || !std::isfinite(valore))
        return QStringLiteral("0");
    std::array<char, 400> buffer;
    const auto esito = std::to_chars(buffer.data(), buffer.data() + buffer.size(), valore, std::chars_format::fixed);
    return QString::fromLatin1(buffer.data(), esito.ptr - buffer.data());
}

QString numero(const std::optional<double> &valore)
{
    return valore ? numero(*valore) : QString();
}

QString data(const QDate &d)
{
    return d.isValid() ? d.toString(Qt::ISODate) : QString();
}

QString nomeTipo(const QString &tipo)
{
    if (tipo == QLatin1String(store::kTipoAcquisto))
        return QStringLiteral("Acquisto");
    if (tipo == QLatin1String(store::kTipoVendita))
        return QStringLiteral("Vendita");
    return tipo;
}

QString nomeStato(RigaPerformance::Stato stato)
{
    switch (stato) {
    case RigaPerformance::Stato::Disponibile:
        return QStringLiteral("disponibile");
    case RigaPerformance::Stato::PrimaAcquisto:
        return QStringLiteral("prima-acquisto");
    case RigaPerformance::Stato::NonDisponibile:
        break;
    }
    return QStringLiteral("non-disponibile");
}

// Columns: the first left-aligned, the others right-aligned under their
// headers.
QString colonne(const QStringList &intestazioni, const QList<QStringList> &righe)
{
    QList<qsizetype> larghezze;
    for (const QString &h : intestazioni)
        larghezze.append(h.size());
    for (const QStringList &r : righe) {
        for (int c = 0; c < r.size() && c < larghezze.size(); ++c)
            larghezze[c] = std::max(larghezze[c], r[c].size());
    }
    const auto linea = [&](const QStringList &celle) {
        QStringList parti;
        for (int c = 0; c < celle.size() && c < larghezze.size(); ++c)
            parti.append(c == 0 ? celle[c].leftJustified(larghezze[c]) : celle[c].rightJustified(larghezze[c]));
        return parti.join(QStringLiteral("  ")).trimmed() + u'\n';
    };
    QString testo = linea(intestazioni);
    for (const QStringList &r : righe)
        testo += linea(r);
    return testo;
}

} // namespace

QString tabellaTitolo(const SituazioneTitolo &s)
{
    QString testo
        = s.riga.descrizione.trimmed() + QStringLiteral(" (") + s.riga.titolo.trimmed() + QStringLiteral(")\n");
    const QList<std::pair<QString, QString>> figure {
        { QStringLiteral("Quantità"), s.quantita },
        { QStringLiteral("Prezzo medio"), s.prezzoMedio },
        { QStringLiteral("Acquistato il"), s.giorno },
        { QStringLiteral("Ultima operazione"), s.ultimaOperazione },
        { QStringLiteral("Tot. Acquisto"), s.calcolo.testoAcquisto },
        { QStringLiteral("Tot. Attuale"), s.calcolo.testoAttuale },
        { QStringLiteral("Differenza"), s.calcolo.testoDifferenza },
        { QStringLiteral("Differenza %"), s.calcolo.testoPercentuale },
        { QStringLiteral("Data stacco"), s.dataStacco },
        { QStringLiteral("Dividendo"), s.dividendo },
        { QStringLiteral("Totale"), s.totaleDividendo },
        { QStringLiteral("Yeld %"), s.rendimento },
    };
    qsizetype larghezza = 0;
    for (const auto &f : figure)
        larghezza = std::max(larghezza, f.second.size());
    for (const auto &[nome, valore] : figure)
        testo += (nome.leftJustified(19) + valore.rightJustified(larghezza)).trimmed() + u'\n';
    testo += s.barraStato.trimmed() + QStringLiteral("\n\n");

    QList<QStringList> operazioni;
    for (const RigaOperazione &o : s.operazioni) {
        operazioni.append({ nomeTipo(o.operazione.tipo), o.testoData, o.testoValore, o.testoQta, o.testoSomma });
    }
    testo += colonne({ QStringLiteral("Operazione"), QStringLiteral("Data"), QStringLiteral("Valore"),
                         QStringLiteral("Q.tà"), QStringLiteral("Somma") },
        operazioni);
    testo += u'\n';

    QList<QStringList> periodi;
    for (const RigaPerformance &p : s.performance)
        periodi.append({ p.periodo, p.testoGiorno, p.testoQuotazione, p.testoVariazione });
    testo += colonne(
        { QStringLiteral("Periodo"), QStringLiteral("Giorno"), QStringLiteral("Quotazione"), QStringLiteral("Diff %") },
        periodi);
    return testo;
}

QString csvTitolo(const SituazioneTitolo &s)
{
    const store::DossierRow &r = s.riga;
    QString csv = QStringLiteral("id,simbolo,descrizione,giorno,quantita,prezzo,"
                                 "acquisto,attuale,differenza,"
                                 "percentuale,ultima_operazione,ultima_"
                                 "quotazione,chiusura,data_stacco,dividendo,"
                                 "totale_dividendo,rendimento\n");
    const bool conDividendo = r.dividendo != 0;
    const QStringList figure { QString::number(r.idTitolo), cli::csvField(r.titolo.trimmed()),
        cli::csvField(r.descrizione.trimmed()), data(r.giorno), QString::number(r.qta), numero(r.prezzo),
        numero(s.calcolo.acquisto), numero(s.calcolo.attuale), numero(s.calcolo.differenza),
        numero(s.calcolo.percentuale), s.operazioni.isEmpty() ? QString() : data(s.operazioni.last().operazione.data),
        s.ultimaQuota ? data(s.ultimaQuota->data) : QString(),
        s.ultimaQuota ? numero(valoreQuota(s.ultimaQuota->chiusura)) : QString(), data(r.dataStacco),
        numero(r.dividendo), numero(r.dividendo * double(r.qta)),
        conDividendo && r.prezzo != 0 ? numero(r.dividendo / r.prezzo) : QString() };
    csv += figure.join(u',') + u'\n';

    csv += QStringLiteral("\nid,tipo,data,valore,qta,somma,note\n");
    for (const RigaOperazione &o : s.operazioni) {
        const store::Operazione &op = o.operazione;
        csv += QStringList { QString::number(op.idArchivioDossier), cli::csvField(op.tipo), data(op.data),
            numero(op.valore), QString::number(op.qta), numero(op.tot()), cli::csvField(op.note) }
                   .join(u',')
            + u'\n';
    }

    csv += QStringLiteral("\nperiodo,stato,giorno,quotazione,variazione\n");
    for (const RigaPerformance &p : s.performance) {
        const bool conQuota = p.stato != RigaPerformance::Stato::NonDisponibile;
        csv += QStringList { cli::csvField(p.periodo), nomeStato(p.stato), conQuota ? data(p.quota.data) : QString(),
            conQuota ? numero(valoreQuota(p.quota.chiusura)) : QString(), conQuota ? numero(p.variazione) : QString() }
                   .join(u',')
            + u'\n';
    }
    return csv;
}

int cmdTitolo(const QStringList &arguments, cli::Io &io)
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
    if (args.size() != 1 || args.first().startsWith(QLatin1String("--"))) {
        if (args.isEmpty())
            io.err << "Manca il simbolo del titolo.\n";
        else
            io.err << "Argomento non previsto: " << (args.size() > 1 ? args[1] : args.first()) << "\n";
        usage(io.err);
        return cli::Usage;
    }
    const QString simbolo = args.first().trimmed();
    if (!cartella->prepare(store::Database::createIfMissing, errore)) {
        io.err << errore << "\n";
        return cli::Failure;
    }

    store::Database db;
    if (!cli::openDatabase(db, *cartella, io, true)) // these only read: a read-only folder still serves
        return cli::Failure;
    const std::optional<store::DossierRow> riga = db.findTitleBySymbol(simbolo);
    if (!riga) {
        io.err << (db.lastError().failed() ? db.lastError().message : QString::fromLatin1(kMessaggioTitoloAssente))
               << "\n";
        return cli::Failure;
    }
    const std::optional<QList<store::Operazione>> operazioni = db.operationsOfTitle(riga->idTitolo);
    if (!operazioni) {
        io.err << db.lastError().message << "\n";
        return cli::Failure;
    }
    const std::optional<QStringList> cartelle = db.folders();
    if (!cartelle) {
        io.err << store::readFailure(QString::fromUtf8(store::kWhatFolders), db.lastError()) << "\n";
        return cli::Failure;
    }

    // Without quotes the holding still shows, valued at nothing: said on standard
    // error.
    QList<metastock::QuotaMS> quote;
    metastock::ArchivioMS archivio(*cartelle);
    const metastock::EsitoRicerca ricerca = archivio.TrovaTicker(riga->titolo.trimmed());
    if (ricerca.trovato()) {
        const auto storia = metastock::leggiStoria(ricerca.titolo.percorsoPrezzi, ricerca.titolo.record.campi, &errore);
        if (storia)
            quote = *storia;
        else
            io.err << errore << "\n";
    } else {
        const QString m = ricerca.messaggio();
        io.err << riga->titolo.trimmed() << ": "
               << (m.isEmpty() ? QStringLiteral("titolo non trovato negli archivi MetaStock") : m) << "\n";
    }

    const SituazioneTitolo s = TrovaTitolo(*riga, *operazioni, quote);
    io.out << (csv ? csvTitolo(s) : tabellaTitolo(s));
    return cli::Ok;
}

} // namespace vm::operations
