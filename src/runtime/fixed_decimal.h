#pragma once

// Decimal text of numbers as the "C" locale's streams write and read it, without a stream, a locale or an
// allocation.

#include <cstddef>
#include <cstdint>

namespace kv::detail {

/// The longest text of appendFixed6: a sign, 309 integer digits, the point and 6 digits.
constexpr std::size_t kLongestFixed6 = 317;
/// The longest text of appendInteger: "-2147483648".
constexpr std::size_t kLongestInteger = 11;

/// Writes value with exactly 6 decimals, as printf's "%.6f" does in the "C" locale: the exact binary value,
/// rounded to nearest with ties to even, "-0.000000" included, and "inf", "-inf", "nan", "-nan". Returns the
/// end of the text, which has no terminating zero. out has room for kLongestFixed6 characters.
char *appendFixed6(char *out, double value);

/// Writes a decimal integer. Returns the end of the text, which has no terminating zero. out has room for
/// kLongestInteger characters.
char *appendInteger(char *out, std::int32_t value);

/// Reads what an input stream with the "C" locale's punctuation would extract from [first, last) into a
/// double, and returns whether it would do so without failure. As there, the number is first cut out: white
/// space is skipped, then comes the longest run that goes on like a decimal number ("1.5.2" gives "1.5",
/// "0x10" gives "0"). Then all of that run must be a number: "1e", "." and "-" fail with 0.0. Too large a
/// number fails with the largest double and its sign; too small a one is 0.0 with its sign, and no failure.
/// value is 0.0 when there is nothing but white space.
bool readDouble(const char *first, const char *last, double &value);

}  // namespace kv::detail
