#pragma once

// The inks that have names, and the spaces that are made of them.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kvbase/color/kv_color_space.h"

namespace kv::detail {

/// An ink: its name, its filter in "D_RED D_GREEN D_BLUE D_VIS", and its letter in the names of spaces.
struct Ink {
    const char *name;
    std::int32_t filter;
    char letter;
};
constexpr Ink kInks[] = {
    {"Cyan", 0, 'C'},  {"Magenta", 1, 'M'}, {"Yellow", 2, 'Y'}, {"Black", 3, 'K'},  {"Orange", 2, 'O'},
    {"Green", 0, 'G'}, {"Blue", 1, 'B'},    {"Red", 2, 'R'},    {"Violet", 1, 'V'},
};
constexpr std::string_view kProcessInks = "CMYK";

/// The ink of a letter, null when there is none.
constexpr const Ink *inkOfLetter(char letter) {
    for (const Ink &ink : kInks) {
        if (ink.letter == letter) return &ink;
    }
    return nullptr;
}

/// The ink of a name in any kind of text, null when there is none.
template <class Text>
const Ink *inkOfName(const Text &name) {
    for (const Ink &ink : kInks) {
        const std::string_view inkName = ink.name;
        if (std::equal(name.begin(), name.end(), inkName.begin(), inkName.end())) return &ink;
    }
    return nullptr;
}

/// The letters of a space whose channels are all named inks, a letter each; empty for any other space.
std::string_view inkLetters(KV_ColorSpace space);

/// The names of inks by their letters.
std::vector<std::string> namesOfLetters(std::string_view letters);
/// The names of a space's channels, each once; none for a space without names.
std::vector<std::string> channelNames(KV_ColorSpace space);

/// Whether the space is the process inks and further ones without names: CMYK1 to CMYK5.
bool hasUnnamedInks(KV_ColorSpace space);

/// The space of the process inks and exactly these further ones, in any order; KV_CS_UNKNOWN when there is
/// none, and when a letter comes twice.
KV_ColorSpace spaceOfFurtherInks(std::string_view letters);

}  // namespace kv::detail
