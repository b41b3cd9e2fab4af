#include "adt/color/lanes/kernels_of_this_width.h"

namespace kv::detail {

extern const ColorKernels kBaseKernels;
constinit const ColorKernels kBaseKernels = kernelsOfThisWidth("128 bits");

}  // namespace kv::detail
