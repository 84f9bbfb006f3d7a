// The generated tables of kernels: rows whose values are known from elsewhere, and what the rows were made for.
#include "vecmath/trig/tables/trig_tables.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

namespace {

// Rows that are known beforehand, and what the rows were made for.
TEST(ExpLogTables, KnownRows) {
    static const double exp2_64[64][2] = {
#include "vecmath/tables/exp2_64.inc"
    };
    static const uint64_t exp2_bits_128[128] = {
#include "vecmath/tables/exp2_bits_128.inc"
    };
    static const double ln_513[513][4] = {
#include "vecmath/tables/ln_513.inc"
    };
    EXPECT_EQ(exp2_64[0][0], 1.0);
    EXPECT_EQ(exp2_64[0][1], 0.0);
    EXPECT_EQ(exp2_64[1][0], 1.0108892860517005);
    EXPECT_EQ(exp2_64[1][1], -1.5234778603368577e-17);
    EXPECT_EQ(exp2_bits_128[0], 0u);
    EXPECT_EQ(exp2_bits_128[1], 0x0000163DA9FB3335u);
    const struct {
        int row;
        double rcp, log_high;
    } known[] = {{0, 1, 0},
                 {1, 0.99805068969726562, 0.0019512126455083489},
                 {255, 0.6675359010696411, 0.40416209399700165},
                 {256, 0.6666666269302368, -0.28768201172351837},
                 {512, 0.5, 0}};
    for (const auto& k : known) {
        EXPECT_EQ(ln_513[k.row][0], k.rcp) << k.row;
        EXPECT_EQ(ln_513[k.row][1], k.rcp) << k.row;
        EXPECT_EQ(ln_513[k.row][2], k.log_high) << k.row;
    }
    EXPECT_EQ(ln_513[1][3], 3.5172831329618426e-11);
    for (int j = 0; j <= 512; ++j) {
        // Of 23 bits, and its product with a number of 21 bits less 1 is small and exact.
        EXPECT_EQ(std::bit_cast<uint64_t>(ln_513[j][0]) & 0x1FFFFFFF, 0u);
        EXPECT_LT(std::fabs(ln_513[j][0] * (512 + j) / 512 - 1), 0x1p-22);
        // The parts add up to the logarithm.
        const long double log = -logl(ln_513[j][0]) - (j < 256 ? 0.0L : logl(2.0L));
        EXPECT_LT(fabsl(log - ln_513[j][2] - ln_513[j][3]), 0x1p-62L) << j;
    }
}

// Rows whose values are known from elsewhere.
TEST(TrigTables, KnownRows) {
    using namespace orv::vecmath;
    EXPECT_EQ(inv_two_pi_192[1075][0], 0x28BE60DB9391054Au);
    EXPECT_EQ(inv_two_pi_192[1075][1], 0x7F09D5F47D4D3770u);
    EXPECT_EQ(inv_two_pi_192[1075][2], 0x36D8A5664F10E410u);
    EXPECT_EQ(inv_two_pi_192[1023][0], 0x000000000000028Bu);
    EXPECT_EQ(inv_two_pi_192[1023][1], 0xE60DB9391054A7F0u);
    EXPECT_EQ(inv_two_pi_192[1023][2], 0x9D5F47D4D377036Du);
    EXPECT_EQ(inv_two_pi_96[150][0], 0x28BE60DBu);
    EXPECT_EQ(inv_two_pi_96[150][2], 0x7F09D5F4u);
    const double sin_row[4] = {-0.0012045437948276074, 0.049067674327418015, -6.7961035050264871e-19, 1};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(sin_128[1][i], sin_row[i]);
    const double first[4] = {0, 1, 0, 0};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(sin_cos_512[0][i], first[i]);
}

// The rows of one table are the bits of one number: consecutive windows overlap in all but one bit.
TEST(TrigTables, WindowsSlideByOneBit) {
    using namespace orv::vecmath;
    for (int e = 1; e < 2047; ++e) {
        for (int k = 0; k < 2; ++k)
            ASSERT_EQ(inv_two_pi_192[e][k], inv_two_pi_192[e - 1][k] << 1 | inv_two_pi_192[e - 1][k + 1] >> 63) << e;
    }
    for (int e = 1; e < 256; ++e)
        for (int k = 0; k < 2; ++k)
            ASSERT_EQ(inv_two_pi_96[e][k], inv_two_pi_96[e - 1][k] << 1 | inv_two_pi_96[e - 1][k + 1] >> 31);
}

// Heads that are known beforehand: parts and constant terms to the bit, fitted coefficients to what the fit can differ by.
TEST(SpecialTables, KnownRows) {
    static const double erfcx[321][10] = {
#include "vecmath/tables/erfcx.inc"
    };
    static const double inverse_cubics[847][4] = {
#include "vecmath/tables/cdf_norm_inv_cubic.inc"
    };
    static const double cdf_norm[2468][2] = {
#include "vecmath/tables/cdf_norm_2468.inc"
    };
    static_assert(sizeof cdf_norm == 39488 && sizeof inverse_cubics + sizeof(double) == 27112);
    const double head[4] = {9.5367431640624725e-07, 0.99999904632568359, -1.2526668016315684e-06, -1.1283779144287109};
    EXPECT_EQ(erfcx[0][1], head[1]);
    EXPECT_EQ(erfcx[0][3], head[3]);
    EXPECT_NEAR(erfcx[0][0], head[0], 3e-21);
    EXPECT_NEAR(erfcx[0][2], head[2], 5e-18);
    EXPECT_EQ(inverse_cubics[0][0], 1.2533942533804652);
    EXPECT_NEAR(inverse_cubics[0][1], -0.0051282026207095819, 6e-15);
    EXPECT_NEAR(inverse_cubics[0][2], 0.08210634660093051, 2e-13);
    EXPECT_NEAR(inverse_cubics[0][3], -0.0014109816448152064, 2e-11);
    // Of 1/2, 2^128 times; and the last row in use, at 38.5, where the distribution is 6e-325.
    EXPECT_EQ(cdf_norm[0][0], 1.7014118346046923e+38);
    EXPECT_GT(cdf_norm[2464][0], 0x1p-950);
    EXPECT_LT(cdf_norm[2464][0], 0x1p-946);
}

}  // namespace
