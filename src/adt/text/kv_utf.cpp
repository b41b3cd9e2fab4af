#include "kvbase/text/kv_utf.h"

#include <cstring>

namespace {

constexpr unsigned short kErrorRune = 0x80;
constexpr unsigned int kAlone = 0xA0;        // a byte below is a rune of its own for counting and searching
constexpr unsigned int kAloneGood = 0xA1;    // and one below this for isutfstr
constexpr std::int32_t kByteSearchEnd = 33;  // runes below are looked for as bytes

unsigned int byteAt(const char *s) { return static_cast<unsigned char>(*s); }

// The six bits of a continuation byte; 0x40 and above for any other byte, the terminator included.
unsigned int continuation(const char *s) { return byteAt(s) ^ 0x80U; }

// Bytes of the rune at s, which is not the terminator.
unsigned int step(const char *s) {
    if (byteAt(s) < kAlone) return 1;
    unsigned short rune;
    return static_cast<unsigned int>(chartorune(&rune, s));
}

char *searchResult(const char *s) { return const_cast<char *>(s); }

}  // namespace

int chartorune(unsigned short *rune, const char *s) {
    const unsigned int c0 = byteAt(s);
    if (c0 < 0x80) {
        *rune = static_cast<unsigned short>(c0);
        return 1;
    }
    *rune = kErrorRune;
    const unsigned int c1 = continuation(s + 1);
    if (c1 >= 0x40) return 1;
    if (c0 >= 0xE0) {
        const unsigned int c2 = continuation(s + 2);
        const unsigned int value = ((c0 << 12) | (c1 << 6) | c2) & 0xFFFFU;
        if (c2 >= 0x40 || c0 >= 0xF0 || value <= 0x7FF) return 1;
        *rune = static_cast<unsigned short>(value);
        return 3;
    }
    const unsigned int value = ((c0 & 0x1FU) << 6) | c1;
    if (c0 < 0xC0 || value <= 0x7F) return 1;
    *rune = static_cast<unsigned short>(value);
    return 2;
}

int runetochar(char *s, const unsigned short *rune) {
    const unsigned int value = *rune;
    const int length = runelen(*rune);
    if (length == 1) {
        s[0] = static_cast<char>(value);
    } else if (length == 2) {
        s[0] = static_cast<char>(0xC0U | (value >> 6));
        s[1] = static_cast<char>(0x80U | (value & 0x3FU));
    } else {
        s[0] = static_cast<char>(0xE0U | (value >> 12));
        s[1] = static_cast<char>(0x80U | ((value >> 6) & 0x3FU));
        s[2] = static_cast<char>(0x80U | (value & 0x3FU));
    }
    return length;
}

int runelen(unsigned short rune) { return rune < 0x80 ? 1 : rune < 0x800 ? 2 : 3; }

int fullrune(const char *s, int n) {
    if (n < 1) return 0;
    const unsigned int c0 = byteAt(s);
    const int needed = c0 < 0x80 ? 1 : c0 < 0xE0 ? 2 : 3;
    return n >= needed ? 1 : 0;
}

int isutf(const char *s) {
    unsigned short rune;
    const int length = chartorune(&rune, s);
    return rune == kErrorRune ? 0 : length;
}

int isutfstr(const char *s) {
    if (s == nullptr) return 1;
    while (*s != 0) {
        const int length = byteAt(s) < kAloneGood ? 1 : isutf(s);
        if (length == 0) return 0;
        s += length;
    }
    return 1;
}

unsigned int utflen(const char *s) {
    unsigned int count = 0;
    if (s == nullptr) return 0;
    for (; *s != 0; s += step(s))
        ++count;
    return count;
}

int utfbytepos(const char *s, unsigned int n) { return static_cast<int>(utfnsize(s, n)); }

int utfrunepos(const char *s, unsigned int byte) {
    if (s == nullptr) return 0;
    unsigned int offset = 0;
    int count = 0;
    for (; offset < byte && s[offset] != 0; offset += step(s + offset))
        ++count;
    return offset == byte ? count : -1;
}

unsigned int utfnsize(const char *s, unsigned int n) {
    if (s == nullptr) return 0;
    unsigned int offset = 0;
    for (; n > 0 && s[offset] != 0; --n)
        offset += step(s + offset);
    return offset;
}

char *utfrune(const char *s, std::int32_t c) {
    if (s == nullptr) return nullptr;
    if (c < kByteSearchEnd) return searchResult(std::strchr(s, c));
    while (*s != 0) {
        auto rune = static_cast<unsigned short>(byteAt(s));
        const int length = rune < kAlone ? 1 : chartorune(&rune, s);
        if (rune == c) return searchResult(s);
        s += length;
    }
    return nullptr;
}

char *utfrrune(const char *s, std::int32_t c) {
    if (s == nullptr) return nullptr;
    if (c < kByteSearchEnd) return searchResult(std::strrchr(s, c));
    char *last = nullptr;
    for (char *found = utfrune(s, c); found != nullptr; found = utfrune(found + step(found), c))
        last = found;
    return last;
}

char *utfutf(const char *s, const char *sub) {
    if (s == nullptr || sub == nullptr) return nullptr;
    return searchResult(std::strstr(s, sub));
}
