// sLog10: the logarithm to base 10.
//
// "LA", "EP": after the reduction of log_s.h, log10 x = k log10 2 + r P(r). "LA" has log10 2 in two parts; it takes 0.375 r
// out of r P(r), which is exact and close to it where |r| is 1/3, and its sum with k log10 2 with the rounding error.
//
// "HA": x = 2^k m, and m in [1, 2) selects one of 257 rows with rcp close to L/m, L = 0.43359375 being log10 e to 7 bits. rcp
// has 8 bits, so that its product with the upper 16 bits of m is exact; R = m rcp - L in two parts, and
// log10 x = k log10 2 - log10(rcp / L) + R + R q(R). k times the high part of log10 2 and the table's high part are
// multiples of 2^-17, their sum is exact, and its sum with R is taken with its rounding error. From row 128 on k is one
// higher and the row one for m/2, so that no large terms cancel next to 1.
//
// Of the error of "LA" up to 0.8 ulp is the polynomial's own, of that of "HA" 0.11 ulp.
#include "vecmath/exp_log/log_s.h"

namespace {

using namespace orv;
using simd::bits_of;
using simd::floats;
using simd::Splat;
using simd::SplatBits;

struct Log10LaBlock {
    Splat<float> log2_high{0x1.3442p-25f}, log2_low{-0x1.95ecp-42f};
    Splat<float> c1_head{0.375f}, c1_tail{0x1.bcb7b2p-2f - 0.375f}, c2{-0x1.bcb78ap-3f}, c3{0x1.2879cap-3f},
        c4{-0x1.bcdc4p-4f}, c5{0x1.64172cp-4f}, c6{-0x1.23f64ep-4f}, c7{0x1.eea62ep-5f}, c8{-0x1.1200e6p-4f},
        c9{0x1.00c768p-4f};
    vecmath::LogReduction reduction{};
};
constexpr Log10LaBlock log10_la;

struct Log10La : vecmath::LogS<Log10La> {
    static constexpr const Log10LaBlock& K = log10_la;

    static __m128 log(__m128 x, __m128i k_shift) {
        __m128 k, r;
        K.reduction.reduce(x, k_shift, k, r);
        const __m128 p = K.c2 + r * (K.c3 + r * (K.c4 + r * (K.c5 + r * (K.c6 + r * (K.c7 + r * (K.c8 + r * K.c9))))));
        const __m128 k_high = k * K.log2_high, leading = r * K.c1_head;
        const __m128 sum = k_high + leading;
        const __m128 lost = (k_high - sum) + leading;
        return sum + (r * (K.c1_tail + r * p) + (k * K.log2_low + lost));
    }
};

struct Log10EpBlock {
    Splat<float> log2{0x1.344136p-25f};
    Splat<float> c1{0x1.bcb95cp-2f}, c2{-0x1.bc1244p-3f}, c3{0x1.26fb7cp-3f}, c4{-0x1.e9dae2p-4f}, c5{0x1.9b824ep-4f};
    vecmath::LogReduction reduction{};
};
constexpr Log10EpBlock log10_ep;

struct Log10Ep : vecmath::LogS<Log10Ep> {
    static constexpr const Log10EpBlock& K = log10_ep;

    static __m128 log(__m128 x, __m128i k_shift) {
        __m128 k, r;
        K.reduction.reduce(x, k_shift, k, r);
        return r * (K.c1 + r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5)))) + k * K.log2;
    }
};

struct Log10HaBlock {
    Splat<float> leading{0x1.bcp-2f};  // L
    Splat<float> log2_high{0x1.3442p-25f}, log2_low{-0x1.95ecp-42f};
    Splat<float> q0{0x1.a7a6ccp-10f}, q1{-0x1.27afc8p+0f}, q2{0x1.c6a206p+0f};
    SplatBits<uint32_t> fraction{0x007FFFFF}, exponent_0{0x3F800000}, upper{0xFFFFFF00};
    SplatBits<uint32_t> half_row{0x4000}, row_offset{0x1FF0};  // m + 2^-9 to 8 bits, at 16 bytes a row
    // Takes the bias off, and raises the exponent from row 128 on.
    SplatBits<uint32_t> to_exponent{0x00404000u - 0x3F800000u}, above_fraction{0xFF800000};
    vecmath::LogReduction reduction{};
    alignas(16) float rows[257][4] = {
    // rcp, -log10(rcp / L) (or its half's) high and low, zero
#include "vecmath/tables/log10_float_257.inc"
    };
};
constexpr Log10HaBlock log10_ha;

struct Log10Ha : vecmath::LogS<Log10Ha> {
    static constexpr const Log10HaBlock& K = log10_ha;

    static __m128 log(__m128 x, __m128i k_shift) {
        const __m128i bits = bits_of(x);
        const __m128i m = _mm_or_si128(_mm_and_si128(bits, K.fraction), K.exponent_0);
        const __m128i to_row = _mm_add_epi32(_mm_and_si128(bits, K.fraction), K.half_row);
        __m128 rcp, log_high, log_low;
        simd::gather_triples(K.rows[0], simd::Indices<4>(_mm_and_si128(_mm_srli_epi32(to_row, 11), K.row_offset)), rcp,
                             log_high, log_low);
        const __m128i exponent = _mm_and_si128(_mm_add_epi32(bits, K.to_exponent), K.above_fraction);
        const __m128 k = _mm_cvtepi32_ps(_mm_add_epi32(exponent, k_shift));

        const __m128 m_high = floats(_mm_and_si128(m, K.upper));
        const __m128 u = m_high * rcp - K.leading;
        const __m128 v = (floats(m) - m_high) * rcp;
        const __m128 r = u + v;
        const __m128 r_low = (u - r) + v;
        const __m128 a = k * K.log2_high + log_high;
        const __m128 sum = a + r;
        const __m128 lost = ((a - sum) + r) + r_low;
        const __m128 q = K.q0 + r * (K.q1 + r * K.q2);
        return sum + (r * q + ((k * K.log2_low + log_low) + lost));
    }
};

}  // namespace

ORV_ONE_INPUT(sLog10, la, Log10La)
ORV_ONE_INPUT(sLog10, ha, Log10Ha)
ORV_ONE_INPUT(sLog10, ep, Log10Ep)
