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
    {0x1.921fb54442d18p-1, 0x1.6a09e667f3bccp-1, 0x1.6a09e667f3bcdp-1},
    {0x1.f6a7a2955385ep-1, 0x1.a9b66290ea1a3p-1, 0x1.1c73b39ae68c9p-1},
    {0x1.1475cc9eedf01p0, 0x1.c38b2f180bdb1p-1, 0x1.e2b5d3806f63ap-2},
    {0x1.2d97c7f3321d2p0, 0x1.d906bcf328d46p-1, 0x1.87de2a6aea964p-2},
    {0x1.1db836b080517p0, 0x1.cbf9e71c7ea83p-1, 0x1.c1bcc02674f4cp-2},
    {0x1.015bf9217271ap-4, 0x1.0130a1be09379p-4, 0x1.fefd5bfe443fep-1},
    {0x1.8209f5b22baa6p-2, 0x1.78f5a48a8a918p-2, 0x1.dc0ba9def5ae5p-1},
    {0x1.8209f5b22baa6p-1, 0x1.5e7cf55112013p-1, 0x1.753b603d2b816p-1},
    {0x1.41b2f769cf0ep0, 0x1.e6f0e134454ffp-1, 0x1.3c6ef372fe95p-2},
    {0x1.eeebf2ca2ada8p-3, 0x1.ea1e54bc48dbfp-3, 0x1.f11f493053dp-1},
    {0x1.355377be5ac89p-1, 0x1.22d961ea71119p-1, 0x1.a55e242a4c3d2p-1},
    {0x1.eeebf2ca2ada8p-1, 0x1.a55e242a4c3d3p-1, 0x1.22d961ea71119p-1},
    {0x1.544236eafd762p0, 0x1.f11f493053dp-1, 0x1.ea1e54bc48dc9p-3},
    {0x1.43c4036b09654p-3, 0x1.426b345442ce8p-3, 0x1.f99d87accd53p-1},
    {0x1.db50c91a6a63ap-1, 0x1.99ec8cb402a0fp-1, 0x1.32c47a93ba578p-1},
    {0x1.a4d7aaff25aep8, -0x1.0b7207a965384p-3, 0x1.fb9d957a6d845p-1},
    {0x1.0f9be286ff4c5p6, -0x1.df8a766769346p-1, 0x1.66cd13f2ffcfap-2},
    {0x1.290b0cf941184p10, 0x1.361e26f1fa118p-1, 0x1.976534df4ed06p-1},
    {0x1.aba9e2a6de06bp6, 0x1.a0103390cfa8p-4, 0x1.fd5a0a7c4554fp-1},
    {0x1.197c987c952c4p0, 0x1.c83201d3d2c6cp-1, 0x1.d0e2e2b44de01p-2},
    {0x1.2d97c7f3321d2p2, -1.0, -0x1.a79394c9e8a0ap-53},
    {-0x1.dc2715c45911p17, -0x1.109953d27062p-1, -0x1.b165e2e177326p-1},
    {-0x1.ff848ddd775bcp19, 0x1.6458aae56085cp-1, 0x1.6fa4928ce8bf7p-1},
    {0x1.7bdd989bb8e98p17, 0x1.fd9da627a1cccp-1, 0x1.8ad2f6662091p-4},
    {0x1.3c083126e978dp-1, 0x1.2857cac70a544p-1, 0x1.a185b4d68515cp-1},
    {0x1.3c083126e978dp-20, 0x1.3c083126e9289p-20, 0x1.fffffffffe79ep-1},
    {-0x1p20, -0x1.526ccb2fc8656p-2, 0x1.e33ada92fe2aep-1},
    {1.0, 0x1.aed548f090ceep-1, 0x1.14a280fb5068cp-1},
    {-0x1.6421552e0ef52p8, 0x1.cf1c5112af511p-1, -0x1.b4ae522075faap-2},
    {-0x1.91027ddbf39d4p6, 0x1.198af991ffdfdp-2, 0x1.ec44824c5409fp-1},
    {0x1.80cd4b58c1d2p8, 0x1.ff85e34bf040cp-1, 0x1.618814807e1efp-5},
    {0x1.156c28d6e8d44p7, 0x1.d9ed2557cac7ap-2, 0x1.c5dd298a7bfe9p-1},
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
    {0x1.70d226be8a168p-1, 0x1.79224ae8583eep-1, 0x1.921ae1f4ebb6dp-1},
    {0x1.d5b03bba8e81ap-1, 0x1.01e789613e094p0, 0x1.d5631a7b31ed6p-1},
    {0x1.325de868b73f4p-1, 0x1.6832e01944496p0, 0x1.f128240bb09f8p-2},
    {0x1.5dddddddddddep-1, 0x1.80973f2bd2fa6p0, 0x1.20f5acc179b4bp-1},
    {0x1.410446306858dp-2, 0x1.8b19a4af3e23fp0, 0x1.55d80b3a893fdp-3},
    {0x1.ce262ce6bb86p-4, 0x1.7f5a89e0d766ep-3, 0x1.545410da5e5p-1},
    {0x1.4eb84d76f0a95p-1, 0x1.2c83d2f9ecc9dp0, 0x1.36dfb2b3a0769p-1},
    {0x1.3856b1ddff8b6p-1, 0x1.187e27d01d4b2p0, 0x1.29e9c3120c135p-1},
    {0x1.6535f4d22ab98p-4, 0x1.c8f169efa5ee8p-3, 0x1.2917c5d526e14p-1},
    {0x1.47c0484fece5p-2, 0x1.7e9ebb06163bp1, 0x1.0fedfa6a3497dp-5},
    {0x1.448939297e38ep-4, 0x1.4e1e43992cb16p0, 0x1.2b6dd63997b4p-5},
    {0x1.3297b3a117cd2p-3, 0x1.15de31108700ap-1, 0x1.6d5554368f596p-2},
    {0x1.84dba0dede1e6p-1, 0x1.11edd88142e26p0, 0x1.7d6ff42f37476p-1},
    {0x1.1acd6ce53a855p-1, 0x1.1ca6b1f717dbfp0, 0x1.08a02e2902812p-1},
    {0x1.06d94cf0304d8p-1, 0x1.d1380685cfccep-1, 0x1.175c03c1f1803p-1},
    {0x1.354765735074bp-1, 0x1.1b9a20ba842d2p0, 0x1.24eb09f5de14ap-1},
    {0x1.bdd432a77a1edp-2, 0x1.16e6a81089411p0, 0x1.9dde5a24b30f1p-2},
    {0x0.0000000000001p-1022, 0x1.3333333333333p-2, 0x1.bdb8cdadbe161p-323},
    {0x1.cp1, 566.0, 0x1.f2ff1a967dfebp1022},
    {0x1.6a09e667f3bcdp0, 2.0, 0x1.0000000000001p1},
    {5.0, 23.0, 0x1.52d02c7e14af6p53},
    {0x1.6a09e64p26, 2.0, 0x1.ffffff8eff971p52},
    {0x1.0000008000001p0, 0x1.8p0, 0x1.000000c000003p0},
    {0x1.2999a1192d8b5p0, 0x1.951fcd6112792p4, 0x1.6a20977559fb1p5},
    {0x1.4a12681877a68p5, 0x1.8a1bc07cc73d6p4, 0x1.23fdf54898d2ep132},
    {0x1.ae8c012c6d373p4, 0x1.146db21140aa6p5, 0x1.18347a950c91ep164},
    {0x1.ab342cc3d8c26p4, 0x1.177ae0f4bd31dp3, 0x1.4ed6de3da167bp41},
    {0x1.59dfcad2406afp3, 0x1.5b7b8000efd81p4, 0x1.7edb82276b0c1p74},
    {0x1.d550d3b9ad29fp4, 0x1.5d5a294a736p2, 0x1.8613ee476a421p26},
    {0x1.6deded5d09e04p5, 0x1.91d883b0d7357p4, 0x1.6f8cd47a0b4f3p138},
    {0x1.16139f9a448b6p4, 0x1.cfb4a12514617p2, 0x1.cc3e929ff645dp29},
    {0x1.e28082e77fb42p4, 0x1.1d017184e9224p5, 0x1.0e57c9b6388e1p175},
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
