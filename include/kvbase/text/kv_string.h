#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>

#include "kvbase/base/export.h"

// Byte strings: KV_String and its ranges KV_SubString, with KV_Str and KV_SubStr below them, which the UTF-8
// strings share. A string is a counted, NUL-terminated buffer of bytes that it owns alone; a copy copies the
// bytes. A sub-string is a range of an owner's buffer, through which the owner can be written.
//
// Lengths are 32 bits wide. A text of 4294967280 bytes and more has no place in a string: what would make one
// throws std::bad_alloc, as every allocation that fails, and the string keeps its former text. A string has
// no lock: one thread at a time, and a use of a sub-string is a use of its owner.

/// Lets the compiler test the arguments of a function, from number firstAt on, against its format, number
/// formatAt. Of a member function the object is number 1.
#if defined(__MINGW32__) && !defined(__clang__)  // formats are the C standard's here, not the system's
#    define KV_PRINTF_LIKE(formatAt, firstAt) __attribute__((format(gnu_printf, formatAt, firstAt)))
#elif defined(__GNUC__)
#    define KV_PRINTF_LIKE(formatAt, firstAt) __attribute__((format(printf, formatAt, firstAt)))
#else
#    define KV_PRINTF_LIKE(formatAt, firstAt)
#endif

class KV_SubStr;
class KV_SubString;

/// What all strings have in common: the buffer, its growth and its copies.
class KV_EXPORT KV_Str {
public:
    /// The empty string. Costs no allocation.
    KV_Str() noexcept = default;
    /// An empty string with room for n bytes.
    explicit KV_Str(std::uint32_t n);
    /// A full copy. Its capacity follows from the length of other, not from other's capacity.
    KV_Str(const KV_Str &other)
        : m_data(newBuffer(capacityFor(other.m_length))),
          m_length(other.m_length),
          m_capacity(capacityFor(other.m_length)) {
        std::memcpy(m_data, other.m_data, std::size_t{m_length} + 1);
    }
    /// Takes over the buffer of other, which is empty afterwards.
    KV_Str(KV_Str &&other) noexcept
        : m_data(other.m_data), m_length(other.m_length), m_capacity(other.m_capacity) {
        other.init();
    }
    /// A full copy of the range's bytes.
    KV_Str(const KV_SubStr &range);
    virtual ~KV_Str() {
        if (m_capacity != 0) safeDelete(m_data);
    }

    /// Copies the text. Reuses the buffer when the text fits into it.
    KV_Str &operator=(const KV_Str &other) {  // NOLINT(bugprone-unhandled-self-assignment): one buffer
        if (m_data != other.m_data) assignCopy(other.m_length, other.m_data);
        return *this;
    }
    /// Takes over the buffer of other, or copies from it when the own buffer is the larger one, since buffers
    /// do not shrink. other is empty afterwards, unless it is this string.
    KV_Str &operator=(KV_Str &&other) noexcept;
    /// Copies the range's bytes. A range of this very string is moved to the front of the buffer.
    KV_Str &operator=(const KV_SubStr &range);

    /// Writes the text up to its first 0 byte; the stream's width and fill apply.
    virtual void PrintOn(std::ostream &stream) const;

    /// Bytes in use, without the terminator.
    std::uint32_t Size() const noexcept { return m_length; }
    /// One less than the bytes for which there is room: 15 of a buffer for 16, and 4294967295 of a string
    /// without a buffer of its own.
    std::uint32_t Capacity() const noexcept { return m_capacity - 1; }
    bool IsEmpty() const noexcept { return m_length == 0; }
    /// The text, always terminated. Valid until the string changes.
    const char *Ptr() const noexcept { return m_data; }
    operator const char *() const noexcept { return m_data; }

    /// Appends. The string itself and its own ranges may be appended as well.
    KV_Str &operator+=(const KV_Str &other) {
        concatInPlace(other.m_length, other.m_data);
        return *this;
    }
    KV_Str &operator+=(const KV_SubStr &range);

    /// -1, 0 or 1: the order of the bytes as unsigned values, up to the first 0 on either side. Strings that
    /// differ behind a 0 only are equal here, but not for the operator ==.
    int Compare(const KV_Str &other) const noexcept;

    /// Gives up the buffer.
    void Empty() noexcept {
        safeDelete(m_data);
        init();
    }
    /// Makes a new buffer with room for at least n bytes, for the text, and for twice as much as before.
    /// Keeps the text; its former address is no longer valid. The result is the new Capacity().
    std::uint32_t ReSize(std::uint32_t n);

protected:
    friend class KV_SubStr;

    /// The longest text, a buffer's largest capacity less one step of 16.
    static constexpr std::uint32_t kMaxLength = 0xFFFFFFEF;
    /// n as a length. Throws std::bad_alloc when it is above kMaxLength.
    static std::uint32_t toLength(std::uint64_t n) {
        if (n > kMaxLength) throwTooLong();
        return static_cast<std::uint32_t>(n);
    }
    /// The capacity for n bytes: the next multiple of 16 above n. n is at most kMaxLength.
    static constexpr std::uint32_t capacityFor(std::uint32_t n) noexcept {
        return (n & ~std::uint32_t{15}) + 16;
    }
    /// The capacity of a buffer that takes the place of the present one: that for n bytes, at least twice the
    /// present.
    std::uint32_t grownCapacity(std::uint32_t n) const noexcept {
        constexpr std::uint32_t most = capacityFor(kMaxLength);
        const std::uint32_t doubled = m_capacity < most / 2 ? 2 * m_capacity : most;
        const std::uint32_t needed = capacityFor(n);
        return needed > doubled ? needed : doubled;
    }

    /// Takes a new buffer for n bytes, with the length n; the bytes are not set, but the terminator is. The
    /// former buffer is not freed.
    void allocBuffer(std::uint32_t n);
    /// Gives dest a new buffer for count + extra bytes, with that length, and copies count bytes of this
    /// string from start on into it. The extra bytes are not set.
    void allocCopy(KV_Str &dest, std::uint32_t count, std::uint32_t start, std::uint32_t extra) const;
    /// Makes the n bytes at s the text. s may lie in the own buffer.
    void assignCopy(std::uint32_t n, const char *s) {
        if (n > m_capacity) {
            assignBeyond(n, s);
        } else if (m_capacity != 0) {
            if (n != 0) std::memmove(m_data, s, n);
            m_length = n;
            m_data[n] = 0;
        }
    }
    /// Makes the text the join of n1 bytes at s1 and n2 bytes at s2. Either may lie in the own buffer.
    void concatCopy(std::uint32_t n1, const char *s1, std::uint32_t n2, const char *s2);
    /// Appends n bytes at s, which may lie in the own text.
    void concatInPlace(std::uint32_t n, const char *s) {
        if (n > m_capacity - m_length) {
            appendBeyond(n, s);
        } else if (n != 0) {
            char *const end = m_data + m_length;
            m_length += n;
            std::memmove(end, s, n);
            end[n] = 0;
        }
    }
    /// A block of capacity + 1 bytes, not set. To be freed by safeDelete: the library alone takes and frees
    /// the memory of strings.
    static char *newBuffer(std::uint32_t capacity);
    /// Takes over a block from newBuffer(capacity), terminates it and frees the former one.
    void install(char *buffer, std::uint32_t length, std::uint32_t capacity) noexcept {
        safeDelete(m_data);
        m_data = buffer;
        m_length = length;
        m_capacity = capacity;
        buffer[length] = 0;
    }
    /// Frees p unless it is null or the shared empty buffer.
    static void safeDelete(char *p) noexcept;
    /// Back to the shared empty buffer, without freeing.
    void init() noexcept {
        m_data = s_empty;
        m_length = 0;
        m_capacity = 0;
    }
    /// Sets length and terminator. The shared empty buffer, which other threads read, is not written.
    void setLength(std::uint32_t n) noexcept {
        m_length = n;
        if (m_capacity != 0) m_data[n] = 0;
    }

    /// Takes the next byte from the stream's buffer. False, with the stream's end-of-file state set, when
    /// there is none.
    static bool getChar(std::istream &stream, char &c);
    /// The same for the next byte that is not white space.
    static bool getCharSw(std::istream &stream, char &c);
    /// Appends one byte that was read.
    void putChar(char c);
    /// Appends the bytes up to delim, which is consumed and not stored, or to the end of the stream. With
    /// skipWhite the white space before them is left out, delim included where it is white.
    std::istream &readToDelim(std::istream &stream, char delim, bool skipWhite);

    static char s_empty[1];  // the shared empty buffer, always 0

    char *m_data = s_empty;  // m_capacity + 1 bytes, or s_empty when m_capacity is 0; m_data[m_length] is 0
    std::uint32_t m_length = 0;    // without the terminator
    std::uint32_t m_capacity = 0;  // without the terminator

private:
    [[noreturn]] static void throwTooLong();
    void assignBeyond(std::uint32_t n, const char *s);
    void appendBeyond(std::uint32_t n, const char *s);
};

/// A range of a string's bytes. It owns nothing, is not terminated at its end, and stays valid as long as its
/// owner lives and keeps its buffer. Assigning to it writes into the owner.
class KV_EXPORT KV_SubStr {
public:
    /// Writes the source's bytes in the place of the range. With equal lengths they overwrite it; a source
    /// that holds a 0 is copied up to that, and the rest of the range is filled with 0. With other lengths
    /// the owner's tail moves, and the range, which goes on describing its old length, should be used no
    /// further. A tail that moves towards the front does so up to its first 0 only: in the place of what
    /// stood behind that 0, the owner keeps the bytes that lay there before. The source may be the owner, or
    /// another range of it, as it was before.
    KV_SubStr &operator=(const KV_SubStr &source);
    KV_SubStr &operator=(const KV_Str &source);

    /// Writes a copy of the range, as KV_Str does.
    void PrintOn(std::ostream &stream) const;

    std::uint32_t Size() const noexcept { return m_length; }
    bool IsEmpty() const noexcept { return m_length == 0; }

    /// A new string that holds the joined bytes.
    KV_Str operator+(const KV_SubStr &other) const;
    KV_Str operator+(const KV_Str &other) const;

protected:
    friend class KV_Str;

    KV_SubStr() noexcept = default;
    /// length bytes from start on, which lies in owner's buffer. Nothing is checked.
    KV_SubStr(KV_Str *owner, char *start, std::uint32_t length) noexcept
        : m_start(start), m_length(length), m_owner(owner) {}
    KV_SubStr(const KV_SubStr &) noexcept = default;
    KV_SubStr(KV_SubStr &&) noexcept = default;
    ~KV_SubStr() = default;

    /// Negative, 0 or positive: as strncmp over the shorter length; after that the longer side is the
    /// greater.
    int compare(const KV_SubStr &other) const noexcept;
    /// As strncmp over the range's length; after that the longer side is the greater. s must not be null.
    int compare(const KV_Str &other) const noexcept;
    int compare(const char *s) const noexcept;

    /// Writes n bytes of src in the place of the range: overwrites when the lengths are equal, else replaces.
    /// A range without an owner takes nothing.
    void writeThrough(const char *src, std::size_t n);
    /// Puts n bytes of src in the place of the range; the owner's tail moves to fit. src may lie in the
    /// owner's buffer. Bytes of src behind its first 0 become 0. A tail that moves down does so up to its
    /// first 0 only. Writes a line of detail to the tracer.
    void replace(const char *src, std::uint32_t n);

    char *m_start = nullptr;
    std::uint32_t m_length = 0;
    KV_Str *m_owner = nullptr;
};

/// A string of plain bytes. A null pointer counts as the empty text wherever a text is taken.
class KV_EXPORT KV_String : public KV_Str {
public:
    KV_String() noexcept = default;
    explicit KV_String(std::uint32_t n) : KV_Str(n) {}
    KV_String(const KV_String &) = default;
    KV_String(KV_String &&) noexcept = default;
    /// All bytes of any string or range, 0 bytes included.
    explicit KV_String(const KV_Str &other) : KV_Str(other) {}
    KV_String(const KV_SubString &range);
    /// The bytes of s up to its first 0.
    KV_String(const char *s);
    /// Exactly n bytes of s, 0 bytes included.
    KV_String(const char *s, std::uint32_t n);
    /// n times c.
    KV_String(char c, std::uint32_t n);
    ~KV_String() override = default;

    KV_String &operator=(const KV_String &) = default;
    KV_String &operator=(KV_String &&) noexcept = default;
    KV_String &operator=(const KV_Str &other) {
        KV_Str::operator=(other);
        return *this;
    }
    KV_String &operator=(const KV_SubStr &range) {
        KV_Str::operator=(range);
        return *this;
    }
    /// s may lie in the own buffer.
    KV_String &operator=(const char *s);

    std::uint32_t Length() const noexcept { return m_length; }
    /// The byte at i, which must lie within the text.
    char &At(std::uint32_t i) noexcept { return m_data[i]; }
    char At(std::uint32_t i) const noexcept { return m_data[i]; }
    char &operator[](std::uint32_t i) noexcept { return m_data[i]; }
    char operator[](std::uint32_t i) const noexcept { return m_data[i]; }
    /// The range of len bytes from pos on. Nothing is checked: it must lie within the text. A range of a
    /// constant string can be written, too.
    KV_SubString operator()(std::uint32_t pos, std::uint32_t len);
    KV_SubString operator()(std::uint32_t pos, std::uint32_t len) const;

    KV_String &operator+=(const KV_Str &other) {
        concatInPlace(other.Size(), other.Ptr());
        return *this;
    }
    KV_String &operator+=(const KV_SubStr &range) {
        KV_Str::operator+=(range);
        return *this;
    }
    KV_String &operator+=(const char *s) {
        if (s != nullptr) concatInPlace(toLength(std::strlen(s)), s);
        return *this;
    }
    KV_String &operator+=(char c) {
        concatInPlace(1, &c);
        return *this;
    }

    /// A new string that holds the joined bytes.
    KV_String operator+(const KV_String &other) const { return *this + static_cast<const KV_Str &>(other); }
    KV_String operator+(const KV_Str &other) const;
    KV_String operator+(const KV_SubString &range) const;
    KV_String operator+(const char *s) const;
    KV_String operator+(char c) const;

    /// Position of what is looked for, at or after start, which must lie within the text; -1 when it is not
    /// found. The search ends at the first 0, and 0 itself is not found. The empty text is found at start.
    int Find(char c, int start = 0) const noexcept;
    int Find(const char *s, int start = 0) const noexcept;
    /// Position of the first byte that is one of set's.
    int FindOneOf(const char *set, int start = 0) const noexcept;
    /// Position of the last c, -1 when there is none before the first 0; the position of that for c = 0.
    int ReverseFind(char c) const noexcept;
    /// Turns every from up to the first 0 into to. A from of 0 changes nothing. A to of 0 leaves the length
    /// as it is.
    void FindAndReplace(char from, char to) noexcept;

    /// Clears the top bit of every byte.
    KV_String &ToAscii() noexcept;
    /// Changes the letters of the current locale for which isupper or islower holds, by 32.
    KV_String &ToLower() noexcept;
    KV_String &ToUpper() noexcept;
    /// Drop the white space (isspace) at the front or the end. The buffer stays.
    KV_String &TrimLeft() noexcept;
    KV_String &TrimRight() noexcept;

    /// Replaces the text by what printf makes of format and the arguments, up to the first 0 that they put
    /// into it. Arguments may lie in the own buffer. The capacity stays when the text and an estimate, which
    /// gives each number 32 bytes, fit into it, and grows as by ReSize otherwise. The C library sees the
    /// format as it stands, twice when the estimate was too small; also %n does what it does there. The text
    /// stays as it is for an empty or null format, and for one that the C library cannot format.
    KV_String &Format(const char *format, ...) KV_PRINTF_LIKE(2, 3);

    /// Append a line, the bytes up to delim, or those up to a 0 byte. The end itself is consumed and not
    /// stored. Bytes come from the stream's buffer, whatever the stream's state; its end sets the end-of-file
    /// state. A line ends at LF, CR or CR LF. With skipWhite, white space and line ends before its first byte
    /// are left out.
    std::istream &ReadLine(std::istream &stream, bool skipWhite = false);
    std::istream &ReadToDelim(std::istream &stream, char delim);
    std::istream &ReadString(std::istream &stream);
};

/// A range of a KV_String, which its call operator makes. The operators that take a const char * need one
/// that is not null, but for the assignment and the joins, which take null as the empty text.
class KV_EXPORT KV_SubString : public KV_SubStr {
public:
    KV_SubString(const KV_SubString &) noexcept = default;
    KV_SubString(KV_SubString &&) noexcept = default;
    ~KV_SubString() = default;

    KV_SubString &operator=(const KV_SubString &source) {
        KV_SubStr::operator=(source);
        return *this;
    }
    KV_SubString &operator=(const KV_SubStr &source) {
        KV_SubStr::operator=(source);
        return *this;
    }
    KV_SubString &operator=(const KV_Str &source) {
        KV_SubStr::operator=(source);
        return *this;
    }
    KV_SubString &operator=(const char *s);

    std::uint32_t Length() const noexcept { return m_length; }
    /// The range's first byte; the text is not terminated at the range's end.
    const char *Ptr() const noexcept { return m_start; }
    /// Offset of the range's first byte in the owner.
    std::uint32_t Position() const noexcept;

    /// Change the range's letters in the owner, as KV_String does.
    void ToLower() noexcept;
    void ToUpper() noexcept;

    /// A new string that holds the joined bytes.
    using KV_SubStr::operator+;
    KV_String operator+(const char *s) const;

    bool operator==(const KV_SubString &other) const noexcept { return compare(other) == 0; }
    bool operator!=(const KV_SubString &other) const noexcept { return compare(other) != 0; }
    bool operator<(const KV_SubString &other) const noexcept { return compare(other) < 0; }
    bool operator<=(const KV_SubString &other) const noexcept { return compare(other) <= 0; }
    bool operator>(const KV_SubString &other) const noexcept { return compare(other) > 0; }
    bool operator>=(const KV_SubString &other) const noexcept { return compare(other) >= 0; }
    bool operator==(const KV_Str &other) const noexcept { return compare(other) == 0; }
    bool operator!=(const KV_Str &other) const noexcept { return compare(other) != 0; }
    bool operator<(const KV_Str &other) const noexcept { return compare(other) < 0; }
    bool operator<=(const KV_Str &other) const noexcept { return compare(other) <= 0; }
    bool operator>(const KV_Str &other) const noexcept { return compare(other) > 0; }
    bool operator>=(const KV_Str &other) const noexcept { return compare(other) >= 0; }
    bool operator==(const char *s) const noexcept { return compare(s) == 0; }
    bool operator!=(const char *s) const noexcept { return compare(s) != 0; }
    bool operator<(const char *s) const noexcept { return compare(s) < 0; }
    bool operator<=(const char *s) const noexcept { return compare(s) <= 0; }
    bool operator>(const char *s) const noexcept { return compare(s) > 0; }
    bool operator>=(const char *s) const noexcept { return compare(s) >= 0; }

private:
    friend class KV_String;
    KV_SubString(KV_String *owner, char *start, std::uint32_t length) noexcept
        : KV_SubStr(owner, start, length) {}

    template <class Other>
    int compare(const Other &other) const noexcept {
        return KV_SubStr::compare(other);
    }
};

/// Equal lengths and equal bytes, 0 bytes included.
inline bool operator==(const KV_Str &a, const KV_Str &b) noexcept {
    return a.Size() == b.Size() && std::memcmp(a.Ptr(), b.Ptr(), a.Size()) == 0;
}
inline bool operator!=(const KV_Str &a, const KV_Str &b) noexcept { return !(a == b); }
/// The order of Compare.
inline bool operator<(const KV_Str &a, const KV_Str &b) noexcept { return std::strcmp(a.Ptr(), b.Ptr()) < 0; }
inline bool operator<=(const KV_Str &a, const KV_Str &b) noexcept { return !(b < a); }
inline bool operator>(const KV_Str &a, const KV_Str &b) noexcept { return b < a; }
inline bool operator>=(const KV_Str &a, const KV_Str &b) noexcept { return !(a < b); }

namespace kv::detail {

/// Negative, 0 or positive: the order of Compare; a null pointer counts as the empty text.
inline int compareText(const char *a, const char *b) noexcept {
    return std::strcmp(a != nullptr ? a : "", b != nullptr ? b : "");
}

}  // namespace kv::detail

/// The order of Compare, also for == and !=. A null pointer counts as the empty text.
inline bool operator==(const KV_Str &a, const char *b) noexcept {
    return kv::detail::compareText(a.Ptr(), b) == 0;
}
inline bool operator!=(const KV_Str &a, const char *b) noexcept {
    return kv::detail::compareText(a.Ptr(), b) != 0;
}
inline bool operator<(const KV_Str &a, const char *b) noexcept {
    return kv::detail::compareText(a.Ptr(), b) < 0;
}
inline bool operator<=(const KV_Str &a, const char *b) noexcept {
    return kv::detail::compareText(a.Ptr(), b) <= 0;
}
inline bool operator>(const KV_Str &a, const char *b) noexcept {
    return kv::detail::compareText(a.Ptr(), b) > 0;
}
inline bool operator>=(const KV_Str &a, const char *b) noexcept {
    return kv::detail::compareText(a.Ptr(), b) >= 0;
}
inline bool operator==(const char *a, const KV_Str &b) noexcept { return b == a; }
inline bool operator!=(const char *a, const KV_Str &b) noexcept { return b != a; }
inline bool operator<(const char *a, const KV_Str &b) noexcept { return b > a; }
inline bool operator<=(const char *a, const KV_Str &b) noexcept { return b >= a; }
inline bool operator>(const char *a, const KV_Str &b) noexcept { return b < a; }
inline bool operator>=(const char *a, const KV_Str &b) noexcept { return b <= a; }

/// The sub-string's comparison, turned round.
inline bool operator==(const KV_Str &a, const KV_SubString &b) noexcept { return b.operator==(a); }
inline bool operator!=(const KV_Str &a, const KV_SubString &b) noexcept { return b.operator!=(a); }
inline bool operator<(const KV_Str &a, const KV_SubString &b) noexcept { return b > a; }
inline bool operator<=(const KV_Str &a, const KV_SubString &b) noexcept { return b >= a; }
inline bool operator>(const KV_Str &a, const KV_SubString &b) noexcept { return b < a; }
inline bool operator>=(const KV_Str &a, const KV_SubString &b) noexcept { return b <= a; }

/// A new string that holds the joined bytes.
KV_EXPORT KV_String operator+(const char *a, const KV_String &b);
KV_EXPORT KV_String operator+(const char *a, const KV_SubString &b);
KV_EXPORT KV_String operator+(char a, const KV_String &b);

/// Write by PrintOn.
KV_EXPORT std::ostream &operator<<(std::ostream &stream, const KV_Str &text);
KV_EXPORT std::ostream &operator<<(std::ostream &stream, const KV_SubStr &text);
