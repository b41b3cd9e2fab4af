#include <kvbase/kvbase.h>

#include <algorithm>
#include <array>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "color_columns.h"
#include "command.h"
#include "light.h"

namespace kvtool {
namespace {

struct Arguments {
    std::string from;
    std::string to;
    std::vector<std::string> values;
    std::string white = "D50";
    LightOptions light;
    float luminance = 500;
    float background = 20;
    std::string surround = "average";
};

using Color = std::array<float, 3>;

/// The transforms that know the viewing conditions.
struct Viewing {
    KV_CTCielab cielab;
    KV_CTIccCam appearance;
};

Color xyzToLab(const Viewing &viewing, Color xyz) {
    viewing.cielab.XYZ2Lab(xyz.data(), xyz.data(), 1);
    return xyz;
}
Color labToXyz(const Viewing &viewing, Color lab) {
    viewing.cielab.Lab2XYZ(lab.data(), lab.data(), 1);
    return lab;
}
Color labToLch(const Viewing &, Color lab) {
    ab2chDeg(lab[1], lab[2], lab[1], lab[2]);
    return lab;
}
Color lchToLab(const Viewing &, Color lch) {
    ch2abDeg(lch[1], lch[2], lch[1], lch[2]);
    return lch;
}
Color xyzToYxy(const Viewing &, Color xyz) {
    ColorTransXYZ2Yxy(xyz.data(), xyz.data(), 1);
    return xyz;
}
/// Black has no chromaticity, and 0, 0, 0 stands for it.
Color yxyToXyz(const Viewing &, Color yxy) {
    const auto [Y, x, y] = yxy;
    if (Y == 0) return {0, 0, 0};
    return {Y * x / y, Y, Y * (1 - x - y) / y};
}
Color xyzToJab(const Viewing &viewing, Color xyz) {
    viewing.appearance.XYZ2Jab(xyz.data(), xyz.data(), 1);
    return xyz;
}
Color jabToXyz(const Viewing &viewing, Color jab) {
    viewing.appearance.Jab2XYZ(jab.data(), jab.data(), 1);
    return jab;
}

using Step = Color (*)(const Viewing &, Color);

/// A space and the steps that lead to the one it is defined by.
struct Space {
    const char *name;
    std::vector<ColumnNames> columns;
    const char *base;  // null for XYZ, to which all lead
    Step toBase;
    Step fromBase;
};

const Space kSpaces[] = {
    {"XYZ", {{"X", "XYZ_X"}, {"Y", "XYZ_Y"}, {"Z", "XYZ_Z"}}, nullptr, nullptr, nullptr},
    {"Lab", {{"L", "LAB_L"}, {"a", "LAB_A"}, {"b", "LAB_B"}}, "XYZ", labToXyz, xyzToLab},
    {"LCh", {{"L", "LAB_L"}, {"C", "LAB_C"}, {"h", "LAB_H"}}, "Lab", lchToLab, labToLch},
    {"Yxy", {{"Y"}, {"x"}, {"y"}}, "XYZ", yxyToXyz, xyzToYxy},
    {"Jab", {{"J", "JAB_J"}, {"a", "JAB_A"}, {"b", "JAB_B"}}, "XYZ", jabToXyz, xyzToJab},
};

const Space *spaceOf(const std::string &name) {
    return std::find_if(std::begin(kSpaces), std::end(kSpaces),
                        [&name](const Space &space) { return space.name == name; });
}

/// A space and those it is defined by, XYZ last.
std::vector<const Space *> ancestry(const std::string &name) {
    std::vector<const Space *> spaces{spaceOf(name)};
    while (spaces.back()->base != nullptr)
        spaces.push_back(spaceOf(spaces.back()->base));
    return spaces;
}

/// The way from one space to another by way of the nearest that both are defined by.
std::vector<Step> stepsBetween(const std::string &from, const std::string &to) {
    std::vector<const Space *> up = ancestry(from);
    std::vector<const Space *> down = ancestry(to);
    while (!up.empty() && !down.empty() && up.back() == down.back()) {
        up.pop_back();
        down.pop_back();
    }
    std::vector<Step> steps;
    steps.reserve(up.size() + down.size());
    for (const Space *space : up)
        steps.push_back(space->toBase);
    for (auto space = down.rbegin(); space != down.rend(); ++space)
        steps.push_back((*space)->fromBase);
    return steps;
}

/// X, Y, Z of a light, or as "X,Y,Z" tells them.
Color whiteOf(const Arguments &args) {
    if (args.white.find(',') == std::string::npos) {
        const XYZType white = lightOf(args.white, args.light).GetXYZ();
        return {white.X, white.Y, white.Z};
    }
    Color white{};
    std::size_t count = 0;
    for (const std::string &cell : CLI::detail::split(args.white, ',')) {
        if (count == 3 || !isNumber(cell, white[count]) || !(white[count] > 0)) {
            count = 0;
            break;
        }
        ++count;
    }
    if (count != 3) throw BadInput(args.white, "is no white point X,Y,Z of three numbers above 0");
    return white;
}

struct Surround {
    float c, nc, f;
};
// CIE 159:2004, table 1.
const std::map<std::string, Surround> kSurrounds{
    {"average", {0.69F, 1, 1}}, {"dim", {0.59F, 0.9F, 0.9F}}, {"dark", {0.525F, 0.8F, 0.8F}}};

Viewing viewingOf(const Arguments &args) {
    Viewing viewing;
    Color white = whiteOf(args);
    viewing.cielab.SetWhitePoint(white.data());
    viewing.appearance.SetParameter_WhitePoint(white.data());
    viewing.appearance.SetParameter_La(args.luminance);
    viewing.appearance.SetParameter_Yb(args.background);
    const Surround &surround = kSurrounds.at(args.surround);
    viewing.appearance.SetParameter_C(surround.c);
    viewing.appearance.SetParameter_Nc(surround.nc);
    viewing.appearance.SetParameter_F(surround.f);
    return viewing;
}

void convert(const Arguments &args) {
    const Viewing viewing = viewingOf(args);
    const std::vector<Step> steps = stepsBetween(args.from, args.to);
    printTransformed(args.values, spaceOf(args.from)->columns, spaceOf(args.to)->columns,
                     [&](const std::vector<float> &row) -> std::vector<float> {
                         Color color{row[0], row[1], row[2]};
                         for (const Step step : steps)
                             color = step(viewing, color);
                         return {color.begin(), color.end()};
                     });
}

std::vector<std::string> spaceNames() {
    std::vector<std::string> names;
    for (const Space &space : kSpaces)
        names.emplace_back(space.name);
    return names;
}

}  // namespace

void addConvertCommand(CLI::App &color) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command =
        color.add_subcommand("convert", "Converts colours between XYZ, Lab, LCh, Yxy and Jab");
    const CLI::IsMember isSpace(spaceNames(), CLI::ignore_case);
    command->add_option("FROM", args->from, "the space of the colours")->required()->transform(isSpace);
    command->add_option("TO", args->to, "the space to bring them to")->required()->transform(isSpace);
    command->add_option("VALUE", args->values, "three numbers a colour; without any, standard input is read");
    command
        ->add_option("--white", args->white, std::string("the white point: X,Y,Z, or a light: ") + kLightHelp)
        ->capture_default_str();
    addLightOptions(*command, args->light);
    command->add_option("--luminance", args->luminance, "Jab: of the adapting field, cd/m2")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    command->add_option("--background", args->background, "Jab: luminance relative to a white of 100")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    command->add_option("--surround", args->surround, "Jab: average, dim or dark")
        ->check(CLI::IsMember(kSurrounds))
        ->capture_default_str();
    command->footer(
        "XYZ counts 100 for the Y of white, h degrees. Standard input has a colour a line, in cells "
        "separated\n"
        "by tabs, semicolons, commas or blanks. A first line of names may tell where the colour stands; "
        "other\n"
        "columns then are kept in front of the result.");
    command->callback([args] { convert(*args); });
}

}  // namespace kvtool
