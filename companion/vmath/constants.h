// Made by make/constants.py, with Sollya and mpmath.
#pragma once

#include "lanes.h"

namespace vmath {

// ---- Exponential: x = (k + f)/16 ln 2 ----
// 2^(i/16), less i in the bits that k is added to, and what its rounding lost, relative to it
inline constexpr Table<2, 16> kExpTable = {{
    {0x1.0000000000000p+0, 0x1.fb5586cf9890fp-1, 0x1.f72b83c7d517bp-1, 0x1.f387a6e756238p-1, 0x1.f06fe0a31b715p-1,
     0x1.edea64c123422p-1, 0x1.ebfdad5362a27p-1, 0x1.eab07dd485429p-1, 0x1.ea09e667f3bcdp-1, 0x1.ea11473eb0187p-1,
     0x1.eace5422aa0dbp-1, 0x1.ec49182a3f090p-1, 0x1.ee89f995ad3adp-1, 0x1.f199bdd85529cp-1, 0x1.f5818dcfba487p-1,
     0x1.fa4afa2a490dap-1},
    {0, 0x1.79aa65d837b6dp-54, -0x1.01b15eaa59348p-55, 0x1.68efde3a8a894p-54, 0x1.34d754db0abb6p-55,
     0x1.59f48a72a4c6dp-55, 0x1.690cebb7aafb0p-56, 0x1.063e1e21c5409p-54, -0x1.3b3efbf5e2228p-54,
     -0x1.b32dcb94da51dp-56, 0x1.db72fc1f0eab4p-55, 0x1.1affc2b91ce27p-56, 0x1.c1a7792cb3387p-55,
     0x1.36eae30af0cb3p-56, 0x1.4a385a63d07a7p-56, -0x1.ff7128fd391f0p-55},
}};
// numbers near to 2^(i/16), and ln 2 i/16 less their logarithms and with kExpError32, which make the result greater
inline constexpr Table32<2, 16> kExpTable32 = {{
    {0x1.0000000000000p+0, 0x1.0b55d20000000p+0, 0x1.172b800000000p+0, 0x1.2387a80000000p+0, 0x1.306fde0000000p+0,
     0x1.3dea640000000p+0, 0x1.4bfdb60000000p+0, 0x1.5ab0860000000p+0, 0x1.6a09e00000000p+0, 0x1.7a11520000000p+0,
     0x1.8ace540000000p+0, 0x1.9c49180000000p+0, 0x1.ae89fa0000000p+0, 0x1.c199be0000000p+0, 0x1.d5818e0000000p+0,
     0x1.ea4afa0000000p+0},
    {0x1.a000000000000p-34, -0x1.2000000000000p-18, 0x1.bc00000000000p-23, -0x1.ec00000000000p-25,
     0x1.1c00000000000p-23, 0x1.3800000000000p-25, -0x1.ac00000000000p-22, -0x1.8200000000000p-22,
     0x1.2200000000000p-22, -0x1.d200000000000p-22, 0x1.6e00000000000p-28, 0x1.aa00000000000p-28,
     -0x1.f600000000000p-27, -0x1.6200000000000p-28, -0x1.9e00000000000p-28, 0x1.6800000000000p-28},
}};
inline constexpr float kExpError32 = 0x1.a000000000000p-34;
inline constexpr double kSixteenByLn2 = 0x1.71547652b82fep+4;
// ln 2/16, in parts
inline constexpr double kLn2By16[] = {0x1.62e42fefa39efp-5, 0x1.abc9e3b39803fp-60};

// ---- Logarithm: x = 2^k c (1 + r) ----
inline constexpr uint64_t kLogStart = 0x3fe6555555555556;  // the bits of the least x of k = 0
// 1/c and ln c
inline constexpr Table<2, 16> kLogTable = {{
    {0x1.66c0429800000p+0, 0x1.57e05f2400000p+0, 0x1.49be837c00000p+0, 0x1.3d0dde1800000p+0, 0x1.315d8c7000000p+0,
     0x1.26746b1c00000p+0, 0x1.1c2a478000000p+0, 0x1.12baa57400000p+0, 0x1.09cad18000000p+0, 0x1.0000000000000p+0,
     0x1.e677884000000p-1, 0x1.cb01598800000p-1, 0x1.b299207800000p-1, 0x1.9cf9053000000p-1, 0x1.89794de800000p-1,
     0x1.771d003000000p-1},
    {-0x1.598ccbab83000p-2, -0x1.2e30011258800p-2, -0x1.033710523c000p-2, -0x1.b60eaf9275000p-3,
     -0x1.69209bc40c000p-3, -0x1.1e9d04fad1000p-3, -0x1.ab886c94f8000p-4, -0x1.2135e2b0ea000p-4,
     -0x1.3382022888000p-5, 0, 0x1.a3114fdf00000p-5, 0x1.bf8a7bff88000p-4, 0x1.4fac46ca2e000p-3,
     0x1.b8340fd9cb000p-3, 0x1.0da124ca4c000p-2, 0x1.3e9018509e000p-2},
}};
// ln c, less its part in kLogTable
inline constexpr Table<1, 16> kLogRest = {{
    {-0x1.58d5de89876a5p-67, -0x1.e8a1d56382c2dp-66, -0x1.4dc8ed9ac9607p-65, 0x1.b380d0b4357ebp-66,
     0x1.06f84b307abaap-68, -0x1.d0026b6ba6099p-65, -0x1.6aac3bffa4389p-68, -0x1.5d0c1d0eaf974p-67,
     -0x1.8ebbb70e29a70p-69, 0, -0x1.7bd138e7558f5p-66, 0x1.c04d3bc76fd97p-69, 0x1.9ebe932455667p-68,
     -0x1.742f6240aead8p-66, -0x1.6255f2b3fc2f2p-66, -0x1.0237833a8905cp-65},
}};
// 1/c and log10 c
inline constexpr Table<2, 16> kLog10Table = {{
    {0x1.66951d0800000p+0, 0x1.57a4667000000p+0, 0x1.4a00d17400000p+0, 0x1.3d266fec00000p+0, 0x1.3122f88c00000p+0,
     0x1.2663502c00000p+0, 0x1.1c3674b800000p+0, 0x1.12b28ff000000p+0, 0x1.099f881800000p+0, 0x1.0000000000000p+0,
     0x1.e6da4fe800000p-1, 0x1.cb838dc000000p-1, 0x1.b30a7ed800000p-1, 0x1.9d0435d000000p-1, 0x1.8953cf0000000p-1,
     0x1.76bfaf8800000p-1},
    {-0x1.2bb912ec21800p-3, -0x1.05dee08168800p-3, -0x1.c3b30db3d5000p-4, -0x1.7d07bab4c8000p-4,
     -0x1.385679c4ae000p-4, -0x1.f1174b076e000p-5, -0x1.73f221b8fe000p-5, -0x1.f597977f24000p-6,
     -0x1.0691e06f74000p-6, 0, 0x1.665b18d69c000p-6, 0x1.80ca0237d8000p-5, 0x1.21c0079d6f000p-4,
     0x1.7e2ae228cb000p-4, 0x1.d50e80e2d8000p-4, 0x1.15909e1a41800p-3},
}};
// its first 43 fraction bits, so that k times it is exact, and the rest
inline constexpr double kLn2[] = {0x1.62e42fefa3800p-1, 0x1.ef35793c76730p-45};
// its first 44 fraction bits, so that k times it is exact, and the rest
inline constexpr double kLog10Of2[] = {0x1.34413509f7800p-2, 0x1.fef311f12b358p-46};
// ln 2, in parts
inline constexpr double kLn2InTwo[] = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};
inline constexpr double kLog10E = 0x1.bcb7b1526e50ep-2;
// the same of binary32, in parts
inline constexpr float kLog10E32[] = {0x1.bcb7b20000000p-2, -0x1.5b235e0000000p-27};
// ln 2 of binary32, in parts
inline constexpr float kLn2Of32[] = {0x1.62e4300000000p-1, -0x1.05c6100000000p-29};
inline constexpr uint32_t kLogStart32 = 0x3f350000;  // the bits of the least x of k = 0
// its first 16 fraction bits, so that k times it is exact, and the rest
inline constexpr float kLn2Of32Short[] = {0x1.62e4000000000p-1, 0x1.7f7d1c0000000p-20};
// 1/c of so few bits that r is exact, ln c to 16 fraction bits, and the rest
inline constexpr Table32<3, 8> kLogTable32 = {{
    {0x1.6000000000000p+0, 0x1.4000000000000p+0, 0x1.3000000000000p+0, 0x1.1000000000000p+0, 0x1.0000000000000p+0,
     0x1.d000000000000p-1, 0x1.a000000000000p-1, 0x1.8000000000000p-1},
    {-0x1.4618000000000p-2, -0x1.c900000000000p-3, -0x1.5ff0000000000p-3, -0x1.f0a0000000000p-5, 0,
     0x1.9330000000000p-4, 0x1.a940000000000p-3, 0x1.2698000000000p-2},
    {-0x1.78438c0000000p-19, 0x1.070cac0000000p-20, -0x1.83853c0000000p-18, -0x1.86008c0000000p-20, 0,
     0x1.7975660000000p-18, -0x1.2c37520000000p-19, -0x1.deecb20000000p-18},
}};
// 1/3, in parts
inline constexpr double kThird[] = {0x1.5555555555555p-2, 0x1.5555555555555p-56};

// ---- Sine, cosine, tangent: x = k pi/16 + r ----
// pi, in parts
inline constexpr double kPi[] = {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53};
// pi/2, in parts
inline constexpr double kHalfPi[] = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54};
// pi/16, in parts of which the second has 29 bits
inline constexpr double kPiBy16Short[] = {0x1.921fb54442d18p-3, 0x1.1a62633000000p-57, 0x1.45c06e0e68948p-89};
// the same in whole parts
inline constexpr double kPiBy16[] = {0x1.921fb54442d18p-3, 0x1.1a62633145c07p-57, -0x1.f1976b7ed8fbcp-113};
inline constexpr double kByPi = 0x1.45f306dc9c883p-2;
// of k pi/16 sine, cosine, and what their rounding lost, each with most of what the other's lost
inline constexpr Table<4, 16, 32> kTurnTable = {{
    {-0x0.0p+0, 0x1.8f8b83c69a60bp-3, 0x1.87de2a6aea963p-2, 0x1.1c73b39ae68c8p-1, 0x1.6a09e667f3bcdp-1,
     0x1.a9b66290ea1a3p-1, 0x1.d906bcf328d46p-1, 0x1.f6297cff75cb0p-1, 0x1.0000000000000p+0, 0x1.f6297cff75cb0p-1,
     0x1.d906bcf328d46p-1, 0x1.a9b66290ea1a3p-1, 0x1.6a09e667f3bcdp-1, 0x1.1c73b39ae68c8p-1, 0x1.87de2a6aea963p-2,
     0x1.8f8b83c69a60bp-3},
    {0x1.0000000000000p+0, 0x1.f6297cff75cb0p-1, 0x1.d906bcf328d46p-1, 0x1.a9b66290ea1a3p-1, 0x1.6a09e667f3bcdp-1,
     0x1.1c73b39ae68c8p-1, 0x1.87de2a6aea963p-2, 0x1.8f8b83c69a60bp-3, 0, -0x1.8f8b83c69a60bp-3,
     -0x1.87de2a6aea963p-2, -0x1.1c73b39ae68c8p-1, -0x1.6a09e667f3bcdp-1, -0x1.a9b66290ea1a3p-1,
     -0x1.d906bcf328d46p-1, -0x1.f6297cff75cb0p-1},
    {0, -0x1.48684a051df67p-57, -0x1.92c3698f1fc72p-57, 0x1.b1bab327f8ffcp-55, -0x1.a7f0d9959e168p-55,
     -0x1.0aea12c875dc2p-60, 0x1.4e983c164abe3p-56, 0x1.5d5dd94d71706p-56, 0, 0x1.5d5dd94d71706p-56,
     0x1.4e983c164abe3p-56, -0x1.0aea12c875dc2p-60, -0x1.a7f0d9959e168p-55, 0x1.b1bab327f8ffcp-55,
     -0x1.92c3698f1fc72p-57, -0x1.48684a051df67p-57},
    {0, 0x1.5d5dd94d71706p-56, 0x1.4e983c164abe3p-56, -0x1.0aea12c875dc2p-60, -0x1.a7f0d9959e168p-55,
     0x1.b1bab327f8ffcp-55, -0x1.92c3698f1fc72p-57, -0x1.48684a051df67p-57, 0, 0x1.48684a051df67p-57,
     0x1.92c3698f1fc72p-57, -0x1.b1bab327f8ffcp-55, 0x1.a7f0d9959e168p-55, 0x1.0aea12c875dc2p-60,
     -0x1.4e983c164abe3p-56, -0x1.5d5dd94d71706p-56},
}};
// numbers of which the first is tan(k pi/16) times the second
inline constexpr Table<2, 16> kTanTable = {{
    {-0x0.0p+0, 0x1.a50d1ebaf5ba8p-3, 0x1.87c969c18c106p-1, 0x1.0f1eee44587f9p+0, 0x1.0000000000000p+0,
     0x1.6beca4e408cc8p+1, 0x1.21268aa204b1fp+2, 0x1.2029698b67e5fp+3, 0x1.0000000000000p+0, -0x1.2029698b67e5fp+3,
     -0x1.21268aa204b1fp+2, -0x1.6beca4e408cc8p+1, -0x1.0000000000000p+0, -0x1.0f1eee44587f9p+0,
     -0x1.87c969c18c106p-1, -0x1.a50d1ebaf5ba8p-3},
    {0x1.0000000000000p+0, 0x1.0898900000000p+0, 0x1.d8edb00000000p+0, 0x1.95c2d00000000p+0, 0x1.0000000000000p+0,
     0x1.e655400000000p+0, 0x1.df14900000000p+0, 0x1.ca8d300000000p+0, 0, 0x1.ca8d300000000p+0, 0x1.df14900000000p+0,
     0x1.e655400000000p+0, 0x1.0000000000000p+0, 0x1.95c2d00000000p+0, 0x1.d8edb00000000p+0, 0x1.0898900000000p+0},
}};
// 2/pi, 64 bits in each word, behind a word of zeros
inline constexpr uint64_t kTwoByPiBits[] = {0x0000000000000000, 0xa2f9836e4e441529, 0xfc2757d1f534ddc0,
    0xdb6295993c439041, 0xfe5163abdebbc561, 0xb7246e3a424dd2e0, 0x06492eea09d1921c, 0xfe1deb1cb129a73e,
    0xe88235f52ebb4484, 0xe99c7026b45f7e41, 0x3991d639835339f4, 0x9c845f8bbdf9283b, 0x1ff897ffde05980f,
    0xef2f118b5a0a6d1f, 0x6d367ecf27cb09b7, 0x4f463f669e5fea2d, 0x7527bac7ebe5f17b, 0x3d0739f78a5292ea,
    0x6bfb5fb11f8d5d08, 0x56033046fc7b6bab, 0xf0cfbc209af4361d};

// ---- Arctangent ----
// c and arctan c, in three parts; remainders are below 0.07820
inline constexpr Table<4, 32> kAtanTable = {{
    {0x1.1d09400000000p+1, 0x1.4ce4900000000p+1, 0x1.8427e00000000p+1, 0x1.c785e00000000p+1, 0x1.1c9d200000000p+2,
     0x1.4c53400000000p+2, 0x1.83a5c00000000p+2, 0x1.c738500000000p+2, 0x1.1c7d000000000p+3, 0x1.4c29f00000000p+3,
     0x1.8381e00000000p+3, 0x1.0000000000000p+600, 0, 0x1.523e700000000p-4, 0x1.8a99b00000000p-4,
     0x1.ccbaa00000000p-4, 0x1.1fee600000000p-3, 0x1.521f300000000p-3, 0x1.8a68a00000000p-3, 0x1.cc86b00000000p-3,
     0x1.1fbd500000000p-2, 0x1.51add00000000p-2, 0x1.89bc800000000p-2, 0x1.cbd8000000000p-2, 0x1.1f25b00000000p-1,
     0x1.506a700000000p-1, 0x1.87fdf00000000p-1, 0x1.ca43100000000p-1, 0x1.1e05100000000p+0, 0x1.4e5fd00000000p+0,
     0x1.859d000000000p+0, 0x1.c876700000000p+0},
    {0x1.2612800000000p+0, 0x1.3426c00000000p+0, 0x1.4094300000000p+0, 0x1.4bff500000000p+0, 0x1.5980000000000p+0,
     0x1.616b400000000p+0, 0x1.683c900000000p+0, 0x1.6e5df00000000p+0, 0x1.7572e00000000p+0, 0x1.7989800000000p+0,
     0x1.7d08100000000p+0, 0x1.921fb00000000p+0, 0, 0x1.517a700000000p-4, 0x1.8962e00000000p-4, 0x1.caccf00000000p-4,
     0x1.1e0e600000000p-3, 0x1.4f19500000000p-3, 0x1.85a3700000000p-3, 0x1.c4fdc00000000p-3, 0x1.1881900000000p-2,
     0x1.462e200000000p-2, 0x1.77e3f00000000p-2, 0x1.b035000000000p-2, 0x1.05b1f00000000p-1, 0x1.29a3400000000p-1,
     0x1.4e8ca00000000p-1, 0x1.75cbb00000000p-1, 0x1.ae73c00000000p-1, 0x1.d5b2d00000000p-1, 0x1.fa9c300000000p-1,
     0x1.0f46c00000000p+0},
    {-0x1.3cf4100000000p-22, -0x1.7fea300000000p-22, -0x1.fc05000000000p-26, 0x1.5d44000000000p-26,
     -0x1.4e7b400000000p-24, 0x1.6c41500000000p-22, -0x1.111a800000000p-22, -0x1.dc20300000000p-22,
     0x1.9776b00000000p-22, 0x1.9425100000000p-22, -0x1.6dc5000000000p-24, 0x1.5110b00000000p-22, 0,
     -0x1.c0d7000000000p-26, 0x1.ab75000000000p-26, -0x1.0b38000000000p-28, 0x1.ca84000000000p-25,
     0x1.d74b000000000p-25, 0x1.1c23000000000p-26, 0x1.4d72000000000p-25, -0x1.b69c000000000p-25,
     -0x1.049fc00000000p-24, -0x1.af16000000000p-25, -0x1.c0e0000000000p-24, 0x1.0709a00000000p-23,
     0x1.0b9fa00000000p-23, -0x1.c94b800000000p-23, -0x1.d3a6000000000p-26, -0x1.a828a00000000p-23,
     0x1.0158400000000p-23, -0x1.bc18000000000p-24, -0x1.7d90200000000p-22},
    {0x1.4b1ac00000000p-45, -0x1.970b800000000p-44, 0x1.2fed000000000p-44, -0x1.8d54300000000p-44,
     -0x1.46e3f00000000p-44, -0x1.f6d5e00000000p-48, 0x1.0c74f00000000p-44, -0x1.ea80500000000p-49,
     0x1.6a98a00000000p-44, 0x1.3d6ec00000000p-50, 0x1.0d0a600000000p-44, 0x1.1846a00000000p-44, 0,
     -0x1.03eb200000000p-45, -0x1.965f000000000p-46, 0x1.ea86400000000p-44, 0x1.4b3fb00000000p-46,
     -0x1.161b100000000p-44, 0x1.c42fa00000000p-45, -0x1.fee4400000000p-48, -0x1.71c0c00000000p-44,
     -0x1.7cba400000000p-45, 0x1.f817300000000p-45, 0x1.54f1900000000p-46, -0x1.16c9a00000000p-44,
     -0x1.980c900000000p-44, -0x1.e270400000000p-45, 0x1.2b8d000000000p-46, 0x1.871de00000000p-45,
     0x1.2c99800000000p-44, -0x1.ded0d00000000p-44, 0x1.72e6d00000000p-44},
}};
// pi to 43 fraction bits, so that its sums with those are exact, and the rest
inline constexpr double kPiShort[] = {0x1.921fb54442d00p+1, 0x1.8469898cc5170p-47};

// ---- Polynomials, the coefficient of the least power first ----
// e^x = 1 + x + x^2 p(x): within 2^-25.4
inline constexpr float kExpPoly32[] = {0x1.0000000000000p-1, 0x1.5556e80000000p-3, 0x1.55569e0000000p-5};
// e^x = 1 + x + x^2 p(x): within 2^-66.2
inline constexpr double kExpPoly[] = {0x1.0000000000004p-1, 0x1.555555555555ap-3, 0x1.5555555484f47p-5,
    0x1.11111110720f4p-7, 0x1.6c183da03197ep-10, 0x1.a01badab24ec8p-13};
// ln(1 + x) = x - x^2/2 + x^3 p(x): within 2^-26.6
inline constexpr float kLogPoly32[] = {0x1.5555560000000p-2, -0x1.0000000000000p-2, 0x1.9993e00000000p-3,
    -0x1.5555040000000p-3, 0x1.2a168a0000000p-3, -0x1.0115ce0000000p-3};
// ln(1 + x) = x + x^2 p(x), relative to x: within 2^-62.3
inline constexpr double kLogPoly[] = {-0x1.0000000000000p-1, 0x1.55555555554f2p-2, -0x1.ffffffffffe7bp-3,
    0x1.9999999b819b3p-3, -0x1.55555558235dfp-3, 0x1.249231d856988p-3, -0x1.ffffc7ebafbc5p-4, 0x1.c7fce0d01f896p-4,
    -0x1.9a81a394f3b53p-4};
// log10(1 + x) = x (kLog10E + p(x)), relative to x: within 2^-63.4
inline constexpr double kLog10Poly[] = {0x1.979a3cb32be17p-57, -0x1.bcb7b1526e50ep-3, 0x1.287a7636f42e6p-3,
    -0x1.bcb7b1526f32ap-4, 0x1.63c627770d979p-4, -0x1.287a762da5646p-4, 0x1.fc3f7ad71f85ap-5, -0x1.bcb7f193b4a1ep-5,
    0x1.8c15ec4b8e115p-5, -0x1.63d43ccab11b5p-5};
// ln(1 + x) = x - x^2/2 + x^3/3 + x^4 p(x), relative to x^3: within 2^-62.6
inline constexpr double kPowLogPoly[] = {-0x1.0000000000000p-2, 0x1.99999999998f2p-3, -0x1.5555555555407p-3,
    0x1.249249262e926p-3, -0x1.00000002688a3p-3, 0x1.c71c4a61ad881p-4, -0x1.9999697b393a2p-4, 0x1.751af0569591ap-4,
    -0x1.561c523cd631bp-4};
// sin x = x p(x^2), |x| < pi/2: within 2^-35.8
inline constexpr double kSinPoly32[] = {0x1.ffffffffda6fbp-1, -0x1.55555544308dep-3, 0x1.11110bfe9cd14p-7,
    -0x1.a017cf53eabe2p-13, 0x1.7170025404597p-19, -0x1.9a675c9553bf8p-26};
// sin x = x + x^3 p(x^2) of the remainder, relative to x: within 2^-67.2
inline constexpr double kSinPoly[] = {-0x1.5555555555555p-3, 0x1.111111110f5ccp-7, -0x1.a01a0109f9780p-13,
    0x1.71cade3966308p-19};
// cos x = 1 - x^2 p(x^2) of the same: within 2^-64.1
inline constexpr double kMinusCosPoly[] = {0x1.ffffffffffffdp-2, -0x1.555555554f6fdp-5, 0x1.6c16c085582c8p-10,
    -0x1.9ffe31e2d7cc3p-16};
// sin x = x p(x^2), |x| < pi/4: within 2^-37.8
inline constexpr double kTanSinPoly32[] = {0x1.fffffffff674dp-1, -0x1.555555493fa61p-3, 0x1.11110745b0df2p-7,
    -0x1.a00ee3853fd9cp-13, 0x1.6cb63c86fba27p-19};
// cos x = p(x^2), |x| < pi/4: within 2^-44.0
inline constexpr double kTanCosPoly32[] = {0x1.ffffffffffe09p-1, -0x1.ffffffffe359cp-2, 0x1.5555554468569p-5,
    -0x1.6c16b2ca9f951p-10, 0x1.a00e919607ee5p-16, -0x1.23c4d9d304d6fp-22};
// tan x = x + x^3 p(x^2) of the same, relative to x: within 2^-59.1
inline constexpr double kTanPoly[] = {0x1.55555555555dcp-2, 0x1.11111110b07c3p-3, 0x1.ba1ba489f0c03p-5,
    0x1.664ab6406363ep-6, 0x1.25ccda6e61286p-7};
// arctan x = x p(x^2), |x| < sqrt(2) - 1, relative to x: within 2^-45.2
inline constexpr double kAtanPoly32[] = {0x1.fffffffffff1fp-1, -0x1.55555554ebebbp-2, 0x1.999999176a189p-3,
    -0x1.24922a207afcfp-3, 0x1.c71502e2e666dp-4, -0x1.73dc12c152ddfp-4, 0x1.35de833a60a39p-4, -0x1.e1aafb6ef6b3ep-5,
    0x1.f79e54af9e7c5p-6};
// arctan x = x + x^3 p(x^2) of the remainder, relative to x: within 2^-58.7
inline constexpr double kAtanPoly[] = {-0x1.5555555555436p-2, 0x1.999999985415ep-3, -0x1.2492456659550p-3,
    0x1.c712d255641b6p-4, -0x1.6ebd5c8f69746p-4};

}  // namespace vmath
