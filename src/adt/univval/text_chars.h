#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace kv::detail {

/// What the text form sees in a byte.
enum TextCharClass : std::uint8_t {
    kTextSpace = 0x01,
    kTextDelimiter = 0x02,  // white space included
    kTextEnd = 0x04,        // the byte 0xFF
    kTextDigit = 0x08,
    kTextWordStop = 0x10,    // what a word's plain run ends at: delimiters, zero, backslash and the end
    kTextStringStop = 0x20,  // what a string's plain run ends at: ")", backslash and the end
    kTextNamed = 0x40,       // written in a name as it stands: 32 to 126, no delimiter
    kTextPlain = 0x80,  // written in a string as it stands: 32 to 126, no bracket of a string, no backslash
};

/// The classes of every byte.
constexpr std::array<std::uint8_t, 256> kTextClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    const auto add = [&classes](const char *bytes, unsigned flags) {
        for (; *bytes != 0; ++bytes) {
            std::uint8_t &entry = classes[static_cast<unsigned char>(*bytes)];
            entry = static_cast<std::uint8_t>(entry | flags);
        }
    };
    for (unsigned c = 32; c <= 126; ++c) {
        const char byte = static_cast<char>(c);
        const bool isDelimiter = std::string_view(" ()<>[]{}").find(byte) != std::string_view::npos;
        const bool isEscaped = std::string_view("()\\").find(byte) != std::string_view::npos;
        classes[c] = static_cast<std::uint8_t>((isDelimiter ? 0 : kTextNamed) | (isEscaped ? 0 : kTextPlain));
    }
    add("\t\n\r ", kTextSpace | kTextDelimiter | kTextWordStop);
    add("()<>[]{}", kTextDelimiter | kTextWordStop);
    add("0123456789", kTextDigit);
    add("\\", kTextWordStop | kTextStringStop);
    add(")", kTextStringStop);
    classes[0] = kTextWordStop;
    classes[0xFF] = kTextEnd | kTextWordStop | kTextStringStop;
    return classes;
}();

/// Whether c, a byte or a stream's end (-1, which looks like the byte 0xFF), is of one of the classes.
constexpr bool isTextClass(int c, unsigned classes) {
    return (kTextClasses[static_cast<unsigned>(c) & 0xFF] & classes) != 0;
}

}  // namespace kv::detail
