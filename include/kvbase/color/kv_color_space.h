#pragma once

// The catalogue of colour spaces: what is known about each without any conversion. Free functions without
// state, for any thread. None of them raises; a space or text that is unknown gives the neutral result told
// with each. Every number without an enumerator below is unknown and behaves like KV_CS_UNKNOWN.
//
// Channel values are floats, interleaved where there are several colours. Ink spaces count percent of ink, 0
// to 100; RGB counts 0 to 255; GRAY alone counts 0 to 1. XYZ is scaled so that the white has Y = 100, and
// stands for D50, 96.42, 100, 82.49; L* runs 0 to 100.

#include <cstdint>
#include <string>

#include "kvbase/base/export.h"

class KV_String;

/// A colour space. The numbers are fixed, stand in files, and follow no order of kind.
enum KV_ColorSpace : std::int32_t {
    KV_CS_UNKNOWN = 0,
    KV_CS_XYZ = 1,       ///< CIE XYZ, Y of the white 100
    KV_CS_LAB = 2,       ///< CIELAB
    KV_CS_LUV = 3,       ///< CIELUV
    KV_CS_YCC = 4,       ///< luma and two chroma
    KV_CS_YXY = 5,       ///< Y, x, y
    KV_CS_RGB = 6,       ///< device RGB, 0 to 255
    KV_CS_GRAY = 7,      ///< grey, 0 is black, 1 is white
    KV_CS_HSV = 8,       ///< hue, saturation, value
    KV_CS_HLS = 9,       ///< hue, lightness, saturation
    KV_CS_CMYK = 10,     ///< process inks
    KV_CS_CMY = 11,      ///< process inks without black
    KV_CS_LCH = 12,      ///< lightness, chroma, hue
    KV_CS_BW = 13,       ///< black and white
    KV_CS_RGBA = 15,     ///< RGB with alpha
    KV_CS_SPEC = 20,     ///< spectral samples, as many channels as the wavelength grid has
    KV_CS_DENSITY = 22,  ///< densities by filter
    KV_CS_CMYK2 = 26,    ///< CMYK and two further inks
    KV_CS_CMYK1 = 40,    ///< CMYK and one further ink
    KV_CS_CMYK3 = 41,    ///< CMYK and three further inks
    KV_CS_CLR1 = 47,     ///< CLR1 to CLR16: 1 to 16 spot inks
    KV_CS_CLR2 = 48,
    KV_CS_CLR3 = 49,
    KV_CS_CLR4 = 50,
    KV_CS_CLR5 = 51,
    KV_CS_CLR6 = 52,
    KV_CS_CLR7 = 53,
    KV_CS_CLR8 = 54,
    KV_CS_CLR9 = 55,
    KV_CS_CLR10 = 56,
    KV_CS_CLR11 = 57,
    KV_CS_CLR12 = 58,
    KV_CS_CLR13 = 59,
    KV_CS_CLR14 = 60,
    KV_CS_CLR15 = 61,
    KV_CS_CLR16 = 62,
    KV_CS_CIECAM = 63,    ///< appearance correlates J, a, b of KV_CTIccCam
    KV_CS_GRAY_BIZ = 64,  ///< grey, black is 0, white is 255
    KV_CS_GRAY_WIZ = 65,  ///< grey, white is 0, black is 100
    KV_CS_YOC = 66,
    KV_CS_SUBTR8 = 69,
    KV_CS_SUBTR16 = 70,
    KV_CS_SUBTR32 = 71,
    KV_CS_SUBTR64 = 72,
    KV_CS_LOC = 73,
    KV_CS_POS2 = 74,
    KV_CS_POS1 = 75,
    KV_CS_POS0 = 76,   ///< no channel at all
    KV_CS_RGBK = 77,   ///< RGB, 0 to 255, and black, 0 to 100
    KV_CS_CMYKO = 78,  ///< CMYK and the inks of the further letters, in their order: O orange, G green, B
                       ///< blue, R red, V violet
    KV_CS_CMYKG = 79,
    KV_CS_CMYKB = 80,
    KV_CS_CMYKOG = 81,
    KV_CS_CMYKOB = 82,
    KV_CS_CMYKGB = 83,
    KV_CS_CMYKOR = 84,
    KV_CS_CMYKBV = 85,
    KV_CS_CMYKOGB = 86,
    KV_CS_CMYKOGR = 87,
    KV_CS_CMYKOBR = 88,
    KV_CS_CMYKOBV = 89,
    KV_CS_CMYKGBV = 90,
    KV_CS_CMYKOGBR = 91,
    KV_CS_CMYKOGBV = 92,
    KV_CS_CMYKOBRV = 93,
    KV_CS_CMYKOGBRV = 94,
    KV_CS_CMYK4 = 95,  ///< CMYK and four further inks
    KV_CS_CMYK5 = 96,  ///< CMYK and five further inks
    KV_CS_DIM2 = 98,
    KV_CS_DIM4 = 99,
    KV_CS_DIM8 = 100,
    KV_CS_DIM16 = 101
};

/// What a larger channel value means.
enum KV_ImagePolarity : std::int32_t {
    KV_PolarityNone = 0,      ///< nothing is known
    KV_PolarityPositive = 1,  ///< lighter: colorimetric and additive spaces
    KV_PolarityNegative = 2   ///< more ink
};

/// The kind of a density value.
enum KV_DensityStandardType : std::int32_t {
    KV_DENSITY_UNKNOWN = 0,
    KV_DENSITY_A = 1,
    KV_DENSITY_T = 2,
    KV_DENSITY_I = 3,
    KV_DENSITY_E = 4,
    KV_DENSITY_M = 5,
    KV_DENSITY_VIS = 6,
    KV_DENSITY_XYZ = 7,
    KV_DENSITY_SCTV = 8
};

/// Measurement conditions of ISO 13655.
enum KV_MeasurementConditionType : std::int32_t {
    KV_MEASUREMENT_M0 = 0,
    KV_MEASUREMENT_M1 = 1,
    KV_MEASUREMENT_M2 = 2,
    KV_MEASUREMENT_M3 = 3,
    KV_MEASUREMENT_UNKNOWN = 4
};

/// The text name of a space, in capitals, such as "LAB" or "CMYKOGB": the enumerator without KV_CS_.
/// "UNKNOWN" for an unknown space and for those that have no text name: KV_CS_DENSITY, the SUBTR, POS and DIM
/// spaces. A constant string.
KV_EXPORT const char *ColorSpaceToString(KV_ColorSpace space);

/// The space of a text name, whatever its case (by StdStringUtils::ToUpperCase). "DUO", "TRI" and "HEXA" are
/// accepted for CLR2, CLR3 and CLR6. Any other text, null and "UNKNOWN" give KV_CS_UNKNOWN.
KV_EXPORT KV_ColorSpace StringToColorSpace(const char *name);

/// The channels of a colour of this space, 0 for an unknown one.
/// start, end, step  the wavelength grid in nm, which counts for KV_CS_SPEC only. That has the samples of the
///                   grid, and 0 when end is not start plus a whole number of steps. With no grid at hand, 0,
///                   0, 1 gives 1. A step of 0, and a grid whose steps can't be counted in 32 bits, give 0.
KV_EXPORT std::int32_t ColorSpaceDimension(KV_ColorSpace space, std::int32_t start, std::int32_t end,
                                           std::int32_t step);

/// The range of each channel.
/// minima, maxima  one float a channel, and one at least. For a space without a known range, and an unknown
///                 one, minima[0] becomes 1 and maxima[0] 0, the empty range, and the others are left alone.
/// Returns the channel count in every case, 1 for KV_CS_SPEC.
KV_EXPORT std::int32_t ColorSpaceExtrema(KV_ColorSpace space, float *minima, float *maxima);

/// Where white and black lie: one float a channel to out, result 0. For a space that has none in the
/// catalogue the result is 1, and out is left alone.
KV_EXPORT std::int32_t ColorSpaceWhitePoint(KV_ColorSpace space, float *out);
KV_EXPORT std::int32_t ColorSpaceBlackPoint(KV_ColorSpace space, float *out);

/// What a larger channel value means; KV_PolarityNone for the DIM spaces, KV_CS_DENSITY and unknown ones.
KV_EXPORT KV_ImagePolarity ColorSpacePolarity(KV_ColorSpace space);

/// Whether these are CMYK and further inks: CMYK1 to CMYK5, and those that name the further inks.
KV_EXPORT bool CheckColorSpaceQuorin(KV_ColorSpace space);

/// CLR1 to CLR16 for 1 to 16 inks; KV_CS_UNKNOWN for any other number.
KV_EXPORT KV_ColorSpace Dimension2SpotColorSpace(std::int32_t inks);

/// Appends the names of the space's data fields to a blank-separated list, such as the format line of a
/// measurement file holds, and adds their number to count. With a count above 0 one blank goes in front,
/// also for a space that has no fields. The fields of KV_CS_CIECAM bring a leading blank of their own.
/// start, end, step  the wavelength grid in nm, which counts for KV_CS_SPEC only: one field a sample, from
///                   start upward by step, (end - start) / step + 1 of them by truncating division. A step of
///                   0, and a grid whose steps can't be counted in 32 bits, give no fields.
KV_EXPORT void DataFormatColorSpace(KV_ColorSpace space, KV_String &text, std::int32_t &count,
                                    std::int32_t start, std::int32_t end, std::int32_t step);

/// The text of a kind of density, "UNKNOWN" for any other number. A constant string.
KV_EXPORT const char *DensityTypeToString(KV_DensityStandardType type);
/// The kind of density of exactly this text, in its case; KV_DENSITY_UNKNOWN for any other.
KV_EXPORT KV_DensityStandardType StringToDensityType(std::string name);

/// The text of a measurement condition, "M0" to "M3", "UNKNOWN" for any other number. A constant string.
KV_EXPORT const char *MeasurementConditionToString(KV_MeasurementConditionType condition);
/// The condition of a text, whatever its case (by StdStringUtils::ToUpperCase); KV_MEASUREMENT_UNKNOWN for
/// any other text and for null.
KV_EXPORT KV_MeasurementConditionType StringToMeasurementCondition(const char *name);
