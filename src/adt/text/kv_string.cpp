#include "kvbase/text/kv_string.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include "adt/text/byte_range.h"

using kv::detail::moveBytes;

namespace {

const char *orEmpty(const char *s) { return s != nullptr ? s : ""; }

bool isWhite(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

// The two cases of a letter are taken to lie 32 apart, in any locale.
void lower(char *s, std::uint32_t n) {
    for (char *end = s + n; s != end; ++s) {
        const auto c = static_cast<unsigned char>(*s);
        if (std::isupper(c) != 0) *s = static_cast<char>(c + 32);
    }
}

void upper(char *s, std::uint32_t n) {
    for (char *end = s + n; s != end; ++s) {
        const auto c = static_cast<unsigned char>(*s);
        if (std::islower(c) != 0) *s = static_cast<char>(c - 32);
    }
}

int positionIn(const char *text, const char *found) {
    return found == nullptr ? -1 : static_cast<int>(found - text);
}

// The join of two texts. A sum of lengths that is too large throws as room for it is made.
template <class Result, class Left, class Right>
Result joined(const Left &left, std::uint64_t leftLength, const Right &right, std::uint64_t rightLength) {
    const std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    Result result(static_cast<std::uint32_t>(std::min(leftLength + rightLength, most)));
    result += left;
    result += right;
    return result;
}

}  // namespace

KV_String::KV_String(const KV_SubString &range) : KV_Str(static_cast<const KV_SubStr &>(range)) {}

KV_String::KV_String(const char *s) {
    s = orEmpty(s);
    const std::uint32_t length = toLength(std::strlen(s)), capacity = capacityFor(length);
    m_data =
        static_cast<char *>(::operator new (std::size_t{capacity} + 1));  // as newBuffer, without the call
    m_length = length;
    m_capacity = capacity;
    std::memcpy(m_data, s, std::size_t{length} + 1);
}

KV_String::KV_String(const char *s, std::uint32_t n) {
    if (s == nullptr) n = 0;
    allocBuffer(toLength(n));
    moveBytes(m_data, s, n);
}

KV_String::KV_String(char c, std::uint32_t n) {
    allocBuffer(toLength(n));
    std::memset(m_data, c, m_length);
}

KV_String &KV_String::operator=(const char *s) {
    s = orEmpty(s);
    assignCopy(toLength(std::strlen(s)), s);
    return *this;
}

KV_SubString KV_String::operator()(std::uint32_t pos, std::uint32_t len) { return {this, m_data + pos, len}; }

KV_SubString KV_String::operator()(std::uint32_t pos, std::uint32_t len) const {
    return (*const_cast<KV_String *>(this))(pos, len);
}

int KV_String::Find(char c, int start) const noexcept {
    return c == 0 ? -1 : positionIn(m_data, std::strchr(m_data + start, c));
}

int KV_String::Find(const char *s, int start) const noexcept {
    return positionIn(m_data, std::strstr(m_data + start, orEmpty(s)));
}

int KV_String::FindOneOf(const char *set, int start) const noexcept {
    return positionIn(m_data, std::strpbrk(m_data + start, orEmpty(set)));
}

int KV_String::ReverseFind(char c) const noexcept { return positionIn(m_data, std::strrchr(m_data, c)); }

void KV_String::FindAndReplace(char from, char to) noexcept {
    for (char *s = m_data; *s != 0; ++s) {
        if (*s == from) *s = to;
    }
}

KV_String &KV_String::ToAscii() noexcept {
    for (std::uint32_t i = 0; i < m_length; ++i) {
        m_data[i] = static_cast<char>(m_data[i] & 0x7F);
    }
    return *this;
}

KV_String &KV_String::ToLower() noexcept {
    lower(m_data, m_length);
    return *this;
}

KV_String &KV_String::ToUpper() noexcept {
    upper(m_data, m_length);
    return *this;
}

KV_String &KV_String::TrimLeft() noexcept {
    std::uint32_t white = 0;
    while (white < m_length && isWhite(m_data[white])) {
        ++white;
    }
    moveBytes(m_data, m_data + white, m_length - white);
    setLength(m_length - white);
    return *this;
}

KV_String &KV_String::TrimRight() noexcept {
    std::uint32_t length = m_length;
    while (length > 0 && isWhite(m_data[length - 1])) {
        --length;
    }
    setLength(length);
    return *this;
}

KV_SubString &KV_SubString::operator=(const char *s) {
    s = orEmpty(s);
    writeThrough(s, std::strlen(s));
    return *this;
}

std::uint32_t KV_SubString::Position() const noexcept {
    return m_owner == nullptr ? 0 : static_cast<std::uint32_t>(m_start - m_owner->Ptr());
}

void KV_SubString::ToLower() noexcept { lower(m_start, m_length); }

void KV_SubString::ToUpper() noexcept { upper(m_start, m_length); }

KV_String KV_String::operator+(const KV_Str &other) const {
    return joined<KV_String>(*this, m_length, other, other.Size());
}

KV_String KV_String::operator+(const KV_SubString &range) const {
    return joined<KV_String>(*this, m_length, range, range.Size());
}

KV_String KV_String::operator+(const char *s) const {
    s = orEmpty(s);
    return joined<KV_String>(*this, m_length, s, std::strlen(s));
}

KV_String KV_String::operator+(char c) const { return joined<KV_String>(*this, m_length, c, 1); }

KV_String KV_SubString::operator+(const char *s) const {
    s = orEmpty(s);
    return joined<KV_String>(*this, m_length, s, std::strlen(s));
}

KV_Str KV_SubStr::operator+(const KV_SubStr &other) const {
    return joined<KV_Str>(*this, m_length, other, other.m_length);
}

KV_Str KV_SubStr::operator+(const KV_Str &other) const {
    return joined<KV_Str>(*this, m_length, other, other.Size());
}

KV_String operator+(const char *a, const KV_String &b) {
    a = orEmpty(a);
    return joined<KV_String>(a, std::strlen(a), b, b.Size());
}

KV_String operator+(const char *a, const KV_SubString &b) {
    a = orEmpty(a);
    return joined<KV_String>(a, std::strlen(a), b, b.Size());
}

KV_String operator+(char a, const KV_String &b) { return joined<KV_String>(a, 1, b, b.Size()); }
