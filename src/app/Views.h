#pragma once

namespace vm {

class MainWindow;

namespace store {
class Database;
}

// Plugs the views, the folder check and the password windows into a new main window, before it is
// shown, with the database that stays open for the whole run. Each subsystem adds one line to it.
void installViews(MainWindow &mainWindow, store::Database &db);

} // namespace vm
