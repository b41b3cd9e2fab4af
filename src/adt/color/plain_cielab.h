#pragma once

// CIELAB one colour at a time, in the precision and order of operations that define it: what the vector form
// is held against, and what it leaves to this. in and out may be one.

namespace kv::detail {

void plainXyzToLab(const float (&white)[3], const float *xyz, float *lab);
void plainLabToXyz(const float (&white)[3], const float *lab, float *xyz);

}  // namespace kv::detail
