// Argument reductions of the double kernels that end in the table of 512 rows: x is index * 2 pi/512 + r + low, with
// |r| up to pi/512 and a trifle more.
#pragma once

#include "vecmath/trig/steps_d.h"

namespace orv::trig {

// ---- Below 90112: a multiple of pi/64 in three parts, for the table of 128 rows ---------------------------------------

// The first two parts have 31 and 32 bits, the multiple fewer than 22.
inline constexpr double last_128 = 0x1.5ffffffffffffp+16;  // the last below 90112
inline constexpr StepParts pi_over_64{20.371832715762604, 0.049087385210441425, 1.8990939082199894e-12,
                                      6.3195820274873457e-23};

struct Main128 {
    Indices j;
    Step128 step;

    explicit Main128(D a) : Main128(a, Nearest<pi_over_64>(a)) {}

private:
    Main128(D a, const Nearest<pi_over_64>& nearest)
        : j(simd::bits_of(nearest.shifted)), step(less_steps_exactly<pi_over_64>(a, nearest.k)) {}
};

// ---- Any finite argument: exact multiplication with the bits of 1/(2 pi) -------------------------------------------

// The high and the next 64 bits of the fraction of M W / 2^192, M below 2^53 and W of 192 bits, for two lanes. With the
// significand in two and the window in six words of 32 bits this is long multiplication, a column of 32 bits at a time;
// what lies above the highest column is whole turns and is never formed. m1 has 21 bits, so that a column's sum of one
// product with it and some 32-bit parts fits 64 bits.
struct Fraction {
    __m128i high, next;
};

inline Fraction fraction_of_turn(__m128i significand, const uint64_t* row0, const uint64_t* row1) {
    const auto words = [=](int k) {
        return _mm_castpd_si128(_mm_loadh_pd(_mm_load_sd(reinterpret_cast<const double*>(row0 + k)),
                                             reinterpret_cast<const double*>(row1 + k)));
    };
    const auto times = [](__m128i a, __m128i b) { return _mm_mul_epu32(a, b); };
    const auto upper = [](__m128i a) { return simd::shift_right<32>(a); };
    const __m128i low_half = simd::splat_bits(0xFFFFFFFF);
    const auto lower = [=](__m128i a) { return _mm_and_si128(a, low_half); };
    const auto add = [](__m128i a, __m128i b) { return _mm_add_epi64(a, b); };

    const __m128i m0 = significand, m1 = upper(significand);
    const __m128i w0 = words(2), w2 = words(1), w4 = words(0);
    const __m128i w1 = upper(w0), w3 = upper(w2), w5 = upper(w4);

    const __m128i p2 = times(m0, w2), p3 = times(m0, w3), p4 = times(m0, w4);
    const __m128i column2 = add(add(upper(times(m0, w1)), upper(times(m1, w0))), add(times(m1, w1), lower(p2)));
    const __m128i column3 = add(add(upper(p2), times(m1, w2)), add(lower(p3), upper(column2)));
    const __m128i column4 = add(add(upper(p3), times(m1, w3)), add(lower(p4), upper(column3)));
    const __m128i column5 = add(add(upper(p4), times(m1, w4)), add(times(m0, w5), upper(column4)));
    return {_mm_or_si128(simd::shift_left<32>(column5), lower(column4)),
            _mm_or_si128(simd::shift_left<32>(column3), lower(column2))};
}

// The fraction of a turn that |x| comes to.
inline Fraction fraction_of_turn(D x) {
    const __m128i bits = simd::bits_of(x);
    // The last row serves infinities and NaNs too; what comes of them is not used.
    const __m128i exponent =
        _mm_min_epi16(_mm_and_si128(simd::shift_right<52>(bits), simd::splat_bits(0x7FF)), simd::splat_bits(2046));
    const Indices rows(exponent);
    const __m128i significand =
        _mm_or_si128(_mm_and_si128(bits, simd::splat_bits(0x000FFFFFFFFFFFFF)), simd::splat_bits(0x0010000000000000));
    return fraction_of_turn(significand, inv_two_pi_192[rows.lane0 & 2047], inv_two_pi_192[rows.lane1 & 2047]);
}

inline Reduced reduce_large(D x) {
    const Fraction f = fraction_of_turn(x);
    const __m128i sign = simd::bits_of(simd::sign_of(x));

    // The fraction in three pieces of 52 bits, each as a number 1 + m less its 1, with the sign of x.
    const auto piece = [=](__m128i digits, double unit) {
        const __m128i one = _mm_xor_si128(simd::bits_of(splat(unit)), sign);
        return simd::doubles(_mm_or_si128(digits, one));
    };
    const auto signed_unit = [=](double unit) {
        return simd::doubles(_mm_xor_si128(simd::bits_of(splat(unit)), sign));
    };
    const __m128i digits1 = simd::shift_right<12>(f.high);
    const __m128i digits2 = _mm_or_si128(_mm_srli_epi64(_mm_slli_epi64(f.high, 52), 12), simd::shift_right<24>(f.next));
    const __m128i digits3 = _mm_srli_epi64(_mm_slli_epi64(f.next, 40), 12);

    // 1.5 * 2^43 keeps 9 digits after the point: those of the table's index. Pieces and remainder are exact.
    const D turn = piece(digits1, 1.0);
    const D shifted = turn + splat(13194139533312.0);
    const D remainder = turn - (shifted - splat(13194139533312.0));
    const D piece2 = piece(digits2, 0x1p-52) - signed_unit(0x1p-52);
    const D piece3 = piece(digits3, 0x1p-104) - signed_unit(0x1p-104);
    // The remainder is zero or a multiple of 2^-52, which no piece reaches.
    const D high = remainder + piece2;
    const D low = ((remainder - high) + piece2) + piece3;

    // Times 2 pi. The product of the leading parts is exact: 26 and 27 bits.
    const D two_pi_a = splat(6.2831853032112122), two_pi_b = splat(3.9683743187221617e-09);
    const D h1 = simd::bit_and(high, simd::doubles(simd::splat_bits(0xFFFFFFFFF8000000)));
    const D h2 = high - h1;
    const D product = h1 * two_pi_a;
    const D rest = h2 * two_pi_a + h1 * two_pi_b + h2 * two_pi_b + low * splat(6.2831853071795862);
    const D r = product + rest;
    const D r_low = (product - r) + rest;

    // Arguments this small are their own reduction, and keep all their digits that way.
    const __m128i high_words = _mm_shuffle_epi32(simd::bits_of(simd::magnitude(x)), _MM_SHUFFLE(3, 3, 1, 1));
    const D is_large = simd::doubles(_mm_cmpgt_epi32(high_words, _mm_set1_epi32(0x3EB00000)));  // 2^-20
    return {simd::select(is_large, r, x), simd::bit_and(is_large, r_low),
            _mm_and_si128(simd::bits_of(shifted), simd::bits_of(is_large))};
}

// ---- The same for the kernels of least accuracy: radians from the nearest half or quarter turn ------------------------

// 64-bit integers with sign to doubles: halves as digits of 2^84 and 2^52, whose offsets are taken away.
inline D signed_to_doubles(__m128i x) {
    const __m128i low = _mm_blend_epi16(x, simd::bits_of(splat(0x1p52)), 0xCC);
    const __m128i high = _mm_xor_si128(simd::shift_right<32>(x), simd::bits_of(splat(0x1p84 + 0x1p63)));
    return (simd::doubles(high) - splat(0x1p84 + 0x1p63 + 0x1p52)) + simd::doubles(low);
}

// The angle from the nearest of 2^Bits directions, whose number stands in the low bits of k: in radians, to 2^-52 of itself
// however small it is, since what the nearest direction leaves of the high word is exact when it is small.
struct Direction {
    D r;
    __m128i k;
};
template <int Bits>
inline Direction nearest_direction(Fraction f) {
    constexpr uint64_t half_step = uint64_t{1} << (63 - Bits);
    const __m128i k = simd::shift_right<64 - Bits>(_mm_add_epi64(f.high, simd::splat_bits(half_step)));
    const D high = signed_to_doubles(_mm_sub_epi64(f.high, simd::shift_left<64 - Bits>(k)));
    // 52 bits of the next word are enough.
    const D next = simd::doubles(_mm_or_si128(simd::shift_right<12>(f.next), simd::bits_of(splat(1.0)))) - splat(1.0);
    return {(high + next) * splat(6.2831853071795862 * 0x1p-64), k};
}

}  // namespace orv::trig
