#pragma once

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>

namespace kvtool {

/// Input that a command can't go on with; its text names the file and what is wrong with it. Exit code 1.
class BadInput : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    /// "FILE: what"
    BadInput(const std::string &file, const std::string &what) : std::runtime_error(file + ": " + what) {}
};

/// The commands of kvtool, one function a family; each hangs its sub-commands into app.
void addValuesCommands(CLI::App &app);
void addCipherCommands(CLI::App &app);
void addChecksumCommand(CLI::App &app);
void addUrlCommand(CLI::App &app);
void addCacheCommands(CLI::App &app);
void addColorCommands(CLI::App &app);
/// Below "color".
void addConvertCommand(CLI::App &color);
void addDifferenceCommand(CLI::App &color);
void addIlluminantCommand(CLI::App &color);
void addSpacesCommand(CLI::App &color);

}  // namespace kvtool
