#include "numbers/portable_math.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "tests/numbers/math_table.h"

namespace lumafold {
namespace {

using math_table::kInfinity;
const double kNoNumber = std::numeric_limits<double>::quiet_NaN();

::testing::AssertionResult Same(double expected, double actual) {
    if (std::bit_cast<std::uint64_t>(expected) == std::bit_cast<std::uint64_t>(actual)) {
        return ::testing::AssertionSuccess();
    }
    char text[80];
    std::snprintf(text, sizeof text, "expected %a, got %a", expected, actual);
    return ::testing::AssertionFailure() << text;
}

TEST(PortableMath, SineAndCosineAreTheNearestDoubles) {
    for (const auto& [x, sine, cosine] : math_table::kTrigonometric) {
        EXPECT_TRUE(Same(sine, PortableSin(x))) << x;
        EXPECT_TRUE(Same(-sine, PortableSin(-x))) << x;
        EXPECT_TRUE(Same(cosine, PortableCos(x))) << x;
        EXPECT_TRUE(Same(cosine, PortableCos(-x))) << x;
    }
    EXPECT_TRUE(Same(-0.0, PortableSin(-0.0)));
    EXPECT_TRUE(Same(1.0, PortableCos(0.0)));
    EXPECT_TRUE(Same(0.49999999999999994, PortableSin(16.0 / 48 * 90 * 3.14159265358979323846 / 180)));
}

TEST(PortableMath, ExponentialIsTheNearestDoubleOfAnExtendedArgument) {
    const ExtendedPrecision precision;
    for (const auto& [high, low, value] : math_table::kExponential) {
        EXPECT_TRUE(Same(value, PortableExp(static_cast<long double>(high) + static_cast<long double>(low))))
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
    for (const auto& [high, low, value] : math_table::kExponential) {
        const volatile long double argument = static_cast<long double>(high) + static_cast<long double>(low);
        double coarse = 0;
        {
            const CoarsePrecision host;
            coarse = PortableExp(argument);
        }
        EXPECT_TRUE(Same(value, coarse)) << high;
    }
}
#endif

} // namespace
} // namespace lumafold
