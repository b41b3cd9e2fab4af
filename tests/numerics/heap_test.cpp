// Small systems are solved and inverted without memory from the heap.
#include <gtest/gtest.h>
#include <kvbase/numerics/kv_math.h>

#include "counted_memory.h"
#include "random_matrix.h"

namespace {

TEST(Numerics, SmallSystemsTakeNoHeapMemory) {
    std::mt19937 random(1);
    for (int n = 1; n <= 32; ++n) {
        const Matrix a = randomMatrix(random, n, n), b = randomMatrix(random, n, 1);
        Matrix inverse(a.size()), x(b.size());
        const long before = heap.allocated;
        Matrix_Inverse(a.data(), n, inverse.data());
        if (n <= 20) Least_Squares(a.data(), b.data(), n, n, x.data());
        EXPECT_EQ(heap.allocated, before) << n;
    }
}

}  // namespace
