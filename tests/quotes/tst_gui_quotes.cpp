// The quote board and the groups editor on archives and a database written here, driven by their
// controls' names as the user would drive them.
#include "app/MainWindow.h"
#include "core/Settings.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "metastock/ArchiveWriter.h"
#include "quotes/GroupsEditorWindow.h"
#include "quotes/QuoteBoardWindow.h"
#include "quotes/QuoteCharts.h"
#include "quotes/QuoteWindows.h"
#include "store/Database.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QChartView>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

#include <memory>

using namespace vm;
using namespace vm::quotes;
using namespace vm::metastock;

namespace {

TitoloArchivio titolo(const QString &simbolo, const QString &nome, int campi, const QList<float> &chiusure,
    const QDate &ultima = QDate::currentDate())
{
    TitoloArchivio t { simbolo, nome, campi, {}, {}, {}, {} };
    for (qsizetype i = 0; i < chiusure.size(); ++i) {
        QuotaMS q;
        q.data = ultima.addDays(i - chiusure.size() + 1);
        q.chiusura = chiusure[i];
        q.massimo = chiusure[i] + 0.5f;
        q.minimo = chiusure[i] - 0.25f;
        q.volume = 100;
        if (campi >= 6)
            q.apertura = chiusure[i];
        if (campi == 7)
            q.ufficiale = chiusure[i];
        t.quote << q;
    }
    return t;
}

// "title|text #icon" of each message shown since the last reset.
QStringList mostrati()
{
    QStringList t;
    for (const auto &m : ui::testing::messages())
        t << m.title + u'|' + m.text + QStringLiteral(" #%1").arg(int(m.icon));
    return t;
}

template<class T> T *figlio(const QWidget *w, const char *nome)
{
    T *c = w ? w->findChild<T *>(QLatin1String(nome)) : nullptr;
    if (!c)
        qFatal("no %s", nome);
    return c;
}

QTreeWidgetItem *riga(QTreeWidget *lista, const QString &titolo)
{
    const auto trovati = lista->findItems(titolo, Qt::MatchExactly, 2);
    return trovati.isEmpty() ? nullptr : trovati.first();
}

void clicca(QTreeWidget *lista, QTreeWidgetItem *item)
{
    lista->scrollToItem(item);
    QTest::mouseClick(lista->viewport(), Qt::LeftButton, {}, lista->visualItemRect(item).center());
}

} // namespace

class TestGuiQuotes : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    std::unique_ptr<store::Database> m_db;
    std::unique_ptr<MainWindow> m_main;
    QString m_manca;

    WindowContext context() { return vm::test::program().context(*m_main, *m_db); }

private Q_SLOTS:
    void initTestCase()
    {
        ui::testing::enable();
        vm::test::program().setFolder(m_tmp.path());
        const QString uno = m_tmp.filePath(QStringLiteral("uno/"));
        const QString grande = m_tmp.filePath(QStringLiteral("grande/"));
        m_manca = m_tmp.filePath(QStringLiteral("manca/"));
        QDir().mkpath(uno);
        QDir().mkpath(grande);
        QList<float> lunga;
        for (int i = 0; i < 100; ++i)
            lunga << 10.0f + float(i % 7);
        QVERIFY(scriviArchivio(uno,
            { titolo("AO", "ALFA OGGI", 7, { 10, 12.5f }),
                titolo("AI", "ALFA IERI", 7, { 8, 6 }, QDate::currentDate().addDays(-1)),
                titolo("AP", "ALFA PIATTO", 7, { 4, 4 }), titolo("AC", "ALFA CINQUE", 5, { 2, 1 }),
                titolo("AZ", "ALFA ZERO", 7, { 0, 1 }), titolo("AV", "ALFA VUOTO", 7, {}),
                titolo("AL", "ALFA LUNGO", 7, lunga), titolo("B'1", "BETA D'ORO", 7, { 1, 2 }) }));
        QList<TitoloArchivio> molti;
        for (int i = 1; i <= 45; ++i)
            molti << titolo(QStringLiteral("G%1").arg(i), QStringLiteral("GAMMA %1").arg(i), 7, { 1, 2 });
        QVERIFY(scriviArchivio(grande, molti));

        const QString mdb = m_tmp.filePath(QStringLiteral("valorimetrico.mdb"));
        QVERIFY(!store::Database::create(mdb).failed());
        m_db = std::make_unique<store::Database>();
        QVERIFY(m_db->open(mdb).ok());
        QVERIFY(m_db->replaceFolders({ uno, m_manca, grande }));
        m_main = vm::test::program().mainWindow();
        quotes::registerWindows(context());
        m_main->show();
    }
    void init() { ui::testing::reset(); }

    // The lines of the letter A: the icon of "Collegato", the texts the board shows, the colour.
    void righe_data()
    {
        QTest::addColumn<QString>("nome");
        QTest::addColumn<int>("immagine");
        QTest::addColumn<QString>("testi"); // Ufficiale|V.% Uff.|Apertura
        QTest::addColumn<QColor>("colore");
        QTest::newRow("quoted today, up") << "ALFA OGGI" << 5 << "12,5|25,0%|12,5" << QColor(0, 0, 255);
        QTest::newRow("older, down") << "ALFA IERI" << 6 << "6|-25,0%|6" << QColor(255, 0, 0);
        QTest::newRow("unchanged") << "ALFA PIATTO" << 5 << "4|0,0%|4" << QColor(0, 0, 0);
        QTest::newRow("5 fields") << "ALFA CINQUE" << 5 << "-|-50,0%|-" << QColor(255, 0, 0);
        QTest::newRow("previous close 0") << "ALFA ZERO" << 5 << "1|n.d.|1" << QColor(0, 0, 0);
        QTest::newRow("no quote") << "ALFA VUOTO" << 6 << "|n.d.|" << QColor(0, 0, 0);
    }
    void righe()
    {
        QFETCH(QString, nome);
        QFETCH(int, immagine);
        QFETCH(QString, testi);
        QFETCH(QColor, colore);
        QuoteBoardWindow *board = QuoteBoardWindow::open(context(), QuoteBoardWindow::Lista::Lettere, true);
        // The folder that does not exist among good ones: said, and the others still listed.
        QCOMPARE(mostrati(),
            QStringList { "Valorimetrico|Spiacente, ma non trovo la directory " + m_manca
                + QStringLiteral(" #%1").arg(int(ui::Icon::Exclamation)) });
        auto *lista = figlio<QTreeWidget>(board, "ListView1");
        QCOMPARE(lista->columnCount(), 13);
        QCOMPARE(lista->headerItem()->text(6), QStringLiteral("V.% Uff."));
        QCOMPARE(lista->topLevelItemCount(), 7);
        QTreeWidgetItem *item = riga(lista, nome);
        QVERIFY(item);
        QCOMPARE(item->data(0, Qt::UserRole).toInt(), immagine);
        QCOMPARE(item->data(1, Qt::UserRole).toInt(), 8);
        QCOMPARE(QStringList({ item->text(5), item->text(6), item->text(7) }).join(u'|'), testi);
        QCOMPARE(item->foreground(6).color(), colore);
    }

    // Selecting a line fills Combo1 and draws the charts; a line without quotes is refused.
    void selezione()
    {
        QuoteBoardWindow *board = QuoteBoardWindow::open(context(), QuoteBoardWindow::Lista::Lettere, true);
        auto *lista = figlio<QTreeWidget>(board, "ListView1");
        ui::testing::reset();
        clicca(lista, riga(lista, "ALFA VUOTO"));
        QCOMPARE(mostrati(),
            QStringList { QStringLiteral("File non compatibile|No quotaflusso compatibile. #%1")
                              .arg(int(ui::Icon::Information)) });
        QCOMPARE(board->puntiGrafico(), 0);

        clicca(lista, riga(lista, "ALFA OGGI"));
        QComboBox *combo = m_main->quoteTitles();
        QCOMPARE(combo->count(), 7);
        QCOMPARE(combo->currentText(), QStringLiteral("ALFA OGGI"));
        QCOMPARE(board->puntiGrafico(), 2);
        QVERIFY(figlio<QLabel>(board, "Label1")->text().startsWith(QStringLiteral("Ultima ")));

        // Choosing in Combo1 selects the line and draws its chart.
        combo->setCurrentIndex(lista->indexOfTopLevelItem(riga(lista, "ALFA LUNGO")));
        QCOMPARE(lista->currentItem()->text(2), QStringLiteral("ALFA LUNGO"));
        QCOMPARE(figlio<QScrollBar>(board, "FlatScrollBar1")->maximum(), 100);
    }

    // Mouse buttons on the price chart step the period; the value is kept in Grafico/Periodo.
    void zoom_data()
    {
        QTest::addColumn<int>("prima");
        QTest::addColumn<bool>("sinistro");
        QTest::addColumn<int>("dopo");
        QTest::newRow("left at the maximum keeps it") << 100 << true << 100;
        QTest::newRow("left 15 more") << 25 << true << 40;
        QTest::newRow("right at 31 days sets 2") << 31 << false << 2;
        QTest::newRow("right 15 fewer") << 60 << false << 45;
    }
    void zoom()
    {
        QFETCH(int, prima);
        QFETCH(bool, sinistro);
        QFETCH(int, dopo);
        QuoteBoardWindow *board = QuoteBoardWindow::open(context(), QuoteBoardWindow::Lista::Lettere, true);
        auto *lista = figlio<QTreeWidget>(board, "ListView1");
        clicca(lista, riga(lista, "ALFA LUNGO"));
        auto *periodo = figlio<QScrollBar>(board, "FlatScrollBar1");
        auto *storico = figlio<QCheckBox>(board, "Check1");
        periodo->setValue(prima);
        storico->setChecked(true);
        auto *grafico = figlio<QChartView>(board, "Graph1");
        QTest::mousePress(grafico->viewport(), sinistro ? Qt::LeftButton : Qt::RightButton);
        QCOMPARE(periodo->value(), dopo);
        QVERIFY(!storico->isChecked());
        QCOMPARE(board->puntiGrafico(), dopo);
        QCOMPARE(vm::test::program().settings.read(settings::GraficoPeriodo), QString::number(dopo));
    }

    // The 40-title limit, a group with a quote in its name created with exactly 40 titles, the board's
    // group tabs following, then the group removed after its confirmation.
    void editorGruppi()
    {
        QuoteBoardWindow *board = QuoteBoardWindow::open(context(), QuoteBoardWindow::Lista::Gruppi, true);
        auto *schede = figlio<QTabBar>(board, "TabStrip2");
        QCOMPARE(schede->count(), 0);

        GroupsEditorWindow *editor = GroupsEditorWindow::open(context());
        QCOMPARE(editor->windowTitle(), QStringLiteral("Creazione gruppi titoli"));
        QCOMPARE(mostrati(), QStringList { "Valorimetrico|Non trovo la directory " + m_manca + QStringLiteral(" #0") });
        ui::testing::reset();
        auto *lista = figlio<QTreeWidget>(editor, "ListView1");
        QCOMPARE(lista->topLevelItemCount(), 8 + 45);
        const auto gamma
            = [&](int i) { return lista->findItems(QStringLiteral("GAMMA %1").arg(i), Qt::MatchExactly).value(0); };
        for (int i = 1; i <= 40; ++i)
            gamma(i)->setCheckState(0, Qt::Checked);
        QVERIFY(mostrati().isEmpty());
        QCOMPARE(figlio<QLabel>(editor, "Label2")->text(), QStringLiteral("Selezionati: 40"));
        gamma(41)->setCheckState(0, Qt::Checked);
        QCOMPARE(mostrati(),
            QStringList { QStringLiteral("Valorimetrico|Non è possibile selezionare oltre 40 titoli. #0") });
        QCOMPARE(gamma(41)->checkState(0), Qt::Unchecked);
        QCOMPARE(figlio<QLabel>(editor, "Label2")->text(), QStringLiteral("Selezionati: 40"));

        ui::testing::reset();
        QTest::mouseClick(figlio<QPushButton>(editor, "Command4"), Qt::LeftButton);
        auto *nome = figlio<QLineEdit>(editor, "Text1");
        QVERIFY(nome->isEnabled());
        QTest::keyClicks(nome, QStringLiteral("L'oro"));
        QTest::mouseClick(figlio<QPushButton>(editor, "Command1"), Qt::LeftButton);
        QCOMPARE(mostrati(), QStringList { QStringLiteral("Valorimetrico|Il gruppo L'oro è stato creato. #0") });
        QCOMPARE(m_db->titlesOfGroup(QStringLiteral("L'oro")).value().size(), 40);
        QCOMPARE(figlio<QLabel>(editor, "Label2")->text(), QStringLiteral("Selezionati: 0"));
        QCOMPARE(gamma(1)->checkState(0), Qt::Unchecked);
        QCOMPARE(schede->count(), 1);
        QCOMPARE(schede->tabText(0), QStringLiteral("L'oro"));

        // The same title in a second group: two tree nodes, two keys.
        lista->findItems(QStringLiteral("BETA D'ORO"), Qt::MatchExactly).first()->setCheckState(0, Qt::Checked);
        gamma(1)->setCheckState(0, Qt::Checked);
        QTest::mouseClick(figlio<QPushButton>(editor, "Command4"), Qt::LeftButton);
        QTest::keyClicks(nome, QStringLiteral("Misti"));
        QTest::mouseClick(figlio<QPushButton>(editor, "Command1"), Qt::LeftButton);
        auto *albero = figlio<QTreeWidget>(editor, "TreeView1");
        QCOMPARE(albero->topLevelItemCount(), 2);
        const QTreeWidgetItem *oro = albero->findItems(QStringLiteral("L'oro"), Qt::MatchExactly).first();
        const QTreeWidgetItem *misti = albero->findItems(QStringLiteral("Misti"), Qt::MatchExactly).first();
        QCOMPARE(misti->childCount(), 2);
        QCOMPARE(oro->child(0)->text(0), misti->child(1)->text(0));
        QVERIFY(oro->child(0)->data(0, Qt::UserRole) != misti->child(1)->data(0, Qt::UserRole));
        QCOMPARE(schede->count(), 2);

        // A title with a quote removed without a question, then the group with a quote after one.
        ui::testing::reset();
        misti->child(0)->setCheckState(0, Qt::Checked);
        QTest::mouseClick(figlio<QPushButton>(editor, "Command5"), Qt::LeftButton);
        QVERIFY(mostrati().isEmpty());
        QCOMPARE(m_db->symbolsOfGroup(QStringLiteral("Misti")).value(), QStringList { QStringLiteral("G1") });

        albero->findItems(QStringLiteral("L'oro"), Qt::MatchExactly).first()->setCheckState(0, Qt::Checked);
        QCOMPARE(nome->text(), QStringLiteral("L'oro"));
        ui::testing::setNextAnswer(QMessageBox::Yes);
        QTest::mouseClick(figlio<QPushButton>(editor, "Command5"), Qt::LeftButton);
        QCOMPARE(mostrati(),
            QStringList { QStringLiteral("ATTENZIONE! Rimozione Gruppo|ATTENZIONE!, si è deciso di rimuove il gruppo "
                                         "L'oro  Confermi ? #%1")
                              .arg(int(ui::Icon::Critical)) });
        QVERIFY(!m_db->groupExists(QStringLiteral("L'oro")));
        QCOMPARE(albero->topLevelItemCount(), 1);
        QCOMPARE(schede->count(), 1);
        QCOMPARE(schede->tabText(0), QStringLiteral("Misti"));
        editor->close();
    }

    // The main window's quote commands, as the user triggers them from the toolbars, and the board's
    // own way to the groups editor (toolbar 0: the board's button).
    void comandi_data()
    {
        QTest::addColumn<int>("barra");
        QTest::addColumn<QString>("tasto");
        QTest::addColumn<QString>("finestra");
        QTest::addColumn<QString>("schede"); // the board's tab strips shown
        QTest::addColumn<QString>("righe"); // "0" none, "+" some, "" not looked at
        QTest::newRow("day quotes: letters, no chart") << 1 << "giornata"
                                                       << "Form13"
                                                       << "TabStrip1"
                                                       << "+";
        QTest::newRow("dossier day: no tabs") << 1 << "giornatadoss"
                                              << "Form13"
                                              << ""
                                              << "";
        QTest::newRow("personal groups: the tabs alone") << 2 << "gruppi"
                                                         << "Form13"
                                                         << "TabStrip2"
                                                         << "0";
        QTest::newRow("personal titles: the chosen group's lines") << 2 << "personali"
                                                                   << "Form13"
                                                                   << "TabStrip2"
                                                                   << "+";
        QTest::newRow("all titles: letters") << 2 << "az"
                                             << "Form13"
                                             << "TabStrip1"
                                             << "+";
        QTest::newRow("the board's groups button: the editor") << 0 << "ModificaGruppi"
                                                               << "Form3"
                                                               << ""
                                                               << "";
    }
    void comandi()
    {
        QFETCH(int, barra);
        QFETCH(QString, tasto);
        QFETCH(QString, finestra);
        QFETCH(QString, schede);
        QFETCH(QString, righe);
        QVERIFY(m_db->addGroup(
            QStringLiteral("Comandi"), { { 0, {}, QStringLiteral("AO"), QStringLiteral("ALFA OGGI") } }));
        m_main->setArchivesReady(true);
        if (barra == 0) {
            QuoteBoardWindow *board = QuoteBoardWindow::open(context(), QuoteBoardWindow::Lista::Gruppi, true);
            QTest::mouseClick(figlio<QToolButton>(board, "ModificaGruppi"), Qt::LeftButton);
        } else {
            QAction *azione = m_main->button(barra, tasto);
            QVERIFY(azione && azione->isEnabled());
            azione->trigger();
        }
        QVERIFY(m_db->deleteGroup(QStringLiteral("Comandi")));
        if (finestra == u"Form3") {
            GroupsEditorWindow *editor = GroupsEditorWindow::instance();
            QVERIFY(editor && editor->isVisible());
            QCOMPARE(editor->objectName(), finestra);
            editor->close();
            return;
        }
        QuoteBoardWindow *board = QuoteBoardWindow::instance();
        QVERIFY(board && board->isVisible());
        QStringList mostrate;
        for (const char *nome : { "TabStrip1", "TabStrip2" }) {
            if (figlio<QTabBar>(board, nome)->isVisibleTo(board))
                mostrate << QString::fromLatin1(nome);
        }
        QCOMPARE(mostrate.join(u','), schede);
        const int n = figlio<QTreeWidget>(board, "ListView1")->topLevelItemCount();
        if (righe == u"0")
            QCOMPARE(n, 0);
        else if (righe == u"+")
            QVERIFY(n > 0);
        if (tasto == u"giornata")
            QVERIFY(!figlio<QWidget>(board, "PannelloGrafico")->isVisibleTo(board));
    }

    // What the board hears from the other windows: each change reloads only the list it concerns.
    void eventi_data()
    {
        using Lista = QuoteBoardWindow::Lista;
        QTest::addColumn<int>("lista");
        QTest::addColumn<QString>("evento");
        QTest::addColumn<int>("righe"); // after the event
        QTest::addColumn<QStringList>("avvisi"); // shown by the event
        QTest::addColumn<bool>("scheda"); // TabStrip2 shows the new group
        const QStringList manca { "Valorimetrico|Spiacente, ma non trovo la directory "
            + m_tmp.filePath(QStringLiteral("manca/")) + QStringLiteral(" #%1").arg(int(ui::Icon::Exclamation)) };
        QTest::newRow("folders saved: the letter read again")
            << int(Lista::Lettere) << "cartelle" << 0 << manca << false;
        QTest::newRow("a title bought: the dossier list follows")
            << int(Lista::Dossier) << "dossier" << 1 << QStringList() << false;
        QTest::newRow("a title bought: the letter list is not read again")
            << int(Lista::Lettere) << "dossier" << 7 << QStringList() << false;
        QTest::newRow("a group made: the letter lines stay, the tabs follow")
            << int(Lista::Lettere) << "gruppi" << 7 << QStringList() << true;
        QTest::newRow("a group made: the group list starts again")
            << int(Lista::Gruppi) << "gruppi" << 0 << QStringList() << true;
    }
    void eventi()
    {
        QFETCH(int, lista);
        QFETCH(QString, evento);
        QFETCH(int, righe);
        QFETCH(QStringList, avvisi);
        QFETCH(bool, scheda);
        const QString uno = m_tmp.filePath(QStringLiteral("uno/"));
        const QString grande = m_tmp.filePath(QStringLiteral("grande/"));
        QuoteBoardWindow *board = QuoteBoardWindow::open(context(), QuoteBoardWindow::Lista(lista), true);
        auto *elenco = figlio<QTreeWidget>(board, "ListView1");
        DataEvents &eventi = vm::test::program().events;
        ui::testing::reset();
        std::optional<qint64> titolo;
        if (evento == u"cartelle") {
            QVERIFY(m_db->replaceFolders({ m_manca, grande }));
            Q_EMIT eventi.foldersChanged();
        } else if (evento == u"dossier") {
            store::DossierRow r;
            r.titolo = QStringLiteral("AO");
            r.descrizione = QStringLiteral("ALFA OGGI");
            r.giorno = QDate::currentDate();
            r.qta = 1;
            titolo = m_db->insertTitle(r);
            QVERIFY(titolo);
            Q_EMIT eventi.dossierChanged();
        } else {
            store::GruppoRow r;
            r.simbolo = QStringLiteral("AO");
            r.titolo = QStringLiteral("ALFA OGGI");
            QVERIFY(m_db->addGroup(QStringLiteral("Eventi"), { r }));
            Q_EMIT eventi.groupsChanged();
        }
        const QStringList mostratiEvento = mostrati();
        const int righeEvento = elenco->topLevelItemCount();
        QStringList schede;
        for (const QTabBar *t = figlio<QTabBar>(board, "TabStrip2"); schede.size() < t->count();)
            schede << t->tabText(int(schede.size()));
        QVERIFY(m_db->replaceFolders({ uno, m_manca, grande }));
        if (titolo)
            QVERIFY(m_db->deleteTitle(*titolo));
        QVERIFY(m_db->deleteGroup(QStringLiteral("Eventi")));

        QCOMPARE(mostratiEvento, avvisi);
        QCOMPARE(righeEvento, righe);
        QCOMPARE(schede.contains(QStringLiteral("Eventi")), scheda);
    }
};

QTEST_MAIN(TestGuiQuotes)
#include "tst_gui_quotes.moc"
