#include "kvbase/color/kv_color_space.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <string_view>

#include "adt/color/space_record.h"
#include "adt/color/tables/color_spaces.h"
#include "kvbase/text/kv_string.h"
#include "kvbase/text/std_string_utils.h"

namespace {

using kv::detail::ChannelLimits;
using kv::detail::kSpaces;
using kv::detail::SpaceRecord;
using kv::detail::spaceRecord;

constexpr const char *kUnknown = "UNKNOWN";
constexpr std::size_t kNumbers = KV_CS_DIM16 + 1;
constexpr unsigned char kNoRow = 0xFF;

// The row of each number.
constexpr std::array<unsigned char, kNumbers> kRows = [] {
    std::array<unsigned char, kNumbers> rows{};
    rows.fill(kNoRow);
    for (std::size_t i = 0; i < std::size(kSpaces); ++i)
        rows[static_cast<std::size_t>(kSpaces[i].space)] = static_cast<unsigned char>(i);
    return rows;
}();
static_assert(std::is_sorted(std::begin(kSpaces), std::end(kSpaces),
                             [](const SpaceRecord &a, const SpaceRecord &b) { return a.space < b.space; }));

const ChannelLimits &limitsOf(const SpaceRecord &record, std::size_t channel) {
    return record.limits[std::min(channel, record.limits.size() - 1)];
}

// One of the two points of a space, white or black.
std::int32_t point(KV_ColorSpace space, float ChannelLimits::*which, float *out) {
    const SpaceRecord &record = spaceRecord(space);
    if (record.limits.empty()) return 1;
    for (std::size_t i = 0; i < static_cast<std::size_t>(record.channels); ++i)
        out[i] = limitsOf(record, i).*which;
    return 0;
}

// The whole steps from start to end, and whether they meet it. A step of 0 makes none, and so does a number
// of steps beyond 32 bits.
struct Steps {
    std::int64_t count = -1;
    bool isWhole = false;

    Steps(std::int64_t start, std::int64_t end, std::int64_t step) {
        if (step == 0) return;
        const std::int64_t steps = (end - start) / step;
        if (steps >= std::numeric_limits<std::int32_t>::max() ||
            steps < std::numeric_limits<std::int32_t>::min())
            return;
        count = steps;
        isWhole = start + steps * step == end;
    }
};

// Appends names with blanks between them.
class FieldList {
public:
    explicit FieldList(KV_String &text) : m_text(text) {}

    void add(const char *prefix, std::string_view end) {
        if (m_count++ > 0) m_text += ' ';
        m_text += prefix;
        m_text += '_';
        m_text += KV_String(end.data(), static_cast<std::uint32_t>(end.size()));
    }
    std::int32_t count() const { return m_count; }

private:
    KV_String &m_text;
    std::int32_t m_count = 0;
};

void addFields(KV_String &text, FieldList &fields, const SpaceRecord &record) {
    const char *prefix = record.fieldPrefix;
    if (prefix == nullptr) return;
    if (*prefix == ' ') text += *prefix++;
    std::string_view ends = record.fieldEnds;
    const bool areWords = ends.find(' ') != std::string_view::npos;
    while (!ends.empty()) {
        const std::size_t length = areWords ? std::min(ends.find(' '), ends.size()) : 1;
        fields.add(prefix, ends.substr(0, length));
        ends.remove_prefix(std::min(ends.size(), length + (areWords ? 1 : 0)));
    }
}

void addWavelengths(FieldList &fields, std::int64_t start, std::int64_t end, std::int64_t step) {
    const Steps steps(start, end, step);
    for (std::int64_t i = 0; i <= steps.count; ++i)
        fields.add("SPECTRAL", std::to_string(start + i * step));
}

// The place of a text in a list, -1 when it is not there.
template <std::size_t size>
std::int32_t placeOf(std::string_view text, const char *const (&texts)[size]) {
    const auto *const found = std::find(std::begin(texts), std::end(texts), text);
    return found == std::end(texts) ? -1 : static_cast<std::int32_t>(found - texts);
}

template <std::size_t size>
const char *textAt(std::int32_t place, const char *const (&texts)[size]) {
    return place >= 0 && place < static_cast<std::int32_t>(size) ? texts[place] : kUnknown;
}

}  // namespace

namespace kv::detail {

const SpaceRecord &spaceRecord(KV_ColorSpace space) {
    const auto number = static_cast<std::uint32_t>(space);
    const unsigned char row = number < kNumbers ? kRows[number] : kNoRow;
    return row == kNoRow ? kUnknownSpace : kSpaces[row];
}

std::span<const SpaceRecord> spaceRecords() { return kSpaces; }

}  // namespace kv::detail

const char *ColorSpaceToString(KV_ColorSpace space) {
    const char *const name = spaceRecord(space).name;
    return name == nullptr ? kUnknown : name;
}

KV_ColorSpace StringToColorSpace(const char *name) {
    if (name == nullptr) return KV_CS_UNKNOWN;
    const std::string text = StdStringUtils::ToUpperCase(name);
    for (const SpaceRecord &record : kSpaces)
        if (record.name != nullptr && text == record.name) return record.space;
    for (const kv::detail::SpaceAlias &alias : kv::detail::kSpaceAliases)
        if (text == alias.name) return alias.space;
    return KV_CS_UNKNOWN;
}

std::int32_t ColorSpaceDimension(KV_ColorSpace space, std::int32_t start, std::int32_t end,
                                 std::int32_t step) {
    if (space != KV_CS_SPEC) return spaceRecord(space).channels;
    const Steps steps(start, end, step);
    return steps.isWhole ? static_cast<std::int32_t>(steps.count + 1) : 0;
}

std::int32_t ColorSpaceExtrema(KV_ColorSpace space, float *minima, float *maxima) {
    const SpaceRecord &record = spaceRecord(space);
    minima[0] = 1;
    maxima[0] = 0;
    if (!record.limits.empty() && record.limits[0].low <= record.limits[0].high)
        for (std::size_t i = 0; i < static_cast<std::size_t>(record.channels); ++i) {
            minima[i] = limitsOf(record, i).low;
            maxima[i] = limitsOf(record, i).high;
        }
    return record.channels;
}

std::int32_t ColorSpaceWhitePoint(KV_ColorSpace space, float *out) {
    return point(space, &ChannelLimits::white, out);
}

std::int32_t ColorSpaceBlackPoint(KV_ColorSpace space, float *out) {
    return point(space, &ChannelLimits::black, out);
}

KV_ImagePolarity ColorSpacePolarity(KV_ColorSpace space) { return spaceRecord(space).polarity; }

bool CheckColorSpaceQuorin(KV_ColorSpace space) {
    const SpaceRecord &record = spaceRecord(space);
    return record.channels > 4 && std::string_view(record.letters).substr(0, 4) == "CMYK";
}

KV_ColorSpace Dimension2SpotColorSpace(std::int32_t inks) {
    return inks >= 1 && inks <= 16 ? static_cast<KV_ColorSpace>(KV_CS_CLR1 - 1 + inks) : KV_CS_UNKNOWN;
}

void DataFormatColorSpace(KV_ColorSpace space, KV_String &text, std::int32_t &count, std::int32_t start,
                          std::int32_t end, std::int32_t step) {
    if (count > 0) text += ' ';
    FieldList fields(text);
    if (space == KV_CS_SPEC)
        addWavelengths(fields, start, end, step);
    else
        addFields(text, fields, spaceRecord(space));
    count += fields.count();
}

const char *DensityTypeToString(KV_DensityStandardType type) {
    return textAt(type, kv::detail::kDensityNames);
}

// By value, as the interface has it.
KV_DensityStandardType StringToDensityType(std::string name) {  // NOLINT(performance-unnecessary-value-param)
    const std::int32_t place = placeOf(name, kv::detail::kDensityNames);
    return place < 0 ? KV_DENSITY_UNKNOWN : static_cast<KV_DensityStandardType>(place);
}

const char *MeasurementConditionToString(KV_MeasurementConditionType condition) {
    return textAt(condition, kv::detail::kMeasurementNames);
}

KV_MeasurementConditionType StringToMeasurementCondition(const char *name) {
    if (name == nullptr) return KV_MEASUREMENT_UNKNOWN;
    const std::int32_t place = placeOf(StdStringUtils::ToUpperCase(name), kv::detail::kMeasurementNames);
    return place < 0 ? KV_MEASUREMENT_UNKNOWN : static_cast<KV_MeasurementConditionType>(place);
}
