#pragma once

namespace kv::detail {

/// MatrixInverse, which tells whether there is an inverse: without one the result stays as it was.
bool invert3(const float *a, float *inverse);

}  // namespace kv::detail
