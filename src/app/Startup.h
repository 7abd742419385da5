#pragma once

#include <QLocale>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

#include "store/Database.h"

namespace vm {

class MainWindow;

// What the start-up reads from the world, so that tests can set each part of it.
struct StartupEnvironment {
    int screenWidth = 1024; // logical pixels
    QString programFolder; // holds the database, the settings file and the reports
    QLocale systemLocale = QLocale::system();
    // Plugs the views, the folder check and the password windows into the new main window,
    // before it is shown; installViews() when not set.
    std::function<void(MainWindow &, store::Database &)> prepareMainWindow;
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

    // The individual rules, for the steps and their tests.
    static bool screenWidthAccepted(int widthPx); // every width but 640 and 480
    static bool regionalSettingsItalian(const QLocale &locale); // 0.789 written with a comma

private:
    bool fail(const QString &text, const QString &title = {});
    void showMainWindow();
    static QString errorText(const store::StoreError &error);

    StartupEnvironment m_env;
    store::Database m_database; // DbDossier
    std::unique_ptr<MainWindow> m_mainWindow;
};

} // namespace vm
