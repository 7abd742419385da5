#include "dossier/DossierWindows.h"

#include "dossier/DossierWindow.h"
#include "dossier/Rename.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "gui/WindowContext.h"
#include "store/Database.h"

namespace vm::dossier {

namespace {

// The dossier command: an empty dossier first proposes a new title (which the operations' windows
// open); otherwise, and when the proposal is declined, the overview, valued when it is made.
void apriPanoramica(const WindowContext &context)
{
    const std::optional<qint64> titoli = context.db.countTitles();
    if (!titoli) {
        ui::message(context.shell.window(),
            { store::readFailure(QString::fromUtf8(store::kWhatDossier), context.db.lastError()), {},
                ui::Icon::Critical });
        return;
    }
    if (*titoli == 0
        && ui::message(context.shell.window(),
               { QStringLiteral("Il dossier non contiene titoli, voui inserire un nuovo titolo?"),
                   QStringLiteral("Nessun titolo in dossier"), ui::Icon::Exclamation },
               QMessageBox::Yes | QMessageBox::No)
            == QMessageBox::Yes) {
        Q_EMIT context.events.newTitleRequested();
        return;
    }
    bool nuova = false;
    DossierWindow *f = DossierWindow::open(context, &nuova);
    f->mostraPannelloGrafico(false);
    f->mostraPanoramica();
    if (*titoli > 0) {
        CommandState comandi = context.shell.commandState();
        comandi.dossierCommandsShown = true;
        context.shell.setCommandState(comandi);
    }
    if (nuova || *titoli == 0)
        f->PreparaDati();
}

void apriStorico(const WindowContext &context)
{
    bool nuova = false;
    DossierWindow *f = DossierWindow::open(context, &nuova);
    if (nuova)
        f->PreparaDati(); // the load values the dossier and records the day
    else
        f->Storico();
    f->CaricaStorico();
    f->GraficoStoricoList();
    f->mostraStorico();
}

} // namespace

void registerWindows(const WindowContext &context)
{
    Shell &shell = context.shell;
    shell.setCommand(Command::DossierOverview, [context] { apriPanoramica(context); });
    shell.setCommand(Command::DossierHistory, [context] { apriStorico(context); });
    shell.setCommand(Command::RecomputeDossier, [] {
        if (DossierWindow *f = DossierWindow::instance())
            f->PreparaDati();
    });
    shell.setCommand(Command::PrintDossier, [] {
        if (DossierWindow *f = DossierWindow::instance())
            f->Stampo();
    });
    shell.setCommand(Command::RenameTitle, [context] {
        DossierWindow *f = DossierWindow::instance();
        if (!f || f->rigaSelezionata() < 0) {
            ui::message(context.shell.window(), avvisoNessunaSelezione());
            return;
        }
        f->ModificaNomeTitolo();
    });
    shell.setCommand(Command::RemoveTitle, [context] {
        DossierWindow *f = DossierWindow::instance();
        if (!f) {
            ui::message(context.shell.window(), avvisoNessunaSelezione(QString::fromLatin1(kTitoloRimozioneTitolo)));
            return;
        }
        f->EliminaTitolo();
    });
}

} // namespace vm::dossier
