#pragma once

namespace vm {

class DataEvents;
class SettingsFile;
class Shell;
struct ProgramState;

namespace store {
class Database;
}

// Everything a window depends on, handed to it when it is made: it takes nothing from globals.
struct WindowContext {
    Shell &shell;
    store::Database &db;
    const SettingsFile &settings;
    ProgramState &state;
    DataEvents &events;
};

} // namespace vm
