#include "utf8_text.h"

#include <algorithm>
#include <cstddef>

namespace kvtool {
namespace {

// The length of a character, its first byte, and what the second one may be; any further ones are 80 to BF.
// Source: The Unicode Standard, table 3-7.
struct Sequence {
    std::size_t length;
    unsigned char first, last;
    unsigned char secondFirst, secondLast;
};
constexpr Sequence kSequences[] = {
    {1, 0x00, 0x7F, 0x00, 0x00}, {2, 0xC2, 0xDF, 0x80, 0xBF}, {3, 0xE0, 0xE0, 0xA0, 0xBF},
    {3, 0xE1, 0xEC, 0x80, 0xBF}, {3, 0xED, 0xED, 0x80, 0x9F}, {3, 0xEE, 0xEF, 0x80, 0xBF},
    {4, 0xF0, 0xF0, 0x90, 0xBF}, {4, 0xF1, 0xF3, 0x80, 0xBF}, {4, 0xF4, 0xF4, 0x80, 0x8F},
};

bool isWithin(char c, unsigned char first, unsigned char last) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= first && byte <= last;
}

// The bytes of the character that a text begins with, 0 when it begins with none.
std::size_t characterLength(std::string_view text) {
    for (const Sequence &row : kSequences) {
        if (!isWithin(text[0], row.first, row.last)) continue;
        if (row.length == 1) return 1;
        const bool whole =
            text.size() >= row.length && isWithin(text[1], row.secondFirst, row.secondLast) &&
            std::all_of(text.begin() + 2, text.begin() + static_cast<std::ptrdiff_t>(row.length),
                        [](char c) { return isWithin(c, 0x80, 0xBF); });
        return whole ? row.length : 0;
    }
    return 0;
}

bool isControl(std::string_view character) {
    if (character.size() == 2) return character[0] == '\xC2' && isWithin(character[1], 0x80, 0x9F);
    const char c = character[0];
    return character.size() == 1 && ((isWithin(c, 0, 31) && c != '\n' && c != '\t') || c == 127);
}

}  // namespace

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string visible(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(1, length));
        text.remove_prefix(character.size());
        if (length != 0 && !isControl(character)) {
            shown += character;
            continue;
        }
        for (const char c : character) {
            const auto byte = static_cast<unsigned char>(c);
            shown += {'\\', static_cast<char>('0' + byte / 64), static_cast<char>('0' + byte / 8 % 8),
                      static_cast<char>('0' + byte % 8)};
        }
    }
    return shown;
}

}  // namespace kvtool
