#pragma once

#include <QString>

namespace vm {

// What the whole program shares while it runs. The start-up owns the one instance and hands it to
// the windows that read or change it: the password windows (protection), the folder check (archive
// flags) and the commands that depend on them.
struct ProgramState {
    QString programFolder; // where the database, the settings file and the reports live
    bool DossierProtetto = false; // a dossier password is stored and not yet answered
    bool ArchiviCompatibili = false; // the last folder check passed; false until one has run
    int AttributiMaster = 0; // attributes of the last directory file examined

    // A file of the program folder: file("MstkTestFiles.txt").
    QString file(const QString &name) const;
    // Points the state at a folder, made absolute and clean.
    void setProgramFolder(const QString &folder);
};

} // namespace vm
