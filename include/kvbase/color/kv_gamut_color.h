#pragma once

// Colours on the hull of a press's gamut, and the record of its dynamic range. Nothing here has state or
// raises; any thread.

#include "kvbase/base/export.h"

/// Whether a colour lies on the hull of the CMYK cube. Below 0.0001 a value counts as zero, above 99.9999 as
/// full. Without black: when at least one of cyan, magenta and yellow is zero. With full black: when at least
/// one of them is full. With any other black, and with a not-a-number for it, never.
/// cmyk  C, M, Y, K in percent; four floats, only read
KV_EXPORT bool IsGamutColor(float *cmyk);

/// 102 floats that callers keep about the range of a press; nothing in the library reads them. All are 0 at
/// construction but the elements 21 and 82 in the order of the fields, counted from 0, which are 100.
class KV_DynamicRange {
public:
    struct Block {
        float first = 0;
        float second = 0;
        float before[19] = {};
        float middle = 0;
        float after[19] = {};
    };
    Block front{0, 0, {}, 100, {}};  ///< elements 0 to 40
    Block back;                      ///< 41 to 81
    float rest[19] = {100};          ///< 82 to 100
    float last = 0;                  ///< 101
};
static_assert(sizeof(KV_DynamicRange) == 102 * sizeof(float), "nothing but 102 floats");
