#pragma once

#include <cstdint>

namespace kv::detail {

/// The seed of the system's enciphered files. A change makes every such file unreadable.
constexpr std::uint32_t kSystemSeed = 1903164827;

}  // namespace kv::detail
