#include "light.h"

#include "color_columns.h"
#include "command.h"

namespace kvtool {
namespace {

KV_Illuminant ofTemperature(const std::string &light, float temperature, const LightOptions &options,
                            KV_ObserverType observer) {
    if (options.isBlackBody) return {KV_IT_BlackBody, temperature, observer};
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

}  // namespace

KV_Illuminant lightOf(const std::string &light, const LightOptions &options) {
    const KV_ObserverType observer = options.observer == 10 ? KV_Observer10Deg : KV_Observer2Deg;
    float temperature = 0;
    KV_Illuminant made = isNumber(light, temperature) ? ofTemperature(light, temperature, options, observer)
                                                      : ofName(light, observer);
    if (made.GetXYZ().Y == 0) throw BadInput(light, "gives no light between 360 and 830 nm");
    return made;
}

void addLightOptions(CLI::App &command, LightOptions &options) {
    command.add_option("--observer", options.observer, "the standard observer, 2 or 10 degrees")
        ->check(CLI::IsMember({2, 10}))
        ->capture_default_str();
    command.add_flag("--black-body", options.isBlackBody, "temperatures are those of black bodies");
}

}  // namespace kvtool
