#include "app/FolderCheckRunner.h"

#include "app/MainWindow.h"
#include "core/ProgramFolder.h"
#include "core/ProgramState.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/ProgressBar.h"
#include "gui/WindowContext.h"
#include "store/Database.h"

#include <QAction>
#include <QCoreApplication>
#include <QDateTime>
#include <QLabel>
#include <QListWidget>

#include <memory>

namespace vm {

FolderCheckRunner::FolderCheckRunner(MainWindow &mainWindow, const WindowContext &context)
    : m_mainWindow(mainWindow)
    , m_context(context)
{ }

std::optional<VerificaArchivi> FolderCheckRunner::run()
{
    if (m_running)
        return std::nullopt;
    const std::optional<QStringList> read = m_context.db.folders();
    if (!read) {
        ui::message(&m_mainWindow,
            { store::readFailure(QString::fromUtf8(store::kWhatFolders), m_context.db.lastError()), {},
                ui::Icon::Critical });
        return std::nullopt;
    }
    const QStringList &folders = *read;
    if (folders.isEmpty()) {
        ui::message(&m_mainWindow,
            { messaggioNessunaCartella(), QString::fromUtf8(kTitoloNessunaCartella), ui::Icon::Critical });
        return verificaCartelle(folders);
    }

    m_running = true;
    m_mainWindow.setCursor(Qt::WaitCursor);
    QListWidget *list = m_mainWindow.folderList();
    ProgressBar *bar = m_mainWindow.progressBar();
    list->clear();
    bar->clear();
    m_mainWindow.setProgressLabel(QStringLiteral("Verifica archivi in corso..."));
    m_mainWindow.showProgressPanel(true);

    const VerificaArchivi check = verificaCartelle(folders, [&](int folder, int count, const EsitoCartella &outcome) {
        if (outcome.stato == EsitoCartella::Stato::InUso)
            ui::beep();
        list->addItem(outcome.testo);
        list->scrollToBottom();
        bar->setProgress(folder, count);
        QCoreApplication::processEvents();
    });

    const QString report = m_context.state.file(QString::fromLatin1(kCheckReportFileName));
    QString reason;
    const bool reportWritten = scriviReport(report, check, QDateTime::currentDateTime(), &reason);

    showOutcome(check);
    ProgramState &state = m_context.state;
    state.ArchiviCompatibili = check.archiviCompatibili(state.ArchiviCompatibili);
    state.AttributiMaster = check.attributiMaster;
    CommandState commands = m_mainWindow.commandState();
    commands.archivesReady = check.pronti();
    if (!state.ArchiviCompatibili)
        commands.refreshEnabled = false;
    m_mainWindow.setCommandState(commands);
    Q_EMIT m_context.events.archivesChecked(check.pronti());
    m_mainWindow.unsetCursor();
    m_running = false;

    if (!reportWritten)
        ui::message(&m_mainWindow,
            { QStringLiteral("Impossibile scrivere il report ") + report + QStringLiteral(": ") + reason, {},
                ui::Icon::Exclamation });
    if (check.titoliNonValidi) {
        ui::message(&m_mainWindow,
            { messaggioTitoliNonValidi(), QString::fromUtf8(kTitoloTitoliNonValidi), ui::Icon::Critical });
        if (reportWritten)
            ui::openDocument(report);
    }
    return check;
}

void FolderCheckRunner::showOutcome(const VerificaArchivi &check)
{
    const bool folderProblems = check.errori > 0 || check.nonPronti;
    const QString label = check.testoEtichetta();
    m_mainWindow.setProgressLabel(label, folderProblems || check.titoliNonValidi);
    // The panel goes away when all is well: the status bar keeps the last word.
    if (StatusPanel *panel = m_mainWindow.statusPanel(2))
        panel->setText(label);
    m_mainWindow.setStatusText(check.testoBarraStato(), !folderProblems);
    if (check.nonPronti) {
        m_mainWindow.folderList()->addItem(QString::fromUtf8(kArchiviNonCompatibili));
        m_mainWindow.folderList()->scrollToBottom();
        m_mainWindow.showProgressPanel(true);
    } else {
        m_mainWindow.showProgressPanel(false);
    }
}

void registerFolderCheck(MainWindow &mainWindow, const WindowContext &context)
{
    auto runner = std::make_shared<FolderCheckRunner>(mainWindow, context);
    mainWindow.setHook(MainWindow::Hook::FolderCheck, [runner] { runner->run(); });
}

} // namespace vm
