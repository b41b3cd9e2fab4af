#pragma once

// Elementary colorimetry: the CIE cube-root pair, linear re-mixes of CIELAB, XYZ to Yxy, polar chromaticity,
// hue arithmetic and the one-dimensional lightness scale. Free functions without state, for any thread; none
// of them raises or knows a white point. KV_CTCielab has one.
//
// Colours are interleaved triples, count of them; a count below 1 does nothing. L* is 0 to 100, a* and b* are
// CIE units. Source of the formulas: CIE 15:2004, Colorimetry.
//
// Hues of this header lie above 0 up to 2 pi or 360 degrees: one on the positive a* axis is 360, that of a
// neutral colour 270. The colour differences count theirs from 0 below 2 pi.

#include "kvbase/base/export.h"

/// The cube root of a tristimulus ratio as CIELAB takes it: t * 841 / 108 + 4 / 29 up to (6 / 29)^3 in
/// magnitude. Negative ratios go on along the curve mirrored through its value at 0, so that an out-of-gamut
/// value keeps its sign.
KV_EXPORT double CieF(double t);
/// The inverse of CieF, on the whole line.
KV_EXPORT double CieG(double v);

/// L*, a*, b* to X', Y', Z', which are linear in them and lie on the lightness scale: Y' = L*, X' = L* + a* /
/// 5, Z' = L* - b* / 2. No tristimulus values: there is no cube and no white point. The arrays must not
/// overlap.
KV_EXPORT void FLab2NonLinearXYZ(float *lab, float *xyz, int count);
KV_EXPORT void DLab2NonLinearXYZ(double *lab, double *xyz, int count);
/// The way back. The arrays must not overlap.
KV_EXPORT void FNonLinearXYZ2Lab(float *xyz, float *lab, int count);
KV_EXPORT void DNonLinearXYZ2Lab(double *xyz, double *lab, int count);

/// X, Y, Z to Y, x, y, in this order. A colour whose X + Y + Z is not above 0.000001 gives 0, 0, 0. The
/// arrays may be one array, but must not overlap in part.
KV_EXPORT void ColorTransXYZ2Yxy(float *xyz, float *yxy, int count);

/// Chroma and hue of a*, b*, the hue in radians or degrees.
KV_EXPORT void ab2chRad(float a, float b, float &c, float &h);
KV_EXPORT void ab2chDeg(float a, float b, float &c, float &h);
KV_EXPORT void ab2chRad_double(double a, double b, double &c, double &h);
KV_EXPORT void ab2chDeg_double(double a, double b, double &c, double &h);
/// a* and b* of chroma and hue, which may be any angle.
KV_EXPORT void ch2abRad(float c, float h, float &a, float &b);
KV_EXPORT void ch2abDeg(float c, float h, float &a, float &b);

/// b / a. A vertical one is 1e10 when b is above 0, else -1e10, also for the neutral 0, 0.
KV_EXPORT void ab2TanHue(float a, float b, float &tanHue);

/// h1 - h2 in degrees, brought into -180 to 180 by one turn: the hues are meant to lie within one circle.
KV_EXPORT float HueDiff(float h1, float h2);

/// The value at a hue on a closed polygon of hue and value, linear between its corners.
/// hue            degrees; hue + 360 is tried as well
/// hues, values   count corners each, hues in degrees, ascending as the polygon runs
/// The first segment that holds the hue wins. 0 when none does, and for a count below 1.
KV_EXPORT float HueValueInterpol(float hue, float *hues, float *values, int count);

/// Y, 0 to 100, of a lightness, 0 to 100, and the way back; odd in their argument. The slope of the linear
/// part, 903.3, and its ends, 8 and 0.8856, are rounded as in older editions of the CIE publication, so the
/// branches meet to about 1e-5 only.
KV_EXPORT float Lightness2Luminance(float lightness);
KV_EXPORT float Luminance2Lightness(float luminance);
