// Mapping points and weights onto simplices.

#include "kvbase/numerics/kv_simplex.h"

#include <algorithm>

#include "adt/numerics/cross3.h"
#include "kvbase/numerics/kv_vectors.h"

using kv::detail::cross3;

namespace {

// The indices of the positive weights among so many.
struct Positive {
    int count = 0;
    int index[5] = {};
};

template <int N>
Positive findPositive(const double *w) {
    Positive found;
    for (int i = 0; i < N; ++i)
        if (w[i] > 0) found.index[found.count++] = i;
    return found;
}

// The same; the other weights become 0.
template <int N>
Positive clip(double *w) {
    for (int i = 0; i < N; ++i)
        if (!(w[i] > 0)) w[i] = 0;
    return findPositive<N>(w);
}

template <int D, class Number>
double dot(const Number *a, const Number *b) {
    double sum = a[0] * b[0];
    for (int i = 1; i < D; ++i)
        sum += a[i] * b[i];
    return sum;
}

template <int D>
void difference(const double *a, const double *b, double *out) {
    for (int i = 0; i < D; ++i)
        out[i] = a[i] - b[i];
}

// The vertices at count indices, one after the other.
template <int D>
void gather(const double *simplex, const Positive &at, double *vertices) {
    for (int i = 0; i < at.count; ++i)
        std::copy_n(simplex + at.index[i] * D, D, vertices + i * D);
}

// Weights of the vertices at these indices; all others are 0.
template <int N>
void scatter(const double *weights, const Positive &at, double *w) {
    std::fill_n(w, N, 0.0);
    for (int i = 0; i < at.count; ++i)
        w[at.index[i]] = weights[i];
}

// The only positive weight becomes 1.
template <int D>
void takeVertex(const double *simplex, int index, double *q, double *w) {
    w[index] = 1;
    std::copy_n(simplex + index * D, D, q);
}

// The sum of N weighted vertices.
template <int N, int D>
void weighted(const double *w, const double *simplex, double *point) {
    for (int d = 0; d < D; ++d) {
        point[d] = w[0] * simplex[d];
        for (int i = 1; i < N; ++i)
            point[d] += w[i] * simplex[i * D + d];
    }
}

template <int D>
void mapOnLine(const double *p, const double *s, double *q, double *w) {
    const double *const a = s, *const b = s + D;
    double toPoint[D], e[D];
    difference<D>(p, a, toPoint);
    difference<D>(b, a, e);
    w[1] = dot<D>(toPoint, e) / dot<D>(e, e);
    w[0] = 1 - w[1];
    const Positive positive = clip<2>(w);
    if (positive.count == 1) takeVertex<D>(s, positive.index[0], q, w);
    if (positive.count == 2)
        for (int d = 0; d < D; ++d)
            q[d] = w[0] * a[d] + w[1] * b[d];
}

template <int D>
void mapOnLine(const float *p, const double *s, double *q, double *w) {
    double point[D];
    std::copy_n(p, D, point);
    mapOnLine<D>(point, s, q, w);
}

// The edge between two positive weights: p goes onto it.
template <int N, int D, class Number>
void takeEdge(const Number *p, const double *simplex, const Positive &edge, double *q, double *w) {
    double ends[2 * D], weights[2];
    gather<D>(simplex, edge, ends);
    mapOnLine<D>(p, ends, q, weights);
    scatter<N>(weights, edge, w);
}

// The point of two positive weights goes onto its edge.
template <int N, int D>
void projectOnEdge(const double *point, const double *simplex, const Positive &edge, double *w) {
    const double *const a = simplex + edge.index[0] * D, *const b = simplex + edge.index[1] * D;
    double toPoint[D], e[D];
    difference<D>(point, a, toPoint);
    difference<D>(b, a, e);
    const double s = dot<D>(toPoint, e) / dot<D>(e, e);
    double weights[2] = {1 - s, s};
    MapOnLine(weights);
    scatter<N>(weights, edge, w);
}

// The point of three positive weights goes onto its face, whose vertices the products of its edges stand for.
template <int N, int D>
void projectOnTriangle(const double *point, const double *simplex, const Positive &face, double *w) {
    const double *const origin = simplex + face.index[0] * D;
    double toPoint[D], e1[D], e2[D];
    difference<D>(point, origin, toPoint);
    difference<D>(simplex + face.index[1] * D, origin, e1);
    difference<D>(simplex + face.index[2] * D, origin, e2);
    const double d1 = dot<D>(toPoint, e1), d2 = dot<D>(toPoint, e2);
    const double g11 = dot<D>(e1, e1), g12 = dot<D>(e1, e2), g22 = dot<D>(e2, e2);
    const double k = 1 / (g11 * g22 - g12 * g12);
    const double s = (d1 * g22 - g12 * d2) * k;
    const double u = (g11 * d2 - g12 * d1) * k;
    double weights[3] = {1 - s - u, s, u};
    const double triangle[6] = {0, 0, g11, g12, g12, g22};
    MapOnTriangle(weights, triangle);
    scatter<N>(weights, face, w);
}

// The same for four positive weights of a pentachoron, by Cramer's rule.
void projectOnTetrahedron(const double *point, const double *simplex, const Positive &face, double *w) {
    const double *const origin = simplex + face.index[0] * 4;
    double toPoint[4], e[3][4], d[3], g[3][3];
    difference<4>(point, origin, toPoint);
    for (int i = 0; i < 3; ++i)
        difference<4>(simplex + face.index[i + 1] * 4, origin, e[i]);
    for (int i = 0; i < 3; ++i) {
        d[i] = dot<4>(toPoint, e[i]);
        for (int j = 0; j < 3; ++j)
            g[i][j] = dot<4>(e[i], e[j]);
    }
    const double c0 = g[1][1] * g[2][2] - g[1][2] * g[2][1], c1 = g[1][0] * g[2][2] - g[1][2] * g[2][0],
                 c2 = g[1][0] * g[2][1] - g[1][1] * g[2][0];
    const double k = 1 / (g[0][0] * c0 - g[0][1] * c1 + g[0][2] * c2);
    const double s = k * (d[0] * c0 - g[0][1] * (d[1] * g[2][2] - g[1][2] * d[2]) +
                          g[0][2] * (d[1] * g[2][1] - g[1][1] * d[2]));
    const double u = k * (g[0][0] * (d[1] * g[2][2] - g[1][2] * d[2]) - d[0] * c1 +
                          g[0][2] * (g[1][0] * d[2] - d[1] * g[2][0]));
    const double v = k * (g[0][0] * (g[1][1] * d[2] - d[1] * g[2][1]) -
                          g[0][1] * (g[1][0] * d[2] - d[1] * g[2][0]) + d[0] * c2);
    double weights[4] = {1 - s - u - v, s, u, v};
    const double tetrahedron[12] = {0,       0,       0,       g[0][0], g[0][1], g[0][2],
                                    g[0][1], g[1][1], g[1][2], g[0][2], g[1][2], g[2][2]};
    MapOnTetrahedron(weights, tetrahedron);
    scatter<5>(weights, face, w);
}

}  // namespace

void MapOnLine(double *w) {
    const Positive positive = clip<2>(w);
    if (positive.count == 1) w[positive.index[0]] = 1;
    if (positive.count == 2) {
        w[0] = w[0] / (w[0] + w[1]);
        w[1] = 1 - w[0];
    }
}

void MapOnLine2D(const float *p, const double *s, double *q, double *w) { mapOnLine<2>(p, s, q, w); }
void MapOnLine3D(const float *p, const double *s, double *q, double *w) { mapOnLine<3>(p, s, q, w); }
void MapOnLine4D(const double *p, const double *s, double *q, double *w) { mapOnLine<4>(p, s, q, w); }

void MapOnTriangle(double *w, const double *t) {
    const Positive positive = clip<3>(w);
    if (positive.count == 1) w[positive.index[0]] = 1;
    if (positive.count == 2) {
        double point[2];
        weighted<3, 2>(w, t, point);
        projectOnEdge<3, 2>(point, t, positive, w);
    }
    if (positive.count == 3) {
        const double k = 1 / (w[0] + w[1] + w[2]);
        w[0] *= k;
        w[1] *= k;
        w[2] = 1 - w[0] - w[1];
    }
}

void MapOnTrianglePlane3D(const float *p, const double *t, double *q, double *w) {
    const double *const origin = t;
    double point[3], r[3], normal[3], c[3], back[3], e1[3], e2[3], f[3], cross[3];
    std::copy_n(p, 3, point);
    difference<3>(t + 3, origin, e1);
    difference<3>(t + 6, origin, e2);
    cross3(e1, e2, normal);
    const double N = dot<3>(normal, normal);
    difference<3>(point, origin, r);
    cross3(r, normal, c);
    cross3(c, normal, back);
    for (int d = 0; d < 3; ++d)
        q[d] = origin[d] - back[d] / N;
    difference<3>(q, origin, f);
    cross3(e1, f, cross);
    w[2] = dot<3>(cross, normal) / N;
    cross3(f, e2, cross);
    w[1] = dot<3>(cross, normal) / N;
    w[0] = 1 - w[1] - w[2];
}

void MapOnTriangle3D(const float *p, const double *t, double *q, double *w) {
    double onPlane[3];
    MapOnTrianglePlane3D(p, t, onPlane, w);
    const Positive positive = clip<3>(w);
    if (positive.count == 1) takeVertex<3>(t, positive.index[0], q, w);
    if (positive.count == 2) takeEdge<3, 3>(p, t, positive, q, w);
    if (positive.count == 3) std::copy_n(onPlane, 3, q);
}

void MapOnTriangle4D(const double *p, const double *t, double *q, double *w) {
    const double *const t0 = t, *const t1 = t + 4, *const t2 = t + 8;
    double r[4], B[6], g[4], h[4], onPlane[4], part[6];
    difference<4>(p, t0, r);
    BiVec4(t1, t2, t0, B);
    const double N = Dot4B(B, B);
    vDotB4(r, B, g);
    vDotB4(g, B, h);
    for (int d = 0; d < 4; ++d)
        onPlane[d] = t0[d] - h[d] / N;
    BiVec4(t1, onPlane, t0, part);
    w[2] = Dot4B(part, B) / N;
    BiVec4(onPlane, t2, t0, part);
    w[1] = Dot4B(part, B) / N;
    w[0] = 1 - w[1] - w[2];
    const Positive positive = clip<3>(w);
    if (positive.count == 1) takeVertex<4>(t, positive.index[0], q, w);
    if (positive.count == 2) takeEdge<3, 4>(p, t, positive, q, w);
    if (positive.count == 3) std::copy_n(onPlane, 4, q);
}

void MapOnTetrahedron(double *w, const double *t) {
    const Positive positive = clip<4>(w);
    if (positive.count == 1) w[positive.index[0]] = 1;
    if (positive.count == 2 || positive.count == 3) {
        double point[3];
        weighted<4, 3>(w, t, point);
        if (positive.count == 2)
            projectOnEdge<4, 3>(point, t, positive, w);
        else
            projectOnTriangle<4, 3>(point, t, positive, w);
    }
    if (positive.count == 4) {
        const double k = 1 / (w[0] + w[1] + w[2] + w[3]);
        w[0] *= k;
        w[1] *= k;
        w[2] *= k;
        w[3] = 1 - w[0] - w[1] - w[2];
    }
}

void MapOnTetrahedron4D(const double *p, const double *t, double *q, double *w) {
    const double *const t0 = t, *const t1 = t + 4, *const t2 = t + 8, *const t3 = t + 12;
    double r[4], T[4], B[6], h[4], onHyperplane[4], part[4];
    difference<4>(p, t0, r);
    TriVec4(t1, t2, t3, t0, T);
    const double N = dot<4>(T, T);
    // The two products want the minors without their alternating signs; then q lies in the hyperplane.
    const double minors[4] = {T[0], -T[1], T[2], -T[3]};
    vDotT4(r, minors, B);
    BDotT4(B, minors, h);
    for (int d = 0; d < 4; ++d)
        onHyperplane[d] = t0[d] - h[d] / N;
    TriVec4(onHyperplane, t2, t3, t0, part);
    w[1] = dot<4>(part, T) / N;
    TriVec4(t1, onHyperplane, t3, t0, part);
    w[2] = dot<4>(part, T) / N;
    TriVec4(t1, t2, onHyperplane, t0, part);
    w[3] = dot<4>(part, T) / N;
    w[0] = 1 - w[1] - w[2] - w[3];
    const Positive positive = clip<4>(w);
    if (positive.count == 1) takeVertex<4>(t, positive.index[0], q, w);
    if (positive.count == 2) takeEdge<4, 4>(p, t, positive, q, w);
    if (positive.count == 3) {
        double face[12], weights[3];
        gather<4>(t, positive, face);
        MapOnTriangle4D(p, face, q, weights);
        scatter<4>(weights, positive, w);
    }
    if (positive.count == 4) std::copy_n(onHyperplane, 4, q);
}

void MapOnPentachor(double *w, const double *t) {
    const Positive positive = findPositive<5>(w);
    double point[4];
    weighted<5, 4>(w, t, point);
    const double one = 1;
    switch (positive.count) {
    case 1:
        scatter<5>(&one, positive, w);
        break;
    case 2:
        projectOnEdge<5, 4>(point, t, positive, w);
        break;
    case 3:
        projectOnTriangle<5, 4>(point, t, positive, w);
        break;
    case 4:
        projectOnTetrahedron(point, t, positive, w);
        break;
    default:
        break;
    }
}
