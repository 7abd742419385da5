#pragma once

#include "cli/Command.h"

namespace vm::cli {

// valorimetrico-cli verifica [--cartella DIR]: the MetaStock folder check without a window.
class CheckCommand : public DatabaseCommand
{
public:
    CheckCommand();

protected:
    int runWithDatabase(const Arguments &args, store::Database &db, const ProgramFolder &folder, Io &io) override;
};

} // namespace vm::cli
