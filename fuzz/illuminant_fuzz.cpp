// Any bytes as a stored light: an even first byte takes the rest as a text file, an odd one as the text form
// of a dictionary. What is read comes back from what is written; all else ends in the documented failure.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "adt/color/illuminant_text.h"
#include "kvbase/color/kv_illuminant.h"
#include "kvbase/runtime/kv_exception.h"
#include "kvbase/univval/kv_uval_dict.h"
#include "kvbase/univval/kv_uval_text.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

bool areSame(const KV_Spectrum &a, const KV_Spectrum &b) {
    return a.start == b.start && a.end == b.end && a.step == b.step && a.count == b.count &&
           (a.data == nullptr) == (b.data == nullptr) &&
           (a.data == nullptr || std::equal(a.data, a.data + a.count, b.data));
}

// A white point is there or it is 0, 0, 0.
void requireSound(const KV_Illuminant &light) {
    const XYZType white = light.GetXYZ();
    const KV_IlluminantType type = light.GetIlluminantType();
    require(type >= KV_IT_B && type < KV_IT_Unknown);
    if (type != KV_IT_Custom_XYZ) require(white.Y == 100 || (white.X == 0 && white.Y == 0 && white.Z == 0));
}

void readText(const std::string &text) {
    std::istringstream in(text);
    std::unique_ptr<KV_Spectrum> spectrum;
    try {
        spectrum = std::make_unique<KV_Spectrum>(kv::detail::readSpectrumText(in));
    } catch (const std::runtime_error &) {
        return;
    }
    const KV_Illuminant light(spectrum.get(), KV_Observer10Deg);
    requireSound(light);
    // 6 digits are kept from the second time on.
    std::ostringstream first, second;
    kv::detail::writeSpectrumText(first, 0, *spectrum);
    std::istringstream again(first.str());
    kv::detail::writeSpectrumText(second, 0, kv::detail::readSpectrumText(again));
    require(first.str() == second.str());
}

void readDictionary(const std::string &text) {
    std::istringstream in(text);
    KV_UValDict dictionary(0);
    try {
        dictionary.ReadTextFile(in);
    } catch (const KV_Exception &) {
        return;
    }
    KV_Illuminant light(KV_IT_C, KV_Observer2Deg);
    try {
        light.SetDictionary(&dictionary);
    } catch (const KV_Exception &e) {
        require(e.GetErrorId() == KV_ERR_BAD_INPUT && light.GetIlluminantType() == KV_IT_C);
        return;
    }
    requireSound(light);
    KV_UValDict written(0);
    light.IlluminantDataToDict(&written);
    KV_Illuminant back(&written);
    require(back.GetIlluminantType() == light.GetIlluminantType());
    if (light.GetIlluminantType() == KV_IT_Custom_Spectral && light.GetSpectrum()->count > 0) {
        const bool isFinite =
            std::all_of(light.GetSpectrum()->data, light.GetSpectrum()->data + light.GetSpectrum()->count,
                        [](float v) { return std::isfinite(v); });
        if (isFinite) require(areSame(*light.GetSpectrum(), *back.GetSpectrum()));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(data + 1, data + size);
    if (data[0] % 2 == 0)
        readText(text);
    else
        readDictionary(text);
    return 0;
}
