#pragma once

// The catalogue of colour spaces, one row a space in the order of the numbers. A new space is a new row.

#include <cstdint>
#include <string_view>

#include "adt/color/space_record.h"

namespace kv::detail {

constexpr ChannelLimits kXyz[] = {{0, 96.42F, 96.42F, 0}, {0, 100, 100, 0}, {0, 82.49F, 82.49F, 0}};
constexpr ChannelLimits kLab[] = {{0, 100, 100, 0}, {-128, 127, 0, 0}};
constexpr ChannelLimits kLuv[] = {{1, 0, 100, 0}, {1, 0, 0, 0}};  // white and black alone
constexpr ChannelLimits kRgb[] = {{0, 255, 255, 0}};
constexpr ChannelLimits kRgbk[] = {{0, 255, 255, 0}, {0, 255, 255, 0}, {0, 255, 255, 0}, {0, 100, 0, 100}};
constexpr ChannelLimits kGray[] = {{0, 1, 1, 0}};
constexpr ChannelLimits kInk[] = {{0, 100, 0, 100}};

constexpr SpaceRecord kUnknownSpace = {KV_CS_UNKNOWN, nullptr, 0, KV_PolarityNone, {}, "", nullptr, ""};

// A space of which no more is known than its channels.
constexpr SpaceRecord plain(KV_ColorSpace space, const char *name, std::int32_t channels,
                            KV_ImagePolarity polarity = KV_PolarityPositive) {
    return {space, name, channels, polarity, {}, "", nullptr, ""};
}

// Inks, of which the first may have letters.
constexpr SpaceRecord inks(KV_ColorSpace space, const char *name, std::int32_t channels, const char *letters,
                           const char *prefix = nullptr, const char *ends = "") {
    return {space, name, channels, KV_PolarityNegative, kInk, letters, prefix, ends};
}

// A space whose name is the letters of its inks.
constexpr SpaceRecord namedInks(KV_ColorSpace space, const char *name) {
    return inks(space, name, static_cast<std::int32_t>(std::string_view(name).size()), name, name, name);
}

// clang-format off
constexpr SpaceRecord kSpaces[] = {
    {KV_CS_XYZ, "XYZ", 3, KV_PolarityPositive, kXyz, "XYZ", "XYZ", "XYZ"},
    {KV_CS_LAB, "LAB", 3, KV_PolarityPositive, kLab, "LAB", "LAB", "LAB"},
    {KV_CS_LUV, "LUV", 3, KV_PolarityPositive, kLuv, "LUV", nullptr, ""},
    plain(KV_CS_YCC, "YCC", 3),
    plain(KV_CS_YXY, "YXY", 3),
    {KV_CS_RGB, "RGB", 3, KV_PolarityPositive, kRgb, "RGB", "RGB", "RGB"},
    {KV_CS_GRAY, "GRAY", 1, KV_PolarityPositive, kGray, "K", nullptr, ""},
    plain(KV_CS_HSV, "HSV", 3),
    plain(KV_CS_HLS, "HLS", 3),
    namedInks(KV_CS_CMYK, "CMYK"),  // 10
    namedInks(KV_CS_CMY, "CMY"),
    plain(KV_CS_LCH, "LCH", 3),
    plain(KV_CS_BW, "BW", 1),
    plain(KV_CS_RGBA, "RGBA", 4),
    plain(KV_CS_SPEC, "SPEC", 1),  // 20
    {KV_CS_DENSITY, nullptr, 4, KV_PolarityNone, {}, "", "D", "RED GREEN BLUE VIS"},
    inks(KV_CS_CMYK2, "CMYK2", 6, "CMYK", "CMYKI4I5", "C M Y K I4 I5"),
    inks(KV_CS_CMYK1, "CMYK1", 5, "CMYK", "CMYKI4", "C M Y K I4"),  // 40
    inks(KV_CS_CMYK3, "CMYK3", 7, "CMYK", "CMYKI4I5I6", "C M Y K I4 I5 I6"),
    inks(KV_CS_CLR1, "CLR1", 1, "", "PC1", "1"),
    inks(KV_CS_CLR2, "CLR2", 2, "", "PC2", "12"),
    inks(KV_CS_CLR3, "CLR3", 3, "", "PC3", "123"),
    inks(KV_CS_CLR4, "CLR4", 4, "", "PC4", "1234"),  // 50
    inks(KV_CS_CLR5, "CLR5", 5, "", "PC5", "12345"),
    inks(KV_CS_CLR6, "CLR6", 6, "", "PC6", "123456"),
    inks(KV_CS_CLR7, "CLR7", 7, "", "PC7", "1234567"),
    inks(KV_CS_CLR8, "CLR8", 8, ""),
    inks(KV_CS_CLR9, "CLR9", 9, ""),
    inks(KV_CS_CLR10, "CLR10", 10, ""),
    inks(KV_CS_CLR11, "CLR11", 11, ""),
    inks(KV_CS_CLR12, "CLR12", 12, ""),
    inks(KV_CS_CLR13, "CLR13", 13, ""),
    inks(KV_CS_CLR14, "CLR14", 14, ""),  // 60
    inks(KV_CS_CLR15, "CLR15", 15, ""),
    inks(KV_CS_CLR16, "CLR16", 16, ""),
    {KV_CS_CIECAM, "CIECAM", 3, KV_PolarityPositive, {}, "JAB", " JAB", "JAB"},
    {KV_CS_GRAY_BIZ, "GRAY_BIZ", 1, KV_PolarityPositive, kRgb, "K", "GRAY_BIZ", "K"},
    {KV_CS_GRAY_WIZ, "GRAY_WIZ", 1, KV_PolarityNegative, kInk, "K", "GRAY_WIZ", "K"},
    plain(KV_CS_YOC, "YOC", 3),
    inks(KV_CS_SUBTR8, nullptr, 8, ""),
    inks(KV_CS_SUBTR16, nullptr, 16, ""),  // 70
    inks(KV_CS_SUBTR32, nullptr, 32, ""),
    inks(KV_CS_SUBTR64, nullptr, 64, ""),
    plain(KV_CS_LOC, "LOC", 3),
    plain(KV_CS_POS2, nullptr, 2),
    plain(KV_CS_POS1, nullptr, 1),
    plain(KV_CS_POS0, nullptr, 0),
    {KV_CS_RGBK, "RGBK", 4, KV_PolarityPositive, kRgbk, "RGBK", nullptr, ""},
    namedInks(KV_CS_CMYKO, "CMYKO"),
    namedInks(KV_CS_CMYKG, "CMYKG"),
    namedInks(KV_CS_CMYKB, "CMYKB"),  // 80
    namedInks(KV_CS_CMYKOG, "CMYKOG"),
    namedInks(KV_CS_CMYKOB, "CMYKOB"),
    namedInks(KV_CS_CMYKGB, "CMYKGB"),
    namedInks(KV_CS_CMYKOR, "CMYKOR"),
    namedInks(KV_CS_CMYKBV, "CMYKBV"),
    namedInks(KV_CS_CMYKOGB, "CMYKOGB"),
    namedInks(KV_CS_CMYKOGR, "CMYKOGR"),
    namedInks(KV_CS_CMYKOBR, "CMYKOBR"),
    namedInks(KV_CS_CMYKOBV, "CMYKOBV"),
    namedInks(KV_CS_CMYKGBV, "CMYKGBV"),  // 90
    namedInks(KV_CS_CMYKOGBR, "CMYKOGBR"),
    namedInks(KV_CS_CMYKOGBV, "CMYKOGBV"),
    namedInks(KV_CS_CMYKOBRV, "CMYKOBRV"),
    namedInks(KV_CS_CMYKOGBRV, "CMYKOGBRV"),
    inks(KV_CS_CMYK4, "CMYK4", 8, "CMYK"),
    inks(KV_CS_CMYK5, "CMYK5", 9, "CMYK"),
    plain(KV_CS_DIM2, nullptr, 2, KV_PolarityNone),
    plain(KV_CS_DIM4, nullptr, 4, KV_PolarityNone),
    plain(KV_CS_DIM8, nullptr, 8, KV_PolarityNone),  // 100
    plain(KV_CS_DIM16, nullptr, 16, KV_PolarityNone),
};
// clang-format on

// Further names by which spaces are found.
struct SpaceAlias {
    const char *name;
    KV_ColorSpace space;
};
constexpr SpaceAlias kSpaceAliases[] = {{"DUO", KV_CS_CLR2}, {"TRI", KV_CS_CLR3}, {"HEXA", KV_CS_CLR6}};

/// Texts of the kinds of density, by number.
constexpr const char *kDensityNames[] = {"UNKNOWN", "A", "T", "I", "E", "M", "VIS", "XYZ", "SCTV"};
static_assert(std::size(kDensityNames) == KV_DENSITY_SCTV + 1);

/// Texts of the measurement conditions of ISO 13655, by number.
constexpr const char *kMeasurementNames[] = {"M0", "M1", "M2", "M3", "UNKNOWN"};
static_assert(std::size(kMeasurementNames) == KV_MEASUREMENT_UNKNOWN + 1);

}  // namespace kv::detail
