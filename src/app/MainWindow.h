#pragma once

#include "gui/Shell.h"

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

class DataEvents;
class SettingsFile;
class StatusPanel;
struct ProgramState;

// The main window "MDIForm1": menus, five toolbars, the two title selectors, the status bar and the
// progress panel of the folder check. It decides which command opens what and in which state; the
// subsystems' windows plug in through its commands (Shell::setCommand), and a command stays disabled
// until its handler is set.
class MainWindow : public QMainWindow, public Shell
{
    Q_OBJECT
public:
    using Hook = Command;
    // Compacts the database; returns an error text to show, or nothing when it worked.
    using Compactor = std::function<std::optional<QString>()>;

    MainWindow(ProgramState &state, const SettingsFile &settings, DataEvents &events, QWidget *parent = nullptr);
    ~MainWindow() override;

    // Shell
    QWidget *window() override { return this; }
    void setCommand(Command command, std::function<void()> handler) override;
    bool hasCommand(Command command) const override;
    CommandState commandState() const override { return m_commandState; }
    void setCommandState(const CommandState &state) override;
    void setCurrentView(const QString &name) override;
    QMdiSubWindow *addView(QWidget *view) override;
    void setStatusText(const QString &text, bool ready = false) override;
    ProgressBar *progressBar() override { return m_progressBar; }
    void setDossierProtected(bool isProtected) override;
    void fillTitles(TitleSelector selector, const QStringList &titles) override;
    void selectTitle(TitleSelector selector, int index) override;
    int currentTitle(TitleSelector selector) const override;
    QMenu *popupMenu(PopupMenu menu) override;
    void openDossier() override { VaiDossierTitoli(); }

    void setHook(Hook hook, std::function<void()> handler) { setCommand(hook, std::move(handler)); }
    bool hasHook(Hook hook) const { return hasCommand(hook); }
    void setCompactor(Compactor compactor);

    QMdiArea *mdiArea() const { return m_mdiArea; }

    // The folder check's outcome for the data menus and the quote-based toolbar buttons.
    void setArchivesReady(bool ready);

    QComboBox *quoteTitles() const { return m_combo1; } // Combo1
    QComboBox *dossierTitles() const { return m_combo2; } // Combo2

    // Progress panel "Picture1" with the label "Label1", the bar "PicStatus" and the list "ListView1".
    QWidget *progressPanel() const { return m_progressPanel; }
    QLabel *progressLabel() const { return m_label1; }
    QListWidget *folderList() const { return m_listView1; }
    void showProgressPanel(bool visible);
    void setProgressLabel(const QString &text, bool warning = false);

    // Status bar panels 1 to 5 ("Panel1".."Panel5").
    StatusPanel *statusPanel(int number) const;

    QToolBar *toolbar(int number) const; // "Toolbar1".."Toolbar5"
    QAction *button(int toolbar, const QString &key) const;

    // Procedures of the main window.
    void Centra();
    void VaiDossierTitoli();
    void VaiMS();
    void VerificaDirMS();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QAction *addCommand(QWidget *owner, const QString &name, const QString &caption, const char *icon = nullptr);
    QComboBox *addTitleSelector(QToolBar *bar, const QString &name, std::function<void(int)> onUserChoice);
    void needs(QAction *action, Hook hook, bool needsArchives = false);
    void applyCommandState();
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

    struct Requirement {
        Hook hook;
        bool needsArchives;
    };
    ProgramState &m_state;
    const SettingsFile &m_settings;
    DataEvents &m_events;
    QHash<Hook, std::function<void()>> m_hooks;
    QHash<QAction *, Requirement> m_requirements;
    Compactor m_compactor;
    CommandState m_commandState;
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
    QString m_fullText;
    QString m_iconName;
};

} // namespace vm
