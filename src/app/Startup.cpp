#include "app/Startup.h"

#include "app/MainWindow.h"
#include "app/MessageBox.h"
#include "app/ProgramState.h"
#include "app/Settings.h"
#include "app/Views.h"
#include "auxiliary/Form135.h"

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
    if (state().DbDossier == &m_database)
        state().DbDossier = nullptr;
    // A splash loaded before the main window existed has no owner to go with.
    if (aux::Form135 *splash = aux::Form135::instance(); splash && !splash->parent())
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

QString Startup::errorText(const store::StoreError &error)
{
    QString text = QStringLiteral("Errore ") + QString::number(error.number);
    if (!error.message.isEmpty() && error.message != text)
        text += QLatin1Char('\n') + error.message;
    return text;
}

bool Startup::fail(const QString &text, const QString &title)
{
    restorePointer();
    ui::message(nullptr, text, title, ui::Icon::Critical);
    // Once the main window is up the program goes on; before, the failure ends it.
    return m_mainWindow && m_mainWindow->isVisible();
}

void Startup::showMainWindow()
{
    state().DossierProtetto = m_database.isDossierProtected();
    m_mainWindow = std::make_unique<MainWindow>();
    m_mainWindow->setCompactor([this]() -> std::optional<QString> {
        const store::StoreError error = m_database.compact();
        return error.failed() ? std::optional<QString>(errorText(error)) : std::nullopt;
    });
    if (m_env.prepareMainWindow)
        m_env.prepareMainWindow(*m_mainWindow, m_database);
    else
        installViews(*m_mainWindow, m_database);
    // A splash loaded earlier becomes an owned window of the frame, so that it stays above it.
    if (aux::Form135 *splash = aux::Form135::instance(); splash && !splash->parent())
        splash->setParent(m_mainWindow.get(), splash->windowFlags());
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
            QStringLiteral("L'applicazione richiede una risoluzione minima\ndello schermo di 800 x 600 pixel"),
            QStringLiteral("Valorimetrico"), ui::Icon::Critical);
        return false;
    }

    // 2. Database present.
    setProgramFolder(m_env.programFolder);
    const QString database = programFile(QString::fromLatin1(store::kDatabaseFileName));
    if (!QFileInfo(database).isFile()) {
        restorePointer();
        ui::beep();
        ui::message(nullptr,
            QStringLiteral("Importante!, l'archivio di Quotaflusso non è stato trovato, non posso proseguire."), {},
            ui::Icon::Critical);
        return false;
    }

    // 3. Settings file: without one the splash is loaded hidden, and every setting keeps its default.
    if (!QFileInfo::exists(state().FileIni))
        aux::Form135::load()->setTag(QString());

    // 4-5. From the database open on, a failure is reported with its number.
    const store::OpenResult opening = m_database.open(database);
    if (opening.outcome == store::OpenOutcome::AccessDenied)
        return fail(QString::fromUtf8(store::kAccessDeniedMessage), QString::fromUtf8(store::kAccessDeniedTitle));
    if (!opening.ok())
        return fail(errorText(opening.error));
    state().DbDossier = &m_database;

    // 6. Splash setting.
    const Converted<bool> splash = readSplash(state().FileIni);
    if (!splash.ok())
        return fail(QStringLiteral("Errore ") + QString::number(splash.error));

    // 7. Main window, with or without the splash; the folder check runs now or when the splash closes.
    if (!splash.value) {
        showMainWindow();
        m_mainWindow->showProgressPanel(true);
        m_mainWindow->VerificaDirMS();
    } else {
        aux::Form135 *form = aux::Form135::load();
        QApplication::processEvents();
        showMainWindow();
        form->setTag(QStringLiteral("X"));
        form->show();
        form->findChild<QCheckBox *>(QStringLiteral("Check1"))->setChecked(true);
    }

    // 8. Regional settings: numbers typed and shown as text expect the decimal comma.
    if (!regionalSettingsItalian(m_env.systemLocale)) {
        restorePointer();
        ui::beep();
        ui::message(m_mainWindow.get(),
            QStringLiteral("Le impostazioni Internazionali sono da impostare alla lingua italiana. "
                           "Pannello di controllo"),
            QStringLiteral("Verifica le impostazioni Internazionali"), ui::Icon::Critical);
    }

    // 9. Pointer.
    restorePointer();
    return true;
}

} // namespace vm
