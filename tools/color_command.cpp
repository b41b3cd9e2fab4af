#include <CLI/CLI.hpp>

#include "command.h"

namespace kvtool {

void addColorCommands(CLI::App &app) {
    CLI::App &color = *app.add_subcommand(
        "color", "Converts and compares colours, and tells about their spaces and lights");
    color.require_subcommand(1);
    addConvertCommand(color);
    addDifferenceCommand(color);
    addIlluminantCommand(color);
    addSpacesCommand(color);
}

}  // namespace kvtool
