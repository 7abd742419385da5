// A title's life in the database (bought, bought again, sold, its operations
// deleted), its performance over the price file, the titles the new-title
// window offers, and the titolo command.
#include "metastock/ArchiveWriter.h"
#include "operations/Elenco.h"
#include "operations/Registra.h"
#include "operations/Situazione.h"
#include "store/Database.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::metastock;
using namespace vm::operations;

namespace {

const QDate kUltimo(2026, 11, 20); // a Friday: the last quote of the archive

// Quotes on every weekday from primo to kUltimo: all close at 20, the last
// at 25.
TitoloArchivio titolo(const char *simbolo, const char *nome, QDate primo)
{
    TitoloArchivio t { QString::fromLatin1(simbolo), QString::fromLatin1(nome), 7, {}, {}, {}, {} };
    for (QDate d = primo; d <= kUltimo; d = d.addDays(1)) {
        if (d.dayOfWeek() > 5)
            continue;
        QuotaMS q;
        q.data = d;
        q.chiusura = q.massimo = q.minimo = d == kUltimo ? 25.0f : 20.0f;
        t.quote << q;
    }
    return t;
}

// One step of a user's session: "N q p" new title, "A q p" further purchase, "V
// q p" sale, "D k" delete the k-th operation in the list's order (from 0). Each
// on its own day, in order.
struct Passo {
    char tipo;
    qint64 quantita;
    double prezzo;
};

QList<Passo> passi(const QString &testo)
{
    QList<Passo> elenco;
    for (const QString &p : testo.split(u';', Qt::SkipEmptyParts)) {
        const QStringList parti = p.trimmed().split(u' ');
        elenco.append({ parti[0].at(0).toLatin1(), parti.value(1).toLongLong(), parti.value(2).toDouble() });
    }
    return elenco;
}

struct Esito {
    int stato = -1;
    QString out, err;
};

Esito esegui(const QStringList &args)
{
    QProcess p;
    p.start(QStringLiteral(VM_CLI_PATH), QStringList { QStringLiteral("titolo") } + args);
    const bool finito = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit;
    return { finito ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
        QString::fromUtf8(p.readAllStandardError()) };
}

} // namespace

class TestTitolo : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_cartellaA, m_cartellaB;
    QList<QuotaMS> m_quote; // ABC's quotes

    // A fresh program folder whose database knows the two archive folders.
    QString programFolder(store::Database &db)
    {
        static int n = 0;
        const QString dir = m_tmp.filePath(QStringLiteral("prog%1").arg(++n));
        const QString mdb = dir + QStringLiteral("/valorimetrico.mdb");
        if (!QDir().mkpath(dir) || store::Database::create(mdb).failed() || !db.open(mdb).ok()
            || !db.replaceFolders({ m_cartellaA, m_cartellaB }))
            qFatal("database not created");
        return dir;
    }

    // Runs the steps on title ABC as the windows do; the last message shown, ""
    // when none.
    QString sessione(store::Database &db, const QString &testo)
    {
        QString ultimo;
        QDate giorno(2025, 1, 6);
        for (const Passo &p : passi(testo)) {
            giorno = giorno.addDays(1);
            const std::optional<store::DossierRow> riga = db.findTitleBySymbol(QStringLiteral("ABC"));
            const Importo importo { p.quantita, p.prezzo };
            EsitoRegistrazione e;
            switch (p.tipo) {
            case 'N':
                e = registraNuovoTitolo(
                    db, QStringLiteral("ABC"), QStringLiteral("ALFA BETA"), giorno, importo, giorno);
                break;
            case 'A':
            case 'V':
                if (!riga)
                    qFatal("no title to trade");
                e = (p.tipo == 'A' ? registraAcquisto : registraVendita)(
                    db, riga->idTitolo, riga->descrizione, riga->titolo, giorno, importo, QString(), giorno);
                break;
            case 'D': {
                if (!riga)
                    qFatal("no title to delete from");
                const QList<store::Operazione> ops = inOrdine(*db.operationsOfTitle(riga->idTitolo));
                const qint64 id = ops.at(p.quantita).idArchivioDossier;
                const ControlloRimozione c = controllaRimozione(*riga, ops, id);
                if (c.rifiuto) {
                    e.messaggio = c.rifiuto;
                    break;
                }
                e = rimuoviOperazione(db, riga->idTitolo, id);
                break;
            }
            }
            ultimo = e.messaggio ? e.messaggio->text : QString();
        }
        return ultimo;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_tmp.isValid());
        m_cartellaA = m_tmp.filePath(QStringLiteral("A")) + u'/';
        m_cartellaB = m_tmp.filePath(QStringLiteral("B")) + u'/';
        const TitoloArchivio abc = titolo("ABC", "ALFA BETA", QDate(2023, 1, 2));
        m_quote = abc.quote;
        QVERIFY(QDir().mkpath(m_cartellaA) && QDir().mkpath(m_cartellaB));
        QVERIFY(scriviArchivio(m_cartellaA,
            { abc, titolo("FEW", "POCHI DATI", kUltimo.addDays(-2)), titolo("ZED", "zeta spa", QDate(2026, 6, 1)) }));
        QVERIFY(scriviArchivio(m_cartellaB,
            { titolo("ABC", "ALFA DOPPIO", QDate(2026, 1, 5)), titolo("MID", "MEDIA SPA", QDate(2026, 1, 5)) }));
    }

    // What the database holds after a session: the title's row (or none) and its
    // operations.
    void sessioni_data()
    {
        QTest::addColumn<QString>("passi");
        QTest::addColumn<qint64>("qta"); // -1: the title is gone
        QTest::addColumn<double>("prezzo");
        QTest::addColumn<QString>("operazioni"); // tipo:qta, in the list's order
        QTest::addColumn<QString>("messaggio");

        const double p8667 = double(float(8.667));
        QTest::newRow("100 at 10, 50 at 13") << "N 100 10; A 50 13" << 150LL << 11.0 << "AQ:100 AQ:50"
                                             << "";
        QTest::newRow("100 at 10, sell 40 at 12") << "N 100 10; V 40 12" << 60LL << p8667 << "AQ:100 VE:40"
                                                  << "";
        QTest::newRow("sell one fewer than held") << "N 100 10; V 99 12" << 1LL << -188.0 << "AQ:100 VE:99"
                                                  << "";
        QTest::newRow("sell all: the VE row stays") << "N 100 10; V 100 12" << -1LL << 0.0 << "AQ:100 VE:100"
                                                    << "";
        QTest::newRow("sell more than held") << "N 100 10; V 101 12" << 100LL << 10.0 << "AQ:100"
                                             << "Verificare il numero di quote, risultano 100 disponibili.";
        QTest::newRow("quantity 0 bought and sold") << "N 0 5; A 0 7; N 100 1" << 0LL << 5.0 << "AQ:0 AQ:0"
                                                    << QString::fromUtf8("Il titolo ALFA BETA è già in dossier\n"
                                                                         "per l'acquisto di altre quote, selezioare "
                                                                         "il titolo\nquindi fare click su Acquisto");
        QTest::newRow("sale of 0 shares") << "N 100 10; V 0 12" << 100LL << 10.0 << "AQ:100 VE:0"
                                          << "";
        QTest::newRow("the only operation deleted")
            << "N 100 10; D 0" << -1LL << 0.0 << ""
            << QString::fromUtf8("il titolo è stato rimosso dal dossier titoli");
        QTest::newRow("the earliest of two refused") << "N 100 10; A 50 13; D 0" << 150LL << 11.0 << "AQ:100 AQ:50"
                                                     << "Non posso rimuovere questa operazione.";
        QTest::newRow("the last deleted, then entered again")
            << "N 100 10; V 40 12; A 50 13; D 2; A 50 13" << 110LL << double(float(10.637)) << "AQ:100 VE:40 AQ:50"
            << "";
        QTest::newRow("a sale in the middle deleted")
            << "N 100 10; V 40 12; A 50 13; D 1" << 150LL << 11.0 << "AQ:100 AQ:50"
            << "";
        QTest::newRow("a purchase a later sale needs")
            << "N 100 10; A 50 13; V 120 12; D 1" << 30LL << 7.0 << "AQ:100 AQ:50 VE:120"
            << "Non posso rimuovere questa operazione.";
    }
    void sessioni()
    {
        QFETCH(QString, passi);
        QFETCH(qint64, qta);
        QFETCH(double, prezzo);
        store::Database db;
        programFolder(db);
        QTEST(sessione(db, passi), "messaggio");

        const std::optional<store::DossierRow> riga = db.findTitleBySymbol(QStringLiteral("ABC"));
        QCOMPARE(riga.has_value(), qta >= 0);
        if (riga) {
            QCOMPARE(riga->qta, qta);
            QCOMPARE(riga->prezzo, prezzo);
            QCOMPARE(riga->giorno, QDate(2025, 1, 7));
        }
        // Every operation row, the title's or the one of the title sold out, by
        // id 1.
        QStringList ops;
        for (const store::Operazione &o : inOrdine(*db.operationsOfTitle(1)))
            ops << o.tipo + u':' + QString::number(o.qta);
        QTEST(ops.join(u' '), "operazioni");
    }

    // The new-title window's rows carry the symbol and the name the other way
    // round, as the others read them.
    void righeScritte()
    {
        store::Database db;
        programFolder(db);
        QCOMPARE(sessione(db, QStringLiteral("N 100 10; A 50 13")), QString());
        const QList<store::Operazione> ops = inOrdine(*db.operationsOfTitle(1));
        QCOMPARE(ops.size(), 2);
        QCOMPARE((QStringList { ops[0].titolo, ops[0].ticker, ops[1].titolo, ops[1].ticker }),
            (QStringList { "ABC", "ALFA BETA", "ALFA BETA", "ABC" }));
        QCOMPARE(ops[0].tipo, QStringLiteral("AQ"));
        QCOMPARE(ops[0].inser, QDate(2025, 1, 7));
        QCOMPARE(ops[1].valore, 13.0);
    }

    // A window whose title went meanwhile (renamed, removed) writes nothing.
    void titoloScomparso_data()
    {
        QTest::addColumn<bool>("vendita");
        QTest::newRow("further purchase") << false;
        QTest::newRow("sale") << true;
    }
    void titoloScomparso()
    {
        QFETCH(bool, vendita);
        store::Database db;
        programFolder(db);
        QCOMPARE(sessione(db, QStringLiteral("N 100 10")), QString());
        const auto registra = vendita ? registraVendita : registraAcquisto;
        const EsitoRegistrazione e = registra(db, 1, QStringLiteral("ALFA BETA"), QStringLiteral("XYZ"),
            QDate(2025, 2, 3), { 10, 10 }, QString(), QDate(2025, 2, 3));
        QVERIFY(!e.ok);
        QCOMPARE(e.messaggio->text, QStringLiteral("Non trovato in archivio, forse è stato cambiato il nome.."));
        QCOMPARE(e.messaggio->title, vendita ? QStringLiteral("Vendita") : QStringLiteral("Acquisto nuove quote"));
        QCOMPARE(db.operationsOfTitle(1)->size(), 1);
        QCOMPARE(db.findTitleById(1)->qta, 100);
    }

    // A dividend saved and cleared: the stored fields, as the dividend window
    // reopens on them.
    void dividendoRegistrato()
    {
        store::Database db;
        programFolder(db);
        QCOMPARE(sessione(db, QStringLiteral("N 150 4")), QString());
        QVERIFY(registraDividendo(db, 1, QDate(2025, 5, 19), 0.2).ok);
        SituazioneTitolo s = TrovaTitolo(*db.findTitleById(1), *db.operationsOfTitle(1), m_quote);
        QCOMPARE((QStringList { s.dataStacco, s.dividendo, s.totaleDividendo, s.rendimento }),
            (QStringList { "19/05/2025", "0,2", "30,0", "5,0%" }));
        QVERIFY(registraDividendo(db, 1, QDate(2025, 5, 19), 0).ok);
        const store::DossierRow r = *db.findTitleById(1);
        QVERIFY(!r.dataStacco.isValid());
        QCOMPARE(r.dividendo, 0.0);
        s = TrovaTitolo(r, {}, m_quote);
        QCOMPARE((QStringList { s.dataStacco, s.dividendo, s.totaleDividendo, s.rendimento }),
            (QStringList { "00/00/00", "0", "0", "00" }));
        QVERIFY(!registraDividendo(db, 99, QDate(2025, 5, 19), 1).ok);
    }

    void inizioPeriodo_data()
    {
        QTest::addColumn<QDate>("ultimo");
        QTest::addColumn<int>("indice");
        QTest::addColumn<QDate>("inizio");
        QTest::newRow("a week") << kUltimo << 0 << QDate(2026, 11, 13);
        QTest::newRow("a week across a month") << QDate(2026, 3, 3) << 0 << QDate(2026, 2, 24);
        QTest::newRow("31 March less a month") << QDate(2025, 3, 31) << 1 << QDate(2025, 3, 3);
        QTest::newRow("31 March less a month, leap year") << QDate(2024, 3, 31) << 1 << QDate(2024, 3, 2);
        QTest::newRow("12 months from 29 February") << QDate(2024, 2, 29) << 4 << QDate(2023, 3, 1);
        QTest::newRow("36 months across the century") << QDate(2001, 5, 15) << 6 << QDate(1998, 5, 15);
    }
    void inizioPeriodo()
    {
        QFETCH(QDate, ultimo);
        QFETCH(int, indice);
        QTEST(operations::inizioPeriodo(ultimo, kPeriodi[indice]), "inizio");
    }

    // The seven rows over ABC's file: n.d. where the file does not reach, N.d.
    // before the purchase.
    void performance_data()
    {
        QTest::addColumn<QDate>("primo"); // the file's first quote
        QTest::addColumn<QDate>("acquisto");
        QTest::addColumn<QStringList>("righe");

        const QString ok = QStringLiteral("20,0|25,0%");
        QTest::newRow("bought long ago") << QDate(2023, 1, 2) << QDate(2023, 1, 2)
                                         << QStringList { "1 Sett.|13/11/26|" + ok, "1 Mese|20/10/26|" + ok,
                                                "3 Mesi|20/08/26|" + ok, "6 Mesi|20/05/26|" + ok,
                                                "12 Mesi|20/11/25|" + ok, "24 Mesi|20/11/24|" + ok,
                                                "36 Mesi|20/11/23|" + ok };
        QTest::newRow("bought two months ago")
            << QDate(2023, 1, 2) << QDate(2026, 9, 21)
            << QStringList { "1 Sett.|13/11/26|" + ok, "1 Mese|20/10/26|" + ok, "3 Mesi|N.d.|N.d.|N.d.",
                   "6 Mesi|N.d.|N.d.|N.d.", "12 Mesi|N.d.|N.d.|N.d.", "24 Mesi|N.d.|N.d.|N.d.",
                   "36 Mesi|N.d.|N.d.|N.d." };
        QTest::newRow("bought on the period's first day")
            << QDate(2023, 1, 2) << QDate(2026, 10, 20)
            << QStringList { "1 Sett.|13/11/26|" + ok, "1 Mese|20/10/26|" + ok, "3 Mesi|N.d.|N.d.|N.d.",
                   "6 Mesi|N.d.|N.d.|N.d.", "12 Mesi|N.d.|N.d.|N.d.", "24 Mesi|N.d.|N.d.|N.d.",
                   "36 Mesi|N.d.|N.d.|N.d." };
        QTest::newRow("a file of five months")
            << QDate(2026, 6, 1) << QDate(2026, 6, 1)
            << QStringList { "1 Sett.|13/11/26|" + ok, "1 Mese|20/10/26|" + ok, "3 Mesi|20/08/26|" + ok,
                   "6 Mesi|n.d.|n.d.|n.d.", "12 Mesi|n.d.|n.d.|n.d.", "24 Mesi|n.d.|n.d.|n.d.",
                   "36 Mesi|n.d.|n.d.|n.d." };
        QTest::newRow("a file that starts on the week's first day")
            << QDate(2026, 11, 13) << QDate(2026, 11, 13)
            << QStringList { "1 Sett.|n.d.|n.d.|n.d.", "1 Mese|n.d.|n.d.|n.d.", "3 Mesi|n.d.|n.d.|n.d.",
                   "6 Mesi|n.d.|n.d.|n.d.", "12 Mesi|n.d.|n.d.|n.d.", "24 Mesi|n.d.|n.d.|n.d.",
                   "36 Mesi|n.d.|n.d.|n.d." };
    }
    void performance()
    {
        QFETCH(QDate, primo);
        QFETCH(QDate, acquisto);
        QList<QuotaMS> quote;
        for (const QuotaMS &q : m_quote) {
            if (q.data >= primo)
                quote << q;
        }
        QStringList righe;
        for (const RigaPerformance &r : Performance(quote, acquisto))
            righe << QStringList { r.periodo, r.testoGiorno, r.testoQuotazione, r.testoVariazione }.join(u'|');
        QTEST(righe, "righe");
    }

    // The chart of a period, or the reason there is none.
    void grafico_data()
    {
        QTest::addColumn<int>("quote"); // the last n quotes of ABC
        QTest::addColumn<int>("periodo");
        QTest::addColumn<int>("punti");
        QTest::addColumn<QString>("messaggio");
        QTest::newRow("3 months") << 1000 << 3 << 67 << "";
        QTest::newRow("a single quote") << 1 << 1 << 0 << "Pochi dati, non consentono la visualizzazione del grafico";
        QTest::newRow("period not reached") << 30 << 4 << 0 << "Dati non disponibili per il periodo di 6 Mesi";
        QTest::newRow("setting out of range") << 1000 << 9 << 785 << "";
    }
    void grafico()
    {
        QFETCH(int, quote);
        QFETCH(int, periodo);
        const DatiGrafico g = graficoPeriodo(m_quote.mid(std::max<qsizetype>(0, m_quote.size() - quote)), periodo);
        QTEST(int(g.quote.size()), "punti");
        QTEST(g.messaggio, "messaggio");
        if (g.messaggio.isEmpty())
            QCOMPARE(g.quote.last().data, kUltimo);
    }

    // The titles offered by the new-title window: sorted by name, the three lists
    // in step, a symbol only once.
    void elenco()
    {
        QStringList mancanti;
        ArchivioMS archivio({ m_cartellaA, m_tmp.filePath(QStringLiteral("nessuna/")), m_cartellaB });
        const ElencoTitoli e = CaricaElenco(archivio, &mancanti);
        QCOMPARE(e.descrizioni, (QStringList { "ALFA BETA", "MEDIA SPA", "POCHI DATI", "zeta spa" }));
        QCOMPARE(e.simboli, (QStringList { "ABC", "MID", "FEW", "ZED" }));
        QCOMPARE(QFileInfo(e.percorsi[1]).absolutePath() + u'/', m_cartellaB);
        QCOMPARE(e.campi, (QList<int> { 7, 7, 7, 7 }));
        QCOMPARE(mancanti, QStringList { m_tmp.filePath(QStringLiteral("nessuna/")) });
        QCOMPARE(ultimoPrezzo(e.percorsi[0], e.campi[0]), QStringLiteral(" 25   data 20/11/2026"));
        QCOMPARE(ultimoPrezzo(QString(), 7), std::nullopt);
        QCOMPARE(ultimoPrezzo(m_tmp.filePath(QStringLiteral("F99.DAT")), 7), std::nullopt);
    }

    // The command: the window's figures for people, full precision for programs,
    // clear failures.
    void comando()
    {
        store::Database db;
        const QString dir = programFolder(db);
        QCOMPARE(sessione(db, QStringLiteral("N 100 10; V 40 12")), QString());
        QVERIFY(registraDividendo(db, 1, QDate(2025, 5, 19), 0.35).ok);
        db.close();

        Esito e = esegui({ QStringLiteral("ABC"), QStringLiteral("--cartella"), dir });
        QCOMPARE(e.stato, 0);
        QVERIFY2(e.err.isEmpty(), qPrintable(e.err));
        const QString testo = e.out.simplified();
        for (const char *riga :
            { "Quantità 60", "Prezzo medio 8,667", "Tot. Acquisto 520,02", "Tot. Attuale 1.500,0", "Differenza 979,98",
                "Differenza % 188,45%", "Totale 21,0", "Yeld % 4,04%", "ALFA BETA Ultima quotaz.: 20/11/2026 25,0",
                "Vendita 08/01/25 12 40 480,0", "12 Mesi 20/11/25 20,0 25,0%", "24 Mesi N.d. N.d. N.d." }) {
            QVERIFY2(testo.contains(QString::fromUtf8(riga)), qPrintable(e.out));
        }

        e = esegui({ QStringLiteral("ABC"), QStringLiteral("--csv"), QStringLiteral("--cartella"), dir });
        QCOMPARE(e.stato, 0);
        const QStringList blocchi = e.out.split(QStringLiteral("\n\n"));
        QCOMPARE(blocchi.size(), 3);
        QVERIFY(blocchi[0].contains(QStringLiteral("\n1,ABC,ALFA BETA,2025-01-07,60,8.66699981689453")));
        QCOMPARE(blocchi[1].split(u'\n').value(2), QStringLiteral("2,VE,2025-01-08,12,40,480,"));
        QCOMPARE(blocchi[2].split(u'\n').value(1), QStringLiteral("1 Sett.,disponibile,2026-11-13,20,0.25"));
        QCOMPARE(blocchi[2].split(u'\n').value(7), QStringLiteral("36 Mesi,prima-acquisto,2023-11-20,20,0.25"));

        e = esegui({ QStringLiteral("XYZ"), QStringLiteral("--cartella"), dir });
        QCOMPARE(e.stato, 1);
        QCOMPARE(e.err.trimmed(), QStringLiteral("Titolo non presente in archivio"));
        QCOMPARE(esegui({ QStringLiteral("--cartella"), dir }).stato, 2);
        QCOMPARE(esegui({ QStringLiteral("ABC"), QStringLiteral("DEF"), QStringLiteral("--cartella"), dir }).stato, 2);
    }
};

QTEST_GUILESS_MAIN(TestTitolo)
#include "tst_titolo.moc"
