#pragma once

// What a window may ask of the main window, without knowing it: the main window implements Shell and
// every window gets it through its WindowContext.

#include <QString>
#include <QStringList>

#include <functional>

class QMdiSubWindow;
class QMenu;
class QWidget;

namespace vm {

class ProgressBar;

// The commands of the menus and toolbars that a subsystem's windows serve. A command stays disabled
// until a subsystem sets its handler.
enum class Command {
    DossierOverview, // shows and fills the dossier overview (or proposes a new title)
    DossierHistory, // the overview in history mode
    QuoteBoard, // the quote board, chart panel hidden
    QuoteBoardDossier, // the quote board restricted to the dossier's titles
    QuoteGroups, // quote board lists: personal groups
    QuotePersonal, //                    personal titles
    QuoteAll, //                    all titles of an archive
    ArchiveFolders, // the archive folders window
    ArchiveSearch, // the archive search window
    NewTitle, // the new-title purchase window
    FeeSettings, // the fee settings window
    RecomputeDossier, // recomputes the overview and records the total
    PrintDossier, // prints the dossier (after the confirmation)
    RenameTitle, // renames the selected title (the overview checks the selection)
    TitleSituation, // situation of the selected title
    RemoveTitle, // removal of the selected title, with its confirmation
    PasswordWindow, // sets or changes the dossier password
    PasswordPrompt, // asks the password, then opens the dossier itself
    FolderCheck, // the MetaStock folder check
    Tools, // the tools window
    Help, // the help viewer
    About, // the about box
    Calculator, // the desktop's calculator
    Companion, // the companion download program
    Readme, // the information document
    SiteValorimetrico, // the program's web page
    SiteQuotaflusso, // the companion program's home page
    Email, // a mail to the maker
};

// The two title selectors of the toolbars.
enum class TitleSelector {
    Quotes, // "Combo1": the quote board's title
    Dossier, // "Combo2": the dossier's title
};

// The pop-up menus the main window keeps for the views.
enum class PopupMenu {
    Title, // "m_cambia_nome": situation, rename, remove of the dossier's title
    Colours, // "m_colori"
    HistoryType, // "m_s_tipo"
    HistoryColours, // "m_s_colori"
};

// The one state from which the main window derives which dossier commands are enabled or shown (see
// MainWindow::applyCommandState); a command is enabled only when its handler is set, too.
struct CommandState {
    bool archivesReady = false; // every configured folder passed the last check: the quote commands
    bool dossierCommandsShown = false; // the overview is open: its chart, day and fee keys show
    bool renameEnabled = false; // "anagrafica" (button 5 of the dossier toolbar)
    bool refreshEnabled = false; // "aggiorna" (button 6)
    bool printEnabled = false; // "print" (button 7)

    bool operator==(const CommandState &) const = default;
};

class Shell
{
public:
    virtual ~Shell() = default;

    // The window that owns the others, so that they stay above it.
    virtual QWidget *window() = 0;

    virtual void setCommand(Command command, std::function<void()> handler) = 0;
    virtual bool hasCommand(Command command) const = 0;
    virtual CommandState commandState() const = 0;
    virtual void setCommandState(const CommandState &state) = 0;

    // "Valorimetrico :: [name]" in the caption and the name in the status bar; empty: the bare name.
    virtual void setCurrentView(const QString &name) = 0;
    // A view becomes a child window of the frame.
    virtual QMdiSubWindow *addView(QWidget *view) = 0;

    // Status bar panel 1: "Pronto" with the ready image, or another text without it.
    virtual void setStatusText(const QString &text, bool ready = false) = 0;
    // The shared progress bar of the long loops.
    virtual ProgressBar *progressBar() = 0;
    // Panel 4's image and the status bar's tool tip.
    virtual void setDossierProtected(bool isProtected) = 0;

    // Fills a selector, or selects one of its lines, without its change handler reacting (tag "X").
    virtual void fillTitles(TitleSelector selector, const QStringList &titles) = 0;
    virtual void selectTitle(TitleSelector selector, int index) = 0;
    virtual int currentTitle(TitleSelector selector) const = 0;

    virtual QMenu *popupMenu(PopupMenu menu) = 0;

    // "VaiDossierTitoli": opens the dossier, through the password prompt while one is owed.
    virtual void openDossier() = 0;
};

} // namespace vm
