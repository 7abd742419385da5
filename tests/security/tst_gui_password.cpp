// The dossier password on a real database, its windows driven as the user would.
#include "app/MainWindow.h"
#include "core/ProgramState.h"
#include "gui/MessageBox.h"
#include "security/DossierPassword.h"
#include "security/PasswordPromptWindow.h"
#include "security/PasswordWindow.h"
#include "security/SecurityWindows.h"
#include "store/Database.h"
#include "support/TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace vm;

namespace {

const QString kProtected = QStringLiteral("Accesso dossier titoli protetto");
const QString kUnprotected = QStringLiteral("Accesso dossier titoli non protetto");
const QString kChanged
    = QStringLiteral("Protezione Dossier: La password è stata cambiata #%1").arg(int(ui::Icon::Information));
const QString kWrong = QStringLiteral("Valorimetrico: Password non esatta #%1").arg(int(ui::Icon::Exclamation));

// "title: text #icon" of each message shown.
QStringList shown()
{
    QStringList texts;
    for (const auto &m : ui::testing::messages())
        texts << m.title + QStringLiteral(": ") + m.text + QStringLiteral(" #%1").arg(int(m.icon));
    return texts;
}

// The window once it has the keyboard, as the user finds it.
QWidget *active(QWidget *form)
{
    if (form && !QTest::qWaitForWindowActive(form))
        qWarning("%s not active", qPrintable(form->objectName()));
    return form;
}

template<class T = QLineEdit> T *child(QWidget *form, const char *name)
{
    T *w = form ? form->findChild<T *>(QLatin1String(name)) : nullptr;
    return w ? w : (qFatal("no %s", name), nullptr);
}

void click(QWidget *form, const char *button)
{
    QTest::mouseClick(child<QPushButton>(form, button), Qt::LeftButton);
}

// "-" stands for no row.
std::optional<QString> row(const QString &stored)
{
    return stored == QLatin1String("-") ? std::nullopt : std::optional<QString>(stored);
}

struct Change {
    QString stored, current, newPassword, verify, message, after;
    bool open = false, enter = false;
    QString close = {}; // closed unsaved with this button, or "window" for the close box, once typed into
};

} // namespace

class TestGuiPassword : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    int m_files = 0;
    std::unique_ptr<store::Database> m_db;
    std::unique_ptr<MainWindow> m_main;
    int m_overviews = 0;

    // A fresh open database holding stored.
    std::unique_ptr<store::Database> database(const QString &stored)
    {
        const QString path = m_tmp.filePath(QStringLiteral("db%1.mdb").arg(++m_files));
        auto db = std::make_unique<store::Database>();
        if (store::Database::create(path).failed() || !db->open(path).ok()
            || (row(stored) && !db->setDossierPassword(stored)))
            qFatal("no database");
        return db;
    }

    // The main window on a fresh database holding stored, with a stand-in overview.
    void start(const QString &stored)
    {
        m_db = database(stored);
        m_main = vm::test::program().mainWindow();
        m_main->setHook(MainWindow::Hook::DossierOverview, [this] { ++m_overviews; });
        security::registerWindows(vm::test::program().context(*m_main, *m_db));
        m_main->show();
    }

    QWidget *form10() { return active(security::PasswordWindow::instance()); }

    // However the window goes, the main window comes back and nothing is saved; it loads afresh.
    void closeUnsaved(QWidget *form, const Change &c)
    {
        c.close == u"window" ? void(form->close()) : click(form, qPrintable(c.close));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!form10() && m_main->isEnabled() && shown().isEmpty());
        QCOMPARE(m_db->dossierPassword(), row(c.stored));
        m_main->button(4, QStringLiteral("pass"))->trigger();
        QVERIFY(child(form10(), "Text2")->text().isEmpty());
        QCOMPARE(child<QFrame>(form10(), "Frame1")->isVisible(), !row(c.stored));
    }
    QWidget *form8() { return active(security::PasswordPromptWindow::instance()); }

private Q_SLOTS:
    void initTestCase() { vm::test::program().setFolder(m_tmp.path()); }

    void init()
    {
        ui::testing::reset();
        m_overviews = 0;
        vm::test::program().state.DossierProtetto = false;
    }

    void cleanup()
    {
        for (QWidget *w :
            QList<QWidget *> { security::PasswordWindow::instance(), security::PasswordPromptWindow::instance() })
            if (w)
                w->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_main.reset();
        m_db.reset();
    }

    // Nothing stored (or blanks) opens the dossier to no answer, not even an empty one; a database that
    // cannot be read or written refuses both checking and saving.
    void withoutAUsablePassword()
    {
        for (const char *stored : { "-", "  " }) {
            const auto db = database(QString::fromLatin1(stored));
            security::DossierPassword pw(*db);
            QVERIFY(!pw.check(u"") && !pw.check(u" "));
            QCOMPARE(pw.mode(), security::PasswordMode::Set);
        }
        const auto db = database(QStringLiteral("abc"));
        db->close();
        security::DossierPassword pw(*db);
        QVERIFY(!pw.check(QStringLiteral("abc")));
        const auto result = pw.save(QStringLiteral("x"), QStringLiteral("x"));
        QVERIFY(!result.written && !result.error.isEmpty());
    }

    // What is stored ("-": nothing), the current password typed (change mode), the new one twice; then the
    // message, what is stored after, whether the window stays open, whether driven by keyboard (and the
    // status panel), and the way it is closed unsaved instead.
    void setChangeAndClear_data()
    {
        QTest::addColumn<Change>("c");
        const QString off = QStringLiteral("Protezione Dossier: Nessuna password è stata inserita, protezione "
                                           "dossier non attivata #%1")
                                .arg(int(ui::Icon::Exclamation));
        const QString verify
            = QStringLiteral("Protezione Dossier: Verifica la nuova Password. #%1").arg(int(ui::Icon::Information));
        // clang-format off
        QTest::newRow("first use") << Change { "-", "", " abc", "abc ", kChanged, "abc" };
        QTest::newRow("first use, nothing typed") << Change { "-", "", "", "", off, "" };
        QTest::newRow("change") << Change { "abc", "abc", "Xyz", "Xyz", kChanged, "Xyz" };
        QTest::newRow("clear") << Change { "abc", "abc", "", "", off, "" };
        QTest::newRow("change, mismatch") << Change { "abc", "abc", "xyz", "xy", verify, "abc", true };
        QTest::newRow("wrong current") << Change { "abc", "ABC", "", "", kWrong, "abc", true };
        QTest::newRow("change, by keyboard") << Change { "abc", "abc", "new", "new", kChanged, "new", false, true };
        QTest::newRow("Chiudi, change mode") << Change { "abc", "abc", "", "", "", "abc", false, false, "Command2" };
        QTest::newRow("Chiudi, set mode") << Change { "-", "", "zzz", "", "", "", false, false, "Command4" };
        QTest::newRow("close box") << Change { "abc", "abc", "zzz", "", "", "abc", false, true, "window" };
        // clang-format on
    }
    void setChangeAndClear()
    {
        QFETCH(Change, c);
        const bool change = row(c.stored).has_value();
        const bool rightCurrent = !change || c.current == c.stored;

        start(c.stored);
        QCOMPARE(m_main->statusBar()->toolTip(), change ? kProtected : kUnprotected);
        if (c.enter) // the status panel works as the toolbar key
            QTest::mouseClick(m_main->statusPanel(4), Qt::LeftButton);
        else
            m_main->button(4, QStringLiteral("pass"))->trigger();
        QWidget *form = form10();
        QVERIFY(form && form->isVisible() && !m_main->isEnabled());
        for (const char *name : { "Text1", "Text2", "Text3" })
            QCOMPARE(child(form, name)->echoMode(), QLineEdit::Password);
        auto *frame = child<QFrame>(form, "Frame1");
        QCOMPARE(frame->isVisible(), !change);
        QCOMPARE(QApplication::focusWidget(), child(form, change ? "Text1" : "Text2"));
        QVERIFY(child<QFrame>(form, "bordo1")->geometry().contains(QApplication::focusWidget()->geometry()));

        if (change) {
            QTest::keyClicks(child(form, "Text1"), c.current);
            if (c.close == u"Command2")
                return closeUnsaved(form, c);
            c.enter ? QTest::keyClick(child(form, "Text1"), Qt::Key_Return) : click(form, "Command1");
            QCOMPARE(frame->isVisible(), rightCurrent);
            QCOMPARE(child(form, "Text1")->text().isEmpty(), !rightCurrent);
        }
        if (rightCurrent) {
            QCOMPARE(QApplication::focusWidget(), child(form, "Text2"));
            QTest::keyClicks(child(form, "Text2"), c.newPassword);
            if (!c.close.isEmpty())
                return closeUnsaved(form, c);
            if (c.enter) { // Enter moves on until both fields hold text
                QTest::keyClick(child(form, "Text2"), Qt::Key_Return);
                QCOMPARE(QApplication::focusWidget(), child(form, "Text3"));
                QTest::keyClick(child(form, "Text3"), Qt::Key_Enter);
                QCOMPARE(QApplication::focusWidget(), child(form, "Text2"));
                QVERIFY(shown().isEmpty());
            }
            QTest::keyClicks(child(form, "Text3"), c.verify);
            c.enter ? QTest::keyClick(child(form, "Text3"), Qt::Key_Return) : click(form, "Command3");
        }

        QCOMPARE(shown(), QStringList { c.message });
        QCOMPARE(m_db->dossierPassword(), row(c.after));
        const bool guarded = !c.after.isEmpty();
        QCOMPARE(form10() != nullptr, c.open);
        QCOMPARE(m_main->isEnabled(), !c.open);
        QCOMPARE(vm::test::program().state.DossierProtetto, guarded);
        QCOMPARE(m_main->statusBar()->toolTip(), guarded ? kProtected : kUnprotected);
        if (c.open && rightCurrent) { // a mismatch clears both new fields
            QVERIFY(child(form, "Text2")->text().isEmpty() && child(form, "Text3")->text().isEmpty());
            QCOMPARE(QApplication::focusWidget(), child(form, "Text2"));
        } else if (!c.open) { // the next opening of the dossier asks for the password only when one is set
            m_main->VaiDossierTitoli();
            QCOMPARE(form8() != nullptr, guarded);
            QCOMPARE(m_overviews, guarded ? 0 : 1);
        }
    }

    void prompt_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("answer"); // "": closed with "&Chiudi" instead
        QTest::addColumn<bool>("right");
        // clang-format off
        QTest::newRow("blanks around") << "abc" << " abc " << true;
        QTest::newRow("stored edited by hand with blanks") << " abc " << "abc" << true;
        QTest::newRow("other case") << "abc" << "ABC" << false;
        QTest::newRow("inner blank") << "abc" << "a bc" << false;
        QTest::newRow("blank") << "abc" << " " << false;
        QTest::newRow("Chiudi") << "abc" << "" << false;
        // clang-format on
    }
    void prompt()
    {
        QFETCH(QString, stored);
        QFETCH(QString, answer);
        QFETCH(bool, right);
        start(stored);
        vm::test::program().state.ArchiviCompatibili = true;
        m_main->button(1, QStringLiteral("portafoglio"))->trigger();
        QWidget *form = form8();
        QVERIFY(form && form->isVisible() && !m_main->isEnabled());
        QVERIFY(form->findChild<QLabel *>()->text().contains(QStringLiteral("ha l'accesso protetto da password.")));
        QLineEdit *field = child(form, "Text1");
        QCOMPARE(field->echoMode(), QLineEdit::Password);
        QCOMPARE(QApplication::focusWidget(), field);

        QTest::keyClicks(field, answer.isEmpty() ? QStringLiteral("abc") : answer);
        if (answer.isEmpty())
            click(form, "Command2");
        else
            QTest::keyClick(field, Qt::Key_Return);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const bool wrong = !right && !answer.isEmpty();
        QCOMPARE(shown(), wrong ? QStringList { kWrong } : QStringList {});
        QCOMPARE(form8() != nullptr, wrong);
        QCOMPARE(m_main->isEnabled(), !wrong);
        QCOMPARE(m_overviews, right ? 1 : 0);
        QCOMPARE(vm::test::program().state.DossierProtetto, !right);
        // The stored password stays, and panel 4 with it: only this session is let through.
        QCOMPARE(m_db->dossierPassword(), row(stored));
        QCOMPARE(m_main->statusBar()->toolTip(), kProtected);
        if (wrong) {
            QVERIFY(field->text().isEmpty());
            QCOMPARE(QApplication::focusWidget(), field);
        } else if (right) {
            m_main->VaiDossierTitoli();
            QVERIFY(!form8());
            QCOMPARE(m_overviews, 2);
        }
    }
};

QTEST_MAIN(TestGuiPassword)
#include "tst_gui_password.moc"
