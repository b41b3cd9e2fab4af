#include "platform/utf16.h"

#include <cstddef>
#include <cstdint>

namespace kv::detail {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

// What may follow a lead byte: the number of continuation bytes, and the range of the first of them.
struct Lead {
    unsigned tail;
    unsigned char low, high;
};

// Unicode 15.0, table 3-7. No tail for bytes that cannot begin a sequence.
Lead leadOf(unsigned char byte) {
    if (byte >= 0xC2 && byte <= 0xDF) return {1, 0x80, 0xBF};
    if (byte == 0xE0) return {2, 0xA0, 0xBF};
    if (byte == 0xED) return {2, 0x80, 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {2, 0x80, 0xBF};
    if (byte == 0xF0) return {3, 0x90, 0xBF};
    if (byte >= 0xF1 && byte <= 0xF3) return {3, 0x80, 0xBF};
    if (byte == 0xF4) return {3, 0x80, 0x8F};
    return {0, 0, 0};
}

// The character at pos, behind which pos moves; nothing when the sequence is invalid, pos then moves over
// what of it was a good beginning, at least one byte.
bool takeSequence(std::string_view utf8, std::size_t &pos, std::uint32_t &character) {
    const auto byteAt = [utf8](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const unsigned char first = byteAt(pos++);
    if (first < 0x80) {
        character = first;
        return true;
    }
    const Lead lead = leadOf(first);
    if (lead.tail == 0) return false;
    character = first & (0x3FU >> lead.tail);
    for (unsigned i = 0; i < lead.tail; ++i, ++pos) {
        if (pos == utf8.size()) return false;
        const unsigned char byte = byteAt(pos);
        if (byte < (i == 0 ? lead.low : 0x80) || byte > (i == 0 ? lead.high : 0xBF)) return false;
        character = character << 6 | (byte & 0x3FU);
    }
    return true;
}

void appendCharacter(std::uint32_t character, KV_WString &out) {
    if (character < 0x10000) {
        out += static_cast<KV_WChar>(character);
    } else {
        out += static_cast<KV_WChar>(0xD800 + ((character - 0x10000) >> 10));
        out += static_cast<KV_WChar>(0xDC00 + (character & 0x3FF));
    }
}

void appendCharacter(std::uint32_t character, std::string &out) {
    if (character < 0x80) {
        out += static_cast<char>(character);
        return;
    }
    const unsigned tail = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    out += static_cast<char>((0xF80U >> tail & 0xFF) | character >> 6 * tail);
    for (unsigned i = tail; i-- > 0;)
        out += static_cast<char>(0x80 | (character >> 6 * i & 0x3F));
}

bool isHigh(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLow(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

}  // namespace

bool appendUnits(std::string_view utf8, KV_WString &out) {
    out.reserve(out.size() + utf8.size());
    bool replaced = false;
    for (std::size_t pos = 0; pos < utf8.size();) {
        std::uint32_t character = 0;
        if (!takeSequence(utf8, pos, character)) {
            character = kReplacement;
            replaced = true;
        }
        appendCharacter(character, out);
    }
    return replaced;
}

bool appendUtf8(std::basic_string_view<KV_WChar> units, std::string &out) {
    out.reserve(out.size() + units.size());
    bool replaced = false;
    for (std::size_t i = 0; i < units.size(); ++i) {
        std::uint32_t character = units[i];
        if (isHigh(character) && i + 1 < units.size() && isLow(units[i + 1])) {
            character = 0x10000 + ((character - 0xD800) << 10) + (units[++i] - 0xDC00U);
        } else if (isHigh(character) || isLow(character)) {
            character = kReplacement;
            replaced = true;
        }
        appendCharacter(character, out);
    }
    return replaced;
}

}  // namespace kv::detail
