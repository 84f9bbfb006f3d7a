// dExpm1: e^x - 1.
//
// k is the integer next to 128 x / ln 2, r = x - k ln 2 / 128, and e^x = s + s (e^r - 1) with s = 2^(k/128). k is rounded
// before the shifter is added: 1.5 * 2^48 (1.5 * 2^49 in "EP") has fraction bits, so that k stands where it is the byte
// offset of its row, 16 (8) bytes each; and the exponent bias above the index is part of the shifter.
//
// s - 1 is exact or, beyond 2 and below 1/2, far above the rest. With a = s - 1, s r = r + a r, and e^x - 1 is
// a + r, taken with its rounding error, plus the small terms: a r, s q(r), the low part of s and the rounding error of a, and in "HA" the low
// part of r. Next to zero a is zero, and nothing is lost.
// "EP": a + s (r + r^2/2 + r^3/6).
//
// Above 707.7 the scalar path takes over; below -40 the argument is taken as -40, and the result is -1.
#include "vecmath/exp_log/expm1.h"

namespace {

using namespace orv;
using simd::bits_of;
using simd::doubles;
using simd::Splat;
using simd::SplatBits;

constexpr double last_finite = 0x1.62e42fefa39efp+9;  // 709.78

constexpr const vecmath::Expm1Limits& limits = vecmath::expm1_limits;

struct Expm1Pairs {
    bool r_in_two_parts;
    Splat<double> shifter{0x1.80000001ff8p+48};
    Splat<double> ln2_high{0x1.62e42fef8p-8}, ln2_low{0x1.1cf79abc9e3b4p-43};  // ln 2 / 128
    Splat<double> c2{0x1.ffffffffffe5cp-2}, c3{0x1.555555555541dp-3}, c4{0x1.55555c2a9c0f3p-5},
        c5{0x1.1111168877f38p-7};
    SplatBits<uint64_t> offset_mask{0x7F0};
    alignas(16) double rows[128][2] = {
    // 2^(j/128) and what rounding took from it
#include "vecmath/tables/exp2_128.inc"
    };
};
constexpr Expm1Pairs expm1_la{.r_in_two_parts = false};
constexpr Expm1Pairs expm1_ha{.r_in_two_parts = true};

// Beyond the vector path e^x - 1 is e^x to the last bit, of which the power of two is taken last.
int32_t scalar_expm1(const double* at, double* y) {
    const Expm1Pairs& K = expm1_ha;
    const double x = *at;
    if (!vecmath::is_finite(x)) {
        *y = vecmath::quiet(x);
        return frame::status_ok;
    }
    if (x > last_finite) {
        *y = vecmath::overflow<double>();
        return frame::status_overflow;
    }
    const double k = _mm_cvtsd_f64(simd::round<_MM_FROUND_TO_NEAREST_INT>(simd::splat(x * limits.scale)));
    const int32_t whole = static_cast<int32_t>(k);
    const double* row = K.rows[whole & 0x7F];
    const double r = (x - k * K.ln2_high) - k * K.ln2_low;
    const double p = r + r * r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5)));
    *y = vecmath::scaled_sum(row[0], p * row[0] + row[1], whole >> 7);
    return frame::status_ok;
}

template <const Expm1Pairs& K>
struct Expm1 : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return limits.doubt(x); }

    static __m128d lanes(__m128d argument) {
        const __m128d x = _mm_max_pd(argument, limits.saturated);
        const __m128d k = simd::round<_MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC>(x * limits.scale);
        const __m128i words = bits_of(k + K.shifter);
        const simd::Indices<2> at(_mm_and_si128(words, K.offset_mask));
        const __m128d row0 = _mm_load_pd(simd::behind(K.rows[0], at.lane[0]));
        const __m128d row1 = _mm_load_pd(simd::behind(K.rows[0], at.lane[1]));
        // The power of two; rows times it are exact.
        const __m128d power = doubles(_mm_and_si128(_mm_slli_epi64(words, 41), limits.exponent_mask));
        const __m128d s = _mm_unpacklo_pd(row0, row1) * power;

        const __m128d leading = x - k * K.ln2_high;
        const __m128d r = leading - k * K.ln2_low;
        const __m128d a = s - limits.one;
        const __m128d sum = a + r;
        __m128d small = (a - sum) + r;
        const __m128d s_low = _mm_unpackhi_pd(row0, row1) * power;
        __m128d low = (a + s_low) * r + s_low;
        // The rounding error of s - 1 is that of the greater less the smaller, with its sign.
        const __m128d greater = _mm_max_pd(s, limits.one), smaller = _mm_min_pd(s, limits.one);
        const __m128d a_low = (greater - (greater - smaller)) - smaller;
        low = low + simd::bit_xor(a_low, simd::bit_and(_mm_cmplt_pd(s, limits.one), simd::splat(-0.0)));
        if constexpr (K.r_in_two_parts) low = low + ((leading - r) - k * K.ln2_low);
        const __m128d q = r * r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5)));
        const __m128d y = sum + (small + (low + s * q));
        // The sign is that of x, zero included.
        return simd::bit_or(y, simd::sign_of(x));
    }

    static int32_t scalar(const double* x, double* y) { return scalar_expm1(x, y); }
};

constexpr vecmath::Expm1Words expm1_ep{};

struct Expm1Ep : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) { return limits.doubt(x); }
    static __m128d lanes(__m128d x) { return vecmath::expm1_words<expm1_ep>(x); }
    static int32_t scalar(const double* x, double* y) { return scalar_expm1(x, y); }
};

}  // namespace

ORV_ONE_INPUT(dExpm1, la, Expm1<expm1_la>)
ORV_ONE_INPUT(dExpm1, ha, Expm1<expm1_ha>)
ORV_ONE_INPUT(dExpm1, ep, Expm1Ep)
