#pragma once

#include <QLocale>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

#include "core/ProgramState.h"
#include "core/Settings.h"
#include "gui/DataEvents.h"
#include "store/Database.h"

namespace vm {

class MainWindow;
struct WindowContext;

// Shown at start-up when the database or its folder cannot be written.
inline constexpr auto kReadOnlyMessage
    = "L'archivio dati è in sola lettura: il programma mostra i dati ma nessuna modifica potrà essere salvata.";

// What the start-up reads from the world, so that tests can set each part of it.
struct StartupEnvironment {
    int screenWidth = 1024; // logical pixels
    QString programFolder; // holds the database, the settings file and the reports
    QLocale systemLocale = QLocale::system();
    // Plugs the windows into the new main window, before it is shown; registerWindows() when not set.
    std::function<void(MainWindow &, const WindowContext &)> prepareMainWindow;
};

// The start-up sequence "Main": checks the screen and the database, opens it, shows the splash
// (or not) and the main window, starts the folder check and warns about regional settings.
class Startup
{
public:
    explicit Startup(StartupEnvironment environment);
    ~Startup();

    // Runs every step in order. True when the program goes on (a window is open), false when it
    // has ended with its message.
    bool Main();

    MainWindow *mainWindow() const { return m_mainWindow.get(); }
    ProgramState &state() { return m_state; }
    store::Database &database() { return m_database; }

    // The individual rules, for the steps and their tests.
    static bool screenWidthAccepted(int widthPx); // every width but 640 and 480
    static bool regionalSettingsItalian(const QLocale &locale); // 0.789 written with a comma

private:
    bool fail(const QString &text, const QString &title = {});
    void showMainWindow();
    StartupEnvironment m_env;
    ProgramState m_state;
    SettingsFile m_settings; // FileIni
    DataEvents m_events;
    store::Database m_database; // DbDossier
    std::unique_ptr<MainWindow> m_mainWindow;
};

} // namespace vm
