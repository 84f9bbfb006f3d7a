// sPow, sPowr, sPowx: a^b.
//
// "LA" and "HA" compute in double. a = 2^k m with m in [1, 2) or, from row 107 of 256 on, its half; c is m to 8 bits and
// r = (m - c) / c, |r| at most 2^-9: log2 a = k + log2 c + r (c1 + c2 r + c3 r^2 + c4 r^3), to 2^-40 of itself. 2^p for p = b log2 a has a table of
// 2^(j/128) and a polynomial to 2^-40. So the rounding to float is the one that counts, also where the result overflows or
// is subnormal: p is clamped to where the conversion decides.
//
// "EP" stays in float: ln a by the reduction of log_s.h, without a table, e^t = 2^k (1 + f (p1 + f (p2 + f p3))), |f| at most
// ln 2 / 2.
//
// The functions differ in the cases that are no ordinary numbers (pow_cases.h); Powx has one b for all elements.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/log_s.h"
#include "vecmath/power/pow_cases.h"

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;
using vecmath::Pow;
using vecmath::Powr;

// ---- By way of double ------------------------------------------------------------------------------------------------

struct PowSBlock {
    // fpminimax(log2(1+x)/x, 3, [|D...|], [-2^-9;2^-9]): 2^-40.8
    Splat<double> c1{0x1.71547652b79c2p+0}, c2{-0x1.71547652b6122p-1}, c3{0x1.ec70e7a1dcdacp-2},
        c4{-0x1.7154c0312e77cp-2};
    // fpminimax((2^x-1)/x, 2, [|D...|], [-2^-8;2^-8]): 2^-41 of the power
    Splat<double> p1{0x1.62e42fefa3e08p-1}, p2{0x1.ebfbeebe2ce42p-3}, p3{0x1.c6b08d70068c7p-5};
    Splat<double> shifter{0x1.8p+45}, largest{200.0}, smallest{-200.0};
    SplatBits<uint64_t> fraction{0x000FFFFFFFFFFFFF}, exponent_0{0x3FF0000000000000};
    SplatBits<uint64_t> half_step{0x0000080000000000}, grid{0xFFFFF00000000000};
    SplatBits<uint64_t> exponent_carry{uint64_t{0x100000 - 0x6A800} << 32}, carrier{uint64_t{0x433} << 52};
    Splat<double> carrier_value{0x1p+52 + 1023};
    SplatBits<uint64_t> exponent_field{0x7FF0000000000000}, index_mask{0x7F}, bias{0x1FF80};
    SplatBits<uint32_t> magnitude{0x7FFFFFFF}, greatest{0x7F7FFFFF}, least_normal{0x00800000};
    alignas(16) double log_rows[257][2] = {
    // log2 c (or that of c/2), 1/c
#include "vecmath/tables/pow_log2_257.inc"
    };
    uint64_t exp_rows[128] = {
    // fraction bits of 2^(j/128)
#include "vecmath/tables/exp2_bits_128.inc"
    };
};
constexpr PowSBlock K;

// b log2 a for a positive normal double a.
inline __m128d product(__m128d a, __m128d b) {
    const __m128i bits = simd::bits_of(a);
    const __m128i m = _mm_or_si128(_mm_and_si128(bits, K.fraction), K.exponent_0);
    const __m128i centre = _mm_and_si128(_mm_add_epi64(m, K.half_step), K.grid);
    const simd::Indices<2> at(_mm_srli_epi64(centre, 40));
    constexpr uint32_t at_1 = uint64_t{0x3FF0000000000000} >> 40;
    const __m128d row0 = _mm_load_pd(simd::behind(K.log_rows[0], at.lane[0] - at_1));
    const __m128d row1 = _mm_load_pd(simd::behind(K.log_rows[0], at.lane[1] - at_1));
    const __m128d log_c = _mm_unpacklo_pd(row0, row1), rcp = _mm_unpackhi_pd(row0, row1);
    const __m128d r = (simd::doubles(m) - simd::doubles(centre)) * rcp;
    const __m128i raised = _mm_srli_epi64(_mm_add_epi64(bits, K.exponent_carry), 52);
    const __m128d k = simd::doubles(_mm_or_si128(raised, K.carrier)) - K.carrier_value;
    return b * ((k + log_c) + r * ((K.c1 + r * K.c2) + (r * r) * (K.c3 + r * K.c4)));
}

// 2^p for |p| up to 1000.
inline __m128d power_of_two(__m128d p) {
    const __m128d shifted = p + K.shifter;
    const __m128d f = p - (shifted - K.shifter);
    const __m128i words = simd::bits_of(shifted);
    const simd::Indices<2> j(_mm_and_si128(words, K.index_mask));
    const __m128i exponent = _mm_and_si128(_mm_slli_epi64(_mm_add_epi64(words, K.bias), 45), K.exponent_field);
    const __m128d power =
        simd::doubles(_mm_or_si128(exponent, simd::gather(&K.exp_rows[j.lane[0]], &K.exp_rows[j.lane[1]])));
    return power + power * (f * (K.p1 + f * (K.p2 + f * K.p3)));
}

inline __m128d in_double(__m128d a, __m128d b) {
    return power_of_two(_mm_min_pd(_mm_max_pd(product(a, b), K.smallest), K.largest));
}

// a^b for positive finite a and finite b.
int32_t magnitude(float a, float b, float* y) {
    const __m128d power = in_double(simd::splat(double{a}), simd::splat(double{b}));
    *y = static_cast<float>(_mm_cvtsd_f64(power));
    return frame::status_ok;
}

template <class Function>
struct ByDouble : frame::Elementwise<float, 4, frame::Tail::by_element> {
    // In doubt is an a that is not positive, normal and finite, and a b that is not finite; its place takes 1^b or a^0.
    static __m128 lanes(__m128 a, __m128 b, __m128& doubt) {
        const __m128i a_bits = simd::bits_of(a);
        const __m128i a_doubt =
            _mm_or_si128(_mm_cmpgt_epi32(K.least_normal, a_bits), _mm_cmpgt_epi32(a_bits, K.greatest));
        const __m128i b_doubt = _mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(b), K.magnitude), K.greatest);
        doubt = simd::floats(_mm_or_si128(a_doubt, b_doubt));
        a = simd::bit_and_not(doubt, a);
        b = simd::bit_and_not(doubt, b);
        const __m128 low = _mm_cvtpd_ps(in_double(_mm_cvtps_pd(a), _mm_cvtps_pd(b)));
        const __m128 high =
            _mm_cvtpd_ps(in_double(_mm_cvtps_pd(_mm_movehl_ps(a, a)), _mm_cvtps_pd(_mm_movehl_ps(b, b))));
        return _mm_movelh_ps(low, high);
    }
    static int32_t scalar(const float* a, const float* b, float* y) { return Function::cases(*a, *b, y, magnitude); }
};

// ---- In float --------------------------------------------------------------------------------------------------------

struct PowEpSBlock {
    Splat<float> ln2_high{0x1.62e4p-1f}, ln2_low{0x1.7f7d1cp-20f};
    // The same times 2^-23, for k 2^23.
    Splat<float> ln2_high_23{0x1.62e4p-24f}, ln2_low_23{0x1.7f7d1cp-43f};
    Splat<float> c2{-0.5f}, c3{0x1.555dcep-2f}, c4{-0x1.000c3ap-2f}, c5{0x1.95f702p-3f}, c6{-0x1.5126bp-3f},
        c7{0x1.5b70d6p-3f}, c8{-0x1.36d444p-3f};
    Splat<float> log2_e{0x1.715476p+0f}, shifter{0x1.8p+23f};
    Splat<float> p1{0x1.0007bcp+0f}, p2{0x1.01e5acp-1f}, p3{0x1.52c758p-3f}, one{1.0f};
    // |b| below 2^31, where its product with any ln a but 0 is beyond all results; |b ln a| up to 87.3.
    SplatBits<uint32_t> magnitude{0x7FFFFFFF}, b_last{0x4EFFFFFF}, product_last{0x42AE9A00};
    SplatBits<uint32_t> sign{0x80000000};
    vecmath::LogReduction reduction{};
};
constexpr PowEpSBlock E;

template <class Function>
struct InFloat : frame::Elementwise<float, 16, frame::Tail::by_element> {
    static __m128 lanes(__m128 a, __m128 b, __m128& doubt) {
        const __m128i b_doubt = _mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(b), E.magnitude), E.b_last);
        __m128 k, r;
        E.reduction.reduce(a, _mm_setzero_si128(), k, r);
        const __m128 q = E.c2 + r * (E.c3 + r * (E.c4 + r * (E.c5 + r * (E.c6 + r * (E.c7 + r * E.c8)))));
        const __m128 ln = k * E.ln2_high_23 + (r + (r * r * q + k * E.ln2_low_23));
        // Lanes in doubt by b raise nothing with an exponent of 0.
        const __m128 t = simd::bit_and_not(simd::floats(b_doubt), b) * ln;
        const __m128i beyond = _mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(t), E.magnitude), E.product_last);
        doubt = simd::bit_or(E.reduction.doubt(a), simd::floats(_mm_or_si128(b_doubt, beyond)));

        const __m128 shifted = t * E.log2_e + E.shifter;
        const __m128 n = shifted - E.shifter;
        const __m128 f = (t - n * E.ln2_high) - n * E.ln2_low;
        const __m128 y = E.one + f * (E.p1 + f * (E.p2 + f * E.p3));
        return simd::floats(_mm_add_epi32(simd::bits_of(y), _mm_slli_epi32(simd::bits_of(shifted), 23)));
    }
    static int32_t scalar(const float* a, const float* b, float* y) {
        return Function::cases(*a, *b, y, [](float base, float exponent, float* result) {
            magnitude(base, exponent, result);
            return *result > std::numeric_limits<float>::max() ? frame::status_overflow : frame::status_ok;
        });
    }
};

}  // namespace

ORV_TWO_INPUTS(sPow, la, ByDouble<Pow>)
ORV_TWO_INPUTS(sPow, ep, InFloat<Pow>)
ORV_TWO_INPUTS(sPowr, la, ByDouble<Powr>)
ORV_TWO_INPUTS(sPowr, ep, InFloat<Powr>)
ORV_SCALAR_INPUT(sPowx, la, ByDouble<Pow>)
ORV_SCALAR_INPUT(sPowx, ha, ByDouble<Pow>)
ORV_SCALAR_INPUT(sPowx, ep, InFloat<Pow>)
