#pragma once

#include <QHash>
#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <optional>

class QAction;
class QComboBox;
class QLabel;
class QListWidget;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QToolBar;

namespace vm {

class ProgressBar;
class StatusPanel;

// The main window "MDIForm1": menus, five toolbars, the two title selectors, the status bar and
// the progress panel of the folder check. It decides which command opens what and in which state;
// the views themselves plug in through hooks, and a command stays disabled until its hook is set.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    // What a command hands over to a view or procedure built elsewhere.
    enum class Hook {
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
    };
    // Compacts the database; returns an error text to show, or nothing when it worked.
    using Compactor = std::function<std::optional<QString>()>;

    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    // The one main window while it exists (windows that belong to it reach it here).
    static MainWindow *instance();

    void setHook(Hook hook, std::function<void()> handler);
    bool hasHook(Hook hook) const;
    void setCompactor(Compactor compactor);

    // A view becomes a child window of the frame.
    QMdiSubWindow *addView(QWidget *view);
    QMdiArea *mdiArea() const { return m_mdiArea; }

    // "Valorimetrico :: [name]" in the caption and the name in the status bar; empty: the bare name.
    void setCurrentView(const QString &name);

    // Panel 4 image and the status bar's tool tip; also sets DossierProtetto.
    void setDossierProtected(bool isProtected);

    // The folder check's outcome for the data menus and the quote-based toolbar buttons.
    void setArchivesReady(bool ready);

    // Fills a title selector while its tag says "X", so that the change handlers do not react.
    void fillTitles(QComboBox *combo, const QStringList &titles);
    QComboBox *quoteTitles() const { return m_combo1; } // Combo1
    QComboBox *dossierTitles() const { return m_combo2; } // Combo2

    // Progress panel "Picture1" with the label "Label1", the bar "PicStatus" and the list "ListView1".
    QWidget *progressPanel() const { return m_progressPanel; }
    QLabel *progressLabel() const { return m_label1; }
    ProgressBar *progressBar() const { return m_progressBar; }
    QListWidget *folderList() const { return m_listView1; }
    void showProgressPanel(bool visible);
    void setProgressLabel(const QString &text, bool warning = false);

    // Status bar panels 1 to 5 ("Panel1".."Panel5").
    StatusPanel *statusPanel(int number) const;
    // Panel 1: "Pronto" with the ready image, or another text without it.
    void setStatusText(const QString &text, bool ready = false);

    QToolBar *toolbar(int number) const; // "Toolbar1".."Toolbar5"
    QAction *button(int toolbar, const QString &key) const;
    // The dossier commands shown and enabled once the overview is open.
    void showDossierCommands();

    // Pop-up menus used by the dossier list and the history chart.
    QMenu *titleMenu() const { return m_titleMenu; } // m_cambia_nome
    QMenu *colourMenu() const { return m_colourMenu; } // m_colori
    QMenu *historyTypeMenu() const { return m_historyTypeMenu; } // m_s_tipo
    QMenu *historyColourMenu() const { return m_historyColourMenu; } // m_s_colori

    // Procedures other windows call.
    void LeggiINI() { }
    void Centra();
    void VaiDossierTitoli();
    void VaiMS();
    void VerificaDirMS();

Q_SIGNALS:
    void quoteChartSettingsChanged(); // chart type, grid or colour of the quote board
    void historyChartSettingsChanged(); // type or colour of the history chart
    void dossierTitleChosen(int index); // Combo2 changed by the user
    void quoteTitleChosen(int index); // Combo1 changed by the user

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QAction *addCommand(QWidget *owner, const QString &name, const QString &caption, const char *icon = nullptr);
    QComboBox *addTitleSelector(QToolBar *bar, const QString &name, std::function<void(int)> onUserChoice);
    void needs(QAction *action, Hook hook, bool needsArchives = false);
    void updateCommands();
    void buildMenus();
    void buildToolbars();
    void buildStatusBar();
    void buildProgressPanel();
    void buildPopupMenus();
    void run(Hook hook);
    void showView(Hook hook, const QString &viewName);
    void chooseColour(int index);
    void setHistoryChartType(int item);
    void popUpColours(const QString &chart, const QString &element);
    void stepTitle(QComboBox *combo, int step);
    void compactDatabase();
    void startCalculator();
    void startCompanion();
    void openReadme();
    void showAbout();

    struct Requirement {
        Hook hook;
        bool needsArchives;
    };
    QHash<Hook, std::function<void()>> m_hooks;
    QHash<QAction *, Requirement> m_requirements;
    QHash<QAction *, bool> m_hiddenByLoad;
    Compactor m_compactor;
    bool m_archivesReady = false; // no folder check has passed yet
    QString m_colourChart; // "S": the history chart; anything else: the quote board's
    QString m_colourElement; // "D" data, "S" background, "A" axes and text

    QMdiArea *m_mdiArea = nullptr;
    QWidget *m_progressPanel = nullptr;
    QLabel *m_label1 = nullptr;
    ProgressBar *m_progressBar = nullptr;
    QListWidget *m_listView1 = nullptr;
    QComboBox *m_combo1 = nullptr;
    QComboBox *m_combo2 = nullptr;
    QList<StatusPanel *> m_panels;
    QList<QToolBar *> m_toolbars;
    QMenu *m_titleMenu = nullptr;
    QMenu *m_colourMenu = nullptr;
    QMenu *m_historyTypeMenu = nullptr;
    QMenu *m_historyColourMenu = nullptr;
    QAction *m_compactAction = nullptr;
};

// One panel of the status bar: an optional image before a text; reports clicks.
class StatusPanel : public QWidget
{
    Q_OBJECT
public:
    explicit StatusPanel(int widthPx, QWidget *parent = nullptr);
    void setText(const QString &text);
    QString text() const;
    void setIcon(const QIcon &icon, const QString &iconName);
    QString iconName() const { return m_iconName; } // the theme name of the image shown, "" for none

Q_SIGNALS:
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    QLabel *m_image;
    QLabel *m_text;
    QString m_iconName;
};

} // namespace vm
