#pragma once

// Segments, triangles, tetrahedra and pentachora (simplices of five vertices) in 2, 3 and 4 dimensions: the
// point of a simplex for a given point, feasible weights for given weights, and inverse interpolation in a
// simplex of colours.
//
// Vertex i of a simplex in D dimensions stands at i * D to i * D + D - 1 of a flat array. Weights are
// barycentric, one for each vertex. A weight is positive when it is above 0; a not-a-number is not. Results
// must not lie over inputs, except that weights are changed in place. Exported undecorated. Nothing is
// allocated (but for InterpolateLab's table and a list of ChooseBestSamples) and nothing fails; any thread.
//
// The rule of the mapping functions: of the weights with respect to the whole simplex those that are not
// positive become 0, and the face of the others is the next target, on which the function of the lower
// dimension goes on. So a face is chosen once, by the signs. Of that face the result is the nearest point; it
// is the nearest of the whole simplex unless that lies on another face, which happens beside obtuse angles.
//
// Degenerate simplices give weights of not-a-number, which become 0: then all weights are 0, and q is not
// written. MapOnTrianglePlane3D, which clips nothing, gives not-a-numbers then.

#include <cstdint>
#include <map>
#include <vector>

#include "kvbase/base/export.h"

/// Orders floats. Those that lie within the tolerance count as the same key of a map.
class KV_FloatLess {
public:
    float tolerance = 1e-5F;  ///< in the unit of the keys
    bool operator()(float a, float b) const { return a < b - tolerance; }
};

/// Lists of numbers by an ascending value.
using KV_LabTable = std::map<float, std::vector<float>, KV_FloatLess>;

extern "C" {

/// Makes weights of a segment feasible: negative ones become 0, and the sum 1. When none is positive both are
/// 0.
KV_EXPORT void MapOnLine(double *w);
/// Makes the weights of a triangle in the plane feasible; the sum is then 1. Two positive weights are
/// replaced by those of the nearest point of their edge to the point that they stand for (as they are, with a
/// sum that need not be 1).
///
/// w  3 weights
/// t  the triangle, 3 by 2
KV_EXPORT void MapOnTriangle(double *w, const double *t);
/// The same for a tetrahedron. Three positive weights are replaced by those of the nearest point of the plane
/// of their face; where it lies outside the face, its weights are made feasible by MapOnTriangle on a
/// triangle in which the dot products with the face's edges stand for its vertices. So the point of an edge
/// that is then taken is not the nearest one in general.
///
/// w  4 weights
/// t  the tetrahedron, 4 by 3
KV_EXPORT void MapOnTetrahedron(double *w, const double *t);
/// The same for a pentachoron, with MapOnTetrahedron for four positive weights, except that the point the
/// weights stand for is that of all five, the negative ones included; and that five positive weights are
/// taken as they are, whatever their sum, and so are five of which none is positive.
///
/// w  5 weights
/// t  the pentachoron, 5 by 4
KV_EXPORT void MapOnPentachor(double *w, const double *t);

/// The nearest point q of a segment s to a point p, and its 2 weights w. 2, 3 and 4 dimensions.
KV_EXPORT void MapOnLine2D(const float *p, const double *s, double *q, double *w);
KV_EXPORT void MapOnLine3D(const float *p, const double *s, double *q, double *w);
KV_EXPORT void MapOnLine4D(const double *p, const double *s, double *q, double *w);

/// The point q of a triangle t in 3 or 4 dimensions for a point p by the rule above, and its 3 weights w.
KV_EXPORT void MapOnTriangle3D(const float *p, const double *t, double *q, double *w);
KV_EXPORT void MapOnTriangle4D(const double *p, const double *t, double *q, double *w);
/// The orthogonal projection q of p on the plane of a triangle in 3 dimensions, and its 3 weights, whatever
/// their signs.
KV_EXPORT void MapOnTrianglePlane3D(const float *p, const double *t, double *q, double *w);

/// The point q of a tetrahedron t in 4 dimensions (4 by 4) for a point p by the rule above, and its 4 weights
/// w. q of four positive weights is the orthogonal projection of p on the tetrahedron's hyperplane.
KV_EXPORT void MapOnTetrahedron4D(const double *p, const double *t, double *q, double *w);

/// Interpolates in a triangle of colours, seen along component 0: the target's components 1 and 2 (a* and b*
/// of L*, a*, b*) give the weights, component 0 follows.
///
/// corners  3 by 3
/// values   3 by 4, at the corners
/// target   3
/// mapped   3: the point of the triangle with these weights
/// result   4: the value there
/// limit    the largest sum of the weights of corners 1 and 2. A target beyond it is drawn towards corner 0
///          till it keeps it; 1 is the edge opposite corner 0.
///
/// False, with nothing written, when one of these two weights is negative or not a number, or the triangle's
/// doubled area is 1e-5 or less. Single precision.
KV_EXPORT bool TriangleInvert(const float *corners, const float *values, const float *target, float *mapped,
                              float *result, float limit);
/// The same in a tetrahedron, of three components and three weights: corners 4 by 3, values 4 by 4. False,
/// with nothing written, also when the determinant of its edges is 1e-10 or less.
KV_EXPORT bool TetrahedronInvert(const float *corners, const float *values, const float *target,
                                 float *mapped, float *result, float limit);

/// Which of five points (5 by 3) lies in the tetrahedron of the other four, a face counting as inside: the
/// first that does goes to *index, and the result is 1; 5 and 0 when there is none. Single precision. A
/// point with a not-a-number counts as inside.
KV_EXPORT std::int32_t CheckPointInTetrahedron(const float *points, std::int32_t *index);

/// Thins count ascending samples down to wanted ones, in out: again and again the one goes whose neighbours
/// are closest to each other, the first of equals. The first and the last stay. In a round in which no two
/// neighbours are closer than 1e6 the place of the round before is taken, and in the first round the first
/// sample. A wanted of 2 or less that
/// isn't count gives 0 and 100 whatever the samples, so out must have room for two. A wanted above count is
/// count.
KV_EXPORT void ChooseBestSamples(std::int32_t count, const float *in, std::int32_t wanted, float *out);

/// The triple product a . (b x c) of vectors of 3 components.
KV_EXPORT double Vol3(const double *a, const double *b, const double *c);
/// Six times the signed volume of a tetrahedron: the determinant of the rows b - a, c - a, d - a.
KV_EXPORT double VolT(const double *a, const double *b, const double *c, const double *d);

/// Whether an angle lies in the sector from start to end, ends included, in one unit of any kind. When end is
/// below start the sector goes through 0: all at or above start, or at or below end.
KV_EXPORT bool InSector(double start, double end, double angle);

/// Three components at x from a table of such by ascending x, linear between its entries (each of at least
/// three floats) and constant beyond its ends; a not-a-number gives not-a-numbers. An empty table leaves
/// result untouched. The table is the callee's.
KV_EXPORT void InterpolateLab(float x, KV_LabTable table, float *result);

}  // extern "C"
