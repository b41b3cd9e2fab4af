#pragma once

#include <cstdint>
#include <vector>

#include "kvbase/base/export.h"

/// Moves hues by a table over lightness, chroma and hue, and leaves lightness and chroma alone. The table
/// holds the corrected hue of each node; between nodes it is interpolated, along hue and chroma and lightness
/// in this order, on the circle. Threads may share an object that nobody assigns to. Nothing raises but for
/// the lack of memory.
class KV_EXPORT KV_HueCorrection {
public:
    /// An empty table, which moves nothing.
    KV_HueCorrection() = default;
    /// Copies nodes and table. Each list of nodes is ascending; lightness counts 0 to 100, hues are in
    /// degrees.
    ///
    /// table  the corrected hues in degrees, lightness slowest, hue fastest: that of the nodes l, c, h stands
    ///        at (l * chromaCount + c) * hueCount + h
    ///
    /// Without a node of some kind (a count below 1) the table is empty.
    KV_HueCorrection(std::int32_t lightnessCount, float *lightnessNodes, std::int32_t chromaCount,
                     float *chromaNodes, std::int32_t hueCount, float *hueNodes, float *table);

    /// Corrects count colours.
    ///
    /// in, out  L*, a*, b* interleaved; they may be one array, but must not overlap in part
    ///
    /// Below the first node of lightness or chroma the first one counts, above the last one the last. Hues
    /// are taken above 0 up to 360; one that lies below the first node of hue or above the last lies between
    /// the last and the first, and is extrapolated where these nodes begin below 0. A count below 1 does
    /// nothing.
    void ForwardEval(float *in, float *out, int count) const;

    // The nodes and the table as they were given, hues in degrees. They stay this object's until it is
    // assigned to.
    const std::vector<float> &GetLightnessNodes() const { return m_lightness; }
    const std::vector<float> &GetChromaNodes() const { return m_chroma; }
    const std::vector<float> &GetHueNodes() const { return m_hue; }
    const std::vector<float> &GetTable() const { return m_table; }

private:
    struct Cell;
    static Cell cellOf(const std::vector<float> &nodes, float value);
    float alongHue(std::size_t row, float hue) const;

    std::vector<float> m_lightness, m_chroma, m_hue, m_table;
};

/// The library's own table: lightness 10 to 90 by 10, chroma 10 to 100 by 10, hues -153 to 162 by 45. Two of
/// its rows are given, at lightness 10, chroma 10 and at lightness 50, chroma 50. The others lie on the line
/// through these: at the mean of the two distances from the first row, as parts of those of the second, and
/// kept between -190.25 and 174.35. These figures are the library's own, of no publication. Made at first
/// use, by any thread.
KV_EXPORT const KV_HueCorrection &KV_StandardHueCorrection();
