#pragma once

#include "adt/color/color_kernels.h"
#include "adt/color/lanes/cielab_lanes.h"
#include "adt/color/lanes/difference_lanes.h"
#include "adt/color/lanes/icc_cam_lanes.h"

namespace kv::detail {
namespace {

/// All kernels as the including source is compiled.
constexpr ColorKernels kernelsOfThisWidth(const char *name) {
    return {name,
            overPairs<EabLanes>,
            overPairs<E94Lanes>,
            overPairs<ECmcLanes>,
            overPairs<E2000Lanes>,
            overColors<XyzToLabLanes, float[3]>,
            overColors<LabToXyzLanes, float[3]>,
            overColors<XyzToJabLanes, IccCamModel>,
            overColors<JabToXyzLanes, IccCamModel>};
}

}  // namespace
}  // namespace kv::detail
