#pragma once

// Transforms of colours to colours, a block of kLanes at a time.

#include "adt/color/lanes/lanes.h"

namespace kv::detail {
namespace {

/// The colours that a block became, and those that are left to the plain form.
struct BlockResult {
    Colors colors;
    Ints leftOver;
};

template <class Transform, class Conditions>
KV_INLINE void overBlock(const Conditions &conditions, const float *in, float *out) {
    const Colors colors = loadColors(in);
    const BlockResult result = Transform::of(colors, conditions);
    if (!any(result.leftOver)) {
        storeColors(result.colors, out);
        return;
    }
    float before[3 * kLanes];  // in may be out
    __builtin_memcpy(before, in, sizeof before);
    storeColors(result.colors, out);
    for (std::size_t i = 0; i < kLanes; ++i)
        if (result.leftOver[i] != 0) Transform::plain(conditions, before + 3 * i, out + 3 * i);
}

template <class Transform, class Conditions>
void overColors(const Conditions &conditions, const float *in, float *out, std::size_t count) {
    for (; count >= kLanes; count -= kLanes, in += 3 * kLanes, out += 3 * kLanes)
        overBlock<Transform>(conditions, in, out);
    if (count == 0) return;
    // The last block is filled up with black.
    float last[3 * kLanes] = {};
    __builtin_memcpy(last, in, 3 * count * sizeof(float));
    overBlock<Transform>(conditions, last, last);
    __builtin_memcpy(out, last, 3 * count * sizeof(float));
}

}  // namespace
}  // namespace kv::detail
