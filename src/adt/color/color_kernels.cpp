#include "adt/color/color_kernels.h"

#include <array>

namespace kv::detail {

#if defined(KVBASE_LANES)
extern const ColorKernels kBaseKernels;
#endif
#if defined(KVBASE_WIDE_LANES)
extern const ColorKernels kAvx2Kernels, kAvx512Kernels;
#endif

namespace {

class UsableKernels {
public:
    UsableKernels() {
#if defined(KVBASE_LANES)
        add(kBaseKernels);
#endif
#if defined(KVBASE_WIDE_LANES)
        __builtin_cpu_init();
        if (__builtin_cpu_supports("avx2")) add(kAvx2Kernels);
        if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
            __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl"))
            add(kAvx512Kernels);
#endif
        if (m_count == 0) add(kPlainKernels);
    }
    std::span<const ColorKernels *const> all() const { return {m_kernels.data(), m_count}; }
    const ColorKernels &fastest() const { return *m_kernels[m_count - 1]; }

private:
    void add(const ColorKernels &kernels) { m_kernels[m_count++] = &kernels; }

    std::array<const ColorKernels *, 3> m_kernels{};
    std::size_t m_count = 0;
};

const UsableKernels &usableKernels() {
    static const UsableKernels usable;
    return usable;
}

}  // namespace

const ColorKernels &colorKernels() { return usableKernels().fastest(); }

std::span<const ColorKernels *const> usableColorKernels() { return usableKernels().all(); }

}  // namespace kv::detail
