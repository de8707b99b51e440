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
    {0x1.1475cc9eedf01p0, 0x1.c38b2f180bdb1p-1, 0x1.e2b5d3806f63ap-2},
    {0x1.015bf9217271ap-4, 0x1.0130a1be09379p-4, 0x1.fefd5bfe443fep-1},
    {0x1.41b2f769cf0ep0, 0x1.e6f0e134454ffp-1, 0x1.3c6ef372fe95p-2},
    {0x1.eeebf2ca2ada8p-1, 0x1.a55e242a4c3d3p-1, 0x1.22d961ea71119p-1},
    {0x1.db50c91a6a63ap-1, 0x1.99ec8cb402a0fp-1, 0x1.32c47a93ba578p-1},
    {0x1.290b0cf941184p10, 0x1.361e26f1fa118p-1, 0x1.976534df4ed06p-1},
    {0x1.2d97c7f3321d2p2, -1.0, -0x1.a79394c9e8a0ap-53},
    {0x1.7bdd989bb8e98p17, 0x1.fd9da627a1cccp-1, 0x1.8ad2f6662091p-4},
    {-0x1p20, -0x1.526ccb2fc8656p-2, 0x1.e33ada92fe2aep-1},
    {-0x1.91027ddbf39d4p6, 0x1.198af991ffdfdp-2, 0x1.ec44824c5409fp-1},
    {-0x1.7a8c5a2b4604ap8, -0x1.fff3c3b6497d2p-1, 0x1.bfb96d62feec5p-7},
    {0x1.a87c5e027e62p5, 0x1.5b9cecf09bed8p-2, -0x1.e198bbf0c7a9p-1},
    {0x1.a67434d97733p7, -0x1.59553a12c7428p-1, -0x1.7a01c0b50fd9fp-1},
    {0x1.a151846dd35p12, -0x1.df1d85141ccb4p-1, -0x1.691165d387407p-2},
    {-0x1.989f56cedd4fp19, -0x1.e7bbe6542612bp-1, 0x1.378276c128995p-2},
    {0x1.e2d58531807f4p18, -0x1.f5ce6de03dff9p-1, -0x1.96a1e9b5d7cc2p-3},
    {0x1.23ed1b9f5b0ep19, 0x1.9af087312c16cp-1, 0x1.3167df9c8cf6dp-1},
    {0x1.c0e310463199cp18, 0x1.e884c5c9be221p-1, 0x1.328d5143fda16p-2},
    {0x1.886ea5767fe22p8, 0x1.0e0ac703e6d49p-2, -0x1.ede0351d50cc2p-1},
    {-0x1.77849e72fd238p6, 0x1.70a41770fdeb1p-2, 0x1.ddabe030d6fe5p-1},
    {0x1.70c664594887ap8, -0x1.dec978dc09af1p-1, -0x1.6ace477fffa8ap-2},
    {-0x1.acce872546c3fp7, -0x1.6648269027d95p-1, 0x1.6dc1c57c0cb79p-1},
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
    {-0x1.48d159e26af38p-3, 0x1.fep-58, 0x1.b40e281f094efp-1},
    {-0x1.9p3, 0.0, 0x1.f42ed3f68e69p-19},
    {-0x1.381c71c71c71cp5, -0x1.c7p-49, 0x1.a42d81570804bp-57},
    {-0x1.9abcdf0123456p5, -0x1.e28p-49, 0x1.e75affbfa9e47p-75},
    {-0x1.a59e26af37c05p1, 0x1.cb8p-53, 0x1.2fffbf63c235dp-5},
    {-0x1.8c028f5c28f5cp7, -0x1.48p-48, 0x1.43d8d2ecad2b3p-286},
    {-0x1.74385446d71c3p9, 0.0, 0x0.0000000000001p-1022},
    {0x1.62e42fefa39efp-2, 0.0, 0x1.6a09e667f3bccp0},
    {0x1.44ca78dfde474p9, 0.0, 0x1.1bbf3c837685ep937},
    {0x1.5310e007d6514p7, 0x1p-55, 0x1.7fd6ec38e34d5p244},
    {-0x1.5209ffb7f0461p9, -0x1.8p-53, 0x1.8aee274e5165p-976},
    {-0x1.585e1f4c708dep9, 0x1p-52, 0x1.49aff5cbb6126p-994},
    {-0x1.75f861696b64p8, 0x1p-53, 0x1.63d155b6f8d9cp-540},
    {-0x1.78c6db5d9c524p3, 0.0, 0x1.025f8900dd0e6p-17},
    {-0x1.c1a6ddd95fc54p4, 0.0, 0x1.5f10c747b18e6p-41},
    {-0x1.07d296f83fcecp5, 0.0, 0x1.573c236886c0bp-48},
    {0x1.a61f39b4dddbp2, 0.0, 0x1.6df451ee24611p9},
    {-0x1.45b64f69d6d72p4, 0.0, 0x1.8c769c4936a0dp-30},
};

struct Power {
    double x, y, value;
};
constexpr Power kPower[] = {
    {0x1.325de868b73f4p-1, 0x1.6832e01944496p0, 0x1.f128240bb09f8p-2},
    {0x1.ce262ce6bb86p-4, 0x1.7f5a89e0d766ep-3, 0x1.545410da5e5p-1},
    {0x1.6535f4d22ab98p-4, 0x1.c8f169efa5ee8p-3, 0x1.2917c5d526e14p-1},
    {0x1.3297b3a117cd2p-3, 0x1.15de31108700ap-1, 0x1.6d5554368f596p-2},
    {0x1.06d94cf0304d8p-1, 0x1.d1380685cfccep-1, 0x1.175c03c1f1803p-1},
    {0x0.0000000000001p-1022, 0x1.3333333333333p-2, 0x1.bdb8cdadbe161p-323},
    {5.0, 23.0, 0x1.52d02c7e14af6p53},
    {0x1.2999a1192d8b5p0, 0x1.951fcd6112792p4, 0x1.6a20977559fb1p5},
    {0x1.ab342cc3d8c26p4, 0x1.177ae0f4bd31dp3, 0x1.4ed6de3da167bp41},
    {0x1.6deded5d09e04p5, 0x1.91d883b0d7357p4, 0x1.6f8cd47a0b4f3p138},
    {0x1.377f0c7ba0fcfp3, 0x1.f21f0ebfde495p4, 0x1.28361952b1b28p102},
    {0x1.b4486d2116109p-2, 0x1.87fbcdd1a713p0, 0x1.154c521e44bedp-2},
    {0x1.8e099bf43b9cp-3, 0x1.665eec8a629e7p1, 0x1.4df20f614052ep-7},
    {0x1.f3f06cf5614e7p-1, 0x1.37313b76a61e6p1, 0x1.e32ba01e2f7fep-1},
    {0x1.d242e34821e46p-1, 0x1.45b518277441bp1, 0x1.938309c14935ap-1},
    {0x1.5ec21c156fe0bp-3, 0x1.4cb9dde5b5304p-2, 0x1.20953ac8967dcp-1},
    {0x1.9fae42bbb7ffep-1, 0x1.7713bb2d4dd29p-3, 0x1.ecd3786dd1e26p-1},
    {0x1.78be271376ffep-1, 0x1.42d0bdd843298p1, 0x1.d8659eb6f6d2bp-2},
    {0x1.a4d74b2b1e706p-4, 0x1.b5b51ea91240dp0, 0x1.4ec1a5e191e19p-6},
    {0x1.98aa0950de34ap-1, 0x1.0401c56026e14p-1, 0x1.c89df474637d3p-1},
    {0x1.cfee2610cbbdcp-3, 0x1.14f440fb59752p-1, 0x1.caa3121250f17p-2},
    {0x1.83d639fc89d92p-1, 0x1.50e26abce6646p1, 0x1.ecfcff2a17451p-2},
};

} // namespace lumafold::math_table
