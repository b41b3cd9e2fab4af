#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

// Doubles of many kinds in turn, of either sign: any bits, whole, binary fractions, near decimal ties, short
// decimals, neighbours of powers of ten, subnormal, realistic.
class VariedDoubles {
public:
    explicit VariedDoubles(std::uint64_t seed) : m_random(seed) {}

    double next() {
        const double value = magnitude();
        return (m_random() & 1) != 0 ? -value : value;
    }

private:
    double below(std::uint64_t limit) { return static_cast<double>(m_random() % limit); }
    double powerOfTen(int least, int most) {
        return std::pow(10.0,
                        static_cast<int>(m_random() % static_cast<std::uint64_t>(most - least + 1)) + least);
    }
    double neighbour(double value) {  // up to two steps away
        for (std::uint64_t steps = m_random() % 3; steps > 0; --steps)
            value = std::nextafter(value, (m_random() & 1) != 0 ? HUGE_VAL : 0.0);
        return value;
    }
    double magnitude() {
        switch (m_kind++ % 10) {
        case 0:
            return std::bit_cast<double>(m_random());
        case 1:
            return below(100000);
        case 2:
            return below(std::uint64_t{1} << (1 + m_random() % 63));
        case 3:
            return std::ldexp(below(1 << 24), -static_cast<int>(m_random() % 60));
        case 4:
            return neighbour((below(2000000) + 0.5) / powerOfTen(0, 12));
        case 5:
            return neighbour(below(100000000) / powerOfTen(0, 12));
        case 6:
            return neighbour(powerOfTen(-30, 30));
        case 7:
            return std::bit_cast<double>(m_random() >> (12 + m_random() % 52));
        case 8:
            return std::ldexp(below(std::uint64_t{1} << 53), -50 - static_cast<int>(m_random() % 30));
        default:
            return below(1000000000) / 9999991;
        }
    }

    std::mt19937_64 m_random;
    unsigned m_kind = 0;
};
