// UTF-8 functions, buffer conversions and UTF-8 strings against plain models, on any bytes. The first three
// bytes of the input choose a position, a rune and a length; the rest is the text. Sources and targets are
// blocks of exactly their size, so that the address sanitizer sees any step beside them.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "kvbase/text/kv_system_string.h"
#include "kvbase/text/kv_utf_string.h"
#include "kvbase/text/unicode_utils.h"

#define CHECK(condition)                                                 \
    do {                                                                 \
        if (!(condition)) {                                              \
            std::cerr << __LINE__ << ": " #condition " does not hold\n"; \
            std::abort();                                                \
        }                                                                \
    } while (false)

namespace {

constexpr unsigned short kBad = 0x80;

struct Rune {
    std::size_t offset, length;
    unsigned short value;
};

unsigned int byteOf(const std::string &text, std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
}

bool isIn(unsigned int byte, unsigned int low, unsigned int high) { return low <= byte && byte <= high; }

// The rows of well-formed sequences in the Unicode Standard, table 3-7, up to three bytes and with the
// surrogates.
Rune decode(const std::string &text, std::size_t i) {
    const unsigned int a = byteOf(text, i), b = byteOf(text, i + 1), c = byteOf(text, i + 2);
    if (a <= 0x7F) return {i, 1, static_cast<unsigned short>(a)};
    if (isIn(a, 0xC2, 0xDF) && isIn(b, 0x80, 0xBF))
        return {i, 2, static_cast<unsigned short>(64 * (a % 32) + b % 64)};
    if (isIn(a, 0xE0, 0xEF) && isIn(b, a == 0xE0 ? 0xA0 : 0x80, 0xBF) && isIn(c, 0x80, 0xBF))
        return {i, 3, static_cast<unsigned short>(4096 * (a % 16) + 64 * (b % 64) + c % 64)};
    return {i, 1, kBad};
}

std::string encode(unsigned short rune) {
    const unsigned int tail = 0x80 + rune % 64U, middle = rune / 64U;
    if (rune < 0x80) return {static_cast<char>(rune)};
    if (rune < 0x800) return {static_cast<char>(0xC0 + middle), static_cast<char>(tail)};
    return {static_cast<char>(0xE0 + middle / 64), static_cast<char>(0x80 + middle % 64),
            static_cast<char>(tail)};
}

// All runes; bytes below alone are not decoded.
std::vector<Rune> runesOf(const std::string &text, unsigned int alone) {
    std::vector<Rune> runes;
    for (std::size_t i = 0; i < text.size(); i += runes.back().length)
        runes.push_back(byteOf(text, i) < alone ? Rune{i, 1, static_cast<unsigned short>(byteOf(text, i))}
                                                : decode(text, i));
    return runes;
}

bool isGood(const std::string &text) {
    const std::vector<Rune> runes = runesOf(text, 0xA1);
    return std::none_of(runes.begin(), runes.end(),
                        [&](Rune rune) { return rune.value == kBad && byteOf(text, rune.offset) >= 0xA1; });
}

std::string sanitised(std::string text) {
    if (!isGood(text))
        for (char &c : text)
            if (static_cast<unsigned char>(c) >= 0x80) c = '#';
    return text;
}

std::string bytes(const KV_Str &text) { return {text.Ptr(), text.Size()}; }

// The elements of a source in a block of their own, with a terminator or without.
template <class Element, class Text>
std::unique_ptr<Element[]> blockOf(const Text &text, bool terminated) {
    auto block = std::make_unique<Element[]>(std::max<std::size_t>(text.size() + (terminated ? 1 : 0), 1));
    std::transform(text.begin(), text.end(), block.get(), [](auto c) { return static_cast<Element>(c); });
    return block;
}

struct Expected {
    int result, written;
    std::string utf8;                   // of a conversion to UTF-8
    std::vector<unsigned short> units;  // of any other
    bool terminated;                    // a 0 follows
};

// To UTF-8: needs 3 bytes before each rune, and before the terminator when that counts as one.
Expected toUtf8(const std::vector<unsigned short> &runes, int size, bool terminatorNeedsRoom) {
    Expected expected{0, 0, "", {}, true};
    if (size < 1) return expected;
    if (terminatorNeedsRoom && size < 3) return {-1, 0, "", {}, false};
    for (std::size_t i = 0; i <= runes.size(); ++i) {
        const bool tested = i < runes.size() || terminatorNeedsRoom;
        if (tested && static_cast<int>(expected.utf8.size()) > size - 3) {
            expected.result = -1;
            break;
        }
        if (i < runes.size()) expected.utf8 += encode(runes[i]);
    }
    expected.written = static_cast<int>(expected.utf8.size());
    expected.terminated = expected.result == 0 && expected.written < size;
    return expected;
}

// To single elements: a terminator needs its room, and counts or not.
Expected toUnits(std::vector<unsigned short> runes, int size, bool terminated, bool counted,
                 unsigned int limit, bool replaceBad) {
    if (size < 1) return {0, 0, "", {}, true};
    int result = 0;
    for (unsigned short &rune : runes)
        if (rune >= limit || (replaceBad && rune == kBad)) {
            rune = '?';
            result = -2;
        }
    if (terminated) runes.push_back(0);
    const auto room = static_cast<std::size_t>(size);
    const std::size_t stored = std::min(runes.size(), room);
    const bool fits = runes.size() <= room;
    runes.resize(stored);
    return {fits ? result : -1, static_cast<int>(stored) - (terminated && !counted && fits ? 1 : 0), "",
            runes, fits && (terminated ? false : stored < room)};
}

template <class To, class From, class Convert, class Model>
void checkConversion(Convert convert, const std::vector<From> &source, bool terminated, Model model) {
    const std::unique_ptr<From[]> block = blockOf<From>(source, terminated);
    const int length = terminated ? -1 : static_cast<int>(source.size());
    const int most = 3 * static_cast<int>(source.size()) + 4;
    const int stride = source.size() > 12 ? 1 + most / 16 : 1;  // all sizes for short texts
    for (int size = static_cast<int>(source.size()) % stride; size <= most; size += stride) {
        const auto target = std::make_unique<To[]>(static_cast<std::size_t>(std::max(size, 1)));
        std::fill_n(target.get(), std::max(size, 1), To{'~'});
        int written = -7;
        const int result = convert(target.get(), size, block.get(), length, &written);
        const Expected expected = model(size);
        CHECK(result == expected.result);
        CHECK(written == expected.written);
        const std::size_t stored = std::max(expected.utf8.size(), expected.units.size());
        for (std::size_t i = 0; i < stored; ++i)
            CHECK(target[i] == (expected.utf8.empty() ? static_cast<To>(expected.units[i])
                                                      : static_cast<To>(expected.utf8[i])));
        if (expected.terminated) CHECK(target[stored] == 0);
    }
}

void checkConversions(const std::string &text, bool terminated) {
    const std::vector<char> source(text.begin(), text.end());
    std::vector<unsigned short> decoded, latin1, units;
    for (const Rune &rune : runesOf(text, 0))
        decoded.push_back(rune.value);
    for (const char c : text)
        latin1.push_back(static_cast<unsigned char>(c));
    for (std::size_t i = 0; i + 1 < text.size(); i += 2)
        units.push_back(static_cast<unsigned short>(256 * byteOf(text, i) + byteOf(text, i + 1)));
    std::replace(units.begin(), units.end(), static_cast<unsigned short>(0),
                 static_cast<unsigned short>(0xFFFF));

    checkConversion<char>(UTFfromLatin1, source, terminated, [&](int size) {
        Expected expected = toUtf8(latin1, size, terminated);
        if (size >= 1 && size < 3) expected = {-1, 0, "", {}, false};
        return expected;
    });
    checkConversion<char>(UTFfromUniCode, units, terminated,
                          [&](int size) { return toUtf8(units, size, false); });
    checkConversion<char>(UTFtoLatin1, source, terminated,
                          [&](int size) { return toUnits(decoded, size, terminated, true, 0x100, true); });
    checkConversion<unsigned short>(UTFtoUnicode, source, terminated, [&](int size) {
        return toUnits(decoded, size, terminated, true, 0x10000, true);
    });
    checkConversion<unsigned short>(UnicodefromLatin1, source, terminated, [&](int size) {
        return toUnits(latin1, size, terminated, false, 0x10000, false);
    });
    checkConversion<char>(UnicodetoLatin1, units, terminated,
                          [&](int size) { return toUnits(units, size, terminated, true, 0x100, true); });
}

void checkRunes(const std::string &text, unsigned short wanted) {
    const auto block = blockOf<char>(text, true);
    const char *s = block.get();
    for (std::size_t i = 0; i <= text.size(); ++i) {
        unsigned short rune = 0;
        const Rune expected = decode(text, i);
        CHECK(chartorune(&rune, s + i) == static_cast<int>(expected.length) && rune == expected.value);
        CHECK(isutf(s + i) == (expected.value == kBad ? 0 : static_cast<int>(expected.length)));
    }
    CHECK((isutfstr(s) == 1) == isGood(text));

    const std::vector<Rune> runes = runesOf(text, 0xA0);
    CHECK(utflen(s) == runes.size());
    std::vector<int> indexAt(text.size() + 2, -1);
    indexAt[text.size()] = static_cast<int>(runes.size());
    const char *first = nullptr, *last = nullptr;
    for (std::size_t n = 0; n < runes.size(); ++n) {
        const Rune &rune = runes[n];
        indexAt[rune.offset] = static_cast<int>(n);
        CHECK(utfnsize(s, static_cast<unsigned int>(n)) == rune.offset);
        CHECK(utfbytepos(s, static_cast<unsigned int>(n)) == static_cast<int>(rune.offset));
        if (rune.value != wanted) continue;
        last = s + rune.offset;
        if (first == nullptr) first = last;
    }
    for (std::size_t i = 0; i < indexAt.size(); ++i)
        CHECK(utfrunepos(s, static_cast<unsigned int>(i)) == indexAt[i]);
    CHECK(utfnsize(s, static_cast<unsigned int>(runes.size()) + 1) == text.size());
    CHECK(utfrune(s, wanted) == (wanted == 0 ? s + text.size() : first));
    CHECK(utfrrune(s, wanted) == (wanted == 0 ? s + text.size() : last));
}

std::string printed(const std::string &text) {
    std::ostringstream out;
    for (const Rune &rune : runesOf(text, 0xA0))
        if (byteOf(text, rune.offset) < 0xA0)
            out << text[rune.offset];
        else
            out << '[' << std::hex << rune.value << ']';
    return out.str();
}

void checkStrings(const std::string &text, std::size_t position, std::size_t length) {
    const auto block = blockOf<char>(text, true);
    const std::string good = sanitised(text);
    const KV_UTFString string(block.get());
    CHECK(bytes(string) == good);
    std::ostringstream out;
    out << string;
    CHECK(out.str() == printed(good));

    // A range and the texts that come of it, also within the own buffer.
    const std::vector<Rune> runes = runesOf(good, 0xA0);
    const auto offsetOf = [&](std::size_t n) { return n < runes.size() ? runes[n].offset : good.size(); };
    const std::size_t start = offsetOf(position), end = offsetOf(position + length);
    const auto pos = static_cast<std::uint32_t>(position), len = static_cast<std::uint32_t>(length);
    const std::string range = good.substr(start, end - start);
    CHECK(bytes(KV_UTFString(string(pos, len))) == range);
    CHECK(string(pos, len).Length() == runesOf(range, 0xA0).size());
    CHECK(string(pos, len).Position() == std::min(position, runes.size()));
    const std::size_t found = good.find(range);
    const int index = string.Find(range.c_str(), 0);
    CHECK(index == utfrunepos(good.c_str(), static_cast<unsigned int>(found)));

    const std::string tail = sanitised(good.substr(start / 2));
    KV_UTFString changed(string);
    changed = changed.Ptr() + start / 2;
    CHECK(bytes(changed) == tail);
    changed = string;
    changed += changed.Ptr() + start / 2;
    CHECK(bytes(changed) == good + tail);
    changed = string;
    changed(pos, len) = changed.Ptr() + start / 2;
    CHECK(bytes(changed) == good.substr(0, start) + tail + good.substr(end));
    CHECK(isutfstr(changed) == 1);
    changed = string;
    changed = changed(pos, len);
    CHECK(bytes(changed) == range);
    std::istringstream in(text);
    KV_UTFString read(string);
    read.ReadString(in);
    CHECK(bytes(read) == sanitised(good + text));
}

class CodePage : public KV_TextEncodingConverter {
public:
    explicit CodePage(int number) { mCodePage = number; }
};

// Outputs of some sizes below and around that of the text are always terminated.
void checkEncodings(const std::string &text, unsigned int choice) {
    const auto block = blockOf<char>(text, true);
    const int numbers[] = {65001, 1252, 932};
    const CodePage page(numbers[choice % 3]);
    for (std::size_t size = 1 + choice % 7; size <= 3 * text.size() + 1; size += 1 + text.size() / 2) {
        const auto out = std::make_unique<char[]>(size);
        std::fill_n(out.get(), size, '~');
        page.Utf2Text(block.get(), out.get(), static_cast<std::int32_t>(size));
        CHECK(std::memchr(out.get(), 0, size) != nullptr);
        std::fill_n(out.get(), size, '~');
        page.Text2Utf(block.get(), out.get(), static_cast<std::int32_t>(size));
        CHECK(std::memchr(out.get(), 0, size) != nullptr);
    }
    const KV_WString wide = UnicodeUtils::CreateWideStringFromStdString(text);
    const std::string narrow = UnicodeUtils::CreateStdStringFromWideString(wide);
    CHECK(UnicodeUtils::CreateWideStringFromStdString(narrow) == wide);

    const KV_String plain(block.get());
    const std::unique_ptr<unsigned short[]> units(TranslateKVStringTo16BitUnicodeBE(plain));
    std::size_t count = 0;
    for (const Rune &rune : runesOf(text, 0)) {
        const auto *unit = reinterpret_cast<const unsigned char *>(&units[count++]);
        CHECK(256 * unit[0] + unit[1] == (rune.value == kBad ? '?' : rune.value));
    }
    CHECK(units[count] == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < 3 || size > 2048) return 0;
    std::string text(size - 3, 0);
    std::transform(data + 3, data + size, text.begin(),
                   [](std::uint8_t byte) { return static_cast<char>(byte); });
    std::replace(text.begin(), text.end(), '\0', '\x01');

    const Rune first = decode(text, 0);  // some rune that occurs, or the one of a byte
    checkRunes(text, data[1] % 2 == 0 ? first.value : data[1]);
    checkConversions(text, true);
    checkConversions(text, false);
    checkStrings(text, data[0], data[2]);
    checkEncodings(text, data[2]);
    return 0;
}
