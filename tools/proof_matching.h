#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "measurement_table.h"
#include "proof_evaluation.h"

namespace kvtool {

/// Device values in hundredths of a percent: two decimals, as reports hold them.
using DeviceKey = std::array<std::int32_t, kMostChannels>;
DeviceKey deviceKey(const float *device);
/// The same as percent: what the text of a report reads as.
std::array<float, kMostChannels> deviceOf(const DeviceKey &key);

/// A measured sample and its reference.
struct MatchedPatch {
    std::string name;
    std::size_t line = 0;
    std::array<float, kMostChannels> device{};
    std::array<float, 3> reference{};
    std::array<float, 3> measured{};
};

struct MatchedPatches {
    std::vector<MatchedPatch> patches;  ///< in the order of the measured table
    std::size_t onlyReference = 0;      ///< patches of the reference without a measurement
    std::size_t onlyMeasured = 0;       ///< and the other way round
};

/// Brings measurements and references together, as evaluateProof tells. Throws BadInput likewise.
MatchedPatches matchPatches(const MeasurementTable &reference, const MeasurementTable &measured,
                            PatchMatch match);

}  // namespace kvtool
