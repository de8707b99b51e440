// Sine, cosine and exponential where they decide a pixel: the double nearest the true value, on every
// platform, because the run-time libraries differ in the last place and a truncation can turn that into a
// row.
#pragma once

namespace lumafold {

/// Radians; exact to the nearest double for |x| up to 2^20.
double PortableSin(double x);
double PortableCos(double x);

/// e^x. The argument may carry extended precision; overflow gives infinity, underflow 0.
double PortableExp(long double x);

/// While it lives, 80-bit arithmetic rounds to 64 bits of mantissa: a thread of a host may have set less.
class ExtendedPrecision {
public:
    ExtendedPrecision();
    ExtendedPrecision(const ExtendedPrecision&) = delete;
    ExtendedPrecision& operator=(const ExtendedPrecision&) = delete;
    ~ExtendedPrecision();

private:
    unsigned short saved_;
};

} // namespace lumafold
