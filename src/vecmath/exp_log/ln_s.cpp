// sLn: the natural logarithm.
//
// After the reduction of log_s.h, ln x = k ln 2 + r + r^2 P(r). "LA" and "EP" add r + r^2 P first and the rounded k ln 2
// last. "HA" has ln 2 in two parts, so that k times the first is exact; its sum with r is taken with its rounding error
// (exact by the order of magnitudes, or by k = 0), which joins the small terms. Of r^2 / 2 the part of the upper bits of m
// is exact too and joins r.
//
// The error of "LA" is mostly the polynomial's own, 3.4 ulp; in "HA" that is up to 0.1 ulp.
#include "vecmath/exp_log/log_s.h"

namespace {

using namespace orv;
using simd::floats;
using simd::Splat;

struct LnLaBlock {
    Splat<float> ln2{0x1.62e43p-24f};
    Splat<float> c2{-0.5f}, c3{0x1.555dcep-2f}, c4{-0x1.000c3ap-2f}, c5{0x1.95f702p-3f}, c6{-0x1.5126bp-3f},
        c7{0x1.5b70d6p-3f}, c8{-0x1.36d444p-3f};
    vecmath::LogReduction reduction{};
};
constexpr LnLaBlock ln_la;

struct LnLa : vecmath::LogS<LnLa> {
    static constexpr const LnLaBlock& K = ln_la;

    static __m128 log(__m128 x, __m128i k_shift) {
        __m128 k, r;
        K.reduction.reduce(x, k_shift, k, r);
        const __m128 p = K.c2 + r * (K.c3 + r * (K.c4 + r * (K.c5 + r * (K.c6 + r * (K.c7 + r * K.c8)))));
        return (r + r * r * p) + k * K.ln2;
    }
};

struct LnHaBlock {
    Splat<float> ln2_high{0x1.62e4p-24f}, ln2_low{0x1.7f7d1cp-43f};
    Splat<float> half{0.5f}, c3{0x1.555506p-2f}, c4{-0x1.fffefp-3f}, c5{0x1.99d028p-3f}, c6{-0x1.559dccp-3f},
        c7{0x1.1ed718p-3f}, c8{-0x1.f3113cp-4f}, c9{0x1.1e66bap-3f}, c10{-0x1.08059p-3f};
    simd::SplatBits<uint32_t> upper{0xFFFFE000}, halve{0x00800000};
    vecmath::LogReduction reduction{};
};
constexpr LnHaBlock ln_ha;

struct LnHa : vecmath::LogS<LnHa> {
    static constexpr const LnHaBlock& K = ln_ha;

    static __m128 log(__m128 x, __m128i k_shift) {
        __m128 k, r;
        const __m128i m = K.reduction.reduce(x, k_shift, k, r);
        const __m128i m_high = _mm_and_si128(m, K.upper);
        const __m128 half_m_high = floats(_mm_sub_epi32(m_high, K.halve));
        const __m128 r_high = floats(m_high) - K.reduction.one;
        const __m128 leading = r - r_high * (half_m_high - K.half);
        const __m128 half_r_low = floats(_mm_sub_epi32(m, K.halve)) - half_m_high;
        const __m128 rest_of_square = half_r_low * (r + r_high);

        const __m128 k_high = k * K.ln2_high;
        const __m128 sum = k_high + leading;
        const __m128 lost = (k_high - sum) + leading;

        const __m128 s = r * r;
        const __m128 q = K.c3 + r * (K.c4 + r * (K.c5 + r * (K.c6 + r * (K.c7 + r * (K.c8 + r * (K.c9 + r * K.c10))))));
        const __m128 small = (k * K.ln2_low + lost) - rest_of_square;
        return sum + (r * s * q + small);
    }
};

struct LnEpBlock {
    Splat<float> ln2{0x1.62e43p-24f};
    Splat<float> c2{-0.5f}, c3{0x1.54e2cp-2f}, c4{-0x1.11d1fcp-2f}, c5{0x1.c25266p-3f};
    vecmath::LogReduction reduction{};
};
constexpr LnEpBlock ln_ep;

struct LnEp : vecmath::LogS<LnEp> {
    static constexpr const LnEpBlock& K = ln_ep;

    static __m128 log(__m128 x, __m128i k_shift) {
        __m128 k, r;
        K.reduction.reduce(x, k_shift, k, r);
        return (r + r * r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5)))) + k * K.ln2;
    }
};

}  // namespace

ORV_ONE_INPUT(sLn, la, LnLa)
ORV_ONE_INPUT(sLn, ha, LnHa)
ORV_ONE_INPUT(sLn, ep, LnEp)
