#include "adt/color/lanes/kernels_of_this_width.h"

namespace kv::detail {

extern const ColorKernels kAvx2Kernels;
constinit const ColorKernels kAvx2Kernels = kernelsOfThisWidth("AVX2");

}  // namespace kv::detail
