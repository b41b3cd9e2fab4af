#pragma once

#include <cstdint>

#include "kvbase/base/export.h"
#include "kvbase/text/kv_string.h"

/// Conversions between the system's encoding, 16-bit units and UTF-8 in runes (kv_utf.h).
///
/// Texts are terminated, and null counts as the empty text. Sizes count elements. All conversions return 0 on
/// success; each failure writes an error line to the tracer. The output is always terminated: behind what was
/// stored, or in its last element when that is full. An output that is null or has a size below 1 is not
/// touched, and the result is -1; but Ucs2Utf and Utf2Ucs treat it as the functions do on which they rest.
/// Lack of memory throws std::bad_alloc; for the buffer between two steps it is a failure like any other.
/// Not changed by conversions: after Initialize, any thread may use it.
class KV_EXPORT KV_TextEncodingConverter {
public:
    /// Has no code page: conversions from and to the system's encoding fail until Initialize.
    constexpr KV_TextEncodingConverter() noexcept = default;

    /// With null: takes the process's own encoding, or the code page whose number stands behind the last "."
    /// in the name of the current locale. On POSIX the own encoding of a process in the C locale is UTF-8.
    /// With a name given, nothing changes. Returns 0.
    int Initialize(const char *locale);
    /// Does nothing.
    void Cleanup();

    /// System text to 16-bit units. Bytes without a meaning become U+FFFD, which is no failure. *written,
    /// which may be null, counts the terminator. -1 on failure.
    int Text2Ucs(const char *text, unsigned short *out, std::int32_t outSize, std::int32_t *written) const;
    /// 16-bit units to system text. *written, which may be null, counts the terminator. A unit that has no
    /// form there becomes "?" (U+FFFD where the encoding has that); then the result is -1, and the output
    /// stands. -1 on failure.
    int Ucs2Text(const unsigned short *in, char *out, std::int32_t outSize, std::int32_t *written) const;
    /// UTFfromUniCode, with its result and its *written, which may be null. In a text that fills the output
    /// exactly the terminator takes the place of the last byte; *written is the size then.
    static int Ucs2Utf(const unsigned short *in, char *out, std::int32_t outSize, std::int32_t *written);
    /// UTFtoUnicode, with its result and its *written, which may be null.
    static int Utf2Ucs(const char *in, unsigned short *out, std::int32_t outSize, std::int32_t *written);

    /// System text to UTF-8, through 16-bit units. -1 when a step failed, or cut the text. The empty text
    /// needs no code page.
    int Text2Utf(const char *text, char *out, std::int32_t outSize) const;
    /// UTF-8 to system text, through 16-bit units. -1 when a step failed. What could be converted with "?" in
    /// the place of some runes stands in the output, with the result -1. The empty text needs no code page.
    int Utf2Text(const char *utf, char *out, std::int32_t outSize) const;
    /// utflen: the number of runes.
    static std::int32_t UtfStringLength(const char *utf);

protected:
    int mCodePage = -1;  // below 0: not initialised; 0: the process's own
};

/// The runes of a UTF-8 text as 16-bit units, each with its high byte first, and a terminating 0 unit. Bad
/// bytes become "?"; the text ends at its first 0. The block has room for Length() + 1 units; the caller
/// releases it with delete[].
KV_EXPORT unsigned short *TranslateKVStringTo16BitUnicodeBE(const KV_String &text);
