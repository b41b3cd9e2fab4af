#include "kvbase/color/kv_ink_names.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "ink_table.h"
#include "space_record.h"

using kv::detail::Ink;
using kv::detail::inkLetters;
using kv::detail::inkOfLetter;
using kv::detail::inkOfName;

namespace {

constexpr std::int32_t kMostProcessNames = 9;
constexpr std::int32_t kMostSpotInks = 16;

/// Whether inks behind the process inks have numbers for names, whatever the space's own number of inks.
bool hasNumberedInks(KV_ColorSpace space) {
    return space == KV_CS_CMYK || space == KV_CS_CMY || kv::detail::hasUnnamedInks(space);
}

bool isGrey(KV_ColorSpace space) {
    return space == KV_CS_GRAY || space == KV_CS_GRAY_BIZ || space == KV_CS_GRAY_WIZ;
}

bool isSpotInks(KV_ColorSpace space) { return space >= KV_CS_CLR1 && space <= KV_CS_CLR16; }

std::string nameOfLetter(std::string_view letters, std::int32_t index) {
    if (index < 0 || index >= static_cast<std::int32_t>(letters.size())) return {};
    return inkOfLetter(letters[static_cast<std::size_t>(index)])->name;
}

/// PREFIX and the channel's number from 1, for an index from 0 to end - 1.
std::string numbered(const char *prefix, std::int32_t index, std::int32_t end) {
    return index >= 0 && index < end ? prefix + std::to_string(index + 1) : std::string();
}

/// The name of a channel, empty for an index that has none; nothing for a space without names.
std::optional<std::string> channelName(KV_ColorSpace space, std::int32_t index) {
    using kv::detail::kProcessInks;
    if (space == KV_CS_LAB) {
        constexpr const char *names[] = {"CIE-L", "CIE-A", "CIE-B"};
        return index >= 0 && index < 3 ? names[index] : "";
    }
    if (isGrey(space)) return "Black";
    if (isSpotInks(space)) return numbered("COLOR_", index, kMostSpotInks);
    if (hasNumberedInks(space)) {
        return index < static_cast<std::int32_t>(kProcessInks.size())
                   ? nameOfLetter(kProcessInks, index)
                   : numbered("PC_", index, kMostProcessNames);
    }
    const std::string_view letters = inkLetters(space);
    return letters.empty() ? std::nullopt : std::optional(nameOfLetter(letters, index));
}

template <class Text>
bool replaceCharacters(Text &text, const Text &from, const Text &to) {
    if (from.size() != to.size()) return false;
    for (auto &c : text) {
        if (const std::size_t i = from.find(c); i != Text::npos) c = to[i];
    }
    return true;
}

}  // namespace

namespace kv::detail {

std::string_view inkLetters(KV_ColorSpace space) {
    const SpaceRecord &record = spaceRecord(space);
    const std::string_view letters = record.letters;
    const bool areInks = static_cast<std::int32_t>(letters.size()) == record.channels &&
                         std::all_of(letters.begin(), letters.end(), inkOfLetter);
    return areInks ? letters : std::string_view();
}

std::vector<std::string> namesOfLetters(std::string_view letters) {
    std::vector<std::string> names;
    for (const char letter : letters)
        names.emplace_back(inkOfLetter(letter)->name);
    return names;
}

std::vector<std::string> channelNames(KV_ColorSpace space) {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < spaceRecord(space).channels; ++i) {
        if (std::optional<std::string> name = channelName(space, i)) names.push_back(*std::move(name));
    }
    return names;
}

bool hasUnnamedInks(KV_ColorSpace space) { return CheckColorSpaceQuorin(space) && inkLetters(space).empty(); }

KV_ColorSpace spaceOfFurtherInks(std::string_view letters) {
    for (const SpaceRecord &record : spaceRecords()) {
        const std::string_view inks = inkLetters(record.space);
        if (inks.size() != kProcessInks.size() + letters.size() || inks.substr(0, 4) != kProcessInks)
            continue;
        if (std::is_permutation(letters.begin(), letters.end(), inks.begin() + 4)) return record.space;
    }
    return KV_CS_UNKNOWN;
}

}  // namespace kv::detail

std::string ColorSpaceStiName(KV_ColorSpace space, std::int32_t index) {
    const std::optional<std::string> name = channelName(space, index);
    if (!name) return "UndefineStiName";
    const bool isBeyond = index > kv::detail::spaceRecord(space).channels;
    return name->empty() && isBeyond ? "UndefinedStiName" : *name;
}

KV_ColorSpace StiNamesColorSpace(const std::vector<KV_WString> &names) {
    std::size_t process = 0, additive = 0;
    std::string further;
    for (const KV_WString &name : names) {
        const Ink *ink = inkOfName(name);
        if (ink == nullptr) continue;
        const bool isProcess = kv::detail::kProcessInks.find(ink->letter) != std::string_view::npos;
        process += isProcess;
        additive += std::string_view("RGB").find(ink->letter) != std::string_view::npos;
        if (!isProcess) further += ink->letter;
    }
    switch (names.size()) {
    case 1:
        return inkOfName(names[0]) == inkOfLetter('K') ? KV_CS_GRAY : KV_CS_UNKNOWN;
    case 3:
        return additive == 3 ? KV_CS_RGB : KV_CS_UNKNOWN;
    case 4:
        return process == 4 ? KV_CS_CMYK : KV_CS_UNKNOWN;
    default:
        // A further name that is no ink leaves one letter too few for the number of names.
        return process == 4 && further.size() + 4 == names.size() ? kv::detail::spaceOfFurtherInks(further)
                                                                  : KV_CS_UNKNOWN;
    }
}

bool ReplaceShortNames(std::string &text, const std::string &from, const std::string &to) {
    return replaceCharacters(text, from, to);
}

bool ReplaceShortWNames(KV_WString &text, const KV_WString &from, const KV_WString &to) {
    return replaceCharacters(text, from, to);
}

void ColorSpaceModelInfo(KV_ColorSpace space, std::vector<std::vector<std::int32_t>> &models) {
    models.clear();
    const std::string_view letters = inkLetters(space);
    if (letters.substr(0, 4) != kv::detail::kProcessInks) return;
    if (space == KV_CS_CMYKOR) {
        models = {{0, 1, 2, 3}, {4, 1, 5, 3}, {4, 5, 2, 3}};
        return;
    }
    const auto channel = [letters](char letter, std::int32_t otherwise) {
        const std::size_t place = letters.find(letter);
        return place == std::string_view::npos ? otherwise : static_cast<std::int32_t>(place);
    };
    const std::vector<std::int32_t> process = {0, 1, 2, 3};
    models.push_back(process);
    for (std::size_t i = process.size(); i < letters.size(); ++i) {
        std::vector<std::int32_t> &model = models.emplace_back(process);
        const char letter = letters[i];
        if (letter == 'R') model[0] = channel('O', 0);
        if (letter == 'V') model[2] = channel('B', 2);
        const std::size_t replaced = letter == 'O' || letter == 'V' ? 0 : letter == 'G' ? 1 : 2;
        model[replaced] = static_cast<std::int32_t>(i);
    }
}

std::int32_t Ink2Filter(KV_ColorSpace space, std::int32_t channel, std::string &name) {
    if (name.empty()) name = ColorSpaceStiName(space, channel);
    const Ink *ink = inkOfName(name);
    return ink != nullptr ? ink->filter : -1;
}
