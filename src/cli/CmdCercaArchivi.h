#pragma once

#include "cli/Command.h"

namespace vm::cli {

// valorimetrico-cli cerca-archivi DIR [--compatibili]: the archive search without a window.
class ArchiveSearchCommand : public Command
{
public:
    ArchiveSearchCommand();

protected:
    int run(const Arguments &args, Io &io) override;
};

} // namespace vm::cli
