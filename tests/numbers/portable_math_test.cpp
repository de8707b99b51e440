#include "numbers/portable_math.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace lumafold {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNoNumber = std::numeric_limits<double>::quiet_NaN();

// Arguments and the doubles nearest the true values, which were worked out with 90 decimal digits. The last
// ones of each table are hard: the true value lies very near the middle of two doubles.
struct Trigonometric {
    double x, sine, cosine;
};
constexpr Trigonometric kTrigonometric[] = {
    {0x1.0c152382d7365p-1, 0x1.fffffffffffffp-2, 0x1.bb67ae8584cabp-1},
    {0x1.2d97c7f3321d2p2, -1.0, -0x1.a79394c9e8a0ap-53},
    {-0x1p20, -0x1.526ccb2fc8656p-2, 0x1.e33ada92fe2aep-1},
    {0x1.4c9d1531a1c0cp8, -0x1.8a3f929c3e93bp-2, 0x1.d888137fa3ab1p-1},
    {-0x1.75e0117daed78p8, 0x1.a5b221f529945p-6, -0x1.ffd493f2a740bp-1},
    {0x1.4906775bf4ed8p7, 0x1.d34bb1fcd33bfp-1, 0x1.a277a8204eca2p-2},
    {0x1.83f2978588f66p8, -0x1.ff9bfbcf1cfcfp-1, -0x1.3ff7132f4080dp-5},
    {-0x1.69cce2ae579b4p8, 0x1.fa4bce1a274ebp-2, -0x1.bd0a15a916f3fp-1},
};

// The argument is the sum, which needs the 64 bits of extended precision.
struct Exponential {
    double high, low, value;
};
constexpr Exponential kExponential[] = {
    {-0x1.9p3, 0.0, 0x1.f42ed3f68e69p-19},
    {-0x1.74385446d71c3p9, 0.0, 0x0.0000000000001p-1022},
    {0x1.44ca78dfde474p9, 0.0, 0x1.1bbf3c837685ep937},
    {-0x1.78c6db5d9c524p3, 0.0, 0x1.025f8900dd0e6p-17},
    {-0x1.c1a6ddd95fc54p4, 0.0, 0x1.5f10c747b18e6p-41},
    {-0x1.07d296f83fcecp5, 0.0, 0x1.573c236886c0bp-48},
    {0x1.a61f39b4dddbp2, 0.0, 0x1.6df451ee24611p9},
    {-0x1.45b64f69d6d72p4, 0.0, 0x1.8c769c4936a0dp-30},
};

/// Tells zeros of either sign apart.
std::uint64_t Bits(double value) { return std::bit_cast<std::uint64_t>(value); }

TEST(PortableMath, SineAndCosineAreTheNearestDoubles) {
    for (const auto& [x, sine, cosine] : kTrigonometric) {
        EXPECT_EQ(Bits(sine), Bits(PortableSin(x))) << x;
        EXPECT_EQ(Bits(-sine), Bits(PortableSin(-x))) << x;
        EXPECT_EQ(Bits(cosine), Bits(PortableCos(x))) << x;
        EXPECT_EQ(Bits(cosine), Bits(PortableCos(-x))) << x;
    }
    EXPECT_EQ(Bits(-0.0), Bits(PortableSin(-0.0)));
    EXPECT_EQ(Bits(1.0), Bits(PortableCos(0.0)));
    EXPECT_EQ(Bits(0.49999999999999994), Bits(PortableSin(16.0 / 48 * 90 * 3.14159265358979323846 / 180)));
}

TEST(PortableMath, ExponentialIsTheNearestDoubleOfAnExtendedArgument) {
    const ExtendedPrecision precision;
    for (const auto& [high, low, value] : kExponential) {
        EXPECT_EQ(Bits(value),
                  Bits(PortableExp(static_cast<long double>(high) + static_cast<long double>(low))))
            << high;
    }
}

#ifdef __x86_64__
/// The system's 80-bit functions are off by less than this share, which tells the nearest double of nearly
/// all values.
bool Agrees(long double about, double value) {
    const long double slack = about * 0x1p-62L;
    const auto low = static_cast<double>(about - slack), high = static_cast<double>(about + slack);
    return low != high || value == low;
}

TEST(PortableMath, AgreesWithTheSystemsExtendedFunctions) {
    std::mt19937_64 random(1);
    const auto between = [&](double low, double high) {
        return low + (high - low) * static_cast<double>(random() >> 11) * 0x1p-53;
    };
    for (int i = 0; i < 50000; ++i) {
        const double x = std::ldexp(between(-1, 1), i % 26 - 5), power = between(-745, 709);
        ASSERT_TRUE(Agrees(std::sin(static_cast<long double>(x)), PortableSin(x))) << x;
        ASSERT_TRUE(Agrees(std::cos(static_cast<long double>(x)), PortableCos(x))) << x;
        ASSERT_TRUE(Agrees(std::exp(static_cast<long double>(power)), PortableExp(power))) << power;
    }
}
#endif

TEST(PortableMath, WhatIsOutOfRangeComesBack) {
    for (const double x : {kInfinity, -kInfinity, kNoNumber}) {
        EXPECT_TRUE(std::isnan(PortableSin(x)));
        EXPECT_TRUE(std::isnan(PortableCos(x)));
    }
    for (const double x : {1e7, -3e18, 1.7e308}) {
        EXPECT_NEAR(PortableSin(x) * PortableSin(x) + PortableCos(x) * PortableCos(x), 1, 1e-15);
    }
    EXPECT_EQ(PortableExp(1e4931L), kInfinity);
    EXPECT_EQ(PortableExp(-1e4931L), 0);
    EXPECT_EQ(PortableExp(static_cast<long double>(-kInfinity)), 0);
    EXPECT_TRUE(std::isnan(PortableExp(static_cast<long double>(kNoNumber))));
}

#if defined(__i386__) || defined(__x86_64__)
/// Lets this thread's 80-bit arithmetic round to doubles, as some hosts do, while it lives.
class CoarsePrecision {
public:
    CoarsePrecision() {
        __asm__ volatile("fnstcw %0" : "=m"(before_));
        const auto coarse = static_cast<unsigned short>((before_ & ~0x300U) | 0x200U);
        __asm__ volatile("fldcw %0" : : "m"(coarse) : "memory");
    }
    ~CoarsePrecision() { __asm__ volatile("fldcw %0" : : "m"(before_) : "memory"); }

private:
    unsigned short before_ = 0;
};

/// Whether 80-bit sums keep their 60th bit just now.
bool SumsAreExtended() {
    volatile long double one = 1, small = 0x1p-60L;
    volatile long double sum = one + small;
    return sum != one;
}

TEST(PortableMath, ExtendedPrecisionIsSetAndPutBack) {
    const CoarsePrecision host;
    EXPECT_FALSE(SumsAreExtended());
    {
        const ExtendedPrecision precision;
        EXPECT_TRUE(SumsAreExtended());
    }
    EXPECT_FALSE(SumsAreExtended());
}

TEST(PortableMath, ExponentialKeepsItsArgumentWhateverTheThreadHasSet) {
    const ExtendedPrecision precision;
    for (const auto& [high, low, value] : kExponential) {
        const volatile long double argument = static_cast<long double>(high) + static_cast<long double>(low);
        double coarse = 0;
        {
            const CoarsePrecision host;
            coarse = PortableExp(argument);
        }
        EXPECT_EQ(Bits(value), Bits(coarse)) << high;
    }
}
#endif

} // namespace
} // namespace lumafold
