// Conversions of buffers between UTF-8, Latin-1 and 16-bit units.

#include "kvbase/text/kv_utf.h"

#include <type_traits>

namespace {

constexpr int kTooSmall = -1;
constexpr int kReplaced = -2;
constexpr int kLongestRune = 3;
constexpr unsigned short kErrorRune = 0x80;
constexpr unsigned int kLatin1End = 0x100;
constexpr unsigned int kUnicodeEnd = 0x10000;

// Runes of single elements, up to a length or, when that is negative, to a terminator that the reader looks
// for.
template <class Element>
class PlainSource {
public:
    PlainSource(const Element *source, int length) : m_next(source), m_left(length) {}
    bool isAtEnd() const { return m_left == 0; }
    unsigned short take() {
        if (m_left > 0) --m_left;
        return static_cast<unsigned short>(static_cast<std::make_unsigned_t<Element>>(*m_next++));
    }

private:
    const Element *m_next;
    int m_left;
};

// Runes of UTF-8; a sequence that the length cuts is bad.
class Utf8Source {
public:
    Utf8Source(const char *source, int length) : m_next(source), m_left(length) {}
    bool isAtEnd() const { return m_left == 0; }
    unsigned short take() {
        unsigned short rune = kErrorRune;
        const int length = m_left < 0 || fullrune(m_next, m_left) != 0 ? chartorune(&rune, m_next) : 1;
        m_next += length;
        if (m_left > 0) m_left -= length;
        return rune;
    }

private:
    const char *m_next;
    int m_left;
};

// What all conversions share. convert stores and counts what it stores; it runs only when there is a source
// and a place.
template <class Element, class Source, class Convert>
int run(Element *target, int size, const Source *source, int *written, Convert convert) {
    int count = 0;
    int result = kTooSmall;
    if (target != nullptr && source != nullptr && size >= 1) {
        result = convert(count);
    } else if (target != nullptr) {
        target[0] = 0;
        result = 0;
    }
    if (written != nullptr) *written = count;
    return result;
}

// Stores each rune as one element, the terminator too; those from limit on and the error rune as "?".
template <class Element, class Source>
int store(Element *target, int size, Source runes, unsigned int limit, int &count) {
    int result = 0;
    while (!runes.isAtEnd()) {
        if (count >= size) return kTooSmall;
        unsigned short rune = runes.take();
        if (rune >= limit || rune == kErrorRune) {
            rune = '?';
            result = kReplaced;
        }
        target[count++] = static_cast<Element>(rune);
        if (rune == 0) return result;
    }
    if (count < size) target[count] = 0;
    return result;
}

}  // namespace

int UTFfromLatin1(char *target, int size, const char *source, int sourceLength, int *written) {
    return run(target, size, source, written, [=](int &count) {
        if (size < kLongestRune) return kTooSmall;
        for (PlainSource<char> runes(source, sourceLength); !runes.isAtEnd();) {
            if (count > size - kLongestRune) return kTooSmall;
            const unsigned short rune = runes.take();
            const int length = runetochar(target + count, &rune);
            if (rune == 0) return 0;
            count += length;
        }
        target[count] = 0;  // fits: a byte takes 2 at most of the 3 that were left before it
        return 0;
    });
}

int UTFfromUniCode(char *target, int size, const unsigned short *source, int sourceLength, int *written) {
    return run(target, size, source, written, [=](int &count) {
        for (PlainSource<unsigned short> runes(source, sourceLength); !runes.isAtEnd();) {
            const unsigned short rune = runes.take();
            if (rune == 0) break;
            if (count > size - kLongestRune) return kTooSmall;
            count += runetochar(target + count, &rune);
        }
        if (count < size) target[count] = 0;
        return 0;
    });
}

int UTFtoLatin1(char *target, int size, const char *source, int sourceLength, int *written) {
    return run(target, size, source, written, [=](int &count) {
        return store(target, size, Utf8Source(source, sourceLength), kLatin1End, count);
    });
}

int UTFtoUnicode(unsigned short *target, int size, const char *source, int sourceLength, int *written) {
    return run(target, size, source, written, [=](int &count) {
        return store(target, size, Utf8Source(source, sourceLength), kUnicodeEnd, count);
    });
}

int UnicodefromLatin1(unsigned short *target, int size, const char *source, int sourceLength, int *written) {
    return run(target, size, source, written, [=](int &count) {
        for (PlainSource<char> runes(source, sourceLength); !runes.isAtEnd(); ++count) {
            if (count >= size) return kTooSmall;
            target[count] = runes.take();
            if (target[count] == 0) return 0;
        }
        if (count < size) target[count] = 0;
        return 0;
    });
}

int UnicodetoLatin1(char *target, int size, const unsigned short *source, int sourceLength, int *written) {
    return run(target, size, source, written, [=](int &count) {
        return store(target, size, PlainSource<unsigned short>(source, sourceLength), kLatin1End, count);
    });
}
