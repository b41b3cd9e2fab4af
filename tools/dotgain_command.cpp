#include <kvbase/kvbase.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "file_replace.h"
#include "measurement_table.h"
#include "number_text.h"
#include "svg_plot.h"

namespace kvtool {
namespace {

struct Arguments {
    std::string table;
    std::string svg;
};

/// An ink and the channel of XYZ that it absorbs most of.
struct Ink {
    const char *name;
    int channel;
    const char *color;
};
constexpr Ink kInks[] = {
    {"Cyan", 0, "#0095c8"}, {"Magenta", 1, "#d6006f"}, {"Yellow", 2, "#c9a800"}, {"Black", 1, "#555555"}};
constexpr std::size_t kInkCount = std::size(kInks);

/// The tints of one ink, paper first and the solid last, and the curve that fits them.
struct Ramp {
    std::vector<float> tones;
    std::vector<float> xyz;
    double coefficients[4] = {};
    float scales[3] = {};

    double gainAt(double a) const {
        return ((coefficients[0] * a + coefficients[1]) * a + coefficients[2]) * a * a + coefficients[3] * a;
    }
    /// The gain that was measured in a channel of XYZ.
    double measuredGain(std::size_t tint, std::size_t channel) const {
        const double paper = xyz[channel], solid = xyz[xyz.size() - 3 + channel];
        return (paper - xyz[3 * tint + channel]) / (paper - solid) - tones[tint];
    }
};

/// The patches in which no other ink is, by their tone; where a tone stands several times, their mean.
Ramp rampOf(const MeasurementTable &table, std::size_t ink) {
    struct Tint {
        std::array<double, 3> sum{};
        int count = 0;
    };
    std::map<float, Tint> tints;
    for (const TablePatch &patch : table.patches) {
        bool isAlone = true;
        for (std::size_t i = 0; i < kInkCount; ++i)
            isAlone = isAlone && (i == ink || patch.device[i] == 0);
        if (!isAlone) continue;
        Tint &tint = tints[patch.device[ink]];
        for (std::size_t k = 0; k < 3; ++k)
            tint.sum[k] += patch.xyz[k];
        ++tint.count;
    }
    if (tints.size() < 3 || tints.begin()->first != 0 || tints.rbegin()->first != 100)
        throw BadInput(table.file,
                       std::string("has no ramp of ") + kInks[ink].name +
                           ": paper (all inks 0), the solid (100) and a tint at least are wanted, "
                           "each without other inks");
    Ramp ramp;
    for (const auto &[tone, tint] : tints) {
        ramp.tones.push_back(tone / 100);
        for (const double sum : tint.sum)
            ramp.xyz.push_back(static_cast<float>(sum / tint.count));
    }
    for (std::size_t k = 0; k < 3; ++k)
        if (ramp.xyz[k] == ramp.xyz[ramp.xyz.size() - 3 + k])
            throw BadInput(table.file, std::string(kInks[ink].name) + ": paper and solid are alike");
    return ramp;
}

Ramp fittedRamp(const MeasurementTable &table, std::size_t ink) {
    Ramp ramp = rampOf(table, ink);
    float limits[2] = {0, std::numeric_limits<float>::max()};
    FitDotgainFromXYZ(ramp.tones.data(), ramp.xyz.data(), static_cast<std::int32_t>(ramp.tones.size()),
                      kInks[ink].channel, ramp.coefficients, ramp.scales, limits);
    return ramp;
}

double rootMeanSquare(const Ramp &ramp, std::size_t channel) {
    double sum = 0;
    for (std::size_t i = 0; i < ramp.tones.size(); ++i) {
        const double off = ramp.measuredGain(i, channel) - ramp.scales[channel] * ramp.gainAt(ramp.tones[i]);
        sum += off * off;
    }
    return std::sqrt(sum / static_cast<double>(ramp.tones.size()));
}

void print(const std::vector<Ramp> &ramps) {
    std::cout << "ink\tchannel\tc0\tc1\tc2\tc3\tscale X\tscale Y\tscale Z\tgain at 50 %\tRMS error %\n";
    for (std::size_t ink = 0; ink < kInkCount; ++ink) {
        const Ramp &ramp = ramps[ink];
        const auto main = static_cast<std::size_t>(kInks[ink].channel);
        std::cout << kInks[ink].name << '\t' << "XYZ"[main];
        for (const double c : ramp.coefficients)
            std::cout << '\t' << fixed(c, 6);
        for (const float scale : ramp.scales)
            std::cout << '\t' << fixed(scale, 4);
        std::cout << '\t' << fixed(100 * ramp.scales[main] * ramp.gainAt(0.5), 2) << '\t'
                  << fixed(100 * rootMeanSquare(ramp, main), 3) << '\n';
    }
    std::cout << "\nink\ttone %\tmeasured area %\tfitted area %\n";
    for (std::size_t ink = 0; ink < kInkCount; ++ink) {
        const Ramp &ramp = ramps[ink];
        const auto main = static_cast<std::size_t>(kInks[ink].channel);
        for (std::size_t i = 0; i < ramp.tones.size(); ++i)
            std::cout << kInks[ink].name << '\t' << fixed(100 * ramp.tones[i], 2) << '\t'
                      << fixed(100 * (ramp.tones[i] + ramp.measuredGain(i, main)), 2) << '\t'
                      << fixed(100 * (ramp.tones[i] + ramp.scales[main] * ramp.gainAt(ramp.tones[i])), 2)
                      << '\n';
    }
}

constexpr const char *kStyle =
    "<style>svg { font-family: system-ui, sans-serif; background: #fff; } .grid { stroke: #ddd; } .axis, "
    ".label { fill: #555; font-size: 12px; } .curve { fill: none; stroke-width: 2; } .tint { stroke: #fff; }"
    "</style>\n";

std::string drawing(const std::vector<Ramp> &ramps) {
    double low = 0, high = 0.05;
    for (std::size_t ink = 0; ink < kInkCount; ++ink)
        for (std::size_t i = 0; i < ramps[ink].tones.size(); ++i) {
            const double gain = ramps[ink].measuredGain(i, static_cast<std::size_t>(kInks[ink].channel));
            low = std::min(low, gain);
            high = std::max(high, gain);
        }
    SvgPlot plot(640, 440, "Dot gain of the inks over the nominal tone",
                 {roundTicks(0, 100, 10), 48, 620, "tone %"},
                 {roundTicks(100 * low, 100 * high, 6), 396, 24, "gain %"});
    plot.add(kStyle);
    const auto place = [&plot](double tone, double gain) {
        return fixed(plot.x().place(100 * tone), 1) + ' ' + fixed(plot.y().place(100 * gain), 1);
    };
    for (std::size_t ink = 0; ink < kInkCount; ++ink) {
        const Ramp &ramp = ramps[ink];
        const auto main = static_cast<std::size_t>(kInks[ink].channel);
        std::string path;
        for (int i = 0; i <= 100; ++i) {
            path += i == 0 ? 'M' : 'L';
            path += place(i / 100.0, ramp.scales[main] * ramp.gainAt(i / 100.0));
        }
        plot.add(std::string("<path class=\"curve\" stroke=\"") + kInks[ink].color + "\" d=\"" + path +
                 "\"/>\n");
        for (std::size_t i = 0; i < ramp.tones.size(); ++i)
            plot.add("<circle class=\"tint\" r=\"4\" fill=\"" + std::string(kInks[ink].color) + "\" cx=\"" +
                     fixed(plot.x().place(100 * ramp.tones[i]), 1) + "\" cy=\"" +
                     fixed(plot.y().place(100 * ramp.measuredGain(i, main)), 1) + "\"><title>" +
                     kInks[ink].name + ' ' + fixed(100 * ramp.tones[i], 1) + " %</title></circle>\n");
        plot.add("<text class=\"label\" x=\"" + fixed(64 + 80 * static_cast<double>(ink), 0) +
                 "\" y=\"16\" style=\"fill: " + kInks[ink].color + "\">" + kInks[ink].name + "</text>\n");
    }
    return plot.close();
}

void dotgain(const Arguments &args) {
    const MeasurementTable table = readMeasurementTable(args.table, KV_CS_CMYK, PatchColor::Xyz);
    if (!table.hasDevice())
        throw BadInput(args.table,
                       "has no columns CMYK_C, CMYK_M, CMYK_Y, CMYK_K: export device values, too");
    std::vector<Ramp> ramps;
    for (std::size_t ink = 0; ink < kInkCount; ++ink)
        ramps.push_back(fittedRamp(table, ink));
    if (!args.svg.empty()) replaceFile(args.svg, drawing(ramps));
    print(ramps);
}

}  // namespace

void addDotgainCommand(CLI::App &app) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command = app.add_subcommand(
        "dotgain", "Fits the dot gain curves of the four process inks to a table of measurements");
    command->add_option("TABLE", args->table, "a CGATS table (.ti3, .txt) of CMYK with XYZ or Lab")
        ->required();
    command->add_option("--svg", args->svg, "draw curves and measured tints into this file");
    command->footer(
        "Areas are those of Murray and Davies in the channel of XYZ that the ink absorbs most of; the scales "
        "carry\n"
        "the gain c0 a^4 + c1 a^3 + c2 a^2 + c3 a of the tone a over to each channel.");
    command->callback([args] { dotgain(*args); });
}

}  // namespace kvtool
