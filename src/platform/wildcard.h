#pragma once

#include <string_view>

#include "kvbase/base/types.h"

namespace kv::detail {

using UnitView = std::basic_string_view<KV_WChar>;

/// Whether a name holds "*" or "?".
bool hasWildcards(UnitView name);

/// Whether a name matches a pattern: "*" stands for any units, none included, "?" for exactly one, and all
/// others for themselves, case included. A ".*" at the end of the pattern also matches nothing, so that "*.*"
/// matches all names, those without a dot too.
bool matchesWildcards(UnitView pattern, UnitView name);

}  // namespace kv::detail
