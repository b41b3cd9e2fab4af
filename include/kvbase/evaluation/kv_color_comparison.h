#pragma once

// Judges printed or proofed colours against their references: patches with six differences each, tolerance
// lists that grade them A, B, C and so on or X, and statistics by group of patches, graded the same way.
//
// No tolerance numbers are built in: they come from a report (kv_color_report.h) or from a caller that fills
// the fields. The usual way is to take a comparison with tolerances, ClearDiffs, AddPatch for each measured
// colour, CalcStats, and to look at the grades or write the report.
//
// All types are plain values whose public fields may be changed at any time; copies are full. L* runs 0 to
// 100, device values are on the scale 0 to 100. Grades compare as characters: the greater one is the worse,
// and X is worse than the letters before it. One thread at a time for each object. Nothing raises but for
// the lack of memory.

#include <cstdint>
#include <string>
#include <vector>

#include "kvbase/base/export.h"
#include "kvbase/color/kv_color_difference.h"
#include "kvbase/color/kv_color_space.h"

/// One quantity with its tolerances.
class KV_ColorTol {
public:
    float diff = 0;                 ///< the difference
    std::vector<float> tolerances;  ///< thresholds, ascending by convention: limit of A, of B, and so on
    float step = 0.1F;              ///< differences are rounded to multiples of it
};

/// Six quantities that are graded together.
class KV_EXPORT KV_ColorCheck {
public:
    /// Cleared.
    KV_ColorCheck() = default;

    /// Differences 0, no tolerances, steps 0.1, grade A.
    void Clear();
    /// Differences 0 and grade A; tolerances and steps stay.
    void ClearDiffs();

    /// Grades the differences, stores the grade and returns it. With n the length of the longest list and m
    /// the fewest thresholds at or above its difference that any quantity with a list has: X when m is 0,
    /// else the letter n - m behind A (never beyond the last character). A difference at a threshold is
    /// within it; a not-a-number is within none. A quantity with a shorter list than n never gives an A.
    /// Without any list the grade is A.
    char CheckTols();

    /// Adds the other's six differences; all else stays.
    KV_ColorCheck &operator+=(const KV_ColorCheck &other);
    /// Keeps the larger difference of each quantity, a maximum; all else stays. A not-a-number of either one
    /// stays, so that a maximum never hides it.
    KV_ColorCheck &operator*=(const KV_ColorCheck &other);

    KV_ColorTol dE;    ///< colour difference by the comparison's formula
    KV_ColorTol dC;    ///< distance in the a*b* plane
    KV_ColorTol dH;    ///< hue difference, in units of chroma
    KV_ColorTol dL;    ///< magnitude of the lightness difference
    KV_ColorTol da;    ///< magnitude of the difference of a*
    KV_ColorTol db;    ///< magnitude of the difference of b*
    char grade = 'A';  ///< as CheckTols left it
};

/// A colour, its reference and how far it lies off.
class KV_EXPORT KV_ColorPatch {
public:
    /// Channels that stim has room for.
    static constexpr std::int32_t kChannels = 8;

    /// Cleared, without name and group.
    KV_ColorPatch() = default;

    /// parsed false, all numbers 0, the check cleared; name and group stay.
    void Clear();

    std::string name;
    std::string group;
    bool parsed = false;         ///< the patch comes from the report that is being read
    float stim[kChannels] = {};  ///< device values, one a channel of the comparison's space; 0 behind them
    float ref[3] = {};           ///< L*, a*, b* wanted
    float meas[3] = {};          ///< L*, a*, b* measured
    KV_ColorCheck check;
};

/// What a group of patches adds up to.
class KV_EXPORT KV_ColorStat {
public:
    /// Cleared.
    KV_ColorStat() = default;

    /// Name empty, counts 0, the four checks cleared.
    void Clear();
    /// Counts 0 and differences 0; name, tolerances and steps stay.
    void ClearDiffs();

    std::string name;              ///< the group's; "CtrlStrip" counts all patches
    std::uint32_t count = 0;       ///< patches
    std::uint32_t gamutCount = 0;  ///< of which lie on the gamut's hull (IsGamutColor)
    KV_ColorCheck av;              ///< sums while patches are added, means after CalcStats
    KV_ColorCheck max;             ///< maxima; its tolerances limit single patches, too (SetTols)
    KV_ColorCheck gam;             ///< like av, over the colours of the gamut's hull
    KV_ColorCheck p95;             ///< dE alone: the 95th percentile
};

/// A list of patches with their groups and limits.
///
/// In a space of more than 8 channels the first 8 values of a patch are kept, and what only all of them could
/// tell is not told: FindPatch finds nothing, so that every AddPatch appends a patch and none is taken for
/// another, and Classify leaves the patch alone.
class KV_EXPORT KV_ColorComparison {
public:
    /// Removes patches and stats; grade A. Formula, intent, space and both points stay.
    void Clear();
    /// ClearDiffs on every stat, every patch's check and both points; grade A. Patches, groups and tolerances
    /// stay: one template serves many measurements.
    void ClearDiffs();

    /// Adds a measured colour: to the patch with these device values, which keeps its own name and group, or
    /// to a new patch at the end of the list, which is classified. The patch gets its groups' limits
    /// (SetTols), reference and measurement, rounded to one decimal, and from these the differences, each
    /// rounded to a multiple of its step (a step of 0 gives not-a-number); then it is graded, and the worst
    /// grade is kept in grade. It counts in its group's stat and in "CtrlStrip".
    ///
    /// stim       as many device values as the space has channels; 8 of more are read
    /// ref, meas  L*, a*, b*
    /// dEList     gets the rounded dE at its end
    ///
    /// The three arrays are only read, and may be those of a patch in the list. Every call
    /// reads the whole list up to the patch: see AddPatches for many.
    void AddPatch(std::string name, std::string group, float *stim, float *ref, float *meas,
                  std::vector<float> &dEList);

    /// AddPatch for count patches in their order, in time that grows with the patches there are and those
    /// that are added, not with their product. The device values and colours stand one behind the other:
    /// channels of the space times count, and twice 3 times count floats. Nothing of it may lie in the list
    /// of patches.
    void AddPatches(std::uint32_t count, const std::string *names, const std::string *groups,
                    const float *stim, const float *ref, const float *meas, std::vector<float> &dEList);

    /// Adds a measured spot colour: always as a new patch, with the first device value alone and without
    /// classification. It counts in the maxima and means of the stat of its group's name, not in that of
    /// "CtrlStrip" as such, nor as a colour of the gamut's hull. All else as AddPatch.
    /// checkTols  whether the patch is graded; if not, it keeps A and the comparison's grade stays
    void AddSpotColorPatch(std::string name, std::string group, float *stim, float *ref, float *meas,
                           bool checkTols, std::vector<float> &dEList);

    /// Turns the sums of each stat with patches into means, takes the 95th percentile of dE, rounds and
    /// grades these and the maxima, and keeps the worst grade in grade. A second call would divide again:
    /// ClearDiffs comes between two rounds.
    ///
    /// dEList  differences of the patches, which are sorted, not-a-numbers last. The one list serves all
    ///         stats: the percentile of a stat of n patches is that of the list's n smallest. When it is
    ///         shorter than n, the percentile is that of the whole list, and 0 when it is empty.
    void CalcStats(std::vector<float> &dEList);

    /// Gives a patch of the group "Unknown", and no other, the name and group that its process inks tell:
    /// "Substrate", "Solid", "Black", "Mid Tone", "Tertiary Color". Above 0.01 an ink is there, above 99.99
    /// it is solid. Solids of three and more inks keep name and group.
    void Classify(KV_ColorPatch *patch);

    /// Gives a patch the limits for single patches of its group and of "CtrlStrip": those of the stat's max.
    /// The tighter one wins, threshold by threshold; a quantity without limits takes the stat's. A quantity
    /// that has more thresholds than the stat keeps its own, and its step.
    void SetTols(KV_ColorPatch *patch);

    /// The first patch whose values equal the given ones in all channels of the space; null if there is none.
    /// A not-a-number equals nothing. In a space without channels that is the first patch.
    /// The patch is the list's: it lives until the list changes.
    KV_ColorPatch *FindPatch(float *stim);

    /// Copies the first patch or stat of this name out of the list; false, with out untouched, if there is
    /// none.
    bool GetPatch(std::string name, KV_ColorPatch &out);
    bool GetStat(std::string name, KV_ColorStat &out);
    /// Copies in over the first patch or stat of this name, its name included; false if there is none.
    bool SetPatch(std::string name, KV_ColorPatch &in);
    bool SetStat(std::string name, KV_ColorStat &in);

    KV_ColorDifferenceFormula formula;    ///< CIE 1976 at first
    std::int32_t intent = 3;              ///< 3 side by side, 1 relative to the media
    KV_ColorSpace stispace = KV_CS_CMYK;  ///< of the patches' device values
    std::vector<KV_ColorPatch> patches;
    std::vector<KV_ColorStat> stats;
    KV_ColorCheck blackpoint;  ///< tolerances of the black point
    KV_ColorCheck whitepoint;  ///< tolerances of the white point
    char grade = 'A';          ///< the worst that was reached

private:
    void add(KV_ColorPatch *found, std::string name, std::string group, const float *stim, const float *ref,
             const float *meas, std::vector<float> &dEList);
    void evaluate(KV_ColorPatch &patch, const float *ref, const float *meas);
    void keepWorse(char found);
};
