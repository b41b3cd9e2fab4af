#include <CLI/CLI.hpp>

#include "command.h"

namespace kvtool {

void addColorCommands(CLI::App &app) {
    CLI::App &color =
        *app.add_subcommand("color", "Tells about colours and the lights that they are seen under");
    color.require_subcommand(1);
    addIlluminantCommand(color);
}

}  // namespace kvtool
