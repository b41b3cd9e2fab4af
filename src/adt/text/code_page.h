#pragma once

#include <string_view>

namespace kv::detail {

/// The number behind the last "." in a locale's name, 1252 for "German_Germany.1252"; 0, the process's own
/// encoding, when there is none.
int codePageOf(std::string_view localeName);

}  // namespace kv::detail
