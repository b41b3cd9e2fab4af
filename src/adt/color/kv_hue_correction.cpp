#include "kvbase/color/kv_hue_correction.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "kvbase/color/kv_colorimetry.h"

namespace {

constexpr float kDegrees = 57.29578F, kRadians = 0.017453292F;

float withinTurn(float degrees) { return degrees >= 360 ? degrees - 360 : degrees; }

// Between two hues, the shorter way round.
float circularMean(float first, float second, float fraction) {
    if (!(std::fabs(first - second) > 180)) return (1 - fraction) * first + fraction * second;
    (first < second ? first : second) += 360;
    return withinTurn((1 - fraction) * first + fraction * second);
}

std::vector<float> nodes(float *values, std::int32_t count) { return {values, values + std::max(count, 0)}; }

}  // namespace

/// Between which nodes a value lies, and where.
struct KV_HueCorrection::Cell {
    std::size_t lower = 0;
    std::size_t upper = 0;
    float fraction = 0;
};

KV_HueCorrection::KV_HueCorrection(std::int32_t lightnessCount, float *lightnessNodes,
                                   std::int32_t chromaCount, float *chromaNodes, std::int32_t hueCount,
                                   float *hueNodes, float *table) {
    if (lightnessCount < 1 || chromaCount < 1 || hueCount < 1) return;
    m_lightness = nodes(lightnessNodes, lightnessCount);
    m_chroma = nodes(chromaNodes, chromaCount);
    m_hue = nodes(hueNodes, hueCount);
    m_table.assign(table, table + m_lightness.size() * m_chroma.size() * m_hue.size());
}

KV_HueCorrection::Cell KV_HueCorrection::cellOf(const std::vector<float> &nodes, float value) {
    const std::size_t last = nodes.size() - 1;
    if (!(value > nodes.front()) || last == 0) return {0, 0, 0};
    if (value > nodes.back()) return {last, last, 1};
    std::size_t upper = 1;
    while (upper < last && nodes[upper] < value)
        ++upper;
    return {upper - 1, upper, (value - nodes[upper - 1]) / (nodes[upper] - nodes[upper - 1])};
}

// The corrected hue in one row of the table.
float KV_HueCorrection::alongHue(std::size_t row, float hue) const {
    const float *const values = m_table.data() + row * m_hue.size();
    const std::size_t last = m_hue.size() - 1;
    if (last == 0) return values[0];
    std::size_t upper = 0, lower = last;
    if (!(hue < m_hue.front() || hue > m_hue.back())) {
        for (upper = 1; upper < last && m_hue[upper] < hue;)
            ++upper;
        lower = upper - 1;
    }
    const float from = m_hue[lower];
    const float to = m_hue[upper] + (from > m_hue[upper] ? 360.0F : 0.0F);
    const float fraction = (hue - from) / (to - from);
    const float first = values[lower];
    const float second = values[upper] + (first > values[upper] ? 360.0F : 0.0F);
    return withinTurn((1 - fraction) * first + fraction * second);
}

void KV_HueCorrection::ForwardEval(float *in, float *out, int count) const {
    if (count < 1) return;
    const auto size = static_cast<std::size_t>(count) * 3;
    if (m_table.empty()) {
        if (in != out) std::copy_n(in, size, out);
        return;
    }
    for (std::size_t i = 0; i < size; i += 3) {
        float chroma = 0, hue = 0;
        ab2chRad(in[i + 1], in[i + 2], chroma, hue);
        hue *= kDegrees;
        const Cell light = cellOf(m_lightness, in[i]), colour = cellOf(m_chroma, chroma);
        const auto atLightness = [&](std::size_t l) {
            const std::size_t row = l * m_chroma.size();
            return circularMean(alongHue(row + colour.lower, hue), alongHue(row + colour.upper, hue),
                                colour.fraction);
        };
        const float corrected =
            circularMean(atLightness(light.lower), atLightness(light.upper), light.fraction) * kRadians;
        out[i] = in[i];
        out[i + 1] = std::cos(corrected) * chroma;
        out[i + 2] = std::sin(corrected) * chroma;
    }
}

namespace {

KV_HueCorrection makeStandard() {
    float lightness[9], chroma[10];
    float hue[] = {-153, -108, -63, -18, 27, 72, 117, 162};
    // At lightness 10 and chroma 10, and at lightness 50 and chroma 50.
    constexpr float kFirst[] = {-181.49F, -129.97F, -80.61F, -37.55F, -10.23F, 32.09F, 86.81F, 142.68F};
    constexpr float kSecond[] = {-184.79F, -141.19F, -83.56F, -34.91F, 10.42F, 54.19F, 90.77F, 128.97F};
    constexpr float kLeast = -190.25F, kMost = 174.35F;
    std::vector<float> table;
    for (int l = 0; l < 9; ++l) {
        for (int c = 0; c < 10; ++c) {
            lightness[l] = static_cast<float>(10 + 10 * l);
            chroma[c] = static_cast<float>(10 + 10 * c);
            const float place = static_cast<float>(l + c) / 8;  // 0 in the first row, 1 in the second
            for (std::size_t h = 0; h < std::size(hue); ++h)
                table.push_back(std::clamp((1 - place) * kFirst[h] + place * kSecond[h], kLeast, kMost));
        }
    }
    return {9, lightness, 10, chroma, 8, hue, table.data()};
}

}  // namespace

const KV_HueCorrection &KV_StandardHueCorrection() {
    static const KV_HueCorrection standard = makeStandard();
    return standard;
}
