#include "operations/OperationsWindows.h"

#include "core/ProgramInfo.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "gui/WindowContext.h"
#include "operations/OperationWindows.h"
#include "operations/TitleSituationWindow.h"
#include "store/Database.h"

namespace vm::operations {

void TitoloSelezionato(const WindowContext &context, const QString &simbolo)
{
    if (!context.db.findTitleBySymbol(simbolo.trimmed())) {
        Message m = messaggioTitoloScomparso(Finestra::Acquisto);
        m.title = QString::fromLatin1(kProgramName);
        ui::message(context.shell.window(), m);
        return;
    }
    TitleSituationWindow::open(context, simbolo);
}

void openNewTitle(const WindowContext &context)
{
    PurchaseWindow::open(context);
}

void registerWindows(const WindowContext &context)
{
    context.shell.setCommand(Command::NewTitle, [context] { openNewTitle(context); });
    context.shell.setCommand(Command::FeeSettings, [context] { FeeSettingsWindow::open(context); });
    // The title chosen in the dossier's selector, which lists the titles in the dossier's order.
    context.shell.setCommand(Command::TitleSituation, [context] {
        const int indice = context.shell.currentTitle(TitleSelector::Dossier);
        const std::optional<QList<store::DossierRow>> righe = context.db.dossierRows();
        if (!righe || indice < 0 || indice >= righe->size()) {
            ui::message(context.shell.window(), { QStringLiteral("Dati non disponibili"), {}, ui::Icon::Information });
            return;
        }
        TitoloSelezionato(context, righe->at(indice).titolo);
    });
    // The dossier window asks for these without knowing who answers; the main window scopes the connections.
    QObject::connect(&context.events, &DataEvents::titleSituationRequested, context.shell.window(),
        [context](const QString &simbolo) { TitoloSelezionato(context, simbolo); });
    QObject::connect(
        &context.events, &DataEvents::newTitleRequested, context.shell.window(), [context] { openNewTitle(context); });
}

} // namespace vm::operations
