#pragma once

/// Number text that doesn't depend on the process's locale: the decimal point is always ".". Reports and XML
/// documents are written and read with it. The functions hold no state; any thread may call them.
///
/// Digits come by a fixed sequence of operations in double, told at each function, so that a text and a value
/// are the same on all machines. They can differ from correctly rounded conversion in the last digits.

#include <string>

#include "kvbase/base/export.h"

/// Writes the text of value to out, with a terminating zero, and returns its length. No failures.
/// out        room for 512 bytes. No text is longer than 310 characters and the zero: a whole number of
///            309 digits and a sign, in the form f. Any other text, of e and g too, has at most 47.
/// format     'f', 'e', 'E', 'g' or 'G'; any other gives the empty text, for every value.
/// reserved   not looked at.
/// precision  0 or below means 6, above 39 means 39.
///
/// Digits. The magnitude is split by modf. Integer digits come from the last to the first, by w / 10 with the
/// digit trunc((fraction + 0.01) * 10): the true ones below 2^50; beyond, those from about the 14th on can be
/// off. Fraction digits come by f * 10 with the digit trunc. Where digits are dropped, only the first of them
/// is looked at: above 4 the kept ones go up by 1, so ties go away from zero, and nothing behind counts.
///
/// f          The integer digits, or 0. When there is a fraction, "." and up to precision digits, fewer when
///            it is used up. When the last of them, before rounding, is 0, the zeros at the end are cut, but
///            never the point: 1.5 gives "1.5", 1.0 "1", 1.0000001 "1.", and 9.999 with precision 2 "10.00".
///            A negative number of which only zeros are kept has no sign.
/// e, E       One digit, ".", precision digits, and the exponent: the letter, a sign, at least two digits.
/// g, G       The form of e with precision - 1 digits, of which the zeros at the end are cut, and the point
///            when none is left, where the integer part has more than precision digits, or where it is zero
///            and the fraction below 0.0001 and not zero. Else the integer digits, or 0, ".", and digits up
///            to precision significant ones: zeros count once another digit is in front of them. When that
///            uses the fraction up, the zeros at the end and a bare point are cut. Else both stay: 12.3 with
///            precision 2 gives "12.", and 999999.7 with 6 "1000000.".
/// Not-a-number gives "NaN" whatever its sign, the infinities "-Infinity" and "Infinity". Minus zero is "0".
KV_EXPORT int kv_dtoa(char *out, double value, int format, int reserved, int precision);

/// The text of kv_dtoa in the form f, with precision read as there. A text of more than 512 characters would
/// be refused, but no double has one: see the lengths above.
KV_EXPORT std::string kv_dtostr(double value, int precision);

/// Reads a number from zero-terminated text: blanks and tabs, a sign, digits, "." and digits, then "e" or
/// "E", a sign and digits. No failures. end, when not null, receives the position behind what was read.
/// Without a digit before the exponent the result is 0.0, and *end stands behind the blanks, the sign and the
/// point that were there. An exponent without digits counts as read, its sign included: "1.5e" gives 1.5.
///
/// The value accumulates in double: v * 10 + digit, then digit * scale with the scale 0.1, multiplied by 0.1
/// for each digit behind the point, then one multiplication by 10.0 or 0.1 for each unit of the exponent. Too
/// large a number gives infinity, too small a one 0, both with the sign; the effort is bounded by the length
/// of the text.
KV_EXPORT double kv_strtod(const char *text, const char **end);
