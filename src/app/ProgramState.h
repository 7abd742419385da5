#pragma once

#include <QString>

namespace vm::store {
class Database;
}

namespace vm {

// What the whole program shares while it runs, set up by the start-up sequence before the first
// window opens. Only the start-up, the password windows (protection) and the folder check
// (archive flags) change it.
struct ProgramState {
    QString programFolder; // where the database, the settings file and the reports live
    QString FileIni; // the settings file, programFolder + "/valorimetrico.ini"
    bool DossierProtetto = false; // a dossier password is stored and not yet answered
    bool ArchiviCompatibili = false; // the last folder check passed; false until one has run
    int AttributiMaster = 0; // attributes of the last directory file examined
    store::Database *DbDossier = nullptr; // the database, open for the whole run
};

ProgramState &state();

// A file of the program folder: programFile("MstkTestFiles.txt").
QString programFile(const QString &name);

// Points the program at a folder: programFolder and FileIni. Everything else keeps its value.
void setProgramFolder(const QString &folder);

} // namespace vm
