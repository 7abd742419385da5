#pragma once

#include "cli/Command.h"

namespace vm::cli {

// valorimetrico-cli demo CARTELLA
class DemoCommand : public Command
{
public:
    DemoCommand();

protected:
    int run(const Arguments &args, Io &io) override;
};

} // namespace vm::cli
