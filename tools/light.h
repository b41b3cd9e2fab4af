#pragma once

#include <kvbase/kvbase.h>

#include <CLI/CLI.hpp>
#include <string>

namespace kvtool {

/// How a light is meant.
struct LightOptions {
    int observer = 2;          ///< degrees, 2 or 10
    bool isBlackBody = false;  ///< temperatures are those of black bodies, else of daylight
};

/// What help texts say of a light.
inline constexpr const char *kLightHelp =
    "A, B, C, D50, D65, D93, E, F1, F2, D50_Local, or the temperature of daylight in K";

/// The light of a name, in any case, or of a temperature in K. Raises BadInput for any other text.
KV_Illuminant lightOf(const std::string &light, const LightOptions &options);

/// Hangs "--observer" and "--black-body" into the command.
void addLightOptions(CLI::App &command, LightOptions &options);

}  // namespace kvtool
