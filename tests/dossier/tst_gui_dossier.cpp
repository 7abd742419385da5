// The dossier window driven as the user drives it, through the main window's commands and the
// controls found by name: opening and its messages, the list's colours, a row chosen, the chart's
// choices, the history over a period with its deletion, renaming, removal and printing.
#include "app/MainWindow.h"
#include "app/WindowRegistry.h"
#include "core/Format.h"
#include "core/ProgramState.h"
#include "core/Settings.h"
#include "dossier/DossierChart.h"
#include "dossier/DossierWindow.h"
#include "dossier/DossierWindows.h"
#include "dossier/PrintWindow.h"
#include "dossier/RenameTitleWindow.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "metastock/ArchiveWriter.h"
#include "store/Database.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

using namespace vm;
using namespace vm::dossier;
using vm::test::child;
using vm::test::program;
using vm::test::shown;
namespace testing = vm::ui::testing;

namespace {

metastock::TitoloArchivio titolo(const char *simbolo, float chiusura)
{
    metastock::TitoloArchivio t { simbolo, simbolo, 7, {}, {}, {}, {} };
    metastock::QuotaMS q;
    q.data = QDate(2024, 2, 29);
    q.chiusura = q.massimo = q.minimo = chiusura;
    t.quote << q;
    return t;
}

QString testiRiga(const QTreeWidgetItem *item)
{
    QStringList t;
    for (int c = 0; c < item->columnCount(); ++c)
        t << item->text(c);
    return t.join(u'|');
}

// "r" red, "b" blue, "-" plain, for the given columns.
QString colori(const QTreeWidgetItem *item, std::initializer_list<int> colonne)
{
    QString s;
    for (int c : colonne) {
        const QColor col = item->foreground(c).color();
        s += item->foreground(c).style() == Qt::NoBrush ? u'-'
            : col == QColor(255, 0, 0)                  ? u'r'
            : col == QColor(0, 0, 255)                  ? u'b'
                                                        : u'?';
    }
    return s;
}

} // namespace

class TestGuiDossier : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    store::Database m_db;
    std::unique_ptr<MainWindow> m_main;
    QStringList m_aperti; // symbols whose situation was asked for

    QString cartella(const char *nome) const { return m_tmp.filePath(QString::fromLatin1(nome)) + u'/'; }

    // The dossier: the given symbols, 10 shares at 10 each, one purchase each.
    void dossier(const QStringList &simboli)
    {
        const auto righe = m_db.dossierRows();
        QVERIFY(righe);
        for (const auto &r : *righe)
            QVERIFY(m_db.deleteTitle(r.idTitolo));
        for (const QString &s : simboli) {
            QVERIFY(m_db.recordPurchase({ 0, s, QStringLiteral("Nome ") + s, QDate(2024, 1, 2), 10, 10, {}, 0 },
                { 0, 0, {}, "AQ", QDate(2024, 1, 2), QStringLiteral("Nome ") + s, s, 10, 10, {} }));
        }
    }

    DossierWindow *finestra() const { return DossierWindow::instance(); }
    QTreeWidget *lista() const { return child<QTreeWidget>(finestra(), "ListView1"); }
    QString etichetta(const char *nome) const { return child<QLabel>(finestra(), nome)->text(); }

    void chiudiFinestre()
    {
        for (QWidget *w : { static_cast<QWidget *>(PrintWindow::instance()),
                 static_cast<QWidget *>(RenameTitleWindow::instance()) }) {
            if (w)
                w->close();
        }
        if (DossierWindow *f = finestra())
            f->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!finestra());
    }

    void apriDossier()
    {
        m_main->findChild<QAction *>(QStringLiteral("m_dossier"))->trigger();
        QVERIFY(finestra());
    }

private Q_SLOTS:
    void initTestCase()
    {
        testing::enable();
        for (const char *c : { "A", "B" })
            QVERIFY(QDir().mkpath(cartella(c)));
        QVERIFY(metastock::scriviArchivio(
            cartella("A"), { titolo("SU", 12), titolo("GIU", 9), titolo("PARI", 10), titolo("DUE", 4) }));
        QVERIFY(metastock::scriviArchivio(cartella("B"), { titolo("DUE", 8), titolo("NUOVO", 11) }));
        const QString mdb = m_tmp.filePath(QStringLiteral("valorimetrico.mdb"));
        QVERIFY(!store::Database::create(mdb).failed() && m_db.open(mdb).ok());
        program().setFolder(m_tmp.path());
        program().state.ArchiviCompatibili = true;
        m_main = program().mainWindow();
        m_main->setArchivesReady(true);
        dossier::registerWindows(program().context(*m_main, m_db));
        // The operations' windows answer this on the program; here it is only recorded.
        connect(&program().events, &DataEvents::titleSituationRequested, this,
            [this](const QString &simbolo) { m_aperti << simbolo; });
        m_main->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));
    }

    void init()
    {
        testing::reset();
        m_aperti.clear();
        QVERIFY(m_db.replaceFolders({ cartella("A"), cartella("B") }));
        const auto storico = m_db.storicoRows();
        QVERIFY(storico);
        for (const auto &r : *storico)
            QVERIFY(m_db.deleteStorico(r.id));
        QFile::remove(m_tmp.filePath(QStringLiteral("valorimetrico.ini")));
    }

    void cleanup() { chiudiFinestre(); }

    void cleanupTestCase() { m_main.reset(); }

    // The dossier command: what it shows, what it says, what it records.
    void apertura_data()
    {
        QTest::addColumn<QStringList>("cartelle");
        QTest::addColumn<QStringList>("simboli");
        QTest::addColumn<QString>("messaggi");
        QTest::addColumn<int>("righe");
        QTest::addColumn<QString>("totale"); // Label5
        QTest::addColumn<int>("storico");
        QTest::newRow("valued") << QStringList { "A", "B" } << QStringList { "SU", "GIU" } << "" << 2 << "210,00" << 1;
        QTest::newRow("empty dossier, the proposal answered No")
            << QStringList { "A" } << QStringList {}
            << "Nessun titolo in dossier|Il dossier non contiene titoli, voui inserire un nuovo titolo?" << 0 << "0,00"
            << 0;
        QTest::newRow("no folders") << QStringList {} << QStringList { "SU" }
                                    << "Valorimetrico|Le impostazioni degli archivi, non sono state impostate." << 0
                                    << "" << 0;
        QTest::newRow("a folder that does not exist")
            << QStringList { "M", "A" } << QStringList { "SU" }
            << "Cartella non accessibile|Errore su lettura %M\n"
               "ATTENZIONE|Attenzione! il titolo SU non è presente nell'archivio metastock! \n"
               "Verificare se il titolo è stato rimosso dall'archivio oppure è stato dato un'altro simbolo,\n"
               "in questo caso, rinominare quello in dossier.\n\n"
               "Il totale di questo titolo € 100 attualmente sarà calcolato come in fase di acquisto.\n"
            << 1 << "0,00" << 0;
    }

    void apertura()
    {
        QFETCH(QStringList, cartelle);
        QFETCH(QStringList, simboli);
        QFETCH(QString, messaggi);
        QStringList percorsi;
        for (const QString &c : cartelle)
            percorsi << cartella(qPrintable(c));
        QVERIFY(m_db.replaceFolders(percorsi));
        dossier(simboli);
        testing::setNextAnswer(QMessageBox::No);
        apriDossier();
        QCOMPARE(shown().join(u'\n'), messaggi.replace(QStringLiteral("%M"), cartella("M")));
        QTEST(lista()->topLevelItemCount(), "righe");
        QTEST(etichetta("Label5"), "totale");
        QTEST(int(m_db.storicoRows()->size()), "storico");
        QCOMPARE(m_main->windowTitle(), QStringLiteral("Valorimetrico :: [Dossier-Asset]"));
        // Beeps go with the missing-title warnings only.
        QCOMPARE(testing::beeps(), int(messaggi.count(QStringLiteral("ATTENZIONE|"))));
    }

    // The empty dossier's proposal answered Yes hands over to the new-title window and opens nothing.
    void propostaNuovoTitolo()
    {
        dossier({});
        QSignalSpy nuovo(&program().events, &DataEvents::newTitleRequested);
        testing::setNextAnswer(QMessageBox::Yes);
        m_main->findChild<QAction *>(QStringLiteral("m_dossier"))->trigger();
        QCOMPARE(nuovo.count(), 1);
        QVERIFY(!finestra());
        QCOMPARE(shown(),
            QStringList { "Nessun titolo in dossier|Il dossier non contiene titoli, voui inserire un nuovo titolo?" });
    }

    // What another window changes reaches the open overview through the data events: it values again.
    void cambiDaAltreFinestre_data()
    {
        QTest::addColumn<QString>("evento");
        QTest::addColumn<QString>("righe"); // Descrizione of each row
        QTest::addColumn<QString>("totale"); // Label5
        QTest::newRow("a purchase recorded") << "dossierChanged"
                                             << "Nome SU|Nome GIU"
                                             << "210,00";
        QTest::newRow("a title renamed") << "titleRenamed"
                                         << "Pari Spa"
                                         << "100,00";
    }

    void cambiDaAltreFinestre()
    {
        QFETCH(QString, evento);
        dossier({ "SU" });
        apriDossier();
        QCOMPARE(lista()->topLevelItemCount(), 1);
        const qint64 su = m_db.findTitleBySymbol(QStringLiteral("SU"))->idTitolo;
        if (evento == QLatin1String("dossierChanged")) {
            QVERIFY(m_db.recordPurchase({ 0, "GIU", "Nome GIU", QDate(2024, 1, 2), 10, 10, {}, 0 },
                { 0, 0, {}, "AQ", QDate(2024, 1, 2), "Nome GIU", "GIU", 10, 10, {} }));
            Q_EMIT program().events.dossierChanged();
        } else {
            QVERIFY(m_db.renameTitle(su, QStringLiteral("PARI"), QStringLiteral("Pari Spa")));
            Q_EMIT program().events.titleRenamed(su, QStringLiteral("SU"), QStringLiteral("PARI"));
        }
        QStringList nomi;
        for (int r = 0; r < lista()->topLevelItemCount(); ++r)
            nomi << lista()->topLevelItem(r)->text(1);
        QTEST(nomi.join(u'|'), "righe");
        QTEST(etichetta("Label5"), "totale");
        QCOMPARE(m_main->dossierTitles()->count(), nomi.size());
    }

    // One overview however it is reached: the command again, the history key, or after being minimized
    // inside the frame.
    void unaSolaPanoramica()
    {
        dossier({ "SU" });
        apriDossier();
        DossierWindow *prima = finestra();
        apriDossier();
        m_main->button(4, QStringLiteral("grafico"))->setVisible(true);
        m_main->button(4, QStringLiteral("grafico"))->trigger();
        prima->showMinimized();
        apriDossier();
        QCOMPARE(finestra(), prima);
        QVERIFY(prima->isMaximized());
        // F1 finds the help topic of the active view by its widget's name.
        QCOMPARE(m_main->mdiArea()->activeSubWindow(), prima);
        QCOMPARE(prima->widget()->objectName(), QStringLiteral("Form5"));
        QCOMPARE(m_main->findChildren<DossierWindow *>().size(), 1);
        QVERIFY(!prima->inStorico());
    }

    // The list as the user sees it: headers, texts, sign colours, icons, the totals and the selector.
    void listaEColori()
    {
        dossier({ "SU", "GIU", "PARI", "NO" });
        apriDossier();
        QTreeWidget *l = lista();
        QStringList intestazioni;
        for (int c = 0; c < l->columnCount(); ++c)
            intestazioni << l->headerItem()->text(c);
        QCOMPARE(intestazioni.join(u'|'),
            QStringLiteral("Stato|Descrizione|Acquisto|data|Attuale| +/-     | Perc.   |ID|X"));
        QCOMPARE(l->columnWidth(7) + l->columnWidth(8), 2);
        // No figure is cut, whatever the face: the columns grow with it.
        const QStringList larghi { "118.257,40", "20/11/26", "116.404,52", "-12.481,60", "-53,93%" };
        for (int c = 2; c <= 6; ++c)
            QVERIFY2(
                l->columnWidth(c) >= l->fontMetrics().horizontalAdvance(larghi[c - 2]) + 8, qPrintable(larghi[c - 2]));
        const QStringList attese { "Nome SU|100,00|29/02/24|120,00|20,00|20,00%| bb",
            "Nome GIU|100,00|29/02/24|90,00|-10,00|-10,00%| rr", "Nome PARI|100,00|29/02/24|100,00|0,00|0,00%| bb",
            "Nome NO|100,00|00/00/00|0.0|0.0|0.0%| --" };
        for (int r = 0; r < 4; ++r) {
            const QTreeWidgetItem *item = l->topLevelItem(r);
            QCOMPARE(testiRiga(item).section(u'|', 1, 6) + QStringLiteral("| ") + colori(item, { 5, 6 }), attese[r]);
            QVERIFY(!item->icon(0).isNull());
        }
        QCOMPARE(QStringList({ etichetta("Label2"), etichetta("Label5"), etichetta("Label1"), etichetta("Label8") })
                     .join(u'|'),
            QStringLiteral("400,00|310,00|-90,00|-22,50%"));
        QVERIFY(child<QLabel>(finestra(), "Label1")->styleSheet().contains(QStringLiteral("#ff0000")));
        QCOMPARE(m_main->dossierTitles()->count(), 4);
        QCOMPARE(m_main->dossierTitles()->itemText(2), QStringLiteral("Nome PARI"));
        // The missing title's warning came once, with its beep.
        QCOMPARE(testing::beeps(), 1);
    }

    // A click shows the title alone and moves the selector quietly; a double click opens the situation.
    void sceltaTitolo()
    {
        dossier({ "SU", "GIU", "NO" });
        apriDossier();
        QVERIFY(!child<QWidget>(finestra(), "PannelloGrafico")->isVisibleTo(finestra()));
        QSignalSpy scelto(&program().events, &DataEvents::dossierTitleChosen);
        QTreeWidget *l = lista();
        const QRect riga = l->visualItemRect(l->topLevelItem(1));
        QTest::mouseClick(l->viewport(), Qt::LeftButton, {}, riga.center());
        QCOMPARE(m_main->dossierTitles()->currentIndex(), 1);
        QCOMPARE(scelto.count(), 0);
        auto *grafico = child<DiagrammaDossier>(finestra(), "Graph1");
        QVERIFY(grafico->isVisibleTo(finestra()));
        QCOMPARE(grafico->chart()->title(), QStringLiteral("Nome GIU  [-10,00%]"));
        QCOMPARE(grafico->dati().serie.size(), 2);

        QTest::mouseDClick(l->viewport(), Qt::LeftButton, {}, riga.center());
        QCOMPARE(m_aperti.size(), 1);
        QCOMPARE(m_aperti.first(), QStringLiteral("GIU"));
        QCOMPARE(m_main->windowTitle(), QStringLiteral("Valorimetrico :: [Dossier Dettaglio]"));

        // The main window's selector: a title without quotes is refused with its message.
        m_main->dossierTitles()->setCurrentIndex(2);
        QCOMPARE(shown().last(), QStringLiteral("Valorimetrico|Il titolo Nome NO non aggiornato con Quotaflusso."));
        QCOMPARE(m_aperti.size(), 1);
        m_main->button(4, QStringLiteral("sx"))->trigger();
        QCOMPARE(l->currentItem(), l->topLevelItem(1));
        QCOMPARE(m_aperti.size(), 2);

        // A row reached without a click (keys, the pop-up menu) is the selector's title too, quietly.
        const int scelteUtente = scelto.count();
        l->setCurrentItem(l->topLevelItem(0));
        QCOMPARE(m_main->dossierTitles()->currentIndex(), 0);
        QCOMPARE(scelto.count(), scelteUtente);
    }

    // Combo1 and Combo2 of the chart write their keys and redraw; their tags keep them quiet at load.
    void grafico_data()
    {
        QTest::addColumn<int>("dati");
        QTest::addColumn<int>("tipo");
        QTest::addColumn<QString>("chiavi"); // Visualizza|Sets|Tipo
        QTest::addColumn<int>("serie");
        QTest::newRow("Valori & Differenza, Barre 3D") << 2 << 1 << "2|2|4" << 2;
        QTest::newRow("Acquisto, Area") << 3 << 3 << "3|1|8" << 1;
        QTest::newRow("Differenza, Linea") << 1 << 2 << "1|1|6" << 1;
    }

    void grafico()
    {
        QFETCH(int, dati);
        QFETCH(int, tipo);
        dossier({ "SU", "GIU" });
        apriDossier();
        const QString ini = program().settings.path();
        QCOMPARE(readSetting(ini, settings::TotaliVisualizza), QString()); // nothing written by the load
        child<QComboBox>(finestra(), "Combo1")->setCurrentIndex(dati);
        child<QComboBox>(finestra(), "Combo2")->setCurrentIndex(tipo);
        QTEST(QStringList({ readSetting(ini, settings::TotaliVisualizza), readSetting(ini, settings::TotaliSets),
                              readSetting(ini, settings::TotaliTipo) })
                  .join(u'|'),
            "chiavi");
        auto *grafico = child<DiagrammaDossier>(finestra(), "Graph1");
        QTEST(int(grafico->dati().serie.size()), "serie");
        QCOMPARE(int(grafico->stile().forma), tipo);
        child<QCheckBox>(finestra(), "Check2")->setChecked(false);
        QVERIFY(grafico->chart()->series().isEmpty());
        child<QCheckBox>(finestra(), "Check2")->setChecked(true);
        QVERIFY(!grafico->chart()->series().isEmpty());

        // A new window takes the stored choices back.
        chiudiFinestre();
        apriDossier();
        QCOMPARE(child<QComboBox>(finestra(), "Combo1")->currentIndex(), dati);
        QCOMPARE(child<QComboBox>(finestra(), "Combo2")->currentIndex(), tipo);
    }

    // The history over a period: the day after the last day is in; deletion asks with No first.
    void storico()
    {
        dossier({ "SU" });
        const QDate oggi = QDate::currentDate();
        for (int giorni : { 9, 7, 3, 2 })
            QVERIFY(m_db.insertStorico({ 0, oggi.addDays(-giorni), 100, 100.0 + giorni }));
        m_main->button(4, QStringLiteral("grafico"))->setVisible(true);
        m_main->button(4, QStringLiteral("grafico"))->trigger();
        QVERIFY(finestra() && finestra()->inStorico());
        QCOMPARE(m_main->windowTitle(), QStringLiteral("Valorimetrico :: [Dossier-Trend]"));
        auto *l = child<QTreeWidget>(finestra(), "ListView2");
        // Dal defaults to five days back: the records of 3 and 2 days ago and today's (recorded at load).
        QCOMPARE(l->topLevelItemCount(), 3);
        QCOMPARE(etichetta("Label15"), QStringLiteral("N.ro dati 3"));
        QCOMPARE(child<DiagrammaDossier>(finestra(), "Graph2")->dati().serie.size(), 2);

        auto *dal = child<QDateEdit>(finestra(), "DTPicker1");
        auto *al = child<QDateEdit>(finestra(), "DTPicker2");
        dal->setDate(oggi.addDays(-9));
        al->setDate(oggi.addDays(-8)); // the 7-days-ago record is the day after: listed
        QCOMPARE(l->topLevelItemCount(), 2);
        QCOMPARE(l->topLevelItem(1)->text(1), formatDate(oggi.addDays(-7), u"dd/mm/yy"));
        QCOMPARE(etichetta("Label12"),
            QStringLiteral("Dal ") + formatDate(oggi.addDays(-9), u"dd/mm/yy") + QStringLiteral(" al ")
                + formatDate(oggi.addDays(-7), u"dd/mm/yy"));
        QCOMPARE(
            readSetting(program().settings.path(), settings::TotaliDal), formatDate(oggi.addDays(-9), u"dd/mm/yy"));
        QCOMPARE(readSetting(program().settings.path(), settings::TotaliAl), formatDate(oggi.addDays(-8), u"dd/mm/yy"));

        // Deletion: No (the default) keeps the record, Yes removes it.
        testing::reset();
        Q_EMIT l->itemActivated(l->topLevelItem(0), 0);
        QCOMPARE(testing::messages().size(), 1);
        QCOMPARE(testing::messages().first().defaultButton, QMessageBox::No);
        QCOMPARE(shown().first(),
            QStringLiteral(
                "ATTENZIONE! Rimozione valore|Attenzione! Il valore selezionato sarà rimosso dall'elenco, confermi?"));
        QCOMPARE(l->topLevelItemCount(), 2);
        testing::setNextAnswer(QMessageBox::Yes);
        Q_EMIT l->itemActivated(l->topLevelItem(0), 0);
        QCOMPARE(l->topLevelItemCount(), 1);
        QCOMPARE(m_db.storicoRows()->size(), 4);

        // The history chart's menus of the main window: type, then the data colour (chart marker "S").
        auto *grafico = child<DiagrammaDossier>(finestra(), "Graph2");
        for (QAction *a : m_main->popupMenu(PopupMenu::HistoryType)->actions()) {
            if (a->text() == QLatin1String("Area"))
                a->trigger();
        }
        QCOMPARE(grafico->stile().forma, StileDiagramma::Forma::Area);
        QCOMPARE(readSetting(program().settings.path(), settings::GraficoStoricoTipo), QStringLiteral("8"));
        m_main->findChild<QAction *>(QStringLiteral("m_s_dati"))->trigger();
        m_main->popupMenu(PopupMenu::Colours)->hide();
        m_main->popupMenu(PopupMenu::Colours)->findChildren<QAction *>(QStringLiteral("m_c")).value(12)->trigger();
        QCOMPARE(grafico->stile().dati, QColor(0xFF, 0x55, 0x55));
        QCOMPARE(readSetting(program().settings.path(), settings::GraficoStoricoDati), QStringLiteral("12"));
        QCOMPARE(readSetting(program().settings.path(), settings::GraficoDati), QStringLiteral("2"));

        // An empty period.
        al->setDate(oggi.addDays(-20));
        QCOMPARE(QStringList({ etichetta("Label12"), etichetta("Label15"), etichetta("Label17") }).join(u'|'),
            QStringLiteral("Dal ??  al ??|N.ro dati 0|Nessun titolo"));
        QVERIFY(child<DiagrammaDossier>(finestra(), "Graph2")->chart()->series().isEmpty());
    }

    // Form1: the refused symbol changes nothing; a free one renames everywhere and revalues.
    void rinomina()
    {
        dossier({ "SU", "DUE" });
        apriDossier();
        m_main->button(4, QStringLiteral("anagrafica"))->trigger();
        QCOMPARE(shown().last(), QStringLiteral("Cambia nome|Nessun titolo è stato selezionato."));

        lista()->setCurrentItem(lista()->topLevelItem(0));
        m_main->button(4, QStringLiteral("anagrafica"))->trigger();
        RenameTitleWindow *w = RenameTitleWindow::instance();
        QVERIFY(w);
        QCOMPARE(child<QLabel>(w, "Label2")->text(), QStringLiteral("SU"));
        QCOMPARE(child<QLineEdit>(w, "Text1")->text(), QStringLiteral("Nome SU"));
        auto *simboli = child<QComboBox>(w, "Combo1");
        QCOMPARE(simboli->count(), 5); // SU GIU PARI DUE NUOVO: DUE once

        testing::reset();
        child<QPushButton>(w, "Command1")->click();
        QCOMPARE(shown(), QStringList { "Anagrafica titolo|Selezionare il nuovo Nome del titolo." });
        simboli->setEditText(QStringLiteral("DUE"));
        child<QPushButton>(w, "Command1")->click();
        QVERIFY(shown().last().contains(QStringLiteral("appartiene già al titolo Nome DUE")));
        QCOMPARE(m_db.findTitleBySymbol(QStringLiteral("SU"))->descrizione, QStringLiteral("Nome SU"));

        simboli->setEditText(QStringLiteral("NUOVO"));
        child<QLineEdit>(w, "Text1")->setText(QStringLiteral("L'Ultimo"));
        testing::setNextAnswer(QMessageBox::No);
        child<QPushButton>(w, "Command1")->click();
        QVERIFY(m_db.findTitleBySymbol(QStringLiteral("SU")));
        testing::setNextAnswer(QMessageBox::Yes);
        child<QPushButton>(w, "Command1")->click();
        QCOMPARE(shown().last(), QStringLiteral("Anagrafica titolo|Confermi il cambio nome del titolo?"));
        const auto rinominato = m_db.findTitleBySymbol(QStringLiteral("NUOVO"));
        QVERIFY(rinominato && rinominato->descrizione == QStringLiteral("L'Ultimo"));
        QCOMPARE(m_db.operationsOfTitle(rinominato->idTitolo)->first().ticker, QStringLiteral("NUOVO"));
        // Revalued at once on the new symbol's quote, found in the second folder.
        QCOMPARE(lista()->topLevelItem(0)->text(1), QStringLiteral("L'Ultimo"));
        QCOMPARE(lista()->topLevelItem(0)->text(4), QStringLiteral("110,00"));
    }

    // m_cn_Elimina: No keeps the title, Yes removes it with its operations and revalues.
    void rimozione()
    {
        dossier({ "SU", "GIU" });
        apriDossier();
        QAction *elimina = m_main->findChild<QAction *>(QStringLiteral("m_cn_Elimina"));
        elimina->trigger();
        QCOMPARE(shown().last(), QStringLiteral("ATTENZIONE! Rimozione titolo|Nessun titolo è stato selezionato."));
        lista()->setCurrentItem(lista()->topLevelItem(1));
        const qint64 id = m_db.findTitleBySymbol(QStringLiteral("GIU"))->idTitolo;
        testing::setNextAnswer(QMessageBox::No);
        elimina->trigger();
        QCOMPARE(shown().last(),
            QStringLiteral(
                "ATTENZIONE! Rimozione titolo|Attenzione! Il titolo Nome GIU sarà rimosso dal dosssier, confermi?"));
        QCOMPARE(m_db.countTitles().value_or(-1), qint64(2));
        testing::setNextAnswer(QMessageBox::Yes);
        elimina->trigger();
        QCOMPARE(m_db.countTitles().value_or(-1), qint64(1));
        QVERIFY(m_db.operationsOfTitle(id)->isEmpty());
        QCOMPARE(lista()->topLevelItemCount(), 1);
        QCOMPARE(etichetta("Label5"), QStringLiteral("120,00"));
    }

    // "print": the confirmation, then Form4 with the page; printed and saved as PDF from it.
    void stampa()
    {
        dossier({ "SU", "GIU" });
        apriDossier();
        testing::setNextAnswer(QMessageBox::Yes);
        m_main->button(4, QStringLiteral("print"))->trigger();
        QCOMPARE(shown().last(), QStringLiteral("Stampa|Confermi la stampa del dossier titoli?"));
        PrintWindow *w = PrintWindow::instance();
        QVERIFY(w);
        QCOMPARE(w->pagine().size(), 1);
        QVERIFY(child<QLabel>(w, "pagina1"));

        const QString pdf = m_tmp.filePath(QStringLiteral("salvato.pdf"));
        PrintWindow::sceltaFilePdf = [pdf](QWidget *) { return pdf; };
        child<QPushButton>(w, "Command2")->click();
        QVERIFY(QFileInfo(pdf).size() > 1000);

        const QString stampato = m_tmp.filePath(QStringLiteral("stampato.pdf"));
        PrintWindow::dialogoStampa = [stampato](QPrinter &p, QWidget *) {
            p.setOutputFormat(QPrinter::PdfFormat);
            p.setOutputFileName(stampato);
            return true;
        };
        child<QPushButton>(w, "Command1")->click();
        QVERIFY(QFileInfo(stampato).size() > 1000);
    }

    // Wired as the program wires every subsystem, the double click and the pop-up menu's "Situazione"
    // both reach the situation window of the row's title (Form11, the operations' own), found by name.
    void situazioneConTutteLeFinestre_data()
    {
        QTest::addColumn<QString>("via");
        QTest::newRow("double click") << "doppio clic";
        QTest::newRow("pop-up menu, Situazione") << "m_cn_situazione";
    }

    void situazioneConTutteLeFinestre()
    {
        QFETCH(QString, via);
        vm::registerWindows(*m_main, program().context(*m_main, m_db));
        dossier({ "SU", "GIU" });
        apriDossier();
        QTreeWidget *l = lista();
        const QPoint riga = l->visualItemRect(l->topLevelItem(1)).center();
        if (via == QLatin1String("doppio clic")) {
            // The first press of a double click, which the view needs to see on the same row.
            QTest::mouseClick(l->viewport(), Qt::LeftButton, {}, riga);
            QTest::mouseDClick(l->viewport(), Qt::LeftButton, {}, riga);
        } else {
            l->setCurrentItem(l->topLevelItem(1)); // as the right button does before the menu
            m_main->popupMenu(PopupMenu::Title)->findChild<QAction *>(QStringLiteral("m_cn_situazione"))->trigger();
        }
        QWidget *form11 = m_main->findChild<QWidget *>(QStringLiteral("Form11"));
        QVERIFY2(form11, qPrintable(shown().join(u'\n') + QStringLiteral(" / asked: ") + m_aperti.join(u',')));
        QCOMPARE(child<QLabel>(form11, "Simbolo")->text().trimmed(), QStringLiteral("GIU"));
        form11->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // The pictures of the documentation, on the demo folder: VM_SCREENSHOT_DIR=docs names where.
    void immagini()
    {
        const QString dir = qEnvironmentVariable("VM_SCREENSHOT_DIR");
        if (dir.isEmpty())
            QSKIP("VM_SCREENSHOT_DIR non impostata");
        const QString demo = m_tmp.filePath(QStringLiteral("demo"));
        QProcess cli;
        cli.start(QStringLiteral(VM_CLI_PATH), { QStringLiteral("demo"), demo });
        QVERIFY(cli.waitForFinished(60000) && cli.exitCode() == 0);
        QVERIFY(m_db.open(demo + QStringLiteral("/valorimetrico.mdb")).ok());
        program().setFolder(demo);
        m_main->resize(1000, 680);
        apriDossier();
        QTreeWidget *l = lista();
        QTest::mouseClick(l->viewport(), Qt::LeftButton, {}, l->visualItemRect(l->topLevelItem(1)).center());
        child<QComboBox>(finestra(), "Combo1")->setCurrentIndex(2);
        child<QCheckBox>(finestra(), "Check2")->setChecked(false);
        child<QCheckBox>(finestra(), "Check2")->setChecked(true);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        QVERIFY(m_main->grab().save(dir + QStringLiteral("/dossier-panoramica.png")));

        m_main->button(4, QStringLiteral("grafico"))->trigger();
        child<QDateEdit>(finestra(), "DTPicker1")->setDate(QDate::currentDate().addDays(-60));
        // The chart drops the items of its former axes later, as the event loop would.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        QVERIFY(m_main->grab().save(dir + QStringLiteral("/dossier-storico.png")));

        finestra()->mostraPanoramica();
        finestra()->Stampo();
        QVERIFY(PrintWindow::instance()->esportaPdf(dir + QStringLiteral("/dossier-stampa.pdf")));
    }
};

QTEST_MAIN(TestGuiDossier)
#include "tst_gui_dossier.moc"
