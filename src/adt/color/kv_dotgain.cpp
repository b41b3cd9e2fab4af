#include "kvbase/color/kv_dotgain.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <vector>

#include "adt/numerics/decomposed.h"
#include "kvbase/numerics/kv_math.h"

using kv::detail::Decomposed;

namespace {

constexpr int kSamples = 101;  // of the areas in which a curve has to rise
constexpr float kNoGain = 0.00001F;
constexpr double kLargestError = 1e10;

// c0 a^4 + c1 a^3 + c2 a^2 + c3 a
using Curve = std::array<double, 4>;

// An area and its powers.
struct Area {
    explicit Area(double area) : a(area), a2(area * area), a3(a2 * area), a4(a2 * a2) {}
    double a, a2, a3, a4;
};

double valueAt(const Curve &c, const Area &at) {
    return c[0] * at.a4 + c[1] * at.a3 + c[2] * at.a2 + c[3] * at.a;
}

double slopeAt(const Curve &c, const Area &at) {
    return 4 * c[0] * at.a3 + 3 * c[1] * at.a2 + 2 * c[2] * at.a + c[3];
}

double cubicAt(const double *x, const Area &at) { return x[0] * at.a3 + x[1] * at.a2 + x[2] * at.a; }

struct Peak {
    float tone = 0;
    float gain = 0;
};

// The measured tints, and their gains in each channel.
struct Tints {
    Tints(const float *tones, const float *triples, std::int32_t size, std::int32_t channel)
        : count(static_cast<std::size_t>(size)), main(static_cast<std::size_t>(channel)), xyz(triples) {
        areas.reserve(count);
        for (std::size_t i = 0; i < count; ++i)
            areas.emplace_back(tones[i]);
        const float *const solid = xyz + (count - 1) * 3;
        for (std::size_t k = 0; k < 3; ++k)
            for (std::size_t i = 0; i < this->count; ++i)
                gains[k].push_back((xyz[k] - xyz[i * 3 + k]) / (xyz[k] - solid[k]) - tones[i]);
    }

    // The tint of the largest gain, or of the smallest where gains are losses altogether.
    std::size_t peakIndex() const {
        const std::vector<float> &gain = gains[main];
        float sum = 0;
        for (const float g : gain)
            sum += g;
        std::size_t peak = 1;
        if (sum > 0) {
            for (std::size_t i = 2; i + 1 < count; ++i)
                if (gain[i] > gain[peak]) peak = i;
        } else {
            for (std::size_t i = 2; i + 2 < count; ++i)
                if (gain[i] < gain[peak]) peak = i;
        }
        return peak;
    }

    // The vertex of the parabola through a tint and its neighbours.
    Peak vertexAt(std::size_t m, const float *tones) const {
        const float *const gain = gains[main].data() + m;
        const float d0 = tones[m - 1] - tones[m], d1 = tones[m + 1] - tones[m];
        const float e0 = gain[-1] - gain[0], e1 = gain[1] - gain[0];
        const float w = d1 * d0 * d1 - d1 * d0 * d0;
        const float square = (e1 * d0 - e0 * d1) / w;
        const float linear = (e0 * d1 * d1 - e1 * d0 * d0) / w;
        if (square == 0) return {tones[m], gain[0]};
        const float tone = tones[m] - linear / (2 * square);
        const float dx = tone - tones[m];
        return {tone, gain[0] + square * dx * dx + linear * dx};
    }

    std::size_t count, main;
    const float *xyz;
    std::vector<Area> areas;
    std::vector<float> gains[3];
};

// What all curves with a peak at one area have in common: the cubic through it is the solution of one small
// system whatever the gain, and the quartics that keep its conditions differ by one direction.
class PeakShape {
public:
    PeakShape(double tone, const Tints &tints) : PeakShape(Area(tone), tints) {}

    // The curve of that gain at the peak which is nearest to the tints among those that rise; all 0 if none
    // does.
    Curve curveOf(double gain, const Tints &tints) {
        const double conditions[3] = {0, gain, 0};
        double x[3];
        m_cubic.solve(conditions, x);
        const auto [low, high] = risingRange(x);
        if (!(high > low)) return {};
        double t = 0;
        for (std::size_t i = 1; i + 1 < tints.count; ++i)
            t += (tints.gains[tints.main][i] - cubicAt(x, tints.areas[i])) * m_bends[i];
        t = m_bendSquares > 0 ? t / m_bendSquares : 0;
        t = t < low ? low : std::min(high, t);
        return {t * m_bend[0], t * m_bend[1] + x[0], t * m_bend[2] + x[1], t * m_bend[3] + x[2]};
    }

private:
    PeakShape(const Area &peak, const Tints &tints)
        : m_cubic(cubicRows(peak).data(), 3, 3), m_bend(bendOf(peak)) {
        m_bends.reserve(tints.count);
        for (const Area &area : tints.areas)
            m_bends.push_back(valueAt(m_bend, area));
        for (std::size_t i = 1; i + 1 < tints.count; ++i)
            m_bendSquares += m_bends[i] * m_bends[i];
        sortSamples();
    }

    static std::array<double, 9> cubicRows(const Area &peak) {
        return {1, 1, 1, peak.a3, peak.a2, peak.a, 3 * peak.a2, 2 * peak.a, 1};
    }

    // The quartic that vanishes at 0, at 1 and at the peak, where it is level, too.
    static Curve bendOf(const Area &peak) {
        const double rows[12] = {1,       1,      1,           1,           peak.a4,    peak.a3,
                                 peak.a2, peak.a, 4 * peak.a3, 3 * peak.a2, 2 * peak.a, 1};
        double *basis = nullptr;
        std::int32_t columns = 0;
        Null_Space(rows, 3, 4, &basis, &columns);
        const std::unique_ptr<double[]> owned(basis);
        Curve bend{};
        for (std::size_t row = 0; row < bend.size() && columns > 0; ++row)
            bend[row] = basis[row * static_cast<std::size_t>(columns)];
        return bend;
    }

    // The samples at which more of the bend makes the curve steeper come first, then those where it makes it
    // flatter.
    void sortSamples() {
        std::size_t flatter = kSamples;
        for (int k = 0; k < kSamples; ++k) {
            const Area area(k / 100.0);
            const double slope = slopeAt(m_bend, area);
            if (!(slope > 0 || slope < 0)) continue;
            const std::size_t place = slope > 0 ? m_steeper++ : --flatter;
            m_slopes[place] = slope;
            m_area[place] = area.a;
            m_area2[place] = area.a2;
        }
        m_flatter = flatter;
    }

    struct Range {
        double low = -100;
        double high = 100;
    };

    // How much of the bend may be added to the cubic x so that the effective area rises at all samples.
    Range risingRange(const double *x) const {
        double bounds[kSamples];
        for (std::size_t k = 0; k < kSamples; ++k)
            bounds[k] = -(1 + 3 * x[0] * m_area2[k] + 2 * x[1] * m_area[k] + x[2]) / m_slopes[k];
        Range range;
        for (std::size_t k = 0; k < m_steeper; ++k)
            range.low = std::max(range.low, bounds[k]);
        for (std::size_t k = m_flatter; k < kSamples; ++k)
            range.high = std::min(range.high, bounds[k]);
        return range;
    }

    Decomposed m_cubic;
    Curve m_bend;
    std::vector<double> m_bends;  // at the tints
    double m_bendSquares = 0;
    std::size_t m_steeper = 0, m_flatter = 0;
    // Those between the two kinds are not looked at.
    double m_slopes[kSamples] = {}, m_area[kSamples] = {}, m_area2[kSamples] = {};
};

// The gains of a curve at the tints, and the sum of their squares.
struct Fitted {
    Fitted(const Curve &curve, const Tints &tints) {
        for (const Area &area : tints.areas) {
            gains.push_back(static_cast<float>(valueAt(curve, area)));
            squares += gains.back() * gains.back();
        }
    }
    std::vector<float> gains;
    float squares = 0;
};

// A scale below 0, brought so near to 0 that the effective area rises.
float risingScale(float scale, const Curve &curve) {
    for (int k = 0; k < kSamples; ++k) {
        const auto slope = static_cast<float>(slopeAt(curve, Area(k / 100.0)));
        if (scale * slope < -1) scale = -1 / slope;
    }
    return scale;
}

float scaleOf(std::size_t k, const Curve &curve, const Fitted &fitted, const Tints &tints, float limit) {
    if (!(fitted.squares > 0)) return 0;
    float scale = 1;
    if (k != tints.main) {
        float products = 0;
        for (std::size_t i = 0; i < tints.count; ++i)
            products += fitted.gains[i] * tints.gains[k][i];
        scale = products / fitted.squares;
    }
    if (scale < 0) return risingScale(scale, curve);
    return scale > limit ? limit : scale;
}

// The root mean square error in the main channel.
double errorOf(const Curve &curve, const Tints &tints, float limit) {
    double gains[64];
    std::vector<double> many(tints.count > std::size(gains) ? tints.count : 0);
    double *const gain = many.empty() ? gains : many.data();
    float squares = 0;
    for (std::size_t i = 0; i < tints.count; ++i) {
        gain[i] = valueAt(curve, tints.areas[i]);
        const auto single = static_cast<float>(gain[i]);
        squares += single * single;
    }
    const float scale = !(squares > 0) ? 0 : 1 > limit ? limit : 1;
    const float *const channel = tints.xyz + tints.main;
    const double paper = channel[0], solid = channel[(tints.count - 1) * 3];
    double sum = 0;
    for (std::size_t i = 0; i < tints.count; ++i) {
        const double effective = scale * gain[i] + tints.areas[i].a;
        const double error = (1 - effective) * paper + effective * solid - channel[i * 3];
        sum += error * error;
    }
    return std::sqrt(sum / static_cast<double>(tints.count));
}

}  // namespace

void FitDotgainFromXYZ(float *tones, float *xyz, std::int32_t count, std::int32_t channel,
                       double *coefficients, float *scales, float *limits) {
    std::fill_n(coefficients, 4, 0.0);
    std::fill_n(scales, 3, 1.0F);
    if (count <= 2) return;
    const Tints tints(tones, xyz, count, channel);
    const std::size_t m = tints.peakIndex();
    if (std::fabs(tints.gains[tints.main][m]) < kNoGain) return;
    const Peak peak = tints.vertexAt(m, tones);
    const float limit = limits[1];
    double least = kLargestError;
    Curve best{};
    for (int p = -100; p < 100; ++p) {
        const float tone = static_cast<float>(p) / 1000 + peak.tone;
        if (!(tone > 0 && tone < 100)) continue;
        PeakShape shape(tone, tints);
        for (int q = -100; q < 100; ++q) {
            const Curve curve = shape.curveOf(static_cast<float>(q) / 2000 + peak.gain, tints);
            const double error = errorOf(curve, tints, limit);
            if (!(error < least)) continue;
            least = error;
            best = curve;
        }
    }
    if (!(least < kLargestError)) return;  // no peak could be tried
    std::copy(best.begin(), best.end(), coefficients);
    const Fitted fitted(best, tints);
    for (std::size_t k = 0; k < 3; ++k)
        scales[k] = scaleOf(k, best, fitted, tints, limit);
}
