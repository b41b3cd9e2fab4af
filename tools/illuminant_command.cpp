#include <kvbase/kvbase.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "command.h"

// Columns are separated by tabs, and numbers have a decimal point, whatever the locale.
namespace kvtool {
namespace {

struct Arguments {
    std::vector<std::string> lights;
    int observer = 2;
    bool isBlackBody = false;
    bool isSpectrum = false;
};

/// The shortest text that means exactly this number.
std::string text(float number) {
    char digits[24];
    return {digits, std::to_chars(digits, std::end(digits), number).ptr};
}

bool isNumber(const std::string &text, float &number) {
    const char *const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && last == end;
}

KV_Illuminant ofTemperature(const std::string &light, float temperature, const Arguments &args,
                            KV_ObserverType observer) {
    if (args.isBlackBody) return {KV_IT_BlackBody, temperature, observer};
    if (!(temperature >= 4000 && temperature <= 25000))
        throw BadInput(light, "daylight has 4000 to 25000 K; --black-body takes other temperatures");
    return {KV_IT_D, temperature, observer};
}

KV_Illuminant ofName(const std::string &light, KV_ObserverType observer) {
    KV_String name(light.c_str());
    const KV_Illuminant kinds;
    KV_IlluminantType type = kinds.StringToIlluminantType(name);
    if (type == KV_IT_Unknown) type = kinds.StringToIlluminantType(name);  // which is in upper case now
    const bool hasData = type <= KV_IT_F2 || type == KV_IT_D50_Local;
    if (!hasData || type == KV_IT_D || type == KV_IT_BlackBody)
        throw BadInput(light, "is neither a light that has data nor a temperature in K");
    return {type, observer};
}

KV_Illuminant lightOf(const std::string &light, const Arguments &args) {
    const KV_ObserverType observer = args.observer == 10 ? KV_Observer10Deg : KV_Observer2Deg;
    float temperature = 0;
    KV_Illuminant made = isNumber(light, temperature) ? ofTemperature(light, temperature, args, observer)
                                                      : ofName(light, observer);
    if (made.GetXYZ().Y == 0) throw BadInput(light, "gives no light between 360 and 830 nm");
    return made;
}

/// The name of a light, with the temperature of one that any may have.
std::string label(const KV_Illuminant &light) {
    const bool isAny = light.GetIlluminantType() == KV_IT_D || light.GetIlluminantType() == KV_IT_BlackBody;
    return light.GetIlluminantName() + (isAny ? " " + text(light.GetColorTemperature()) : "");
}

void printWhites(const std::vector<KV_Illuminant> &lights) {
    std::cout << "light\tobserver\ttemperature\tX\tY\tZ\n";
    for (const KV_Illuminant &light : lights) {
        const XYZType white = light.GetXYZ();
        std::cout << label(light) << '\t' << (light.GetStandardObserver() == KV_Observer10Deg ? 10 : 2)
                  << '\t' << text(light.GetColorTemperature()) << '\t' << text(white.X) << '\t'
                  << text(white.Y) << '\t' << text(white.Z) << '\n';
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
            std::cout << '\t' << text(light.GetStandardSpectrum()->GetSpectralValueAtWavelength(nm));
    }
    std::cout << '\n';
}

void show(const Arguments &args) {
    std::vector<KV_Illuminant> lights;
    for (const std::string &light : args.lights)
        lights.push_back(lightOf(light, args));
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
    command
        ->add_option("LIGHT", args->lights,
                     "names (A, B, C, D50, D65, D93, E, F1, F2, D50_Local), or temperatures in K of daylight")
        ->required();
    command->add_option("--observer", args->observer, "the standard observer, 2 or 10 degrees")
        ->check(CLI::IsMember({2, 10}))
        ->capture_default_str();
    command->add_flag("--black-body", args->isBlackBody, "temperatures are those of black bodies");
    command->add_flag("--spectrum", args->isSpectrum, "print relative power from 360 to 830 nm by 1");
    command->callback([args] { show(*args); });
}

}  // namespace kvtool
