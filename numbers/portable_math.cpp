#include "numbers/portable_math.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

// Everything is worked out as the unevaluated sum of two doubles, good to about 100 bits, and rounded once.
// Only sums and products of doubles are used: those give the same bits on every machine of ours.

namespace lumafold {
namespace {

/// An unevaluated sum of two doubles.
struct Pair {
    double high, low;
};

constexpr Pair Sum(double a, double b) {
    const double sum = a + b;
    const double part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

/// The same where |a| >= |b|.
constexpr Pair QuickSum(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

constexpr Pair Split(double a) {
    const double scaled = 134217729.0 * a; // 2^27 + 1
    const double high = scaled - (scaled - a);
    return {high, a - high};
}

constexpr Pair Product(double a, double b) {
    const double product = a * b;
    const Pair x = Split(a), y = Split(b);
    return {product, ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low};
}

/// Sums must not cancel much; every one below is of a small correction, or loses two bits at most.
constexpr Pair operator+(Pair a, Pair b) {
    const Pair sum = Sum(a.high, b.high);
    return QuickSum(sum.high, sum.low + (a.low + b.low));
}
constexpr Pair operator+(Pair a, double b) {
    const Pair sum = Sum(a.high, b);
    return QuickSum(sum.high, sum.low + a.low);
}
constexpr Pair operator*(Pair a, Pair b) {
    const Pair product = Product(a.high, b.high);
    return QuickSum(product.high, product.low + (a.high * b.low + a.low * b.high));
}
constexpr Pair operator-(Pair a) { return {-a.high, -a.low}; }
constexpr Pair operator/(Pair a, int divisor) {
    const double quotient = a.high / divisor;
    const Pair product = Product(quotient, divisor);
    return QuickSum(quotient, ((a.high - product.high) - product.low + a.low) / divisor);
}

/// The nearest whole number, for |a| < 2^51.
constexpr double Nearest(double a) {
    constexpr double kShift = 6755399441055744.0; // 1.5 * 2^52
    return (a + kShift) - kShift;
}

/// 2^exponent, for exponents of normal numbers.
constexpr double PowerOfTwo(int exponent) {
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

// Split so that a multiple of up to 21 bits is exact in every part but the last.
constexpr double kHalfPiParts[5] = {0x1.921fb54400000p+0, 0x1.0b4611a600000p-34, 0x1.3198a2e000000p-69,
                                    0x1.b839a25200000p-104, 0x1.27044533e63a0p-142};
constexpr double kTwoOverPi = 0x1.45f306dc9c883p-1;
// The same for factors of up to 12 bits.
constexpr double kLn2Parts[3] = {0x1.62e42fefa2000p-1, 0x1.9ef35793c6000p-41, 0x1.673007e5ed5e8p-81};
constexpr double kOneOverLn2 = 0x1.71547652b82fep+0;

/// 1 / n!
constexpr auto kInverseFactorial = [] {
    std::array<Pair, 13> inverse{{{1, 0}}};
    for (int n = 1; n < 13; ++n)
        inverse[static_cast<std::size_t>(n)] = inverse[static_cast<std::size_t>(n) - 1] / n;
    return inverse;
}();

// The tables are of arguments j / kStepsPerUnit: exponentials from -23 to 23, angles up to a little over pi
// / 4. All are summed by Taylor's series, whose terms beyond 1 / 28! are too small to count.
constexpr int kStepsPerUnit = 64, kExpMiddle = 23, kLastTerm = 28;

constexpr auto kExp = [] {
    std::array<Pair, 2 * kExpMiddle + 1> table{};
    for (int j = 0; j <= 2 * kExpMiddle; ++j) {
        const Pair x{(j - kExpMiddle) / double{kStepsPerUnit}, 0};
        Pair sum{1, 0};
        for (int n = kLastTerm; n > 0; --n)
            sum = x * sum / n + 1;
        table[static_cast<std::size_t>(j)] = sum;
    }
    return table;
}();

struct SineCosine {
    Pair sine, cosine;
};
constexpr auto kSinCos = [] {
    std::array<SineCosine, 52> table{};
    for (int j = 0; j < 52; ++j) {
        const Pair x{j / double{kStepsPerUnit}, 0}, square = x * x;
        SineCosine sums{{1, 0}, {1, 0}};
        for (int n = kLastTerm; n > 0; n -= 2) {
            sums.sine = -(square * sums.sine / (n * (n + 1))) + 1;
            sums.cosine = -(square * sums.cosine / ((n - 1) * n)) + 1;
        }
        table[static_cast<std::size_t>(j)] = {x * sums.sine, sums.cosine};
    }
    return table;
}();

/// x - count * pi / 2, at most a little over pi / 4, with an error below 2^-80.
Pair ReduceQuickly(double x, double count) {
    const Pair sum = Sum(x - count * kHalfPiParts[0], -(count * kHalfPiParts[1])); // the difference is exact
    return QuickSum(sum.high, sum.low - count * kHalfPiParts[2]);
}

/// The same to 100 bits however much of x cancels: two sweeps of exact sums keep every bit.
Pair ReduceExactly(double x, double count) {
    double part[5];
    part[0] = x - count * kHalfPiParts[0];
    for (int i = 1; i < 5; ++i)
        part[i] = -(count * kHalfPiParts[i]);
    for (int sweep = 0; sweep < 2; ++sweep) {
        for (int i = 4; i > 0; --i) {
            const Pair sum = Sum(part[i - 1], part[i]);
            part[i - 1] = sum.high;
            part[i] = sum.low;
        }
    }
    return QuickSum(part[0], part[1] + (part[2] + part[3]));
}

/// For |x| up to 1/64, the cosine less 1. What a term's second double would add is below the sum's last bit
/// from x^7 on.
SineCosine SmallSineCosine(Pair x) {
    const Pair square = x * x;
    const double z = square.high;
    const double sineTail =
        z * (-kInverseFactorial[7].high + z * (kInverseFactorial[9].high - z * kInverseFactorial[11].high));
    const double cosineTail = z * (kInverseFactorial[8].high - z * kInverseFactorial[10].high);
    const Pair sineFactor = square * (kInverseFactorial[5] + sineTail) + -kInverseFactorial[3];
    const Pair cosineFactor =
        square * (square * (-kInverseFactorial[6] + cosineTail) + kInverseFactorial[4]) +
        -kInverseFactorial[2];
    return {x + x * (square * sineFactor), square * cosineFactor};
}

/// A sine or cosine near a table angle: base * cos(rest) + slope * sin(rest), where slope is base's
/// derivative.
struct NearAngle {
    Pair base, slope, rest;
};

NearAngle FromTable(Pair angle, bool ofCosine) {
    const double step = Nearest(angle.high * kStepsPerUnit);
    const SineCosine& entry = kSinCos[static_cast<std::size_t>(step)];
    const Pair rest = Sum(angle.high - step / kStepsPerUnit, angle.low);
    if (ofCosine) return {entry.cosine, -entry.sine, rest};
    return {entry.sine, entry.cosine, rest};
}

/// Good to 65 bits of base, where base is not 0.
Pair QuickValue(const NearAngle& near) {
    const double s = near.rest.high, z = s * s;
    const double cosineLessOne = z * (-0.5 + z * (kInverseFactorial[4].high - z * kInverseFactorial[6].high));
    const double sineLessArgument =
        s * z *
        (-kInverseFactorial[3].high + z * (kInverseFactorial[5].high - z * kInverseFactorial[7].high));
    const Pair line = Product(near.slope.high, s);
    const Pair sum = QuickSum(near.base.high, line.high);
    const double small = near.slope.high * sineLessArgument + near.slope.high * near.rest.low +
                         near.slope.low * s + line.low + near.base.low;
    return QuickSum(sum.high, sum.low + (small + near.base.high * cosineLessOne));
}

Pair ExactValue(const NearAngle& near) {
    const SineCosine small = SmallSineCosine(near.rest);
    return near.base + (near.base * small.cosine + near.slope * small.sine);
}

/// The sine of x + quarters * pi / 2.
double SineFrom(double x, unsigned quarters) {
    constexpr double kLargest = 1048576.0;
    constexpr double kTwoPi = 6.283185307179586;
    if (!(std::fabs(x) <= kLargest))
        x = std::fmod(x, kTwoPi); // beyond our promise; not finite becomes no number
    if (x != x) return x;

    const double count = Nearest(x * kTwoOverPi);
    const unsigned turn = (static_cast<unsigned>(static_cast<std::int64_t>(count)) + quarters) & 3U;
    const bool ofCosine = (turn & 1U) != 0;
    Pair angle = ReduceQuickly(x, count);
    const bool negativeAngle = angle.high < 0;
    const bool negative = ((turn & 2U) != 0) != (!ofCosine && negativeAngle);

    // Nearly always a few bits more than a double's decide the rounding.
    if (negativeAngle) angle = -angle;
    if (ofCosine || angle.high > 1.0 / kStepsPerUnit) {
        const Pair value = QuickValue(FromTable(angle, ofCosine));
        const double doubt = value.high * 0x1p-62;
        if (value.high + (value.low + doubt) == value.high &&
            value.high + (value.low - doubt) == value.high) {
            return negative ? -value.high : value.high;
        }
    }
    angle = ReduceExactly(x, count);
    if (negativeAngle) angle = -angle;
    const Pair value = ExactValue(FromTable(angle, ofCosine));
    return negative ? -value.high : value.high;
}

/// The double nearest value * 2^exponent, value near 1, the denormal ones rounded once like all others.
double Round(Pair value, int exponent) {
    if (exponent < -1080) return 0.0;
    double rounded = value.high;
    if (exponent < -1022 || (exponent == -1022 && value.high < 1)) {
        const double quantum = PowerOfTwo(-1074 - exponent);
        const double shift = 4503599627370496.0 * quantum; // 2^52: the sum's last bit is the quantum
        rounded = (value.high + shift) - shift;
        const double rest = value.high - rounded;
        if (rest == quantum / 2 && value.low > 0) rounded += quantum;
        if (rest == -quantum / 2 && value.low < 0) rounded -= quantum;
    }
    const int half = exponent / 2;
    return rounded * PowerOfTwo(half) * PowerOfTwo(exponent - half);
}

/// For |x| up to about 750.
double Exponential(Pair x) {
    const double count = Nearest(x.high * kOneOverLn2);
    Pair rest = Sum(x.high - count * kLn2Parts[0], -(count * kLn2Parts[1])); // the difference is exact
    rest = QuickSum(rest.high, rest.low + (x.low - count * kLn2Parts[2]));
    const double step = Nearest(rest.high * kStepsPerUnit);
    rest = Sum(rest.high - step / kStepsPerUnit, rest.low);

    double tail = kInverseFactorial[12].high;
    for (std::size_t n = 11; n >= 7; --n)
        tail = tail * rest.high + kInverseFactorial[n].high;
    Pair sum = kInverseFactorial[6] + tail * rest.high;
    for (std::size_t n = 5; n >= 2; --n)
        sum = kInverseFactorial[n] + sum * rest;
    const Pair lessOne = rest + rest * rest * sum;
    const Pair& base = kExp[static_cast<std::size_t>(step + kExpMiddle)];
    return Round(base + base * lessOne, static_cast<int>(count));
}

} // namespace

double PortableSin(double x) {
    if (std::fabs(x) < 0x1p-27) return x; // keeps the sign of 0, and what is too small to be split
    return SineFrom(x, 0);
}

double PortableCos(double x) { return SineFrom(x, 1); }

double PortableExp(long double x) {
    const auto high = static_cast<double>(x);
    if (high != high) return high;
    if (high > 710) return std::numeric_limits<double>::infinity();
    if (high < -750) return 0;
    return Exponential({high, static_cast<double>(x - static_cast<long double>(high))});
}

#if defined(__GNUC__) && (defined(__i386__) || defined(__x86_64__))

ExtendedPrecision::ExtendedPrecision() : saved_(0) {
    __asm__ volatile("fnstcw %0" : "=m"(saved_));
    const auto extended = static_cast<unsigned short>(saved_ | 0x300U);
    __asm__ volatile("fldcw %0" : : "m"(extended) : "memory");
}

ExtendedPrecision::~ExtendedPrecision() { __asm__ volatile("fldcw %0" : : "m"(saved_) : "memory"); }

#else

ExtendedPrecision::ExtendedPrecision() : saved_(0) {}
ExtendedPrecision::~ExtendedPrecision() = default;

#endif

} // namespace lumafold
