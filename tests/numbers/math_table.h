// Arguments and the doubles nearest the true values, which were worked out with 90 decimal digits.
// The last ones of each table are hard: the true value lies very near the middle of two doubles.
#pragma once

#include <limits>

namespace lumafold::math_table {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

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

} // namespace lumafold::math_table
