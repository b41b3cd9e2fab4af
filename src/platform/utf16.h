#pragma once

// UTF-8 and UTF-16, both ways. Nothing fails: what is invalid on one side becomes U+FFFD on the other.

#include <string>
#include <string_view>

#include "kvbase/base/types.h"

namespace kv::detail {

/// Appends UTF-8 text as UTF-16. Each longest beginning of a sequence that cannot go on becomes one U+FFFD
/// (Unicode 15.0, 3.9, "U+FFFD Substitution of Maximal Subparts"); encoded surrogates and overlong forms are
/// invalid. True when anything was replaced.
bool appendUnits(std::string_view utf8, KV_WString &out);

/// Appends UTF-16 as UTF-8, pairs of surrogates as one sequence. An unpaired surrogate becomes U+FFFD. True
/// when anything was replaced.
bool appendUtf8(std::basic_string_view<KV_WChar> units, std::string &out);

}  // namespace kv::detail
