#pragma once

// Identifiers, names and places of the numbered samples of a measurement target, and the extended ink sets of
// targets with more than four inks. Free functions without state, for any thread.

#include <cstdint>
#include <string>
#include <vector>

#include "kvbase/base/export.h"

/// A list of measurement samples that lives outside this library, seen as far as it is needed here.
class KV_EXPORT KV_IVarray {
public:
    virtual ~KV_IVarray();
    /// The places of the samples: one record of three numbers (column, row, layer) for each. Table and
    /// records are the list's own.
    virtual std::uint16_t **PositionTable() = 0;
};

namespace FormatUtils {

/// Makes the identifiers "1", "2" and so on up to count.
///
/// ids  becomes a table of count pointers to the texts, each with its terminator. The texts lie one behind
///      the other in one block, to which the first pointer leads. Both are the caller's: delete[] ids[0];
///      delete[] ids. What ids held before is neither read nor released. A count below 1 makes nothing, and
///      ids null.
///
/// Throws std::bad_alloc, and ids stays as it was.
KV_EXPORT void CreateSampleIDs(std::int32_t count, char **&ids);

/// Makes the identifiers, and the names "CH1", "CH2" and so on in the same form, and lays the samples out row
/// by row: sample i from 0 has the place i modulo columns, i divided by columns, 0.
///
/// positions  has one record a sample in its table
/// columns    of the layout; below 1 all samples stand in one row
///
/// A count below 1 makes nothing, both tables null, and does not ask for the positions. When something
/// raises, ids and names stay as they were.
KV_EXPORT void CreateSampleIDs(char **&ids, char **&names, KV_IVarray *positions, int count, int columns);

/// Finds orange, green and blue among the inks of a target, whatever their case, and lists the codes of the
/// extra patches that they call for.
///
/// inks   the names of all inks; of fewer than five none is looked at
/// codes  gets a code for each such ink in the list's order: a bit, 16 for the first, 32 for the second and
///        so on, plus the ink's weight, 1 orange, 2 green, 4 blue. Then one for each pair of bits: 48 for two
///        inks, 48, 80, 96 for three. The caller's, with room for three more than the inks that are found.
///
/// Returns the sum of the weights. An ink that is named twice counts twice, and the sum tells how many pairs
/// there are: 3, 5, 6 one, 7 three, any other none. Beyond 27 such inks no bit is left, and the others are
/// skipped.
KV_EXPORT int GetQuorinCase(std::vector<std::string> inks, int *codes);

}  // namespace FormatUtils
