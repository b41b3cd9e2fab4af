#include "adt/color/lanes/kernels_of_this_width.h"

namespace kv::detail {

extern const ColorKernels kAvx512Kernels;
constinit const ColorKernels kAvx512Kernels = kernelsOfThisWidth("AVX-512");

}  // namespace kv::detail
