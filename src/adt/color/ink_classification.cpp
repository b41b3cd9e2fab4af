// Which inks a press has, by the hues of their solids.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "ink_table.h"
#include "kvbase/color/kv_colorimetry.h"
#include "kvbase/color/kv_ink_names.h"
#include "space_record.h"

namespace {

constexpr std::size_t kCyan = 0, kMagenta = 1, kYellow = 2, kFirstFurther = 4;

/// Channels whose inks lie in one sector of the hue circle, which begins behind the hue from and goes up to
/// the hue to, in degrees; all of the circle for equal hues.
struct Sector {
    float from, to;
    std::vector<std::size_t> channels = {};

    bool holds(float hue) const { return to > from ? from < hue && hue <= to : hue > from || hue <= to; }
    float distance(float hue) const { return (hue < from ? hue + 360 : hue) - from; }
};

float hueDegrees(const float *lab) {
    float chroma = 0, hue = 0;
    ab2chRad(lab[1], lab[2], chroma, hue);
    return hue * 57.29578F;
}

/// Gives the inks of a sector their letters: that for a single ink; of two, the one nearer to the beginning
/// of the sector and the other one have a letter each.
void name(const Sector &sector, const std::vector<float> &hues, char single, char nearer, char farther,
          std::string &letters) {
    if (sector.channels.size() == 1) letters[sector.channels[0]] = single;
    if (sector.channels.size() != 2) return;
    const std::size_t first = sector.channels[0], second = sector.channels[1];
    const bool isFirstNearer = sector.distance(hues[first]) < sector.distance(hues[second]);
    letters[first] = isFirstNearer ? nearer : farther;
    letters[second] = isFirstNearer ? farther : nearer;
}

/// The letter of each channel; empty when the inks are none that a space has.
std::string classify(const std::vector<float> &hues) {
    Sector warm = {hues[kMagenta], hues[kYellow]};
    Sector green = {hues[kYellow], hues[kCyan]};
    Sector cool = {hues[kCyan], hues[kMagenta]};
    for (std::size_t i = kFirstFurther; i < hues.size(); ++i) {
        bool isFound = false;
        for (Sector *sector : {&warm, &green, &cool}) {
            if (!sector->holds(hues[i])) continue;
            sector->channels.push_back(i);
            isFound = true;
        }
        if (!isFound) return {};
    }
    const std::size_t further = hues.size() - kFirstFurther;
    const std::size_t found = warm.channels.size() + green.channels.size() + cool.channels.size();
    if (warm.channels.size() > 2 || green.channels.size() > 1 || cool.channels.size() > 2) return {};
    if (found != further && further != 1) return {};
    // From the last sector to the first: where sectors overlap, the first one names a single further ink.
    std::string letters(kv::detail::kProcessInks);
    letters.resize(hues.size());
    name(cool, hues, 'B', 'B', 'V', letters);
    name(green, hues, 'G', 'G', 'G', letters);
    name(warm, hues, 'O', 'R', 'O', letters);
    return letters;
}

}  // namespace

std::vector<std::string> ColorSpaceStiNames(KV_ColorSpace &space, const std::vector<float> &solids) {
    if (space == KV_CS_LAB || space == KV_CS_RGBK) return {};
    if (!kv::detail::hasUnnamedInks(space)) return kv::detail::channelNames(space);
    const auto channels = static_cast<std::size_t>(kv::detail::spaceRecord(space).channels);
    if (solids.size() < 3 * channels) return {};
    std::vector<float> hues;
    for (std::size_t i = 0; i < channels; ++i)
        hues.push_back(hueDegrees(&solids[3 * i]));
    const std::string letters = classify(hues);
    if (letters.empty()) return {};
    const KV_ColorSpace named =
        kv::detail::spaceOfFurtherInks(std::string_view(letters).substr(kFirstFurther));
    if (named == KV_CS_UNKNOWN) return {};
    space = named;
    return kv::detail::namesOfLetters(letters);
}
