// Logarithm and exponential for warps, once or twice a pixel: a little less than a double's precision, in
// plain arithmetic that gives the same bits on every platform and that loops over pixels can be vectorised
// with.
#pragma once

#include <bit>
#include <cstdint>
#include <initializer_list>

namespace lumafold {

/// The natural logarithm of a normal number, 0 < x < 2, to about 15 digits.
inline double QuickLog(double x) {
    constexpr std::uint64_t kRootHalf = 0x3FE6A09E667F3BCD, kOne = 0x3FF0000000000000;
    constexpr std::uint64_t kMantissa = 0x000FFFFFFFFFFFFF, kTwo52 = 0x4330000000000000;
    constexpr double kLn2 = 0.69314718055994531;
    const std::uint64_t shifted = std::bit_cast<std::uint64_t>(x) + (kOne - kRootHalf);
    const double exponent = std::bit_cast<double>(shifted >> 52 | kTwo52) - (0x1p52 + 1023);
    const double m = std::bit_cast<double>((shifted & kMantissa) + kRootHalf);
    // m lies about 1: ln m = 2 (u + u^3 / 3 + u^5 / 5 + ...).
    const double u = (m - 1) / (m + 1), z = u * u;
    double sum = 1.0 / 21;
    for (const double coefficient :
         {1.0 / 19, 1.0 / 17, 1.0 / 15, 1.0 / 13, 1.0 / 11, 1.0 / 9, 1.0 / 7, 1.0 / 5, 1.0 / 3})
        sum = sum * z + coefficient;
    return exponent * kLn2 + 2 * (u + u * (z * sum));
}

/// e^x for |x| <= 700, to about 14 digits.
inline double QuickExp(double x) {
    constexpr double kRound = 0x1.8p52; // adding it leaves the nearest whole number in the low bits
    constexpr double kOneOverLn2 = 1.4426950408889634;
    constexpr double kLn2High = 0x1.62e42fefa2000p-1, kLn2Low = 0x1.9ef35793c7673p-41;
    const double shifted = x * kOneOverLn2 + kRound;
    const double count = shifted - kRound;
    const double r = ((x - count * kLn2High) - count * kLn2Low) * 0.125;
    double sum = 1.0 / 40320;
    for (const double coefficient : {1.0 / 5040, 1.0 / 720, 1.0 / 120, 1.0 / 24, 1.0 / 6, 0.5})
        sum = sum * r + coefficient;
    // Three squarings undo the eighth; e^r - 1 is what is squared, so that small arguments lose nothing.
    double lessOne = r + r * (r * sum);
    lessOne = lessOne * (lessOne + 2);
    lessOne = lessOne * (lessOne + 2);
    lessOne = lessOne * (lessOne + 2);
    return (lessOne + 1) * std::bit_cast<double>((std::bit_cast<std::uint64_t>(shifted) + 1023) << 52);
}

} // namespace lumafold
