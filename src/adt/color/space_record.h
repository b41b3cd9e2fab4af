#pragma once

#include <cstdint>
#include <span>

#include "kvbase/color/kv_color_space.h"

namespace kv::detail {

/// Where a channel lies. low above high is a range that nobody knows, which white and black may still have.
struct ChannelLimits {
    float low, high;
    float white, black;
};

/// What the catalogue knows about a space.
struct SpaceRecord {
    KV_ColorSpace space;
    const char *name;       ///< null for a space without a text name
    std::int32_t channels;  ///< of KV_CS_SPEC, those of a grid of one sample
    KV_ImagePolarity polarity;
    /// One a channel, the last one for all channels behind it, too; empty when nothing is known.
    std::span<const ChannelLimits> limits;
    /// The letters of the first channels; of an ink space, C, M, Y, K for the process inks, then O, G, B, R,
    /// V for orange, green, blue, red and violet.
    const char *letters;
    /// The names of the data fields: prefix, underscore and end. Ends are single characters, or words between
    /// blanks when there is a blank. A blank before the prefix stands in front of the first field alone. A
    /// null prefix: no fields.
    const char *fieldPrefix;
    const char *fieldEnds;
};

/// The record of a space; of an unknown one, the record that gives every neutral result.
const SpaceRecord &spaceRecord(KV_ColorSpace space);

/// All records, in the order of their numbers.
std::span<const SpaceRecord> spaceRecords();

}  // namespace kv::detail
