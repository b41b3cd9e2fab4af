#pragma once

#include <cstdint>
#include <string>

#include "kvbase/base/export.h"
#include "kvbase/base/types.h"

/// Conversions between UTF-8, wide text of 16-bit units, and bytes that hold such units, the high one first.
/// UTF-8 is complete here: a pair of surrogates is one sequence of four bytes. No state; any thread may call.
namespace UnicodeUtils {

/// UTF-8 of the text up to its first 0. An unpaired surrogate becomes U+FFFD.
KV_EXPORT std::string CreateStdStringFromWideString(const KV_WString &text);

/// The units of the UTF-8 text up to its first 0. Bytes that are not UTF-8 become U+FFFD.
KV_EXPORT KV_WString CreateWideStringFromStdString(const std::string &text);

/// Makes the byteCount / 2 units at data the content of out. With a byteCount below 2, or null, out stays as
/// it is.
KV_EXPORT void Translate16BitUnicodeBEToWString(std::uint32_t byteCount, unsigned char *data,
                                                KV_WString &out);

/// Stores the units of in, 0 units included, in a new block of *byteCount bytes, without a terminator. The
/// caller releases *data with delete[]. A text whose bytes 32 bits cannot count gives null and 0.
KV_EXPORT void TranslateWStringTo16BitUnicodeBE(const KV_WString &in, std::uint32_t *byteCount,
                                                unsigned char **data);

}  // namespace UnicodeUtils
