// The parts of a comparison: checks, patches and statistics.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>

#include "color_check.h"

using kv::detail::kQuantities;

namespace {

/// The thresholds that a difference is within.
std::size_t met(const KV_ColorTol &quantity) {
    return static_cast<std::size_t>(
        std::count_if(quantity.tolerances.begin(), quantity.tolerances.end(),
                      [&](float threshold) { return threshold >= quantity.diff; }));
}

char letter(std::size_t behindA) {
    constexpr std::size_t kMost = std::numeric_limits<signed char>::max() - 'A';
    return static_cast<char>('A' + std::min(behindA, kMost));
}

}  // namespace

void KV_ColorCheck::Clear() { *this = KV_ColorCheck(); }

void KV_ColorCheck::ClearDiffs() {
    for (const auto quantity : kQuantities)
        (this->*quantity).diff = 0;
    grade = 'A';
}

char KV_ColorCheck::CheckTols() {
    std::size_t longest = 0;
    for (const auto quantity : kQuantities)
        longest = std::max(longest, (this->*quantity).tolerances.size());
    std::size_t fewest = longest;
    for (const auto quantity : kQuantities)
        if (!(this->*quantity).tolerances.empty()) fewest = std::min(fewest, met(this->*quantity));
    grade = longest > 0 && fewest == 0 ? 'X' : letter(longest - fewest);
    return grade;
}

KV_ColorCheck &KV_ColorCheck::operator+=(const KV_ColorCheck &other) {
    for (const auto quantity : kQuantities)
        (this->*quantity).diff += (other.*quantity).diff;
    return *this;
}

KV_ColorCheck &KV_ColorCheck::operator*=(const KV_ColorCheck &other) {
    for (const auto quantity : kQuantities) {
        float &mine = (this->*quantity).diff;
        const float others = (other.*quantity).diff;
        if (others > mine || std::isnan(others)) mine = others;
    }
    return *this;
}

void KV_ColorPatch::Clear() {
    parsed = false;
    std::fill(std::begin(stim), std::end(stim), 0.0F);
    std::fill(std::begin(ref), std::end(ref), 0.0F);
    std::fill(std::begin(meas), std::end(meas), 0.0F);
    check.Clear();
}

void KV_ColorStat::Clear() { *this = KV_ColorStat(); }

void KV_ColorStat::ClearDiffs() {
    count = gamutCount = 0;
    for (KV_ColorCheck *check : {&av, &max, &gam, &p95})
        check->ClearDiffs();
}
