#pragma once

#include "kvbase/base/export.h"

namespace kv::detail {

/// The appearance model for one colour at a time, step by step, in the precision and order of operations that
/// define it; KV_CTIccCam owns one and tells what it is. Not for users: the members stand here since a class
/// states what it is made of.
struct IccCamModel {
    /// XYZ to the cone responses of Hunt, Pointer and Estevez, and back.
    static constexpr float M[3][3] = {
        {0.3897F, 0.68898F, -0.07868F}, {-0.22981F, 1.1834F, 0.04641F}, {0, 0, 1}};
    static constexpr float Minv[3][3] = {
        {1.910197F, -1.112124F, 0.201908F}, {0.37095F, 0.629054F, 0.000008F}, {0, 0, 1}};
    /// The constants of Hyperbolic: an offset and the exponent.
    static constexpr float a = 0.2307F;
    static constexpr float e = 0.3169F;

    float whitePoint[3] = {96.42F, 100, 82.49F};
    float La = 500;
    float Yb = 20;
    float C = 0.69F;
    float Nc = 1;
    float F = 1;

    // What CalcCoefficients derives.
    float tFactor, Rw, Gw, Bw, D, FL, n, Nbb, z, Aw, x0, slope;
    float HofFL, FofFL;    ///< H_Function and F_Function of FL
    double adaptation[3];  ///< the factor of each cone response

    IccCamModel() { CalcCoefficients(); }

    void CalcCoefficients();
    /// The compression of cone responses: linear up to x0, the curve H beyond, odd, and F(FL) at FL.
    float Hyperbolic(float x) const;
    float HyperbolicInv(float y) const;
    /// 400 x^p / (x^p + 27.13) of positive x, with p = 0.42 and p = e; and the inverse of the latter.
    static float F_Function(float x);
    static float H_Function(float x);
    static float H_FunctionInv(float y);
    /// Cone responses of a colour under the white point to those under the reference conditions, and back.
    void ReferenceConditions(const float *in, float *out) const;
    void ReferenceConditionsInv(const float *in, float *out) const;
    /// out must not be in.
    static void Multiply_vect_by_mx(const float *in, float *out, const float (*matrix)[3]);
    /// The eccentricity of a hue in degrees, 0 to 360, by linear interpolation between the unique hues. The
    /// transforms take the cosine that stands for it.
    static float IccCam_e(float hue);

    /// One colour; in and out may be one.
    void XyzToJab(const float *xyz, float *jab) const;
    void JabToXyz(const float *jab, float *xyz) const;

private:
    float response(float cone) const;
    void opponents(float h, float t, float g, float &redGreen, float &yellowBlue) const;
};

}  // namespace kv::detail

/// A colour appearance model: lightness J and the chroma axes C cos h and C sin h from XYZ under given
/// viewing conditions, and back. The space is KV_CS_CIECAM. Both ways are closed forms.
///
/// Viewing factors, J, eccentricity, chroma and the inverse equations are those of CIECAM02, with three
/// departures: cone responses are those of Hunt, Pointer and Estevez throughout, and chromatic adaptation
/// works in them; their compression is linear round zero, keeps the CIECAM02 value at the adapted white and
/// has a lower exponent below it; the result is rectangular. J of the white is 100.
///
/// XYZ is on the system's scale, Y of the white 100. A negative cone response counts as 0; wherever all three
/// are positive, Jab2XYZ gives back what XYZ2Jab was given, up to the rounding of floats. J below 0.00001 is
/// black, 0, 0, 0. Nothing raises. The parameters are not tested: Yw, La and the like of 0 give infinite or
/// undefined floats.
///
/// Colours are interleaved triples, count of them; a count of 0 or below leaves the output untouched. Input
/// and output may be one array, but must not overlap in part. Several colours are worked on at a time with
/// what the processor has; a colour's result does not depend on that, nor on its place or on count. It lies
/// within 2e-4 + 1e-5 * |result| of the model evaluated step by step.
///
/// The transforms only read the object, so threads may share it while nobody sets a parameter.
/// Source: CIE 159:2004, A Colour Appearance Model for Colour Management Systems: CIECAM02.
class KV_EXPORT KV_CTIccCam {
public:
    /// D50 at 500 cd/m2 in an average surround.
    KV_CTIccCam();

    void XYZ2Jab(float *xyz, float *jab, int count) const;
    void Jab2XYZ(float *jab, float *xyz, int count) const;

    /// The luminance of the adapting field, in cd/m2; default 500.
    float GetParameter_La() const { return m_model.La; }
    /// The relative luminance of the background, white 100; default 20.
    float GetParameter_Yb() const { return m_model.Yb; }
    /// The impact of the surround, 0.69 (default) average, 0.59 dim, 0.525 dark.
    float GetParameter_C() const { return m_model.C; }
    /// The chromatic induction factor, 1 (default) average, 0.9 dim, 0.8 dark.
    float GetParameter_Nc() const { return m_model.Nc; }
    /// The factor of the degree of adaptation, 1 (default) average, 0.9 dim, 0.8 dark.
    float GetParameter_F() const { return m_model.F; }
    /// Xw, Yw, Zw; default 96.42, 100, 82.49.
    void GetParameter_WhitePoint(float *out) const;

    // Each works out anew all that depends on the viewing conditions. Not safe beside a running transform.
    void SetParameter_La(float value);
    void SetParameter_Yb(float value);
    void SetParameter_C(float value);
    void SetParameter_Nc(float value);
    void SetParameter_F(float value);
    void SetParameter_WhitePoint(float *whitePoint);

private:
    kv::detail::IccCamModel m_model;
};
