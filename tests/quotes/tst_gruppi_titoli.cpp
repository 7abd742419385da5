// The title groups editor's rules on a database written here: the 40-title limit, creating, adding,
// removing (names with quotes included), the tree's keys and the archive titles offered.
#include "metastock/ArchiveWriter.h"
#include "quotes/GruppiTitoli.h"
#include "store/Database.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::quotes;

namespace {

QList<TitoloOfferto> offerti(int quanti, const QString &prefisso = QStringLiteral("T"))
{
    QList<TitoloOfferto> t;
    for (int i = 1; i <= quanti; ++i)
        t.append({ prefisso + QString::number(i) + QStringLiteral("  "),
            QStringLiteral("TITOLO ") + prefisso + QString::number(i), {} });
    return t;
}

QString testi(const EsitoGruppi &e)
{
    QStringList t;
    for (const Message &a : e.avvisi)
        t << a.title + u'|' + a.text;
    return t.join(u'\n');
}

} // namespace

class TestGruppiTitoli : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_tmp;
    std::unique_ptr<store::Database> m_db;

    // "Gruppo:titolo,titolo;Gruppo:..." of the whole table.
    QString tabella()
    {
        QStringList g;
        const auto albero = CaricaGruppi(*m_db);
        if (!albero)
            return QStringLiteral("errore");
        for (const NodoGruppo &n : *albero) {
            QStringList t;
            for (const NodoTitolo &x : n.titoli)
                t << x.titolo;
            g << n.gruppo + u':' + t.join(u',');
        }
        return g.join(u';');
    }

    void aggiungi(const QString &gruppo, const QString &simbolo, const QString &titolo)
    {
        QCOMPARE(m_db->addToGroup({ 0, gruppo, simbolo, titolo }), store::GroupAdd::Added);
    }

private Q_SLOTS:
    void init()
    {
        const QString mdb = m_tmp.filePath(QStringLiteral("valorimetrico.mdb"));
        QFile::remove(mdb);
        QVERIFY(!store::Database::create(mdb).failed());
        m_db = std::make_unique<store::Database>();
        QVERIFY(m_db->open(mdb).ok());
    }
    void cleanup() { m_db.reset(); }

    void selezione_data()
    {
        QTest::addColumn<int>("gia");
        QTest::addColumn<bool>("accettato");
        QTest::newRow("the first") << 0 << true;
        QTest::newRow("the 40th") << 39 << true;
        QTest::newRow("the 41st") << 40 << false;
    }
    void selezione()
    {
        QFETCH(int, gia);
        QFETCH(bool, accettato);
        const auto rifiuto = controllaSelezione(gia);
        QCOMPARE(!rifiuto.has_value(), accettato);
        if (rifiuto)
            QCOMPARE(rifiuto->text, QStringLiteral("Non è possibile selezionare oltre 40 titoli."));
        QCOMPARE(testoSelezionati(gia), QStringLiteral("Selezionati: ") + QString::number(gia));
    }

    // "&Salva": what is written (the table afterwards, the group "Ori" being there before) and said.
    void crea_data()
    {
        QTest::addColumn<QString>("nome");
        QTest::addColumn<int>("selezionati");
        QTest::addColumn<int>("scritti");
        QTest::addColumn<QString>("messaggi");

        const QString creato = QStringLiteral("Valorimetrico|Il gruppo %1 è stato creato.");
        QTest::newRow("empty name") << "   " << 3 << 0 << "Valorimetrico|Digitare il nome del gruppo da creare.";
        QTest::newRow("existing name") << "Ori" << 3 << 0 << "Valorimetrico|Gruppo già presente";
        QTest::newRow("nothing checked") << "Nuovo" << 0 << 0
                                         << "Gruppo non creato|Nessun titolo è stato selezionato, gruppo non creato.";
        QTest::newRow("one title") << "Nuovo" << 1 << 1 << creato.arg("Nuovo");
        QTest::newRow("exactly 40") << "Nuovo" << 40 << 40 << creato.arg("Nuovo");
        QTest::newRow("41: the first 40 written")
            << "Nuovo" << 41 << 40
            << "Valorimetrico|Non posso creare gruppi con più di 40 titoli.\n" + creato.arg("Nuovo");
        QTest::newRow("name with a quote, trimmed") << " L'oro d'Italia " << 2 << 2 << creato.arg("L'oro d'Italia");
    }
    void crea()
    {
        QFETCH(QString, nome);
        QFETCH(int, selezionati);
        QFETCH(int, scritti);
        QFETCH(QString, messaggi);
        aggiungi(QStringLiteral("Ori"), QStringLiteral("AU"), QStringLiteral("ORO"));

        const EsitoGruppi e = creaGruppo(*m_db, nome, offerti(selezionati, QStringLiteral("D'")));
        QCOMPARE(testi(e), messaggi);
        QCOMPARE(e.scritto, scritti > 0);
        QCOMPARE(e.salvati.size(), scritti);
        const auto righe = m_db->titlesOfGroup(nome.trimmed()).value();
        QCOMPARE(righe.size(), nome.trimmed() == u"Ori" ? 1 : scritti);
        if (scritti) {
            QCOMPARE(righe.first().simbolo, QStringLiteral("D'1")); // the key trimmed
            QCOMPARE(righe.first().titolo, QStringLiteral("TITOLO D'1"));
        }
        QCOMPARE(e.focusNome, scritti == 0 && nome != u"Ori");
    }

    // Command3: the group "Ori" holds T1 and T2 before.
    void aggiungiTitoli_data()
    {
        QTest::addColumn<QString>("gruppo");
        QTest::addColumn<int>("selezionati");
        QTest::addColumn<QString>("messaggi");
        QTest::addColumn<int>("dopo");

        QTest::newRow("nothing checked") << "Ori" << 0 << "Valorimetrico|Nessun titoli è stato selezionato" << 2;
        QTest::newRow("no group chosen") << "" << 2 << "Valorimetrico|Selezionare il gruppo." << 2;
        QTest::newRow("titles already there are skipped") << "Ori" << 3 << "" << 3;
        QTest::newRow("up to 40 and no further")
            << "Ori" << 45 << "Valorimetrico|Non posso creare gruppi con più di 40 titoli." << 40;
        QTest::newRow("a group that does not exist yet") << "Nuovo" << 1 << "" << 1;
    }
    void aggiungiTitoli()
    {
        QFETCH(QString, gruppo);
        QFETCH(int, selezionati);
        QFETCH(QString, messaggi);
        QFETCH(int, dopo);
        aggiungi(QStringLiteral("Ori"), QStringLiteral("T1"), QStringLiteral("TITOLO T1"));
        aggiungi(QStringLiteral("Ori"), QStringLiteral("T2"), QStringLiteral("TITOLO T2"));

        const EsitoGruppi e = aggiungiAlGruppo(*m_db, gruppo, offerti(selezionati));
        QCOMPARE(testi(e), messaggi);
        QCOMPARE(m_db->titlesOfGroup(gruppo.isEmpty() ? QStringLiteral("Ori") : gruppo).value().size(), dopo);
    }

    // "&Rimuovi" on the groups "L'oro" (ORO, DELL'ACQUA) and "Banche" (ISP, DELL'ACQUA).
    void rimuovi_data()
    {
        QTest::addColumn<QStringList>("titoli"); // "group/title" checked
        QTest::addColumn<QString>("gruppo");
        QTest::addColumn<bool>("si");
        QTest::addColumn<QString>("domanda");
        QTest::addColumn<QString>("dopo");

        const QString tutto = QStringLiteral("Banche:ISP,DELL'ACQUA;L'oro:ORO,DELL'ACQUA");
        QTest::newRow("nothing checked") << QStringList {} << "" << true << "" << tutto;
        QTest::newRow("a title with a quote, one group only") << QStringList { "L'oro/DELL'ACQUA" } << "" << true << ""
                                                              << "Banche:ISP,DELL'ACQUA;L'oro:ORO";
        QTest::newRow("the last titles take the group with them")
            << QStringList { "L'oro/DELL'ACQUA", "L'oro/ORO" } << "" << true << ""
            << "Banche:ISP,DELL'ACQUA";
        QTest::newRow("a group with a quote, confirmed")
            << QStringList {} << "L'oro" << true << "ATTENZIONE!, si è deciso di rimuove il gruppo L'oro  Confermi ?"
            << "Banche:ISP,DELL'ACQUA";
        QTest::newRow("a group refused: its checked titles still go")
            << QStringList { "Banche/ISP" } << "Banche" << false
            << "ATTENZIONE!, si è deciso di rimuove il gruppo Banche  Confermi ?"
            << "Banche:DELL'ACQUA;L'oro:ORO,DELL'ACQUA";
    }
    void rimuovi()
    {
        QFETCH(QStringList, titoli);
        QFETCH(QString, gruppo);
        QFETCH(bool, si);
        QFETCH(QString, domanda);
        QFETCH(QString, dopo);
        aggiungi(QStringLiteral("L'oro"), QStringLiteral("ORO"), QStringLiteral("ORO"));
        aggiungi(QStringLiteral("L'oro"), QStringLiteral("DLA"), QStringLiteral("DELL'ACQUA"));
        aggiungi(QStringLiteral("Banche"), QStringLiteral("ISP"), QStringLiteral("ISP"));
        aggiungi(QStringLiteral("Banche"), QStringLiteral("DLA"), QStringLiteral("DELL'ACQUA"));

        QList<TitoloDaRimuovere> daRimuovere;
        for (const QString &t : titoli)
            daRimuovere.append({ t.section(u'/', 0, 0), t.section(u'/', 1) });
        QString chiesto;
        const EsitoGruppi e = quotes::rimuovi(*m_db, daRimuovere, gruppo, [&](const QString &d) {
            chiesto = d;
            return si;
        });
        QCOMPARE(chiesto, domanda);
        QVERIFY(e.avvisi.isEmpty());
        QCOMPARE(tabella(), dopo);
    }

    // A database that cannot be read: every command says so and nothing passes for written or for empty.
    void archivioIlleggibile_data()
    {
        QTest::addColumn<QString>("comando");
        QTest::newRow("the tree") << "albero";
        QTest::newRow("a new group") << "crea";
        QTest::newRow("titles added") << "aggiungi";
        QTest::newRow("titles removed") << "rimuovi";
    }
    void archivioIlleggibile()
    {
        QFETCH(QString, comando);
        aggiungi(QStringLiteral("Ori"), QStringLiteral("T1"), QStringLiteral("TITOLO T1"));
        m_db->close();
        if (comando == u"albero") {
            QVERIFY(!CaricaGruppi(*m_db));
            return;
        }
        EsitoGruppi e;
        if (comando == u"crea")
            e = creaGruppo(*m_db, QStringLiteral("Nuovo"), offerti(2));
        else if (comando == u"aggiungi")
            e = aggiungiAlGruppo(*m_db, QStringLiteral("Ori"), offerti(2));
        else
            e = quotes::rimuovi(*m_db, { { QStringLiteral("Ori"), QStringLiteral("TITOLO T1") } }, {}, {});
        QVERIFY(!e.scritto);
        QVERIFY(e.salvati.isEmpty());
        QCOMPARE(e.avvisi.size(), 1);
        QCOMPARE(e.avvisi[0].icon, MessageIcon::Critical);
        QCOMPARE(e.avvisi[0].text, m_db->lastError().message);
    }

    // The same title in two groups: two nodes, two keys (symbol trimmed + ID).
    void chiaviDelloStessoTitolo()
    {
        aggiungi(QStringLiteral("Uno"), QStringLiteral("ENEL  "), QStringLiteral("ENEL"));
        aggiungi(QStringLiteral("Due"), QStringLiteral("ENEL  "), QStringLiteral("ENEL"));
        const auto albero = CaricaGruppi(*m_db);
        QVERIFY(albero);
        QCOMPARE(albero->size(), 2);
        QCOMPARE(albero->at(0).gruppo, QStringLiteral("Due"));
        const NodoTitolo &a = albero->at(0).titoli.first();
        const NodoTitolo &b = albero->at(1).titoli.first();
        QCOMPARE(a.chiave, QStringLiteral("ENEL2"));
        QCOMPARE(b.chiave, QStringLiteral("ENEL1"));
    }

    void titoliOfferti()
    {
        const QString buona = m_tmp.filePath(QStringLiteral("buona/"));
        const QString vuota = m_tmp.filePath(QStringLiteral("vuota/"));
        QDir().mkpath(buona);
        QDir().mkpath(vuota);
        QVERIFY(metastock::scriviArchivio(
            buona, { { "B2", "BETA", 7, {}, {}, {}, {} }, { "A1", "ALFA", 5, {}, {}, {}, {} } }));
        const QString manca = m_tmp.filePath(QStringLiteral("manca/"));

        const ElencoTitoli e = CaricaMS({ manca, buona, vuota });
        QStringList t;
        for (const TitoloOfferto &o : e.titoli)
            t << o.simbolo + u'=' + o.nome;
        QCOMPARE(t.join(u','), QStringLiteral("B2=BETA,A1=ALFA"));
        QCOMPARE(e.avvisi.size(), 2);
        QCOMPARE(e.avvisi[0].title + u'|' + e.avvisi[0].text, "Valorimetrico|Non trovo la directory " + manca);
        QCOMPARE(e.avvisi[1].title + u'|' + e.avvisi[1].text,
            "No metastock files|La cartella " + vuota + " non contiene dati metastock.");
    }
};

QTEST_GUILESS_MAIN(TestGruppiTitoli)
#include "tst_gruppi_titoli.moc"
