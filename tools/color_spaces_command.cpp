#include <kvbase/kvbase.h>

#include <cstdint>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "color_columns.h"
#include "command.h"

namespace kvtool {
namespace {

struct Arguments {
    std::string name;
};

const char *polarityOf(KV_ColorSpace space) {
    switch (ColorSpacePolarity(space)) {
    case KV_PolarityPositive:
        return "lighter";
    case KV_PolarityNegative:
        return "more ink";
    default:
        return "";
    }
}

void printSpaces() {
    std::cout << "name\tnumber\tchannels\tlarger values\n";
    for (std::int32_t number = 1; number <= KV_CS_DIM16; ++number) {
        const auto space = static_cast<KV_ColorSpace>(number);
        const std::string name = ColorSpaceToString(space);
        if (name == "UNKNOWN") continue;
        std::cout << tabbed({name, std::to_string(number),
                             space == KV_CS_SPEC ? "" : std::to_string(ColorSpaceDimension(space, 0, 0, 1)),
                             polarityOf(space)})
                  << '\n';
    }
}

/// The names of the data fields, as tables of measurements have them.
std::vector<std::string> fieldsOf(KV_ColorSpace space) {
    KV_String text;
    std::int32_t count = 0;
    DataFormatColorSpace(space, text, count, 0, 0, 1);
    std::istringstream stream(text.Ptr());
    return {std::istream_iterator<std::string>(stream), {}};
}

void printChannels(const std::string &name) {
    const KV_ColorSpace space = StringToColorSpace(name.c_str());
    if (space == KV_CS_UNKNOWN) throw BadInput(name, "is no colour space; 'kvtool color spaces' names them");
    if (space == KV_CS_SPEC) throw BadInput(name, "has as many channels as there are wavelengths");
    const auto count = static_cast<std::size_t>(ColorSpaceDimension(space, 0, 0, 1));
    std::vector<float> minima(count + 1), maxima(count + 1), white(count + 1), black(count + 1);
    ColorSpaceExtrema(space, minima.data(), maxima.data());
    const bool hasRange = minima[0] <= maxima[0];
    const bool hasWhite = ColorSpaceWhitePoint(space, white.data()) == 0;
    const bool hasBlack = ColorSpaceBlackPoint(space, black.data()) == 0;
    const std::vector<std::string> fields = fieldsOf(space);
    const auto cell = [](bool isKnown, float value) { return isKnown ? shortest(value) : std::string(); };
    std::cout << "channel\tname\tfield\tminimum\tmaximum\twhite\tblack\n";
    for (std::size_t i = 0; i < count; ++i) {
        const std::string ink = ColorSpaceStiName(space, static_cast<std::int32_t>(i));
        std::cout << tabbed({std::to_string(i), ink == "UndefineStiName" ? "" : ink,
                             i < fields.size() ? fields[i] : "", cell(hasRange, minima[i]),
                             cell(hasRange, maxima[i]), cell(hasWhite, white[i]), cell(hasBlack, black[i])})
                  << '\n';
    }
}

}  // namespace

void addSpacesCommand(CLI::App &color) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command = color.add_subcommand("spaces", "Lists the colour spaces, or the channels of one");
    command->add_option("NAME", args->name, "the space whose channels to list");
    command->callback([args] { args->name.empty() ? printSpaces() : printChannels(args->name); });
}

}  // namespace kvtool
