#pragma once

#include <cstdint>

#include "kvbase/base/export.h"

/// CIELAB from XYZ and back, under a white point that can be set.
///
/// XYZ is on the system's scale, Y of the white 100; L* of the white is 100. Nothing is clipped: values below
/// 0 go on along CieF, above white L* exceeds 100. Not-a-number and infinite inputs give such outputs.
///
/// Colours are interleaved triples, count of them; a count of 0 or below leaves the output untouched. Input
/// and output may be one array, but must not overlap in part. Several colours are worked on at a time with
/// what the processor has; a colour's result does not depend on that, nor on its place or on count. It lies
/// within one unit of the last place, and nearly always on the float, of what CieF, CieG and double
/// precision give, save near zero, where L*, a* and b* are differences of larger numbers: there within 1e-11.
///
/// The transforms only read the object, so threads may share it while nobody sets the white point.
/// Source: CIE 15:2004, 8.2.1.
class KV_EXPORT KV_CTCielab {
public:
    /// The white of D50, 96.42, 100, 82.49.
    KV_CTCielab() = default;
    /// Another white, X, Y, Z. Not tested: a 0 gives infinite or undefined floats.
    explicit KV_CTCielab(float *const whitePoint) { SetWhitePoint(whitePoint); }
    KV_CTCielab(const KV_CTCielab &) = default;
    KV_CTCielab(KV_CTCielab &&) noexcept = default;
    KV_CTCielab &operator=(const KV_CTCielab &) = default;
    KV_CTCielab &operator=(KV_CTCielab &&) noexcept = default;
    ~KV_CTCielab() = default;

    /// Three floats.
    void GetWhitePoint(float *out) const;
    void SetWhitePoint(float *whitePoint);

    void XYZ2Lab(float *xyz, float *lab, std::int32_t count) const;
    void Lab2XYZ(float *lab, float *xyz, std::int32_t count) const;

private:
    float m_white[3] = {96.42F, 100, 82.49F};
};
