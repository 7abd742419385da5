// What the dossier window shows, as data: list rows with colours and icons, totals, chart series and
// captions; the history rows and labels over a period; renaming and removing a title; the printed pages.
#include "dossier/History.h"
#include "dossier/Overview.h"
#include "dossier/PageModel.h"
#include "dossier/Rename.h"
#include "metastock/ArchiveWriter.h"
#include "store/Database.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::dossier;
using namespace vm::metastock;

namespace {

TitoloArchivio titolo(const char *simbolo, float chiusura)
{
    TitoloArchivio t { simbolo, QStringLiteral("NOME ") + simbolo, 7, {}, {}, {}, {} };
    QuotaMS q;
    q.data = QDate(2024, 2, 29);
    q.chiusura = q.massimo = q.minimo = chiusura;
    t.quote << q;
    return t;
}

store::DossierRow titoloDossier(qint64 id, const QString &simbolo, double prezzo, qint64 qta, const QString &nome = {})
{
    return { id, simbolo, nome.isEmpty() ? QStringLiteral("Nome ") + simbolo : nome, {}, prezzo, qta, {}, 0 };
}

QString colori(const RigaLista &r)
{
    static const char *nomi[] = { "nero", "rosso", "blu" };
    return QString::fromLatin1(nomi[int(r.colori[ColDifferenza])]) + u'/'
        + QString::fromLatin1(nomi[int(r.colori[ColPercentuale])]);
}

QString testiPagina(const Pagina &p)
{
    QStringList t;
    for (const TestoPagina &x : p.testi)
        t << x.testo;
    return t.join(u'|');
}

} // namespace

class TestOverview : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString cartella(const char *nome) const { return m_tmp.filePath(QString::fromLatin1(nome)) + u'/'; }

    // A fresh database with the folders A then B.
    void apri(store::Database &db, const QString &nome)
    {
        const QString percorso = m_tmp.filePath(nome);
        QVERIFY(!store::Database::create(percorso).failed() && db.open(percorso).ok());
        QVERIFY(db.replaceFolders({ cartella("A"), cartella("B") }));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir().mkpath(cartella("A")) && QDir().mkpath(cartella("B")) && QDir().mkpath(cartella("U")));
        QVERIFY(scriviArchivio(cartella("A"),
            { titolo("SU", 12.0f), titolo("GIU", 9.0f), titolo("PARI", 10.0f), titolo("DUE", 4.0f),
                titolo("O'K", 1.0f) }));
        QVERIFY(scriviArchivio(cartella("B"), { titolo("DUE", 8.0f), titolo("NUOVO", 11.0f) }));
        QVERIFY(scriviArchivio(cartella("U"), { titolo("UNM", 11.0f) }, { .marcato = false }));
    }

    // Each state of a row: its nine texts, the sign colours of "+/-" and "Perc." and the icon.
    void righe_data()
    {
        QTest::addColumn<QString>("cartelle");
        QTest::addColumn<QString>("simbolo");
        QTest::addColumn<QString>("testi");
        QTest::addColumn<QString>("colori");
        QTest::addColumn<IconaStato>("icona");
        // clang-format off
        QTest::newRow("gain") << "A" << "SU" << "|Nome SU|100,00|29/02/24|120,00|20,00|20,00%|1|12" << "blu/blu" << IconaStato::Guadagno;
        QTest::newRow("loss") << "A" << "GIU" << "|Nome GIU|100,00|29/02/24|90,00|-10,00|-10,00%|1|9" << "rosso/rosso" << IconaStato::Perdita;
        QTest::newRow("unchanged: 0,00 sorts after 0, blue") << "A" << "PARI" << "|Nome PARI|100,00|29/02/24|100,00|0,00|0,00%|1|10" << "blu/blu" << IconaStato::Invariato;
        QTest::newRow("not found: zero texts, plain") << "AB" << "NO" << "|Nome NO|100,00|00/00/00|0.0|0.0|0.0%|1|0" << "nero/nero" << IconaStato::NonTrovato;
        QTest::newRow("folder missing") << "MA" << "SU" << "|Nome SU|100,00|00/00/00|0.0|0.0|0.0%|1|0" << "nero/nero" << IconaStato::NonTrovato;
        QTest::newRow("two folders: the first wins") << "BA" << "DUE" << "|Nome DUE|100,00|29/02/24|80,00|-20,00|-20,00%|1|8" << "rosso/rosso" << IconaStato::Perdita;
        QTest::newRow("archive not compatible") << "U" << "UNM" << "|Nome UNM|100,00||110,00|10,00|0.0%|1|11" << "blu/blu" << IconaStato::NonCompatibile;
        // clang-format on
    }

    void righe()
    {
        QFETCH(QString, cartelle);
        QFETCH(QString, simbolo);
        QStringList percorsi;
        for (QChar c : cartelle)
            percorsi << m_tmp.filePath(QString(c)) + u'/';
        const Valutazione v = PreparaDati(percorsi, { titoloDossier(1, simbolo, 10, 10) });
        QCOMPARE(v.righe.size(), 1);
        const RigaLista r = rigaLista(v.righe.first());
        QTEST(QStringList(r.testi.begin(), r.testi.end()).join(u'|'), "testi");
        QTEST(colori(r), "colori");
        QTEST(r.icona, "icona");
        QCOMPARE(r.simbolo, simbolo);
        QVERIFY(!nomeIconaStato(r.icona).isEmpty());
    }

    // Label2, Label5, Label1, Label8: texts and colours; "0,00" blue, only "0" black.
    void totali_data()
    {
        QTest::addColumn<QList<double>>("chiusure"); // one title each, 10 shares at 10
        QTest::addColumn<QString>("testi");
        QTest::addColumn<QString>("colori");
        QTest::newRow("gain") << QList<double> { 12, 10 } << "200,00|220,00|20,00|10,00%"
                              << "0|0|2|2";
        QTest::newRow("loss") << QList<double> { 9 } << "100,00|90,00|-10,00|-10,00%"
                              << "0|0|1|1";
        QTest::newRow("even") << QList<double> { 10 } << "100,00|100,00|0,00|0,00%"
                              << "0|0|2|2";
        QTest::newRow("empty dossier") << QList<double> {} << "0,00|0,00|0,00|"
                                       << "0|0|2|0";
    }

    void totali()
    {
        QFETCH(QList<double>, chiusure);
        QList<RigaDossier> righe;
        for (double c : chiusure) {
            RigaDossier r;
            r.stato = StatoTitolo::Trovato;
            r.testoAcquisto = QStringLiteral("100,00");
            r.testoAttuale = QString::number(c * 10, 'f', 2).replace(u'.', u',');
            righe << r;
        }
        const auto e = etichetteTotali(PreparaGrafico(righe));
        QStringList testi, colori;
        for (const EtichettaTotale &t : e) {
            testi << t.testo;
            colori << QString::number(int(t.colore));
        }
        QTEST(testi.join(u'|'), "testi");
        QTEST(colori.join(u'|'), "colori");
        QCOMPARE(QString::fromLatin1(e[3].nomeOggetto), QStringLiteral("Label8"));
        QCOMPARE(ColoreValore(u"0"), ColoreSegno::Nero);
    }

    // The chart by Combo1's choice, the settings it writes, and one title alone with its caption.
    void grafico_data()
    {
        QTest::addColumn<int>("indice");
        QTest::addColumn<QString>("serie");
        QTest::addColumn<int>("sets");
        QTest::newRow("Attuale") << 0 << "Attuale:120;90" << 1;
        QTest::newRow("Differenza") << 1 << "Differenza:20;-10" << 1;
        QTest::newRow("Valori & Differenza") << 2 << "Attuale:120;90 Differenza:20;-10" << 2;
        QTest::newRow("Acquisto") << 3 << "Acquisto:100;100" << 1;
    }

    void grafico()
    {
        QFETCH(int, indice);
        const Valutazione v = PreparaDati(
            { cartella("A") }, { titoloDossier(1, "SU", 10, 10, " Su "), titoloDossier(2, "GIU", 10, 10) });
        const DatiDiagramma d = graficoTitoli(v.righe, DatiGrafico(indice));
        QStringList serie;
        for (const SerieGrafico &s : d.serie) {
            QStringList valori;
            for (double x : s.valori)
                valori << QString::number(x);
            serie << s.nome + u':' + valori.join(u';');
        }
        QTEST(serie.join(u' '), "serie");
        QTEST(setsGrafico(indice), "sets");
        QCOMPARE(d.etichette, QStringList({ "Su", "Nome GIU" }));
        // The value axis takes in every point and stands on 0.
        QCOMPARE(d.minimo, indice == 1 || indice == 2 ? -10.0 : 0.0);
        QCOMPARE(d.massimo, indice == 1 ? 20.0 : indice == 3 ? 100.0 : 120.0);
        QCOMPARE(indiceTipoGrafico(*codiceTipoGrafico(indice)), indice);

        const DatiDiagramma solo = graficoRiga(v.righe.first());
        QCOMPARE(solo.titolo, QStringLiteral("Su  [20,00%]"));
        QCOMPARE(solo.serie.size(), 2);
        QCOMPARE(solo.serie[1].valori, QList<double> { 120 });
    }

    void selezione()
    {
        const Valutazione v
            = PreparaDati({ cartella("A") }, { titoloDossier(1, "SU", 10, 1), titoloDossier(2, "X", 1, 1) });
        QVERIFY(!avvisoSelezioneTitolo(v.righe[0]));
        const auto avviso = avvisoSelezioneTitolo(v.righe[1]);
        QVERIFY(avviso);
        QCOMPARE(avviso->text, QStringLiteral("Il titolo Nome X non aggiornato con Quotaflusso."));
        QCOMPARE(avviso->title, QStringLiteral("Valorimetrico"));
        QCOMPARE(avvisoNessunaSelezione().text, QStringLiteral("Nessun titolo è stato selezionato."));
        QCOMPARE(nomeVista(kCodaDettaglio), QStringLiteral("Dossier Dettaglio"));
    }

    // The history list: texts and colours of each row, given the records of a period.
    void storico_data()
    {
        QTest::addColumn<QList<store::StoricoRow>>("record");
        QTest::addColumn<QString>("righe");
        QTest::addColumn<QString>("etichette");
        const QDate g(2025, 3, 3);
        QTest::newRow("empty period") << QList<store::StoricoRow> {} << ""
                                      << "Dal ??  al ??|N.ro dati 0||Nessun titolo";
        QTest::newRow("one record: variations 0,0")
            << QList<store::StoricoRow> { { 7, g, 1000, 1100 } }
            << "7|03/03/25|1.100,00|1.000,00|100,00|10,00|0,0|0,0 =blu blu blu blu"
            << "Dal 03/03/25 al 03/03/25|N.ro dati 1|1.100,00 [10,00%]|Var. nel periodo 0,00";
        // ",00" and ",50" are coloured as "0,00" and "0,50" would be: blue, not red for a comma sorting first.
        QTest::newRow("gain, loss, even, recovery")
            << QList<store::StoricoRow> { { 1, g, 1000, 1100 }, { 2, g.addDays(1), 1000, 950 },
                   { 3, g.addDays(2), 1000, 1000 }, { 4, g.addDays(3), 1000, 1000.5 } }
            << "1|03/03/25|1.100,00|1.000,00|100,00|10,00|0,0|0,0 =blu blu blu blu\n"
               "2|04/03/25|950,00|1.000,00|-50,00|-5,00|-150,00|-150,00 =rosso rosso rosso rosso\n"
               "3|05/03/25|1.000,00|1.000,00|,00|0,00|50,00|100,00 =blu blu blu blu\n"
               "4|06/03/25|1.000,50|1.000,00|,50|0,05|,50|n.d. =blu blu blu nero"
            << "Dal 03/03/25 al 06/03/25|N.ro dati 4|1.000,50 [0,05%]|Var. nel periodo -99,50";
    }

    void storico()
    {
        QFETCH(QList<store::StoricoRow>, record);
        const QList<RigaStorico> righe = CaricaStorico(record);
        QStringList testi;
        for (const RigaStorico &r : righe) {
            QStringList colori;
            for (int c : { StDiff, StPerc, StVar, StVarPerc })
                colori << QStringList { "nero", "rosso", "blu" }[int(r.colori[c])];
            testi << QStringList(r.testi.begin(), r.testi.end()).join(u'|') + " =" + colori.join(u' ');
        }
        QTEST(testi.join(u'\n'), "righe");
        const EtichetteStorico e = etichetteStorico(righe);
        QTEST(QStringList({ e.label12, e.label15, e.label16, e.label17 }).join(u'|'), "etichette");
        const DatiDiagramma d = graficoStorico(righe);
        QCOMPARE(d.serie.size(), 2);
        QCOMPARE(d.serie[0].nome + d.serie[1].nome, QStringLiteral("TotaleCarico"));
        QCOMPARE(d.etichette.size(), record.size());
    }

    // The period read from the table: the day after the last day is in, the one after that is not.
    void periodo()
    {
        store::Database db;
        apri(db, QStringLiteral("periodo.mdb"));
        for (int giorno : { 1, 2, 5, 6, 7 })
            QVERIFY(db.insertStorico({ 0, QDate(2025, 3, giorno), 10, 10.0 + giorno }));
        const auto leggi = [&](int dal, int al) {
            QStringList giorni;
            if (const auto p = periodoStorico(QDate(2025, 3, dal), QDate(2025, 3, al))) {
                for (const RigaStorico &r : CaricaStorico(*db.storicoInPeriod(p->primo, p->ultimo)))
                    giorni << r.testi[StGiornata].left(2);
            }
            return giorni.join(u',');
        };
        QCOMPARE(leggi(2, 5), QStringLiteral("02,05,06"));
        QCOMPARE(leggi(3, 4), QStringLiteral("05"));
        QCOMPARE(leggi(6, 5), QString());
        QCOMPARE(voceTipoStorico(QStringLiteral("8")), 2);
        QCOMPARE(voceTipoStorico(QString()), 3);
    }

    // Rename checks before asking, then the change as one transaction.
    void rinomina_data()
    {
        QTest::addColumn<QString>("simbolo");
        QTest::addColumn<QString>("nome");
        QTest::addColumn<QString>("messaggio");
        QTest::addColumn<QString>("dopo"); // the dossier's symbol:name pairs afterwards
        QTest::newRow("no symbol") << "  "
                                   << "X"
                                   << "Selezionare il nuovo Nome del titolo."
                                   << "SU:Su|GIU:Giu";
        QTest::newRow("symbol of another title")
            << "GIU "
            << "X"
            << "Il simbolo GIU appartiene già al titolo Giu del dossier: scegliere un altro simbolo. "
               "Nessuna modifica è stata fatta."
            << "SU:Su|GIU:Giu";
        QTest::newRow("same symbol, new name") << "SU"
                                               << " Su Spa "
                                               << ""
                                               << "SU:Su Spa|GIU:Giu";
        QTest::newRow("quotes") << "O'K"
                                << "L'Oreal \"A\""
                                << ""
                                << "O'K:L'Oreal \"A\"|GIU:Giu";
    }

    void rinomina()
    {
        QFETCH(QString, simbolo);
        QFETCH(QString, nome);
        store::Database db;
        apri(db, QStringLiteral("rinomina_%1.mdb").arg(QTest::currentDataTag()).replace(u' ', u'_'));
        const auto id = db.recordPurchase(
            titoloDossier(0, "SU", 10, 5, "Su"), { 0, 0, {}, "AQ", QDate(2024, 1, 2), "Su", "SU", 10, 5, {} });
        QVERIFY(id && db.insertTitle(titoloDossier(0, "GIU", 10, 5, "Giu")));

        auto avviso = verificaRinomina(*db.dossierRows(), *id, simbolo);
        if (!avviso)
            avviso = rinominaTitolo(db, *id, simbolo, nome);
        QTEST(avviso ? avviso->text : QString(), "messaggio");
        QStringList dopo;
        const auto righe = db.dossierRows();
        QVERIFY(righe);
        for (const auto &r : *righe)
            dopo << r.titolo + u':' + r.descrizione;
        QTEST(dopo.join(u'|'), "dopo");
        const auto op = *db.operationsOfTitle(*id);
        QCOMPARE(op.size(), 1);
        QCOMPARE(op.first().ticker + u':' + op.first().titolo, dopo.first()); // the operation follows
        QCOMPARE(op.first().valore, 10.0);
    }

    // The store refuses a duplicate symbol that slipped past the check: nothing changes, a clear message.
    void rinominaRifiutata()
    {
        store::Database db;
        apri(db, QStringLiteral("rifiuto.mdb"));
        const auto su = db.insertTitle(titoloDossier(0, "SU", 1, 1));
        QVERIFY(su && db.insertTitle(titoloDossier(0, "GIU", 1, 1)));
        const auto avviso = rinominaTitolo(db, *su, QStringLiteral("GIU"), QStringLiteral("Nuovo"));
        QVERIFY(avviso);
        QVERIFY(avviso->text.contains(QStringLiteral("Nessuna modifica")));
        QCOMPARE(db.findTitleById(*su)->titolo, QStringLiteral("SU"));
        QCOMPARE(db.findTitleById(*su)->descrizione, QStringLiteral("Nome SU"));
    }

    void rimozione()
    {
        store::Database db;
        apri(db, QStringLiteral("rimozione.mdb"));
        const auto id = db.recordPurchase(
            titoloDossier(0, "SU", 10, 5), { 0, 0, {}, "AQ", QDate(2024, 1, 2), "Su", "SU", 10, 5, {} });
        QVERIFY(id && db.insertTitle(titoloDossier(0, "GIU", 10, 5)));
        QCOMPARE(testoConfermaRimozione(QStringLiteral("Su")),
            QStringLiteral("Attenzione! Il titolo Su sarà rimosso dal dosssier, confermi?"));
        QVERIFY(!rimuoviTitolo(db, *id));
        QCOMPARE(db.countTitles().value_or(-1), qint64(1));
        QVERIFY(db.operationsOfTitle(*id)->isEmpty());
        const Valutazione v = PreparaDati(*db.folders(), *db.dossierRows());
        QCOMPARE(v.righe.size(), 1);
        QCOMPARE(v.totali.attuale, QStringLiteral("45,00"));
    }

    // Combo1 of the rename window: symbols of the folders in order, each once; a missing folder said.
    void simboliArchivi()
    {
        const SimboliArchivi s = CaricaMS({ cartella("A"), cartella("M"), cartella("B") });
        QCOMPARE(s.simboli, QStringList({ "SU", "GIU", "PARI", "DUE", "O'K", "NUOVO" }));
        QCOMPARE(s.avvisi.size(), 1);
        QCOMPARE(s.avvisi.first().text, QStringLiteral("Cartella ") + cartella("M") + QStringLiteral(" non trovata"));
    }

    // The printed pages: every row once, in order, the headings on each page, the totals at the end of
    // the last, red only where the list shows red.
    void pagine_data()
    {
        QTest::addColumn<int>("titoli");
        QTest::addColumn<int>("pagine");
        QTest::newRow("empty") << 0 << 1;
        QTest::newRow("one") << 1 << 1;
        QTest::newRow("a full first page") << 38 << 1;
        QTest::newRow("the totals push on") << 39 << 2;
        QTest::newRow("three pages") << 130 << 3;
    }

    void pagine()
    {
        QFETCH(int, titoli);
        QList<RigaStampa> righe;
        for (int i = 0; i < titoli; ++i) {
            const bool perdita = i % 3 == 1;
            righe << RigaStampa { QStringLiteral("Titolo numero %1").arg(i), "1.000,00", "29/02/24",
                perdita ? "900,00" : "1.100,00", perdita ? "-100,00" : "100,00", perdita ? "-10,00%" : "10,00%",
                perdita, perdita };
        }
        const QList<Pagina> p = paginaDossier(righe, { "1,00", "2,00", "1,00", "100,00%", 1, 2 }, QDate(2026, 11, 23));
        QTEST(int(p.size()), "pagine");
        QVERIFY(testiPagina(p.first()).startsWith(
            QStringLiteral("Valorimetrico|Situazione dossier titoli in data 23/11/2026|Titolo|Acquisto|Data|Attuale|"
                           "Diff.+/-|Perc.%|")));
        int prossima = 0;
        for (qsizetype n = 0; n < p.size(); ++n) {
            const QString testi = testiPagina(p[n]);
            QVERIFY2(testi.contains(QStringLiteral("|Acquisto|Data|Attuale|Diff.+/-|Perc.%")), qPrintable(testi));
            QCOMPARE(testi.contains(QStringLiteral("|Totali|Carico|1,00|Attuale|2,00|Differenza|1,00|Perc. %|100,00%")),
                n == p.size() - 1);
            for (const TestoPagina &t : p[n].testi) {
                QVERIFY(t.y > 0 && t.y < kAltezzaPagina - 20);
                if (t.testo.startsWith(QStringLiteral("Titolo numero "))) {
                    QCOMPARE(t.testo, QStringLiteral("Titolo numero %1").arg(prossima++));
                    QCOMPARE(t.x, 35.0); // 700 twips
                }
                if (t.colore == kInchiostroRosso)
                    QVERIFY(t.testo.startsWith(u'-'));
                else
                    QVERIFY(!t.testo.startsWith(u'-'));
            }
        }
        QCOMPARE(prossima, titoli);
    }

    void righeStampaColori()
    {
        const Valutazione v = PreparaDati({ cartella("A") },
            { titoloDossier(1, "GIU", 10, 1), titoloDossier(2, "PARI", 10, 1), titoloDossier(3, "X", 10, 1) });
        const QList<RigaStampa> r = righeStampa(v.righe);
        QCOMPARE(r.size(), 3);
        QVERIFY(r[0].differenzaRossa && r[0].percentualeRossa);
        QVERIFY(!r[1].differenzaRossa && !r[2].differenzaRossa);
        QCOMPARE(r[2].data, QStringLiteral("00/00/00"));
    }
};

QTEST_GUILESS_MAIN(TestOverview)
#include "tst_overview.moc"
