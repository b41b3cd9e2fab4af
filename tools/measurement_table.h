#pragma once

#include <kvbase/color/kv_color_space.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kvtool {

/// The channels that a patch of a colour report has room for.
constexpr std::size_t kMostChannels = 8;

/// One patch of a table.
struct TablePatch {
    std::string name;                           ///< of the sample; empty if the table has no names
    std::array<float, kMostChannels> device{};  ///< in percent, 0 to 100; 0 behind the channels
    std::array<float, 3> lab{};                 ///< L*, a*, b*; 0 when XYZ was asked for
    std::array<float, 3> xyz{};                 ///< X, Y, Z, white 100; 0 when Lab was asked for
    std::size_t line = 0;                       ///< in the file, from 1
};

/// Patches of a target, measured or wanted.
struct MeasurementTable {
    std::string file;          ///< for messages
    std::size_t channels = 0;  ///< device values of each patch; 0 when the table has none
    bool hasNames = false;     ///< it has SAMPLE_NAME or SAMPLE_ID; the former is the name, if there is one
    std::vector<TablePatch> patches;  ///< one at least

    bool hasDevice() const { return channels > 0; }
};

/// Which values of the patches are wanted. XYZ is worked out from Lab under D50 where a table has no XYZ.
enum class PatchColor { Lab, Xyz };

/// Reads the first table of a CGATS file (.ti3, .txt) with the device values of a colour space of up to 8
/// channels, whose columns are named as DataFormatColorSpace does. Throws BadInput, with line, column and
/// what to do about it: for a broken table, for one without Lab, and for numbers that can't be percent
/// or Lab, such as those of 0 to 1 or 0 to 255, or with decimal commas.
MeasurementTable readMeasurementTable(const std::string &file, KV_ColorSpace space,
                                      PatchColor wanted = PatchColor::Lab);
/// The same of the bytes of a file.
MeasurementTable measurementTableOf(const std::string &file, const std::string &bytes, KV_ColorSpace space,
                                    PatchColor wanted = PatchColor::Lab);

}  // namespace kvtool
