// Sine, cosine and exponential where they decide a pixel: the double nearest the true value, on every
// platform, because the run-time libraries differ in the last place and a truncation can turn that into a
// row.
#pragma once

#include <bit>
#include <cfloat>

#include "platform/non_copyable.h"

namespace lumafold {

/// Radians; exact to the nearest double for |x| up to 2^20.
double PortableSin(double x);
double PortableCos(double x);

/// e^x. The argument may carry extended precision; overflow gives infinity, underflow 0.
double PortableExp(long double x);

/// A sum, product or quotient as an 80-bit register keeps it: 64 bits of mantissa, halves to even. Changes
/// nothing but where long double has more.
inline long double Extended(long double value) {
#if LDBL_MANT_DIG == 113
    using Bits = unsigned __int128;
    constexpr Bits kUnit = Bits{1} << (113 - 64), kExponent = Bits{0x7FFF} << 112;
    Bits bits = std::bit_cast<Bits>(value);
    if ((bits & kExponent) == kExponent) return value; // infinite, or no number
    bits += kUnit / 2 - 1 + ((bits & kUnit) != 0 ? 1 : 0);
    return std::bit_cast<long double>(bits & ~(kUnit - 1));
#else
    return value;
#endif
}

/// While it lives, 80-bit arithmetic rounds to 64 bits of mantissa: a thread of a host may have set less.
class ExtendedPrecision : NonCopyable {
public:
    ExtendedPrecision();
    ~ExtendedPrecision();

private:
    unsigned short saved_;
};

} // namespace lumafold
