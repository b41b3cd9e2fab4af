#include <kvbase/kvbase.h>

#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "color_columns.h"
#include "command.h"
#include "light.h"

// Columns are separated by tabs, and numbers have a decimal point, whatever the locale.
namespace kvtool {
namespace {

struct Arguments {
    std::vector<std::string> lights;
    LightOptions options;
    bool isSpectrum = false;
};

/// The name of a light, with the temperature of one that any may have.
std::string label(const KV_Illuminant &light) {
    const bool isAny = light.GetIlluminantType() == KV_IT_D || light.GetIlluminantType() == KV_IT_BlackBody;
    return light.GetIlluminantName() + (isAny ? " " + shortest(light.GetColorTemperature()) : "");
}

void printWhites(const std::vector<KV_Illuminant> &lights) {
    std::cout << "light\tobserver\ttemperature\tX\tY\tZ\n";
    for (const KV_Illuminant &light : lights) {
        const XYZType white = light.GetXYZ();
        std::cout << label(light) << '\t' << (light.GetStandardObserver() == KV_Observer10Deg ? 10 : 2)
                  << '\t' << shortest(light.GetColorTemperature()) << '\t' << shortest(white.X) << '\t'
                  << shortest(white.Y) << '\t' << shortest(white.Z) << '\n';
    }
}

void printSpectra(const std::vector<KV_Illuminant> &lights) {
    std::cout << "nm";
    for (const KV_Illuminant &light : lights)
        std::cout << '\t' << label(light);
    const KV_Spectrum &grid = *lights[0].GetStandardSpectrum();
    for (std::int32_t nm = grid.start; nm <= grid.end; nm += grid.step) {
        std::cout << '\n' << nm;
        for (const KV_Illuminant &light : lights)
            std::cout << '\t' << shortest(light.GetStandardSpectrum()->GetSpectralValueAtWavelength(nm));
    }
    std::cout << '\n';
}

void show(const Arguments &args) {
    std::vector<KV_Illuminant> lights;
    for (const std::string &light : args.lights)
        lights.push_back(lightOf(light, args.options));
    if (args.isSpectrum)
        printSpectra(lights);
    else
        printWhites(lights);
}

}  // namespace

void addIlluminantCommand(CLI::App &color) {
    const auto args = std::make_shared<Arguments>();
    CLI::App *command =
        color.add_subcommand("illuminant", "Prints white point and temperature of lights, or their spectra");
    command->add_option("LIGHT", args->lights, kLightHelp)->required();
    addLightOptions(*command, args->options);
    command->add_flag("--spectrum", args->isSpectrum, "print relative power from 360 to 830 nm by 1");
    command->callback([args] { show(*args); });
}

}  // namespace kvtool
