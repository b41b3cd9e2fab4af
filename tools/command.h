#pragma once

#include <CLI/CLI.hpp>

#include "bad_input.h"

namespace kvtool {

/// The commands of kvtool, one function a family; each hangs its sub-commands into app.
void addValuesCommands(CLI::App &app);
void addCipherCommands(CLI::App &app);
void addChecksumCommand(CLI::App &app);
void addUrlCommand(CLI::App &app);
void addDotgainCommand(CLI::App &app);
void addProofCommand(CLI::App &app);
void addCacheCommands(CLI::App &app);
void addRegistryCommands(CLI::App &app);
void addModulesCommand(CLI::App &app);
void addColorCommands(CLI::App &app);
/// Below "color".
void addConvertCommand(CLI::App &color);
void addDifferenceCommand(CLI::App &color);
void addIlluminantCommand(CLI::App &color);
void addSpacesCommand(CLI::App &color);

}  // namespace kvtool
