#include "cli/CmdListino.h"

#include "cli/CmdMetastock.h"
#include "cli/CmdSafety.h"
#include "core/ProgramFolder.h"
#include "store/Database.h"

#include <charconv>
#include <cmath>

namespace vm::quotes {

namespace {

void usage(QTextStream &s)
{
    s << "Uso: valorimetrico-cli listino (--lettera L | --dossier | --gruppo NOME) [--cartella DIR] [--csv]\n\n"
         "Stampa le righe del listino: l'ultima giornata di quotazioni dei titoli scelti, letta dagli\n"
         "archivi MetaStock, nell'ordine della finestra.\n\n"
         "  --lettera L     i titoli di tutte le cartelle il cui nome inizia con la lettera L\n"
         "  --dossier       i titoli del dossier\n"
         "  --gruppo NOME   i titoli del gruppo personale NOME\n"
         "  --csv           una riga CSV per titolo: collegato,grafico,titolo,data,chiusura,ufficiale,\n"
         "                  variazione,apertura,minimo,massimo,volumi,directory,file (punto decimale,\n"
         "                  data aaaa-mm-gg, variazione come frazione, vuoto dove la finestra mostra \"-\")\n\n"
         "Gli avvisi vanno sull'errore standard. Esce con 0 se il listino è stato letto, con 1 se il\n"
         "database non si apre, il gruppo non esiste o gli archivi non sono impostati.\n";
}

QString numeroDoppio(double valore)
{
    if (valore == 0 || !std::isfinite(valore))
        return QStringLiteral("0");
    char buffer[400];
    const auto esito = std::to_chars(buffer, buffer + sizeof buffer, valore, std::chars_format::fixed);
    return QString::fromLatin1(buffer, esito.ptr - buffer);
}

QString numeroSingolo(const std::optional<float> &valore)
{
    return valore ? metastock::testoFloatCsv(*valore) : QString();
}

// Takes "--name VALUE" or "--name=VALUE" out of args; false when the value is missing.
bool prendiValore(QStringList &args, const QString &nome, std::optional<QString> &valore)
{
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == nome) {
            if (i + 1 >= args.size() || valore)
                return false;
            valore = args[i + 1];
            args.remove(i, 2);
            --i;
        } else if (args[i].startsWith(nome + u'=')) {
            if (valore)
                return false;
            valore = args[i].mid(nome.size() + 1);
            args.remove(i);
            --i;
        }
    }
    return true;
}

} // namespace

QString csvListino(const QList<RigaListino> &righe)
{
    QString csv = QStringLiteral(
        "collegato,grafico,titolo,data,chiusura,ufficiale,variazione,apertura,minimo,massimo,volumi,directory,file\n");
    for (const RigaListino &r : righe) {
        QStringList campi { r.aggiornato ? QStringLiteral("1") : QStringLiteral("0"), cli::csvField(r.percorsoPrezzi),
            cli::csvField(r.record.nome) };
        if (r.compatibile()) {
            const metastock::Giornata &g = *r.giornata;
            campi << g.data.toString(Qt::ISODate) << numeroSingolo(g.chiusura) << numeroSingolo(g.ufficiale)
                  << (g.variazione ? numeroDoppio(*g.variazione) : QString()) << numeroSingolo(g.apertura)
                  << numeroSingolo(g.minimo) << numeroSingolo(g.massimo) << numeroSingolo(g.volume);
        } else {
            for (int i = 0; i < 8; ++i)
                campi << QString();
        }
        campi << cli::csvField(r.cartella) << cli::csvField(r.record.nomeFile);
        csv += campi.join(u',') + u'\n';
    }
    return csv;
}

QString tabellaListino(const QList<RigaListino> &righe)
{
    const QList<int> colonne { ColCollegato, ColTitolo, ColData, ColChiusura, ColUfficiale, ColVariazione, ColApertura,
        ColMinimo, ColMassimo, ColVolumi };
    QList<QStringList> tabella;
    QStringList intestazioni;
    for (int c : colonne)
        intestazioni << (c == ColCollegato ? QStringLiteral(" ") : QString::fromUtf8(kColonneListino[c].intestazione));
    tabella << intestazioni;
    for (const RigaListino &r : righe) {
        QStringList riga;
        for (int c : colonne)
            riga << (c == ColCollegato ? (r.aggiornato ? QStringLiteral("*") : QStringLiteral(" ")) : r.testi[c]);
        tabella << riga;
    }
    QList<qsizetype> larghezze(colonne.size(), 0);
    for (const QStringList &r : tabella) {
        for (qsizetype i = 0; i < r.size(); ++i)
            larghezze[i] = std::max(larghezze[i], r[i].size());
    }
    QString testo;
    for (qsizetype riga = 0; riga < tabella.size(); ++riga) {
        QStringList parti;
        for (qsizetype i = 0; i < colonne.size(); ++i) {
            const QString &cella = tabella[riga][i];
            // The title (and every header) to the left, the figures to the right.
            const bool sinistra = riga == 0 || colonne[i] == ColTitolo;
            parti << (sinistra ? cella.leftJustified(larghezze[i]) : cella.rightJustified(larghezze[i]));
        }
        QString linea = parti.join(QStringLiteral("  "));
        while (linea.endsWith(u' '))
            linea.chop(1);
        testo += linea + u'\n';
    }
    return testo;
}

int cmdListino(const QStringList &arguments, cli::Io &io)
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
    const bool dossier = args.removeAll(QStringLiteral("--dossier")) > 0;
    std::optional<QString> lettera;
    std::optional<QString> gruppo;
    if (!prendiValore(args, QStringLiteral("--lettera"), lettera)
        || !prendiValore(args, QStringLiteral("--gruppo"), gruppo)) {
        io.err << "Opzione senza valore o ripetuta.\n";
        usage(io.err);
        return cli::Usage;
    }
    if (!args.isEmpty()) {
        io.err << "Argomento non previsto: " << args.first() << "\n";
        usage(io.err);
        return cli::Usage;
    }
    if (int(dossier) + int(lettera.has_value()) + int(gruppo.has_value()) != 1) {
        io.err << "Indicare una sola lista: --lettera, --dossier o --gruppo.\n";
        usage(io.err);
        return cli::Usage;
    }
    if (lettera && (lettera->size() != 1 || !lettereListino().contains(lettera->toUpper()))) {
        io.err << "La lettera deve essere una sola lettera dalla A alla Z: " << *lettera << "\n";
        return cli::Usage;
    }
    if (!cartella->prepare(store::Database::createIfMissing, errore)) {
        io.err << errore << "\n";
        return cli::Failure;
    }

    store::Database db;
    if (!cli::openDatabase(db, *cartella, io, true)) // these only read: a read-only folder still serves
        return cli::Failure;
    const auto cartelle = db.folders();
    if (!cartelle) {
        io.err << store::readFailure(QString::fromUtf8(store::kWhatFolders), db.lastError()) << "\n";
        return cli::Failure;
    }
    const QDate oggi = QDate::currentDate();
    Listino listino;
    if (lettera) {
        listino = CercaMS(*cartelle, lettera->front(), oggi);
    } else {
        std::optional<QStringList> simboli;
        if (dossier) {
            if (const auto righe = db.dossierRows()) {
                simboli.emplace();
                for (const store::DossierRow &r : *righe)
                    simboli->append(r.titolo);
            }
        } else {
            const bool esiste = db.groupExists(*gruppo);
            if (!esiste && !db.lastError().failed()) {
                io.err << "Gruppo inesistente: " << *gruppo << "\n";
                return cli::Failure;
            }
            if (esiste)
                simboli = db.symbolsOfGroup(*gruppo);
        }
        if (!simboli) {
            const QString cosa
                = dossier ? QString::fromUtf8(store::kWhatDossier) : QStringLiteral("il gruppo ") + *gruppo;
            io.err << store::readFailure(cosa, db.lastError()) << "\n";
            return cli::Failure;
        }
        listino = CercaTitoli(*cartelle, *simboli, oggi);
    }
    for (const Message &a : listino.avvisi)
        io.err << a.text << "\n";
    for (const QString &s : listino.nonTrovati)
        io.err << "Titolo non trovato negli archivi: " << s.trimmed() << "\n";
    for (const RigaListino &r : listino.righe) {
        if (!r.errore.isEmpty())
            io.err << r.record.nome << ": " << r.errore << "\n";
    }
    if (!listino.eseguito)
        return cli::Failure;
    io.out << (csv ? csvListino(listino.righe) : tabellaListino(listino.righe));
    return cli::Ok;
}

} // namespace vm::quotes
