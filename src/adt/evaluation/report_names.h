#pragma once

// The words of colour reports: attributes, and what they stand for.

#include "kvbase/evaluation/kv_color_comparison.h"

namespace kv::detail {

/// By the number of the formula; a null pointer ends them.
constexpr const char *kFormulaNames[] = {"deltaEab", "deltaE94", "deltaEcmc", "deltaE00", nullptr};

struct PatchTolerance {
    const char *name;
    KV_ColorTol KV_ColorCheck::*tol;
};
struct StatTolerance {
    const char *name;
    KV_ColorCheck KV_ColorStat::*check;
    KV_ColorTol KV_ColorCheck::*tol;
};

inline constexpr PatchTolerance kPatchTolerances[] = {
    {"dETol", &KV_ColorCheck::dE}, {"dCTol", &KV_ColorCheck::dC}, {"dHTol", &KV_ColorCheck::dH},
    {"dLTol", &KV_ColorCheck::dL}, {"daTol", &KV_ColorCheck::da}, {"dbTol", &KV_ColorCheck::db},
};

/// What is written of a group. Lightness, a* and b* are not read again.
inline constexpr StatTolerance kWrittenStatTolerances[] = {
    {"dETol_av", &KV_ColorStat::av, &KV_ColorCheck::dE},
    {"dCTol_av", &KV_ColorStat::av, &KV_ColorCheck::dC},
    {"dHTol_av", &KV_ColorStat::av, &KV_ColorCheck::dH},
    {"dLTol_av", &KV_ColorStat::av, &KV_ColorCheck::dL},
    {"daTol_av", &KV_ColorStat::av, &KV_ColorCheck::da},
    {"dbTol_av", &KV_ColorStat::av, &KV_ColorCheck::db},
    {"dETol_max", &KV_ColorStat::max, &KV_ColorCheck::dE},
    {"dCTol_max", &KV_ColorStat::max, &KV_ColorCheck::dC},
    {"dHTol_max", &KV_ColorStat::max, &KV_ColorCheck::dH},
    {"dLTol_max", &KV_ColorStat::max, &KV_ColorCheck::dL},
    {"daTol_max", &KV_ColorStat::max, &KV_ColorCheck::da},
    {"dbTol_max", &KV_ColorStat::max, &KV_ColorCheck::db},
    {"dETol_gam", &KV_ColorStat::gam, &KV_ColorCheck::dE},
    {"dETol_p95", &KV_ColorStat::p95, &KV_ColorCheck::dE},
};

/// What is read of a group. Some of it is never written.
inline constexpr StatTolerance kReadStatTolerances[] = {
    {"dETol_av", &KV_ColorStat::av, &KV_ColorCheck::dE},
    {"dCTol_av", &KV_ColorStat::av, &KV_ColorCheck::dC},
    {"dHTol_av", &KV_ColorStat::av, &KV_ColorCheck::dH},
    {"dETol_max", &KV_ColorStat::max, &KV_ColorCheck::dE},
    {"dCTol_max", &KV_ColorStat::max, &KV_ColorCheck::dC},
    {"dHTol_max", &KV_ColorStat::max, &KV_ColorCheck::dH},
    {"dETol_gam", &KV_ColorStat::gam, &KV_ColorCheck::dE},
    {"dCTol_gam", &KV_ColorStat::gam, &KV_ColorCheck::dC},
    {"dHTol_gam", &KV_ColorStat::gam, &KV_ColorCheck::dH},
    {"dETol_p95", &KV_ColorStat::p95, &KV_ColorCheck::dE},
    {"dCTol_p95", &KV_ColorStat::p95, &KV_ColorCheck::dC},
    {"dHTol_p95", &KV_ColorStat::p95, &KV_ColorCheck::dH},
};

}  // namespace kv::detail
