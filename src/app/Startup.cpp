#include "app/Startup.h"

#include "app/MainWindow.h"
#include "app/WindowRegistry.h"
#include "auxiliary/SplashWindow.h"
#include "core/ProgramFolder.h"
#include "core/ProgramInfo.h"
#include "gui/MessageBox.h"
#include "gui/WindowContext.h"
#include "store/Backup.h"

#include <QApplication>
#include <QCheckBox>
#include <QFileInfo>

namespace vm {

namespace {

void restorePointer()
{
    while (QApplication::overrideCursor())
        QApplication::restoreOverrideCursor();
}

} // namespace

Startup::Startup(StartupEnvironment environment)
    : m_env(std::move(environment))
{ }

Startup::~Startup()
{
    // A splash loaded before the main window existed has no owner to go with.
    if (aux::SplashWindow *splash = aux::SplashWindow::instance(); splash && !splash->parent())
        delete splash;
}

bool Startup::screenWidthAccepted(int widthPx)
{
    return widthPx != 640 && widthPx != 480;
}

bool Startup::regionalSettingsItalian(const QLocale &locale)
{
    const QString text = locale.toString(0.789);
    return text.size() > 1 && text.at(1) == QLatin1Char(',');
}

bool Startup::fail(const QString &text, const QString &title)
{
    restorePointer();
    ui::message(nullptr, { text, title, ui::Icon::Critical });
    // Once the main window is up the program goes on; before, the failure ends it.
    return m_mainWindow && m_mainWindow->isVisible();
}

void Startup::showMainWindow()
{
    m_state.DossierProtetto = m_database.isDossierProtected();
    m_mainWindow = std::make_unique<MainWindow>(m_state, m_settings, m_events);
    m_mainWindow->setCompactor([this]() -> std::optional<QString> {
        const store::StoreError error = m_database.compact();
        return error.failed() ? std::optional<QString>(errorText(error.number, error.message)) : std::nullopt;
    });
    const WindowContext context { *m_mainWindow, m_database, m_settings, m_state, m_events };
    if (m_env.prepareMainWindow)
        m_env.prepareMainWindow(*m_mainWindow, context);
    else
        registerWindows(*m_mainWindow, context);
    // A splash loaded earlier becomes an owned window of the frame, so that it stays above it.
    if (aux::SplashWindow *splash = aux::SplashWindow::instance()) {
        if (!splash->parent())
            splash->setParent(m_mainWindow.get(), splash->windowFlags());
        splash->attach(m_mainWindow.get(), [window = m_mainWindow.get()] { window->VerificaDirMS(); });
    }
    m_mainWindow->show();
    QApplication::processEvents();
}

bool Startup::Main()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);

    // 1. Screen.
    if (!screenWidthAccepted(m_env.screenWidth)) {
        restorePointer();
        ui::beep();
        ui::message(nullptr,
            { QStringLiteral("L'applicazione richiede una risoluzione minima\ndello schermo di 800 x 600 pixel"),
                QStringLiteral("Valorimetrico"), ui::Icon::Critical });
        return false;
    }

    // 2. Database present.
    m_state.setProgramFolder(m_env.programFolder);
    m_settings.setPath(m_state.file(QString::fromLatin1(kSettingsFileName)));
    const QString database = m_state.file(QString::fromLatin1(kDatabaseFileName));
    if (!QFileInfo(database).isFile()) {
        restorePointer();
        ui::beep();
        ui::message(nullptr,
            { QStringLiteral("Importante!, l'archivio di Quotaflusso non è stato trovato, non posso proseguire."), {},
                ui::Icon::Critical });
        return false;
    }

    // 3. Settings file: without one the splash is loaded hidden, and every setting keeps its default.
    if (!QFileInfo::exists(m_settings.path()))
        aux::SplashWindow::load(m_settings, nullptr)->setTag(QString());

    // 4-5. From the database open on, a failure is reported with its number.
    store::OpenResult opening = m_database.open(database);
    // A database or program folder that cannot be written is said now, not at the first change that fails:
    // the program goes on for reading.
    const bool readOnly = opening.error.number == store::ErrReadOnly;
    if (readOnly)
        opening = m_database.openReadOnly(database);
    if (opening.outcome == store::OpenOutcome::AccessDenied)
        return fail(QString::fromUtf8(store::kAccessDeniedMessage), QString::fromUtf8(store::kAccessDeniedTitle));
    if (!opening.ok())
        return fail(errorText(opening.error.number, opening.error.message));
    if (readOnly) {
        restorePointer();
        ui::message(
            nullptr, { QString::fromUtf8(kReadOnlyMessage), QString::fromLatin1(kProgramName), ui::Icon::Exclamation });
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        // Under the database's lock: what an interrupted run left is no other copy's work in progress.
        ProgramFolder(m_env.programFolder, ProgramFolder::Source::Option).removeLeftovers();
        const store::StoreError copy = store::backup::daily(m_database);
        if (copy.failed()) {
            restorePointer();
            ui::message(nullptr,
                { errorText(copy.number, copy.message), QString::fromLatin1(kProgramName), ui::Icon::Exclamation });
            QApplication::setOverrideCursor(Qt::WaitCursor);
        }
    }

    // 6. Splash setting.
    const Converted<bool> splash = m_settings.splash();
    if (!splash.ok())
        return fail(errorText(splash.error));

    // 7. Main window, with or without the splash; the folder check runs now or when the splash closes.
    if (!splash.value) {
        showMainWindow();
        m_mainWindow->showProgressPanel(true);
        m_mainWindow->VerificaDirMS();
    } else {
        aux::SplashWindow *form = aux::SplashWindow::load(m_settings, nullptr);
        QApplication::processEvents();
        showMainWindow();
        form->setTag(QStringLiteral("X"));
        form->show();
        form->setShowAtStartup(true);
    }

    // 8. Regional settings: numbers typed and shown as text expect the decimal comma.
    if (!regionalSettingsItalian(m_env.systemLocale)) {
        restorePointer();
        ui::beep();
        ui::message(m_mainWindow.get(),
            { QStringLiteral("Le impostazioni Internazionali sono da impostare alla lingua italiana. "
                             "Pannello di controllo"),
                QStringLiteral("Verifica le impostazioni Internazionali"), ui::Icon::Critical });
    }

    // 9. Pointer.
    restorePointer();
    return true;
}

} // namespace vm
