#pragma once

// What is known of process inks as such, and the overlaps of several. Free functions without state, for any
// thread. None of them raises but for the lack of memory.

#include <cstdint>
#include <string>
#include <vector>

#include "kvbase/base/export.h"
#include "kvbase/base/types.h"

/// The reflectance of an ink as it is assumed without a measurement: 36 values from 0 to 1, at 380 to 730 nm
/// by 10.
///
/// name  "White" (the paper), "Cyan", "Magenta", "Yellow", "Black", "Orange", "Green", "Blue", "Red" or
///       "Violet"; case counts
///
/// Null for any other name. The values are constants: only read them. They are this library's own, of no
/// publication.
KV_EXPORT float *GetDefaultSpectrum(std::string name);

/// Whether this is the name of a process ink: one of those above but "White".
KV_EXPORT bool IsProcessColor(KV_WString name);

/// Derives what three to seven inks have in common from what two of them have. For three inks and more, an
/// ink's value is the smallest that it has with all of these inks but another one, and their weight the mean
/// of the weights of all these, or 0 when that is below 0.00001.
///
/// inks      the number of inks, n
/// overlaps  for each set of inks, at the number whose bit i is set for ink i, n values; 2^n of them
/// weights   one for each set of inks
///
/// The entries of two inks are only read, those of fewer and of eight and more left alone. Nothing is done
/// for fewer than three inks, for more than 30, and where a list of two to seven inks is too short.
KV_EXPORT void CalculateFurtherOverlaps(std::int32_t inks, std::vector<std::vector<float>> &overlaps,
                                        std::vector<float> &weights);
