#pragma once

#include "kvbase/text/kv_string.h"
#include "kvbase/text/kv_utf.h"

class KV_UTFSubString;

/// Text that is good UTF-8 as isutfstr has it. A text that comes in and is not good is sanitised: every byte
/// of it with the top bit set becomes "#". A null pointer counts as the empty text. Size() counts bytes,
/// Length() runes. Comparisons are those of all strings; the order of the bytes is that of the runes. One
/// thread at a time.
class KV_EXPORT KV_UTFString : public KV_Str {
public:
    KV_UTFString() noexcept = default;
    /// An empty string with room for n bytes.
    explicit KV_UTFString(std::uint32_t n) : KV_Str(n) {}
    KV_UTFString(const KV_UTFString &) = default;
    KV_UTFString(KV_UTFString &&) noexcept = default;
    KV_UTFString(const KV_UTFSubString &range);
    KV_UTFString(const char *s);
    /// All bytes, 0 bytes included. What stands behind the first 0 is not looked at, unless what stands
    /// before is bad.
    KV_UTFString(const KV_String &s);
    /// The range's bytes. They are sanitised when they, or the bytes up to the end of their owner, are not
    /// good.
    KV_UTFString(const KV_SubString &range);
    ~KV_UTFString() override = default;

    KV_UTFString &operator=(const KV_UTFString &) = default;
    KV_UTFString &operator=(KV_UTFString &&) noexcept = default;
    KV_UTFString &operator=(const KV_UTFSubString &range);
    KV_UTFString &operator=(const KV_String &s);
    KV_UTFString &operator=(const KV_SubString &range) { return *this = KV_UTFString(range); }
    /// s may lie in the own buffer.
    KV_UTFString &operator=(const char *s);

    /// Append. The string's own text and its ranges may be appended as well.
    KV_UTFString &operator+=(const KV_UTFString &s);
    KV_UTFString &operator+=(const KV_UTFSubString &range);
    KV_UTFString &operator+=(const KV_String &s) { return *this += KV_UTFString(s); }
    KV_UTFString &operator+=(const KV_SubString &range) { return *this += KV_UTFString(range); }
    KV_UTFString &operator+=(const char *s);

    /// The number of runes up to the first 0.
    std::uint32_t Length() const { return utflen(Ptr()); }
    /// The range of len runes from rune pos on; one that the text does not hold as a whole ends where the
    /// text ends. A range of a constant string can be written, too.
    KV_UTFSubString operator()(std::uint32_t pos, std::uint32_t len);
    KV_UTFSubString operator()(std::uint32_t pos, std::uint32_t len) const;
    /// Index, in runes, of the first place at or behind the byte offset start where s stands; -1 when there
    /// is none, or when that place lies within a rune, as it can for an s that begins with a stray byte up to
    /// 0xA0. s is sanitised first. start must lie within the text.
    int Find(const char *s, int start = 0) const;

    KV_UTFString operator+(const KV_UTFString &s) const;
    KV_UTFString operator+(const KV_UTFSubString &range) const;
    KV_UTFString operator+(const KV_String &s) const { return *this + KV_UTFString(s); }
    KV_UTFString operator+(const KV_SubString &range) const { return *this + KV_UTFString(range); }
    KV_UTFString operator+(const char *s) const { return *this + KV_UTFString(s); }

    /// Append a line, the bytes up to a 0 byte, or those up to delim. The end itself is consumed and not
    /// stored. A line ends at LF alone: a CR before it stays in the text. With skipWhite, white space before
    /// the first byte is left out. When the whole string then is not good, all of it is sanitised, also when
    /// the stream throws.
    std::istream &ReadLine(std::istream &stream, bool skipWhite = false);
    std::istream &ReadString(std::istream &stream);
    std::istream &ReadToDelim(std::istream &stream, char delim);

    /// Writes the text up to its first 0 in a form for logs: a byte below 0xA0 as it is, any other rune as
    /// its number in hexadecimal between brackets, such as "caf[e9]". The stream keeps its flags.
    void PrintOn(std::ostream &stream) const override;

private:
    std::istream &readSanitised(std::istream &stream, char delim, bool skipWhite);
    void sanitise() noexcept;
};

/// A range of a KV_UTFString, which its call operator makes. Its start and length in bytes are worked out
/// from rune positions then. What holds for all ranges holds for it: it owns nothing, and assigning to it
/// writes into the owner.
class KV_EXPORT KV_UTFSubString : public KV_SubStr {
public:
    KV_UTFSubString(const KV_UTFSubString &) noexcept = default;
    KV_UTFSubString(KV_UTFSubString &&) noexcept = default;
    ~KV_UTFSubString() = default;

    KV_UTFSubString &operator=(const KV_UTFSubString &source) {
        KV_SubStr::operator=(source);
        return *this;
    }
    /// Writes s, sanitised, in the place of the range. Null counts as the empty text.
    KV_UTFSubString &operator=(const char *s);

    /// The number of runes in the range.
    std::uint32_t Length() const;
    /// Index of the range's first rune in the owner.
    std::uint32_t Position() const;
    /// The range's first byte; the text is not terminated at the range's end.
    const char *Ptr() const noexcept { return m_start; }

private:
    friend class KV_UTFString;
    KV_UTFSubString(KV_UTFString *owner, char *start, std::uint32_t length) noexcept
        : KV_SubStr(owner, start, length) {}
};

/// A new string that holds the joined text. s is sanitised first.
KV_EXPORT KV_UTFString operator+(const char *s, const KV_UTFString &b);
KV_EXPORT KV_UTFString operator+(const char *s, const KV_UTFSubString &b);
// Without these a plain string and UTF-8 text would fit two of the operators equally well.
inline KV_String operator+(const KV_String &a, const KV_UTFString &b) {
    return a + static_cast<const KV_Str &>(b);
}
inline KV_String operator+(const KV_String &a, const KV_UTFSubString &b) { return a + KV_Str(b); }
