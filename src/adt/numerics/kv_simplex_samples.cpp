// Inverse interpolation in simplices of colours, and what chooses and interpolates samples.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <vector>

#include "adt/numerics/inverse3.h"
#include "kvbase/numerics/kv_simplex.h"
#include "kvbase/numerics/kv_vectors.h"

namespace {

constexpr double kSmallestArea = 1e-5;
constexpr float kWidestGap = 1e6F;

// first + sum over the other corners of w * (corner - first), for D components.
template <int N, int D>
void interpolate(const float *corners, const float *w, float *out) {
    for (int d = 0; d < D; ++d) {
        float sum = corners[d];
        for (int i = 0; i < N; ++i)
            sum += w[i] * (corners[(i + 1) * D + d] - corners[d]);
        out[d] = sum;
    }
}

// Weights of N corners beside the first one, kept to the limit.
template <int N>
void drawInto(float limit, float *w) {
    float sum = w[0];
    for (int i = 1; i < N; ++i)
        sum += w[i];
    if (!(sum > limit)) return;
    const float k = limit / sum;
    for (int i = 0; i < N; ++i)
        w[i] *= k;
}

// Whether a point lies in a tetrahedron: on the side of each face on which the fourth vertex lies.
bool isInside(const float *q, const float *const *vertices) {
    for (int opposite = 0; opposite < 4; ++opposite) {
        const float *face[3];
        for (int i = 0, next = 0; i < 4; ++i)
            if (i != opposite) face[next++] = vertices[i];
        float e1[3], e2[3];
        for (int d = 0; d < 3; ++d) {
            e1[d] = face[1][d] - face[0][d];
            e2[d] = face[2][d] - face[0][d];
        }
        const float normal[3] = {e1[1] * e2[2] - e1[2] * e2[1], e1[2] * e2[0] - e1[0] * e2[2],
                                 e1[0] * e2[1] - e1[1] * e2[0]};
        const auto along = [&](const float *p) {
            return normal[0] * p[0] + normal[1] * p[1] + normal[2] * p[2];
        };
        const float distance = -along(face[0]);
        const bool isFlipped = along(vertices[opposite]) + distance > 0;
        const float outside = along(q) + distance;
        if ((isFlipped ? -outside : outside) > 0) return false;
    }
    return true;
}

}  // namespace

bool TriangleInvert(const float *corners, const float *values, const float *target, float *mapped,
                    float *result, float limit) {
    const float A1 = corners[4] - corners[1], A2 = corners[5] - corners[2];
    const float B1 = corners[7] - corners[1], B2 = corners[8] - corners[2];
    const float d = B2 * A1 - A2 * B1;
    if (!(std::fabs(static_cast<double>(d)) > kSmallestArea)) return false;
    const float f1 = target[1] - corners[1], f2 = target[2] - corners[2];
    float w[2] = {(B2 / d) * f1 - (B1 / d) * f2, (A1 / d) * f2 - (A2 / d) * f1};
    if (!(w[0] >= 0 && w[1] >= 0)) return false;
    drawInto<2>(limit, w);
    interpolate<2, 3>(corners, w, mapped);
    interpolate<2, 4>(values, w, result);
    return true;
}

bool TetrahedronInvert(const float *corners, const float *values, const float *target, float *mapped,
                       float *result, float limit) {
    float edges[9], inverse[9];
    for (int d = 0; d < 3; ++d)
        for (int i = 0; i < 3; ++i)
            edges[d * 3 + i] = corners[(i + 1) * 3 + d] - corners[d];
    if (!kv::detail::invert3(edges, inverse)) return false;
    const float f[3] = {target[0] - corners[0], target[1] - corners[1], target[2] - corners[2]};
    float w[3];
    for (int i = 0; i < 3; ++i)
        w[i] = inverse[i * 3] * f[0] + inverse[i * 3 + 1] * f[1] + inverse[i * 3 + 2] * f[2];
    if (!(w[0] >= 0 && w[1] >= 0 && w[2] >= 0)) return false;
    drawInto<3>(limit, w);
    interpolate<3, 4>(values, w, result);
    interpolate<3, 3>(corners, w, mapped);
    return true;
}

std::int32_t CheckPointInTetrahedron(const float *points, std::int32_t *index) {
    for (std::int32_t i = 0; i < 5; ++i) {
        const float *vertices[4];
        for (int other = 0, next = 0; other < 5; ++other)
            if (other != i) vertices[next++] = points + std::ptrdiff_t{other} * 3;
        if (!isInside(points + std::ptrdiff_t{i} * 3, vertices)) continue;
        *index = i;
        return 1;
    }
    *index = 5;
    return 0;
}

void ChooseBestSamples(std::int32_t count, const float *in, std::int32_t wanted, float *out) {
    if (wanted < 3 && wanted != count) {
        out[0] = 0;
        out[1] = 100;
        return;
    }
    std::vector<float> samples(in, in + std::max(count, 0));
    std::size_t narrowest = 0;
    while (samples.size() > static_cast<std::size_t>(std::max(wanted, 0))) {
        float smallest = kWidestGap;
        for (std::size_t i = 1; i + 1 < samples.size(); ++i) {
            const float gap = samples[i + 1] - samples[i - 1];
            if (gap < smallest) {
                smallest = gap;
                narrowest = i;
            }
        }
        narrowest = std::min(narrowest, samples.size() - 2);  // that of an earlier round; the last one stays
        samples.erase(samples.begin() + static_cast<std::ptrdiff_t>(narrowest));
    }
    std::copy(samples.begin(), samples.end(), out);
}

double Vol3(const double *a, const double *b, const double *c) {
    double cross[3];
    Cross3v(b, c, cross);
    return Dot3v(a, cross);
}

double VolT(const double *a, const double *b, const double *c, const double *d) {
    double rows[3][3];
    for (int i = 0; i < 3; ++i) {
        rows[0][i] = b[i] - a[i];
        rows[1][i] = c[i] - a[i];
        rows[2][i] = d[i] - a[i];
    }
    return Vol3(rows[0], rows[1], rows[2]);
}

bool InSector(double start, double end, double angle) {
    return end >= start ? start <= angle && angle <= end : angle >= start || angle <= end;
}

// By value in the interface. NOLINTNEXTLINE(performance-unnecessary-value-param)
void InterpolateLab(float x, KV_LabTable table, float *result) {
    if (table.empty()) return;
    if (std::isnan(x)) {
        std::fill_n(result, 3, x);
        return;
    }
    // The first entry at or above x, without the tolerance of the keys.
    const auto hi =
        std::find_if(table.begin(), table.end(), [x](const auto &entry) { return entry.first >= x; });
    if (hi == table.begin()) {
        std::copy_n(hi->second.begin(), 3, result);
        return;
    }
    const auto lo = std::prev(hi);
    if (hi == table.end()) {
        std::copy_n(lo->second.begin(), 3, result);
        return;
    }
    const float t = (x - lo->first) / (hi->first - lo->first);
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = (1 - t) * lo->second[i] + t * hi->second[i];
}
