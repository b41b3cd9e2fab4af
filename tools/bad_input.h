#pragma once

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

/// A result that is worse than what the user wants to let pass. Everything was done. Exit code 3.
class NotPassed : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace kvtool
