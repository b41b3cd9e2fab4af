#include "kvbase/evaluation/kv_color_comparison.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "color_check.h"
#include "kvbase/color/kv_gamut_color.h"

using kv::detail::kQuantities;
using kv::detail::roundTo;

namespace {

constexpr std::string_view kAllPatches = "CtrlStrip";

std::int32_t channelsOf(KV_ColorSpace space) { return ColorSpaceDimension(space, 0, 0, 1); }
bool isKeptWhole(KV_ColorSpace space) { return channelsOf(space) <= KV_ColorPatch::kChannels; }
std::size_t keptChannels(KV_ColorSpace space) {
    return static_cast<std::size_t>(std::min(channelsOf(space), KV_ColorPatch::kChannels));
}

/// Whether a group's limits and statistics are for the patch.
bool covers(const KV_ColorStat &stat, const KV_ColorPatch &patch) {
    return stat.name == kAllPatches || stat.name == patch.group;
}

/// Gives one quantity of a patch the limits of its group.
void tighten(KV_ColorTol &patch, const KV_ColorTol &group) {
    if (group.tolerances.empty()) return;
    if (patch.tolerances.empty()) patch.tolerances = group.tolerances;
    if (patch.tolerances.size() > group.tolerances.size()) return;
    for (std::size_t i = 0; i < patch.tolerances.size(); ++i)
        patch.tolerances[i] = std::min(patch.tolerances[i], group.tolerances[i]);
    patch.step = group.step;
}

/// A number of a colour, rounded to one decimal.
float rounded(float value) { return std::floor(value * 10 + 0.5F) / 10; }

/// The six differences of the patch's reference and measurement.
void setDiffs(KV_ColorPatch &patch, const KV_ColorDifferenceFormula &formula) {
    const auto chroma = [](const float *lab) { return std::sqrt(lab[1] * lab[1] + lab[2] * lab[2]); };
    const float dL = patch.ref[0] - patch.meas[0], da = patch.ref[1] - patch.meas[1],
                db = patch.ref[2] - patch.meas[2];
    const float dAB = std::sqrt(da * da + db * db), dChroma = chroma(patch.ref) - chroma(patch.meas);
    const float dH = std::sqrt(std::fabs(dAB * dAB - dChroma * dChroma));
    const float diffs[] = {ColorDifference(patch.ref, patch.meas, formula),
                           dAB,
                           dH,
                           std::fabs(dL),
                           std::fabs(da),
                           std::fabs(db)};
    for (std::size_t i = 0; i < std::size(kQuantities); ++i) {
        KV_ColorTol &quantity = patch.check.*kQuantities[i];
        quantity.diff = roundTo(diffs[i], quantity.step);
    }
}

void countIn(KV_ColorStat &stat, const KV_ColorPatch &patch) {
    stat.av += patch.check;
    stat.max *= patch.check;
    ++stat.count;
}

void countInGamut(KV_ColorStat &stat, const KV_ColorPatch &patch) {
    stat.gam += patch.check;
    ++stat.gamutCount;
}

/// Turns sums into means and grades these.
char gradeMeans(KV_ColorCheck &sums, std::uint32_t count) {
    for (const auto quantity : kQuantities) {
        KV_ColorTol &tol = sums.*quantity;
        tol.diff = roundTo(tol.diff / static_cast<float>(count), tol.step);
    }
    return sums.CheckTols();
}

/// The 95th percentile of the first count of a sorted list, or of all when it has fewer.
float percentile95(const std::vector<float> &sorted, std::size_t count) {
    count = std::min(count, sorted.size());
    if (count == 0) return 0;
    const float q = static_cast<float>(count - 1) * 0.95F;
    const auto i = static_cast<std::size_t>(q), j = std::min(i + 1, count - 1);
    const float f = q - static_cast<float>(i);
    return (1 - f) * sorted[i] + f * sorted[j];
}

/// Values of a patch as the key of an index: equal as floats are, so that -0 is 0 and a not-a-number equals
/// nothing.
using Values = std::array<float, KV_ColorPatch::kChannels>;
struct HashOfValues {
    std::size_t operator()(const Values &values) const {
        std::size_t hash = 0;
        for (const float value : values)
            hash = (hash ^ std::hash<float>()(value)) * 0x9E3779B97F4A7C15U;
        return hash ^ hash >> 32;
    }
};

/// Where the first patch of each colour stands in the list.
class PatchIndex {
public:
    explicit PatchIndex(std::size_t channels) : m_channels(channels) {}
    /// The place of these values, which from now on is `next` if they had none.
    std::size_t placeOr(const float *stim, std::size_t next) {
        Values values{};
        std::copy_n(stim, m_channels, values.begin());
        return m_places.try_emplace(values, next).first->second;
    }

private:
    std::size_t m_channels;
    std::unordered_map<Values, std::size_t, HashOfValues> m_places;
};

/// What the inks of a patch make it: bit 0 cyan, 1 magenta, 2 yellow, 3 black.
struct PatchClass {
    unsigned inks;
    const char *name;
    const char *group;
};
constexpr PatchClass kSolids[] = {
    {0, "Substrate", "Substrate"},  {1, "Solid Cyan", "Solid"},   {2, "Solid Magenta", "Solid"},
    {3, "Overprint Blue", "Solid"}, {4, "Solid Yellow", "Solid"}, {5, "Overprint Green", "Solid"},
    {6, "Overprint Red", "Solid"},  {8, "Solid Black", "Black"},
};
constexpr PatchClass kTints[] = {
    {7, "Tertiary Color", "Tertiary Color"},  {8, "Black Tint", "Black"},
    {11, "Tertiary Color", "Tertiary Color"}, {13, "Tertiary Color", "Tertiary Color"},
    {14, "Tertiary Color", "Tertiary Color"}, {15, "Tertiary Color", "Tertiary Color"},
};
constexpr PatchClass kOtherTint = {0, "Mid Tone", "Mid Tone"};

/// Null for solids that have no name.
const PatchClass *classOf(const float *stim, std::size_t channels) {
    unsigned inks = 0, solid = 0;
    for (std::size_t i = 0; i < channels; ++i) {
        if (stim[i] > 0.01F) inks |= 1U << i;
        if (stim[i] > 99.99F) solid |= 1U << i;
    }
    const auto hasInks = [&](const PatchClass &known) { return known.inks == inks; };
    if (inks == solid) {
        const auto *const found = std::find_if(std::begin(kSolids), std::end(kSolids), hasInks);
        return found == std::end(kSolids) ? nullptr : found;
    }
    const auto *const found = std::find_if(std::begin(kTints), std::end(kTints), hasInks);
    return found == std::end(kTints) ? &kOtherTint : found;
}

template <class List>
auto findNamed(List &list, const std::string &name) {
    return std::find_if(list.begin(), list.end(), [&](const auto &entry) { return entry.name == name; });
}
template <class List, class Entry>
bool getNamed(const List &list, const std::string &name, Entry &out) {
    const auto found = findNamed(list, name);
    if (found == list.end()) return false;
    out = *found;
    return true;
}
template <class List, class Entry>
bool setNamed(List &list, const std::string &name, const Entry &in) {
    const auto found = findNamed(list, name);
    if (found == list.end()) return false;
    *found = in;
    return true;
}

}  // namespace

// Names go by value in the interface. NOLINTBEGIN(performance-unnecessary-value-param)

void KV_ColorComparison::Clear() {
    patches.clear();
    stats.clear();
    grade = 'A';
}

void KV_ColorComparison::ClearDiffs() {
    for (KV_ColorStat &stat : stats)
        stat.ClearDiffs();
    for (KV_ColorPatch &patch : patches)
        patch.check.ClearDiffs();
    blackpoint.ClearDiffs();
    whitepoint.ClearDiffs();
    grade = 'A';
}

void KV_ColorComparison::AddPatch(std::string name, std::string group, float *stim, float *ref, float *meas,
                                  std::vector<float> &dEList) {
    add(FindPatch(stim), std::move(name), std::move(group), stim, ref, meas, dEList);
}

void KV_ColorComparison::AddPatches(std::uint32_t count, const std::string *names, const std::string *groups,
                                    const float *stim, const float *ref, const float *meas,
                                    std::vector<float> &dEList) {
    const bool searched = isKeptWhole(stispace);
    const auto channels = static_cast<std::size_t>(channelsOf(stispace));
    PatchIndex index(channels);
    for (std::size_t i = 0; searched && i < patches.size(); ++i)
        index.placeOr(patches[i].stim, i);
    for (std::size_t i = 0; i < count; ++i) {
        const float *const values = stim + i * channels;
        const std::size_t place = searched ? index.placeOr(values, patches.size()) : patches.size();
        add(place < patches.size() ? &patches[place] : nullptr, names[i], groups[i], values, ref + 3 * i,
            meas + 3 * i, dEList);
    }
}

void KV_ColorComparison::AddSpotColorPatch(std::string name, std::string group, float *stim, float *ref,
                                           float *meas, bool checkTols, std::vector<float> &dEList) {
    KV_ColorPatch patch;
    patch.name = std::move(name);
    patch.group = std::move(group);
    patch.stim[0] = stim[0];
    evaluate(patch, ref, meas);
    keepWorse(checkTols ? patch.check.CheckTols() : 'A');
    dEList.push_back(patch.check.dE.diff);
    for (KV_ColorStat &stat : stats)
        if (stat.name == patch.group) countIn(stat, patch);
    patches.push_back(std::move(patch));
}

void KV_ColorComparison::CalcStats(std::vector<float> &dEList) {
    // Not-a-numbers have no place in an order of their own.
    std::sort(dEList.begin(), dEList.end(),
              [](float a, float b) { return a < b || (std::isnan(b) && !std::isnan(a)); });
    for (KV_ColorStat &stat : stats) {
        if (stat.count == 0) continue;
        keepWorse(gradeMeans(stat.av, stat.count));
        if (stat.gamutCount > 0) keepWorse(gradeMeans(stat.gam, stat.gamutCount));
        stat.p95.dE.diff = roundTo(percentile95(dEList, stat.count), stat.p95.dE.step);
        keepWorse(stat.p95.CheckTols());
        keepWorse(gradeMeans(stat.max, 1));
    }
}

void KV_ColorComparison::Classify(KV_ColorPatch *patch) {
    if (patch->group != "Unknown" || !isKeptWhole(stispace)) return;
    const PatchClass *const found = classOf(patch->stim, static_cast<std::size_t>(channelsOf(stispace)));
    if (!found) return;
    patch->name = found->name;
    patch->group = found->group;
}

void KV_ColorComparison::SetTols(KV_ColorPatch *patch) {
    for (const KV_ColorStat &stat : stats)
        if (covers(stat, *patch))
            for (const auto quantity : kQuantities)
                tighten(patch->check.*quantity, stat.max.*quantity);
}

KV_ColorPatch *KV_ColorComparison::FindPatch(float *stim) {
    if (!isKeptWhole(stispace)) return nullptr;
    const auto channels = static_cast<std::size_t>(channelsOf(stispace));
    const auto found = std::find_if(patches.begin(), patches.end(), [&](const KV_ColorPatch &patch) {
        return std::equal(stim, stim + channels, patch.stim);
    });
    return found == patches.end() ? nullptr : &*found;
}

bool KV_ColorComparison::GetPatch(std::string name, KV_ColorPatch &out) {
    return getNamed(patches, name, out);
}
bool KV_ColorComparison::GetStat(std::string name, KV_ColorStat &out) { return getNamed(stats, name, out); }
bool KV_ColorComparison::SetPatch(std::string name, KV_ColorPatch &in) { return setNamed(patches, name, in); }
bool KV_ColorComparison::SetStat(std::string name, KV_ColorStat &in) { return setNamed(stats, name, in); }

// NOLINTEND(performance-unnecessary-value-param)

/// Adds a measurement to a patch of the list, or to a new one when there is none. The colours may lie in the
/// list.
void KV_ColorComparison::add(KV_ColorPatch *found, std::string name, std::string group, const float *stim,
                             const float *ref, const float *meas, std::vector<float> &dEList) {
    KV_ColorPatch added;
    if (!found) {
        added.name = std::move(name);
        added.group = std::move(group);
        std::copy_n(stim, keptChannels(stispace), added.stim);
        Classify(&added);
    }
    KV_ColorPatch &patch = found ? *found : added;
    evaluate(patch, ref, meas);
    keepWorse(patch.check.CheckTols());
    dEList.push_back(patch.check.dE.diff);
    const bool onHull = IsGamutColor(patch.stim);
    for (KV_ColorStat &stat : stats) {
        if (!covers(stat, patch)) continue;
        countIn(stat, patch);
        if (onHull) countInGamut(stat, patch);
    }
    if (!found) patches.push_back(std::move(added));
}

/// Gives a patch its limits, colours and differences.
void KV_ColorComparison::evaluate(KV_ColorPatch &patch, const float *ref, const float *meas) {
    SetTols(&patch);
    const float colors[] = {ref[0], ref[1], ref[2], meas[0], meas[1], meas[2]};  // maybe the patch's own
    std::transform(colors, colors + 3, patch.ref, rounded);
    std::transform(colors + 3, colors + 6, patch.meas, rounded);
    setDiffs(patch, formula);
}

void KV_ColorComparison::keepWorse(char found) { grade = std::max(grade, found); }
