#include "platform/wildcard.h"

#include <cstddef>

namespace kv::detail {
namespace {

constexpr KV_WChar kMany = KV_W('*');
constexpr KV_WChar kOne = KV_W('?');

// On a mismatch the last "*" takes one unit more; earlier ones need not move, so the time is at most the
// product of the lengths.
bool matches(UnitView pattern, UnitView name) {
    std::size_t p = 0, n = 0, afterStar = UnitView::npos, starEnd = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == kMany) {
            afterStar = ++p;
            starEnd = n;
        } else if (p < pattern.size() && (pattern[p] == kOne || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (afterStar != UnitView::npos) {
            p = afterStar;
            n = ++starEnd;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(kMany, p) == UnitView::npos;
}

}  // namespace

bool hasWildcards(UnitView name) {
    return name.find(kMany) != UnitView::npos || name.find(kOne) != UnitView::npos;
}

bool matchesWildcards(UnitView pattern, UnitView name) {
    if (matches(pattern, name)) return true;
    const UnitView anyExtension = KV_W(".*");
    const bool open = pattern.size() > anyExtension.size() &&
                      pattern.substr(pattern.size() - anyExtension.size()) == anyExtension;
    return open && matches(pattern.substr(0, pattern.size() - anyExtension.size()), name);
}

}  // namespace kv::detail
