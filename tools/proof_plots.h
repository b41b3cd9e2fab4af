#pragma once

#include <string>
#include <vector>

#include "proof_page.h"

namespace kvtool {

/// The plane of a* and b*: from each reference a vector to the measured colour.
std::string chromaticityPlot(const std::vector<PagePatch> &patches);

/// How much lighter or darker than its reference each patch is, over the lightness of the reference.
std::string lightnessPlot(const std::vector<PagePatch> &patches);

/// How many patches have which difference, with limits as vertical lines.
std::string histogram(const std::vector<PagePatch> &patches, const std::vector<PageCheck> &limits);

/// What share of the patches has at most which difference, with limits as vertical lines.
std::string cumulativePlot(const std::vector<PagePatch> &patches, const std::vector<PageCheck> &limits);

}  // namespace kvtool
