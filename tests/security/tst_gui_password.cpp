// The dossier password windows driven as the user would: the setting and changing window from the
// toolbar and status panel 4, the prompt in front of a protected dossier.
#include "app/MainWindow.h"
#include "app/MessageBox.h"
#include "app/ProgramState.h"
#include "security/PasswordWindows.h"
#include "store/Database.h"

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
const QString kChanged = QStringLiteral("Protezione Dossier: La password è stata cambiata");
const QString kOff
    = QStringLiteral("Protezione Dossier: Nessuna password è stata inserita, protezione dossier non attivata");
const QString kVerify = QStringLiteral("Protezione Dossier: Verifica la nuova Password.");
const QString kWrong = QStringLiteral("Valorimetrico: Password non esatta");

// "title: text" of each message shown, with its icon's number.
QStringList shown()
{
    QStringList texts;
    for (const auto &m : ui::testing::messages())
        texts << m.title + QStringLiteral(": ") + m.text + QStringLiteral(" #%1").arg(int(m.icon));
    return texts;
}

QString message(const QString &text, ui::Icon icon)
{
    return text + QStringLiteral(" #%1").arg(int(icon));
}

// The window once it has the keyboard, as the user finds it.
QWidget *active(QWidget *form)
{
    if (form && !QTest::qWaitForWindowActive(form))
        qWarning("%s not active", qPrintable(form->objectName()));
    return form;
}

} // namespace

class TestGuiPassword : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    int m_files = 0;
    std::unique_ptr<store::Database> m_db;
    std::unique_ptr<MainWindow> m_main;
    int m_overviews = 0;

    // The main window on a fresh database holding stored ("-": no row), with a stand-in overview.
    void start(const QString &stored)
    {
        const QString path = m_tmp.filePath(QStringLiteral("db%1.mdb").arg(++m_files));
        QVERIFY(!store::Database::create(path).failed());
        m_db = std::make_unique<store::Database>();
        QVERIFY(m_db->open(path).ok());
        if (stored != QLatin1String("-"))
            QVERIFY(m_db->setDossierPassword(stored));
        m_main = std::make_unique<MainWindow>();
        m_main->setHook(MainWindow::Hook::DossierOverview, [this] { ++m_overviews; });
        security::install(*m_main, *m_db);
        m_main->show();
    }

    QWidget *form10() { return active(security::PasswordWindow::instance()); }
    QWidget *form8() { return active(security::PasswordPrompt::instance()); }
    template<class T = QLineEdit> T *child(QWidget *form, const QString &name)
    {
        T *w = form ? form->findChild<T *>(name) : nullptr;
        if (!w)
            qFatal("no %s", qPrintable(name));
        return w;
    }
    void click(QWidget *form, const QString &button)
    {
        QTest::mouseClick(child<QPushButton>(form, button), Qt::LeftButton);
    }
    std::optional<QString> row(const QString &stored)
    {
        return stored == QLatin1String("-") ? std::nullopt : std::optional<QString>(stored);
    }

private Q_SLOTS:
    void initTestCase() { setProgramFolder(m_tmp.path()); }

    void init()
    {
        ui::testing::reset();
        m_overviews = 0;
        state().DossierProtetto = false;
    }

    void cleanup()
    {
        for (QWidget *w : std::initializer_list<QWidget *> {
                 security::PasswordWindow::instance(), security::PasswordPrompt::instance() })
            if (w)
                w->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_main.reset();
        m_db.reset();
    }

    // Each row: what is stored, the current password typed (change mode) and the new one twice; then
    // the messages, what is stored after, whether the window stays open and the dossier is guarded.
    void setChangeAndClear_data()
    {
        QTest::addColumn<QString>("stored"); // "-": no row
        QTest::addColumn<QString>("current");
        QTest::addColumn<QString>("newPassword");
        QTest::addColumn<QString>("verify");
        QTest::addColumn<QString>("shownMessage");
        QTest::addColumn<QString>("after"); // "-": no row
        QTest::addColumn<bool>("open");
        auto row = [](const char *name, const char *stored, const char *current, const char *pw, const char *verify,
                       const QString &shown, const char *after, bool open) {
            QTest::newRow(name) << QString::fromLatin1(stored) << QString::fromLatin1(current)
                                << QString::fromLatin1(pw) << QString::fromLatin1(verify) << shown
                                << QString::fromLatin1(after) << open;
        };
        const QString changed = message(kChanged, ui::Icon::Information);
        const QString off = message(kOff, ui::Icon::Exclamation);
        const QString verify = message(kVerify, ui::Icon::Information);
        const QString wrong = message(kWrong, ui::Icon::Exclamation);
        row("first use", "-", "", "abc", "abc", changed, "abc", false);
        row("first use, blanks around", "-", "", " abc", "abc ", changed, "abc", false);
        row("first use, mismatch", "-", "", "abc", "abd", verify, "-", true);
        row("first use, nothing typed", "-", "", "", "", off, "", false);
        row("change", "abc", "abc", "Xyz", "Xyz", changed, "Xyz", false);
        row("change, current with blanks", "abc", "  abc ", "xyz", "xyz", changed, "xyz", false);
        row("clear", "abc", "abc", "", "", off, "", false);
        row("change, mismatch", "abc", "abc", "xyz", "xy", verify, "abc", true);
        row("wrong current", "abc", "abd", "", "", wrong, "abc", true);
        row("current in other case", "abc", "ABC", "", "", wrong, "abc", true);
    }
    void setChangeAndClear()
    {
        QFETCH(QString, stored);
        QFETCH(QString, current);
        QFETCH(QString, newPassword);
        QFETCH(QString, verify);
        QFETCH(QString, shownMessage);
        QFETCH(QString, after);
        QFETCH(bool, open);
        const bool change = stored == QLatin1String("abc");
        const bool rightCurrent = !change || current.trimmed() == stored;

        start(stored);
        QCOMPARE(m_main->statusBar()->toolTip(), change ? kProtected : kUnprotected);
        m_main->button(4, QStringLiteral("pass"))->trigger();
        QWidget *form = form10();
        QVERIFY(form && form->isVisible());
        QCOMPARE(form->objectName(), QStringLiteral("Form10"));
        QCOMPARE(form->windowTitle(), QStringLiteral("Inserimento Password"));
        QVERIFY(!m_main->isEnabled());
        QCOMPARE(form->height(), (change ? 2740 : 3690) / 15);
        QCOMPARE(child<QLabel>(form, "Label5")->text(),
            change ? QStringLiteral("Per cambiare la password, digitare la password attuale.")
                   : QStringLiteral("Per proteggere l'accesso al dossier, inserire una password di accesso"));
        QVERIFY(child<QLabel>(form, "Label4")->isHidden());
        for (const char *name : { "Text1", "Text2", "Text3" })
            QCOMPARE(child(form, name)->echoMode(), QLineEdit::Password);
        auto *frame = child<QFrame>(form, "Frame1");
        QCOMPARE(frame->isVisible(), !change);
        QCOMPARE(QApplication::focusWidget(), child(form, change ? "Text1" : "Text2"));
        // The highlight frames the field that has the focus.
        QVERIFY(child<QFrame>(form, "bordo1")->geometry().contains(QApplication::focusWidget()->geometry()));

        if (change) {
            QTest::keyClicks(child(form, "Text1"), current);
            click(form, "Command1");
            QCOMPARE(frame->isVisible(), rightCurrent);
            QCOMPARE(child(form, "Text1")->isVisible(), !rightCurrent);
            QCOMPARE(child(form, "Text1")->text().isEmpty(), !rightCurrent);
            QCOMPARE(form->height(), (rightCurrent ? 3810 : 2740) / 15);
        }
        if (rightCurrent) {
            QCOMPARE(frame->y(), 810 / 15);
            QCOMPARE(QApplication::focusWidget(), child(form, "Text2"));
            QTest::keyClicks(child(form, "Text2"), newPassword);
            QTest::keyClicks(child(form, "Text3"), verify);
            click(form, "Command3");
        }

        QCOMPARE(shown(), QStringList { shownMessage });
        QCOMPARE(m_db->dossierPassword(), row(after));
        const bool guarded = !after.isEmpty() && after != QLatin1String("-");
        QCOMPARE(form10() != nullptr, open);
        QCOMPARE(m_main->isEnabled(), !open);
        QCOMPARE(state().DossierProtetto, guarded);
        QCOMPARE(m_main->statusBar()->toolTip(), guarded ? kProtected : kUnprotected);
        if (open && rightCurrent) { // a mismatch clears both new fields
            QVERIFY(child(form, "Text2")->text().isEmpty() && child(form, "Text3")->text().isEmpty());
            QCOMPARE(QApplication::focusWidget(), child(form, "Text2"));
            return;
        }
        if (open)
            return;
        // The next opening of the dossier asks for the password only when one is set.
        m_main->VaiDossierTitoli();
        QCOMPARE(form8() != nullptr, guarded);
        QCOMPARE(m_overviews, guarded ? 0 : 1);
    }

    // Enter confirms in Text1; in the new fields it saves once both hold text, else moves on.
    void enterKey()
    {
        start(QStringLiteral("abc"));
        m_main->button(4, QStringLiteral("pass"))->trigger();
        QWidget *form = form10();
        QTest::keyClicks(child(form, "Text1"), QStringLiteral("abc"));
        QTest::keyClick(child(form, "Text1"), Qt::Key_Return);
        QVERIFY(child<QFrame>(form, "Frame1")->isVisible());
        QTest::keyClicks(child(form, "Text2"), QStringLiteral("new"));
        QTest::keyClick(child(form, "Text2"), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), child(form, "Text3"));
        QTest::keyClick(child(form, "Text3"), Qt::Key_Enter);
        QCOMPARE(QApplication::focusWidget(), child(form, "Text2"));
        QVERIFY(shown().isEmpty());
        QTest::keyClicks(child(form, "Text3"), QStringLiteral("new"));
        QTest::keyClick(child(form, "Text3"), Qt::Key_Return);
        QCOMPARE(shown(), QStringList { message(kChanged, ui::Icon::Information) });
        QCOMPARE(m_db->dossierPassword(), row(QStringLiteral("new")));
    }

    // However the window goes, the main window comes back and nothing is saved; it loads afresh.
    void closingWithoutSaving_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("how"); // a button's name, or "window" for the close box
        QTest::newRow("Chiudi, change mode") << "abc"
                                             << "Command2";
        QTest::newRow("Chiudi, set mode") << "-"
                                          << "Command4";
        QTest::newRow("close box") << "abc"
                                   << "window";
    }
    void closingWithoutSaving()
    {
        QFETCH(QString, stored);
        QFETCH(QString, how);
        start(stored);
        QTest::mouseClick(m_main->statusPanel(4), Qt::LeftButton); // as the toolbar key
        QWidget *form = form10();
        QVERIFY(form && !m_main->isEnabled());
        if (how == QLatin1String("Command2")) {
            QTest::keyClicks(child(form, "Text1"), stored);
        } else {
            if (stored != QLatin1String("-")) {
                QTest::keyClicks(child(form, "Text1"), stored);
                QTest::keyClick(child(form, "Text1"), Qt::Key_Return);
            }
            QTest::keyClicks(child(form, "Text2"), QStringLiteral("zzz"));
        }
        if (how == QLatin1String("window"))
            form->close();
        else
            click(form, how);
        QCOMPARE(child<QPushButton>(form, how == QLatin1String("window") ? "Command2" : how)->text(),
            QStringLiteral("&Chiudi"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!form10());
        QVERIFY(m_main->isEnabled());
        QVERIFY(shown().isEmpty());
        QCOMPARE(m_db->dossierPassword(), row(stored));
        m_main->button(4, QStringLiteral("pass"))->trigger();
        QVERIFY(child(form10(), "Text2")->text().isEmpty());
        QCOMPARE(child<QFrame>(form10(), "Frame1")->isVisible(), stored == QLatin1String("-"));
    }

    void prompt_data()
    {
        QTest::addColumn<QString>("answer"); // "": closed with "&Chiudi" instead
        QTest::addColumn<bool>("right");
        QTest::newRow("exact") << "abc" << true;
        QTest::newRow("blanks around") << " abc " << true;
        QTest::newRow("other case") << "ABC" << false;
        QTest::newRow("blank") << " " << false;
        QTest::newRow("longer") << "abcd" << false;
        QTest::newRow("Chiudi") << "" << false;
    }
    void prompt()
    {
        QFETCH(QString, answer);
        QFETCH(bool, right);
        start(QStringLiteral("abc"));
        state().ArchiviCompatibili = true;
        m_main->button(1, QStringLiteral("portafoglio"))->trigger();
        QWidget *form = form8();
        QVERIFY(form && form->isVisible());
        QCOMPARE(form->windowTitle(), QStringLiteral("Sicurezza"));
        QVERIFY(!m_main->isEnabled());
        QVERIFY(form->findChild<QLabel *>()->text().contains(QStringLiteral("ha l'accesso protetto da password.")));
        QLineEdit *field = child(form, "Text1");
        QCOMPARE(field->echoMode(), QLineEdit::Password);
        QCOMPARE(QApplication::focusWidget(), field);
        QVERIFY(child<QFrame>(form, "Bordo")->isVisible());

        if (answer.isEmpty()) {
            QTest::keyClicks(field, QStringLiteral("abc"));
            click(form, "Command2");
        } else {
            QTest::keyClicks(field, answer);
            QTest::keyClick(field, Qt::Key_Return);
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const bool wrong = !right && !answer.isEmpty();
        QCOMPARE(shown(), wrong ? QStringList { message(kWrong, ui::Icon::Exclamation) } : QStringList {});
        QCOMPARE(form8() != nullptr, wrong);
        QCOMPARE(m_main->isEnabled(), !wrong);
        QCOMPARE(m_overviews, right ? 1 : 0);
        QCOMPARE(state().DossierProtetto, !right);
        // The stored password stays, and panel 4 with it: only this session is let through.
        QCOMPARE(m_db->dossierPassword(), row(QStringLiteral("abc")));
        QCOMPARE(m_main->statusBar()->toolTip(), kProtected);
        if (wrong) {
            QVERIFY(field->text().isEmpty());
            QCOMPARE(QApplication::focusWidget(), field);
        } else if (right) {
            QCOMPARE(m_main->windowTitle(), QStringLiteral("Valorimetrico :: [Dossier-Asset]"));
            m_main->VaiDossierTitoli();
            QVERIFY(!form8());
            QCOMPARE(m_overviews, 2);
        }
    }
};

QTEST_MAIN(TestGuiPassword)
#include "tst_gui_password.moc"
