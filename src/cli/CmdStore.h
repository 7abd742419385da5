#pragma once

#include "cli/Command.h"

namespace vm::cli {

// valorimetrico-cli crea-archivio CARTELLA: an empty database in the folder, never over an existing file.
class CreateDatabaseCommand : public Command
{
public:
    CreateDatabaseCommand();

protected:
    int run(const Arguments &args, Io &io) override;
};

} // namespace vm::cli
