// The operation windows driven as a user drives them, by typing into their
// fields: a new title, a further purchase, sales, a dividend, the deletion of
// an operation, the fee settings and the title situation.
#include "app/MainWindow.h"
#include "core/ProgramState.h"
#include "core/Settings.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/WindowContext.h"
#include "metastock/ArchiveWriter.h"
#include "operations/OperationWindows.h"
#include "operations/OperationsWindows.h"
#include "operations/Registra.h"
#include "operations/TitleSituationWindow.h"
#include "store/Database.h"

#include <QAction>
#include <QChartView>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include <memory>

using namespace vm;
using namespace vm::operations;

namespace {

const QDate kUltimo(2026, 11, 20);

metastock::TitoloArchivio titolo(const char *simbolo, const char *nome)
{
    metastock::TitoloArchivio t { QString::fromLatin1(simbolo), QString::fromLatin1(nome), 7, {}, {}, {}, {} };
    for (QDate d(2023, 1, 2); d <= kUltimo; d = d.addDays(1)) {
        if (d.dayOfWeek() > 5)
            continue;
        metastock::QuotaMS q;
        q.data = d;
        q.chiusura = q.massimo = q.minimo = d == kUltimo ? 25.0f : 20.0f;
        t.quote << q;
    }
    return t;
}

// "title|text" of each message shown since the last reset.
QStringList shown()
{
    QStringList texts;
    for (const auto &m : ui::testing::messages())
        texts << m.title + u'|' + m.text;
    return texts;
}

template<class T = QLineEdit> T *child(QWidget *form, const char *name)
{
    T *w = form ? form->findChild<T *>(QLatin1String(name)) : nullptr;
    if (!w)
        qFatal("no %s", name);
    return w;
}

void click(QWidget *form, const char *button)
{
    QTest::mouseClick(child<QPushButton>(form, button), Qt::LeftButton);
}

// Types into a field as the keyboard would, the field emptied first.
void type(QWidget *form, const char *field, const QString &text)
{
    QLineEdit *f = child(form, field);
    f->setFocus();
    f->selectAll();
    QTest::keyClick(f, Qt::Key_Backspace);
    QTest::keyClicks(f, text);
}

void settle()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

class TestGuiOperations : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_archivio;
    int m_n = 0;
    ProgramState m_state;
    SettingsFile m_settings;
    std::unique_ptr<DataEvents> m_events;
    std::unique_ptr<store::Database> m_db;
    std::unique_ptr<MainWindow> m_main;
    std::unique_ptr<WindowContext> m_context;

    // The main window on a fresh program folder whose database knows the archive.
    void start()
    {
        for (QWidget *w : QApplication::topLevelWidgets()) {
            if (w != m_main.get())
                w->close();
        }
        settle();
        m_context.reset();
        m_main.reset();
        const QString dir = m_tmp.filePath(QStringLiteral("prog%1").arg(++m_n));
        QVERIFY(QDir().mkpath(dir));
        m_state.setProgramFolder(dir);
        m_settings.setPath(m_state.file(QStringLiteral("valorimetrico.ini")));
        m_db = std::make_unique<store::Database>();
        const QString mdb = m_state.file(QStringLiteral("valorimetrico.mdb"));
        QVERIFY(!store::Database::create(mdb).failed() && m_db->open(mdb).ok() && m_db->replaceFolders({ m_archivio }));
        m_events = std::make_unique<DataEvents>();
        m_main = std::make_unique<MainWindow>(m_state, m_settings, *m_events);
        m_context = std::make_unique<WindowContext>(WindowContext { *m_main, *m_db, m_settings, m_state, *m_events });
        registerWindows(*m_context);
        m_main->show();
        ui::testing::reset();
    }

    // Form61 through the toolbar, ABC chosen, quantity and net price typed,
    // confirmed.
    QWidget *newTitle(const QString &quantita, const QString &prezzo)
    {
        m_main->button(4, QStringLiteral("new"))->trigger();
        QWidget *form = PurchaseWindow::instance();
        auto *combo = child<QComboBox>(form, "Combo1");
        const int i = combo->findText(QStringLiteral("ALFA BETA"));
        combo->setCurrentIndex(i);
        Q_EMIT combo->activated(i);
        type(form, "Text2", quantita);
        type(form, "Text6", prezzo);
        return form;
    }

    store::DossierRow held()
    {
        const auto r = m_db->findTitleBySymbol(QStringLiteral("ABC"));
        if (!r)
            qFatal("ABC not held");
        return *r;
    }

    // As a double click on the dossier's row asks for it.
    QWidget *situation()
    {
        Q_EMIT m_events->titleSituationRequested(QStringLiteral("ABC"));
        return TitleSituationWindow::instance();
    }

private Q_SLOTS:
    void initTestCase()
    {
        ui::testing::enable();
        m_archivio = m_tmp.filePath(QStringLiteral("archivio")) + u'/';
        QVERIFY(QDir().mkpath(m_archivio));
        QVERIFY(metastock::scriviArchivio(m_archivio, { titolo("ABC", "ALFA BETA"), titolo("ZED", "ZETA") }));
    }
    void cleanupTestCase()
    {
        m_context.reset();
        m_main.reset();
    }

    // The new-title window: the list, the last price, the total as typed, and the
    // rows written.
    void nuovoTitolo()
    {
        start();
        QSignalSpy cambiato(m_events.get(), &DataEvents::dossierChanged);
        QWidget *form = newTitle(QStringLiteral("1a00"), QStringLiteral("2.5"));
        QCOMPARE(child<QComboBox>(form, "Combo1")->count(), 2);
        QCOMPARE(child<QLabel>(form, "Label16")->text(), QStringLiteral(" 25   data 20/11/2026"));
        QCOMPARE(child(form, "Text5")->text(), QStringLiteral("ALFA BETA"));
        QCOMPARE(child(form, "Text2")->text(), QStringLiteral("100"));
        QCOMPARE(child(form, "Text6")->text(), QStringLiteral("2,5"));
        QCOMPARE(child<QLabel>(form, "Label4")->text(), QStringLiteral("250,0"));
        QTest::keyClicks(child(form, "Text6"), QStringLiteral(",3"));
        QCOMPARE(child(form, "Text6")->text(), QStringLiteral("2,53"));
        click(form, "Command1");
        settle();
        QVERIFY(!PurchaseWindow::instance());
        QCOMPARE(cambiato.count(), 1);
        const store::DossierRow r = held();
        QCOMPARE(r.qta, 100);
        QCOMPARE(r.prezzo, 2.53);
        const auto ops = m_db->operationsOfTitle(r.idTitolo);
        QCOMPARE(ops->size(), 1);
        QCOMPARE(ops->first().tipo, QStringLiteral("AQ"));
        QCOMPARE(ops->first().titolo, QStringLiteral("ABC"));
        QVERIFY(shown().isEmpty());

        // Already held: told where to go, nothing written.
        form = newTitle(QStringLiteral("5"), QStringLiteral("3"));
        QCOMPARE(shown().value(0).section(u'|', 1),
            QString::fromUtf8("Il titolo ALFA BETA è già in dossier\n"
                              "per l'acquisto di altre quote, selezioare il "
                              "titolo\nquindi fare click su Acquisto"));
        QVERIFY(!child<QWidget>(form, "Frame3")->isEnabled());
        QCOMPARE(m_db->dossierRows()->size(), 1);
    }

    // The checks of the confirm button, each with its message and the focus where
    // it says.
    void controlli_data()
    {
        QTest::addColumn<QString>("quantita");
        QTest::addColumn<QString>("prezzo");
        QTest::addColumn<QString>("messaggio");
        QTest::addColumn<QString>("fuoco");
        QTest::newRow("no quantity") << ""
                                     << "2"
                                     << "Acquisto|Inserire il numero di azioni."
                                     << "Text2";
        QTest::newRow("no price") << "10"
                                  << ""
                                  << "Acquisto|Inserire il prezzo x azione."
                                  << "Text6";
        QTest::newRow("a lone comma") << "10"
                                      << ","
                                      << "Acquisto|Verificare il prezzo."
                                      << "Text6";
    }
    void controlli()
    {
        QFETCH(QString, quantita);
        QFETCH(QString, prezzo);
        start();
        QWidget *form = newTitle(quantita, prezzo);
        click(form, "Command1");
        QTEST(shown().value(0), "messaggio");
        QTEST(form->focusWidget() ? form->focusWidget()->objectName() : QString(), "fuoco");
        QCOMPARE(m_db->dossierRows()->size(), 0);
    }

    // The date: a weekend goes back to Friday, a future day back to today with
    // the window's message.
    void data_data()
    {
        QTest::addColumn<QDate>("scelta");
        QTest::addColumn<QDate>("data");
        QTest::addColumn<QString>("messaggio");
        QTest::newRow("Saturday") << QDate(2026, 11, 21) << QDate(2026, 11, 20) << "";
        QTest::newRow("Sunday") << QDate(2026, 11, 22) << QDate(2026, 11, 20) << "";
        const QDate oggi = QDate::currentDate();
        const QDate venerdi = oggi.dayOfWeek() > 5 ? oggi.addDays(5 - oggi.dayOfWeek()) : oggi;
        QTest::newRow("future") << oggi.addDays(10) << venerdi << "Verifica la data|La data selezionata non valida.";
    }
    void data()
    {
        QFETCH(QDate, scelta);
        start();
        m_main->button(4, QStringLiteral("new"))->trigger();
        QDateEdit *d = child<QDateEdit>(PurchaseWindow::instance(), "DTPicker1");
        d->setDate(scelta);
        QTEST(d->date(), "data");
        QTEST(shown().value(0), "messaggio");
    }

    // The holding traded from the title window: bought again, sold in part, sold
    // out.
    void acquistoEVendita()
    {
        start();
        click(newTitle(QStringLiteral("100"), QStringLiteral("10")), "Command1");
        settle();

        QWidget *form11 = situation();
        QCOMPARE(child<QLabel>(form11, "Quantita")->text(), QStringLiteral("100"));
        QCOMPARE(child<QLabel>(form11, "TotAttuale")->text(), QStringLiteral("2.500,0"));
        QCOMPARE(child<QLabel>(form11, "Differenza")->text(), QStringLiteral("1.500,0"));
        QCOMPARE(child<QLabel>(form11, "Percentuale")->palette().color(QPalette::WindowText), QColor(0, 0, 255));
        click(form11, "Command1");
        QWidget *form6 = FurtherPurchaseWindow::instance();
        type(form6, "Text2", QStringLiteral("50"));
        type(form6, "Text6", QStringLiteral("13"));
        QCOMPARE(child<QLabel>(form6, "Label4")->text(), QStringLiteral("650,0"));
        click(form6, "Command1");
        settle();
        QVERIFY(!FurtherPurchaseWindow::instance() && !TitleSituationWindow::instance());
        QCOMPARE(held().qta, 150);
        QCOMPARE(held().prezzo, 11.0);

        form11 = situation();
        click(form11, "Command2");
        QWidget *form66 = SaleWindow::instance();
        QCOMPARE(child(form66, "Text2")->text(), QStringLiteral("150"));
        QCOMPARE(child(form66, "Text1")->text(), QStringLiteral("25,0"));
        auto *bar = child<QScrollBar>(form66, "FlatScrollBar1");
        QCOMPARE(bar->minimum(), 1);
        QCOMPARE(bar->maximum(), 150);
        bar->setValue(149);
        QCOMPARE(child(form66, "Text2")->text(), QStringLiteral("149"));
        type(form66, "Text2", QStringLiteral("151"));
        type(form66, "Text6", QStringLiteral("12"));
        click(form66, "Command1");
        QCOMPARE(shown().value(0),
            QStringLiteral("Vendita|Verificare il numero di quote, risultano "
                           "150 disponibili."));
        QCOMPARE(child(form66, "Text2")->selectedText(), QStringLiteral("151"));
        type(form66, "Text2", QStringLiteral("60"));
        click(form66, "Command1");
        settle();
        QCOMPARE(held().qta, 90);
        QCOMPARE(held().prezzo, double(float(10.333)));

        form11 = situation();
        click(form11, "Command2");
        form66 = SaleWindow::instance();
        type(form66, "Text6", QStringLiteral("12"));
        click(form66, "Command1");
        settle();
        QVERIFY(!m_db->findTitleBySymbol(QStringLiteral("ABC")));
        QCOMPARE(m_db->operationsOfTitle(1)->size(), 4);
    }

    // The dividend recorded and cleared, as the title window shows it.
    void dividendo()
    {
        start();
        click(newTitle(QStringLiteral("100"), QStringLiteral("10")), "Command1");
        settle();
        QWidget *form11 = situation();
        click(form11, "Command3");
        QWidget *form7 = DividendWindow::instance();
        QCOMPARE(child<QDateEdit>(form7, "DTPicker1")->date(), QDate::currentDate());
        child<QDateEdit>(form7, "DTPicker1")->setDate(QDate(2026, 5, 18));
        type(form7, "Text1", QStringLiteral("0.35"));
        click(form7, "Command1");
        settle();
        QCOMPARE(held().dividendo, 0.35);
        QCOMPARE(held().dataStacco, QDate(2026, 5, 18));
        QStringList figure;
        for (const char *n : { "DataStacco", "Dividendo", "TotaleDividendo", "Yeld" })
            figure << child<QLabel>(form11, n)->text();
        QCOMPARE(figure, (QStringList { "18/05/2026", "0,35", "35", "3,5%" }));

        click(form11, "Command3");
        form7 = DividendWindow::instance();
        QCOMPARE(child(form7, "Text1")->text(), QStringLiteral("0,35"));
        QCOMPARE(child<QDateEdit>(form7, "DTPicker1")->date(), QDate(2026, 5, 18));
        type(form7, "Text1", QStringLiteral("0"));
        click(form7, "Command1");
        settle();
        QVERIFY(!held().dataStacco.isValid());
        QCOMPARE(held().dividendo, 0.0);
        QCOMPARE(child<QLabel>(form11, "DataStacco")->text(), QStringLiteral("00/00/00"));
        QCOMPARE(child<QLabel>(form11, "Yeld")->text(), QStringLiteral("0"));
    }

    // Deleting operations from the list: the earliest refused, the last one
    // removes the title.
    void rimozione()
    {
        start();
        click(newTitle(QStringLiteral("100"), QStringLiteral("10")), "Command1");
        settle();
        const qint64 id = held().idTitolo;
        store::Operazione o;
        o.tipo = QStringLiteral("AQ");
        o.data = QDate::currentDate();
        o.valore = 13;
        o.qta = 50;
        QVERIFY(m_db->recordOperation(id, o, [](store::DossierRow &r, bool &) {
            r.prezzo = 11;
            r.qta = 150;
            return true;
        }));
        TitleSituationWindow *form11 = TitleSituationWindow::open(*m_context, QStringLiteral("ABC"));
        auto *lista = child<QTreeWidget>(form11, "ListView1");
        QCOMPARE(lista->topLevelItemCount(), 2);
        lista->setCurrentItem(lista->topLevelItem(0));
        QTest::keyClick(lista, Qt::Key_Delete);
        QCOMPARE(shown().value(0), QStringLiteral("Avviso|Non posso rimuovere questa operazione."));

        ui::testing::reset();
        ui::testing::setNextAnswer(QMessageBox::Yes);
        lista->setCurrentItem(lista->topLevelItem(1));
        QTest::keyClick(lista, Qt::Key_Delete);
        QCOMPARE(shown().value(0),
            QStringLiteral("ATTENZIONE! Eliminazione|Confermi la "
                           "cancellazione dell'operazione selezionata?"));
        QCOMPARE(held().qta, 100);
        QCOMPARE(held().prezzo, 10.0);
        QCOMPARE(lista->topLevelItemCount(), 1);
        QCOMPARE(child<QLabel>(form11, "Quantita")->text(), QStringLiteral("100"));

        ui::testing::reset();
        ui::testing::setNextAnswer(QMessageBox::Yes);
        lista->setCurrentItem(lista->topLevelItem(0));
        QTest::keyClick(lista, Qt::Key_Delete);
        QCOMPARE(shown(),
            (QStringList { QString::fromUtf8("ATTENZIONE! Eliminazione|Confermi la cancellazione "
                                             "dell'operazione "
                                             "selezionata?\nATTENZIONE la rimozione di questa operazione "
                                             "cancellerà il titolo dal dossier"),
                QString::fromUtf8("Titolo rimosso|il titolo è stato rimosso dal "
                                  "dossier titoli") }));
        settle();
        QVERIFY(!TitleSituationWindow::instance());
        QVERIFY(!m_db->findTitleBySymbol(QStringLiteral("ABC")));
        QCOMPARE(m_db->operationsOfTitle(id)->size(), 0);
    }

    // The fee settings written from their window and shown by the new-title
    // window at its next activation.
    void spese()
    {
        start();
        m_main->button(4, QStringLiteral("spese"))->trigger();
        QWidget *form = FeeSettingsWindow::instance();
        QVERIFY(form);
        QTest::mouseClick(child<QRadioButton>(form, "Option1(1)"), Qt::LeftButton);
        type(form, "Text4(0)", QStringLiteral("0.19"));
        type(form, "Text4(2)", QStringLiteral("2"));
        click(form, "Command1");
        settle();
        QCOMPARE(m_settings.read(settings::CommissioniValore), QStringLiteral("0,19"));
        QCOMPARE(m_settings.read(settings::CommissioniTipo), QStringLiteral("1"));
        m_main->button(4, QStringLiteral("new"))->trigger();
        QWidget *form61 = PurchaseWindow::instance();
        QCoreApplication::sendEvent(form61, new QEvent(QEvent::WindowActivate));
        QVERIFY(child<QRadioButton>(form61, "Option1(1)")->isChecked());
        QCOMPARE(child(form61, "Text4(0)")->text(), QStringLiteral("0,19"));
        QCOMPARE(child(form61, "Text4(2)")->text(), QStringLiteral("2"));
        QCOMPARE(child(form61, "Text7")->text(), QStringLiteral("0"));
    }

    // The title situation's performance, chart and exit.
    void situazione()
    {
        start();
        click(newTitle(QStringLiteral("100"), QStringLiteral("10")), "Command1");
        settle();
        QWidget *form11 = situation();
        auto *perf = child<QTreeWidget>(form11, "ListView2");
        QCOMPARE(perf->topLevelItemCount(), 7);
        QCOMPARE(perf->topLevelItem(6)->text(1), QStringLiteral("N.d."));
        auto *grafico = child<QChartView>(form11, "Graph1");
        QCOMPARE(grafico->chart()->title(), QStringLiteral("Performance in 3 Mesi"));
        QCOMPARE(grafico->chart()->series().size(), 2);
        QTest::mouseClick(child<QCheckBox>(form11, "Check1"), Qt::LeftButton);
        QCOMPARE(grafico->chart()->series().size(), 1);
        click(form11, "Command4");
        settle();
        QVERIFY(!TitleSituationWindow::instance());
        QVERIFY(m_main->windowTitle().endsWith(QStringLiteral(" :: [Dossier Asset]")));
    }

    // The pictures of the documentation, when VM_DOCS_DIR names where they go: a title bought two years ago,
    // bought again and partly sold, and the new-title window on another title.
    void immagini()
    {
        const QString docs = qEnvironmentVariable("VM_DOCS_DIR");
        if (docs.isEmpty())
            QSKIP("VM_DOCS_DIR not set");
        start();
        QWidget *form61 = newTitle(QStringLiteral("400"), QStringLiteral("18.75"));
        child<QDateEdit>(form61, "DTPicker1")->setDate(QDate(2024, 11, 4));
        click(form61, "Command1");
        settle();
        const qint64 id = held().idTitolo;
        const auto registra = [&](const char *tipo, QDate data, double valore, qint64 qta, const QString &note) {
            store::Operazione o;
            o.tipo = QString::fromLatin1(tipo);
            o.data = data;
            o.valore = valore;
            o.qta = qta;
            o.note = note;
            QVERIFY(m_db->recordOperation(id, o, [&](store::DossierRow &r, bool &) {
                r = o.tipo == QLatin1String("AQ") ? acquista(r, { qta, valore }) : vendi(r, { qta, valore }).riga;
                return true;
            }));
        };
        registra("AQ", QDate(2025, 6, 9), 19.4, 200, QString());
        registra("VE", QDate(2026, 9, 14), 21.2, 150, QStringLiteral("alleggerito"));
        QVERIFY(registraDividendo(*m_db, id, QDate(2026, 5, 18), 0.62).ok);
        situation()->grab().save(docs + QStringLiteral("/situazione-titolo.png"));
        click(TitleSituationWindow::instance(), "Command4");
        settle();

        m_settings.write(settings::CommissioniValore, QStringLiteral("9,5"));
        m_settings.write(settings::SpeseBolli, QStringLiteral("2"));
        m_main->button(4, QStringLiteral("new"))->trigger();
        form61 = PurchaseWindow::instance();
        auto *combo = child<QComboBox>(form61, "Combo1");
        combo->setCurrentIndex(combo->findText(QStringLiteral("ZETA")));
        Q_EMIT combo->activated(combo->currentIndex());
        type(form61, "Text2", QStringLiteral("250"));
        type(form61, "Text1", QStringLiteral("25"));
        type(form61, "Text6", QStringLiteral("25.04"));
        form61->grab().save(docs + QStringLiteral("/nuovo-titolo.png"));
    }
};

QTEST_MAIN(TestGuiOperations)
#include "tst_gui_operations.moc"
