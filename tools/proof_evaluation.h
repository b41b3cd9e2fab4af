#pragma once

#include <kvbase/evaluation/kv_color_comparison.h>

#include <cstddef>
#include <string>
#include <vector>

#include "measurement_table.h"

namespace kvtool {

/// How measured patches find their references.
enum class PatchMatch {
    Automatic,     ///< by device values where both tables have them, else by name
    DeviceValues,  ///< rounded to two decimals, as reports hold them
    SampleName
};

/// One measurement beside its reference.
struct ProofSample {
    std::string name;      ///< of the sample in the measured table, else in the reference; else its line
    std::size_t line = 0;  ///< in the measured table
    KV_ColorPatch patch;   ///< judged by itself; its name and group are the template's, or what its inks tell
};

/// One number of a group, with the limits of its grades.
struct ProofFigure {
    const char *statistic;      ///< "mean", "maximum", "95th percentile", "mean of the gamut hull"
    const char *quantity;       ///< "dE", "dC", "dH", "dL", "da", "db"
    float value;                ///< rounded to its step
    std::vector<float> limits;  ///< of A, B and so on; empty: not limited
    char grade;                 ///< of this number alone
};

/// A group of patches and what it comes to.
struct ProofGroup {
    std::string name;       ///< "CtrlStrip": all patches
    std::size_t count = 0;  ///< measurements; without any there are no figures
    char grade = 'A';       ///< the worst of its means, maxima and percentile
    /// Mean, maximum and 95th percentile of dE first, of the group's own measurements; then what else has
    /// limits.
    std::vector<ProofFigure> figures;
};

/// A proof, judged.
struct Proof {
    char grade = 'A';                  ///< the worst of all single patches and groups
    KV_ColorComparison comparison;     ///< for the report: one patch for each combination of device values
    std::vector<ProofSample> samples;  ///< every measurement that has a reference, in the order of its table
    std::vector<ProofGroup> groups;    ///< in the template's order
    std::vector<std::size_t> worst;    ///< the ten samples of the largest dE, the largest first
    std::vector<std::string> notes;    ///< what was left out, for the reader of the result
};

/// Judges the measured table against the reference by a template: its formula, intent, limits, and the groups
/// of its patches; the patches of other device values belong to the group that their inks tell. Of several
/// samples with the same device values or name the first one goes with the first reference, the second with
/// the second and so on, and further ones with the last. Media-relative comparisons (intent 1) are made after
/// both tables were brought to a white of their own paper. Patches that only the template, the reference or
/// the measurement has are left out and noted. Throws BadInput, with what to do, when the tables don't fit:
/// nothing matches, samples of one name differ in their device values, what is to be matched by is missing,
/// or a paper is too dark for one. The template's space has 1 to 8 channels, which readTemplate sees to.
Proof evaluateProof(const KV_ColorComparison &judgedBy, const MeasurementTable &reference,
                    const MeasurementTable &measured, PatchMatch match);

}  // namespace kvtool
