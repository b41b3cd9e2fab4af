#pragma once

#include <kvbase/kvbase.h>

#include <string>

namespace kvtool {

/// A registry as a manager reads it, with the entries that it has by default. No trace is begun and no folder
/// made.
struct RegistryFile {
    /// Throws BadInput when the file can't be read, is no dictionary in the text form, has references that
    /// can't be expanded, a standard section that is none, or more than kDeepestTree levels.
    explicit RegistryFile(const std::string &file);

    KV_UValDict raw{0}, expanded{0};
};

}  // namespace kvtool
