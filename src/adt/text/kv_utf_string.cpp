#include "kvbase/text/kv_utf_string.h"

#include <charconv>
#include <cstring>
#include <istream>
#include <iterator>
#include <ostream>
#include <string_view>

#include "adt/text/byte_range.h"
#include "kvbase/text/kv_string7bit.h"

namespace {

constexpr unsigned int kAlone = 0xA0;  // a byte below is written as it is

// Hexadecimal alone while it lives, then the stream's own flags again: with "left" among them a width would
// split the text behind its first byte, with "unitbuf" each byte would be flushed.
class HexFlags {
public:
    explicit HexFlags(std::ostream &stream) : m_stream(stream), m_flags(stream.flags(std::ios_base::hex)) {}
    ~HexFlags() { m_stream.flags(m_flags); }
    HexFlags(const HexFlags &) = delete;
    HexFlags &operator=(const HexFlags &) = delete;

private:
    std::ostream &m_stream;
    std::ios_base::fmtflags m_flags;
};

}  // namespace

KV_UTFString::KV_UTFString(const KV_UTFSubString &range) : KV_Str(range) {}

KV_UTFString::KV_UTFString(const char *s) { *this = s; }

KV_UTFString::KV_UTFString(const KV_String &s) : KV_Str(s) { sanitise(); }

KV_UTFString::KV_UTFString(const KV_SubString &range) : KV_Str(range) {
    if (isutfstr(range.Ptr()) == 0) KV_Str::operator=(String7Bit(range));
    sanitise();  // the range's end may cut a rune
}

KV_UTFString &KV_UTFString::operator=(const KV_UTFSubString &range) {
    KV_Str::operator=(range);
    return *this;
}

KV_UTFString &KV_UTFString::operator=(const KV_String &s) {
    KV_Str::operator=(s);
    sanitise();
    return *this;
}

KV_UTFString &KV_UTFString::operator=(const char *s) {
    if (isutfstr(s) == 0)
        KV_Str::operator=(String7Bit(s));
    else if (s != nullptr)
        assignCopy(toLength(std::strlen(s)), s);
    else
        assignCopy(0, "");
    return *this;
}

KV_UTFString &KV_UTFString::operator+=(const KV_UTFString &s) {
    KV_Str::operator+=(s);
    return *this;
}

KV_UTFString &KV_UTFString::operator+=(const KV_UTFSubString &range) {
    KV_Str::operator+=(range);
    return *this;
}

KV_UTFString &KV_UTFString::operator+=(const char *s) {
    if (isutfstr(s) == 0)
        KV_Str::operator+=(String7Bit(s));
    else if (s != nullptr)
        concatInPlace(toLength(std::strlen(s)), s);
    return *this;
}

KV_UTFSubString KV_UTFString::operator()(std::uint32_t pos, std::uint32_t len) {
    char *start = m_data + utfnsize(m_data, pos);
    return {this, start, utfnsize(start, len)};
}

KV_UTFSubString KV_UTFString::operator()(std::uint32_t pos, std::uint32_t len) const {
    return const_cast<KV_UTFString &>(*this)(pos, len);
}

int KV_UTFString::Find(const char *s, int start) const {
    const KV_UTFString wanted(s);
    const char *found = std::strstr(Ptr() + start, wanted.Ptr());
    return found != nullptr ? utfrunepos(Ptr(), static_cast<unsigned int>(found - Ptr())) : -1;
}

KV_UTFString KV_UTFString::operator+(const KV_UTFString &s) const {
    KV_UTFString joined;
    joined.concatCopy(Size(), Ptr(), s.Size(), s.Ptr());
    return joined;
}

KV_UTFString KV_UTFString::operator+(const KV_UTFSubString &range) const {
    KV_UTFString joined;
    joined.concatCopy(Size(), Ptr(), range.Size(), range.Ptr());
    return joined;
}

std::istream &KV_UTFString::ReadLine(std::istream &stream, bool skipWhite) {
    return readSanitised(stream, '\n', skipWhite);
}

std::istream &KV_UTFString::ReadString(std::istream &stream) { return readSanitised(stream, 0, false); }

std::istream &KV_UTFString::ReadToDelim(std::istream &stream, char delim) {
    return readSanitised(stream, delim, false);
}

std::istream &KV_UTFString::readSanitised(std::istream &stream, char delim, bool skipWhite) {
    try {
        readToDelim(stream, delim, skipWhite);
    } catch (...) {
        sanitise();
        throw;
    }
    sanitise();
    return stream;
}

void KV_UTFString::PrintOn(std::ostream &stream) const {
    const HexFlags flags(stream);
    for (const char *s = Ptr(); *s != 0;) {
        if (static_cast<unsigned char>(*s) < kAlone) {
            stream << *s++;
            continue;
        }
        unsigned short rune;
        s += chartorune(&rune, s);
        char digits[4];  // of 16 bits; by the stream they would be grouped as its locale has it
        const char *const end = std::to_chars(digits, std::end(digits), rune, 16).ptr;
        stream << '[' << std::string_view(digits, end) << ']';
    }
}

void KV_UTFString::sanitise() noexcept {
    if (isutfstr(m_data) == 0) kv::detail::replaceHighBytes(m_data, m_length);
}

KV_UTFSubString &KV_UTFSubString::operator=(const char *s) {
    KV_SubStr::operator=(KV_UTFString(s));
    return *this;
}

std::uint32_t KV_UTFSubString::Length() const {
    std::uint32_t count = 0;
    for (const char *s = m_start; s < m_start + m_length && *s != 0; s += utfnsize(s, 1))
        ++count;
    return count;
}

std::uint32_t KV_UTFSubString::Position() const {
    return static_cast<std::uint32_t>(
        utfrunepos(m_owner->Ptr(), static_cast<unsigned int>(m_start - m_owner->Ptr())));
}

KV_UTFString operator+(const char *s, const KV_UTFString &b) { return KV_UTFString(s) + b; }

KV_UTFString operator+(const char *s, const KV_UTFSubString &b) { return KV_UTFString(s) + b; }
