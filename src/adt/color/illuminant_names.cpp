// The kinds of illuminants as text.

#include <cstddef>
#include <cstring>
#include <iterator>

#include "kvbase/color/kv_illuminant.h"

namespace {

// By number.
constexpr const char *kTypeTexts[] = {
    "A",          "B",
    "C",          "D",
    "D50",        "D65",
    "D93",        "E",
    "BlackBody",  "F1",
    "F2",         "F3",
    "F4",         "F5",
    "F6",         "F7",
    "F8",         "F9",
    "F10",        "F11",
    "D50_Local",  "Custom_Spectral",
    "Custom_XYZ", "Unknown",
};
static_assert(std::size(kTypeTexts) == KV_IT_Unknown + 1);

/// Whether a text holds a daylight's number behind a D, as in "D50", "D_50" or "D 50".
bool holdsDaylight(const KV_String &text, const char *number) {
    const KV_String d("D");
    return text.Find(d + number) >= 0 || text.Find(d + "_" + number) >= 0 || text.Find(d + " " + number) >= 0;
}

}  // namespace

const char *IlluminantTypeToString(KV_IlluminantType type) {
    return type >= 0 && type < KV_IT_Unknown ? kTypeTexts[type] : kTypeTexts[KV_IT_Unknown];
}

KV_IlluminantType StringToIlluminantType(char *name) {
    for (std::size_t i = 0; name != nullptr && i < std::size(kTypeTexts); ++i) {
        if (std::strcmp(name, kTypeTexts[i]) == 0) return static_cast<KV_IlluminantType>(i);
    }
    return KV_IT_Unknown;
}

KV_String KV_Illuminant::IlluminantTypeToString(KV_IlluminantType type) const {
    return ::IlluminantTypeToString(type);
}

KV_IlluminantType KV_Illuminant::StringToIlluminantType(KV_String &name) const {
    for (std::size_t i = 0; i < std::size(kTypeTexts); ++i) {
        if (name == kTypeTexts[i]) return static_cast<KV_IlluminantType>(i);
    }
    name.ToUpper();
    if (holdsDaylight(name, "50")) return name.Find("LOCAL") >= 0 ? KV_IT_D50_Local : KV_IT_D50;
    if (holdsDaylight(name, "65")) return KV_IT_D65;
    if (holdsDaylight(name, "93")) return KV_IT_D93;
    return KV_IT_Unknown;
}
