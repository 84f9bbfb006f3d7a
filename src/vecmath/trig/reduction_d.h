// Argument reductions of the double kernels: to a row of a table and a rest, or for the least accuracy to the nearest half or
// quarter turn.
#pragma once

#include "vecmath/trig/half_turns_d.h"

namespace orv::vecmath {

// ---- Below 90112: a multiple of pi/64 in three parts, for the table of 128 rows ---------------------------------------

// The first two parts have 31 and 32 bits, the multiple fewer than 22.
inline constexpr StepParts pi_over_64{0x1.45f306dc9c883p+4, 0x1.921fb544p-5, 0x1.0b4611a6p-39, 0x1.3198a2e037073p-74};
inline constexpr Splat<double> last_128{0x1.5ffffffffffffp+16};  // the last number below 90112

struct Main128 {
    simd::Indices<2> j;
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
    const auto words = [=](int k) { return simd::gather(row0 + k, row1 + k); };
    const auto times = [](__m128i a, __m128i b) { return simd::multiply_words(a, b); };
    const auto upper = [](__m128i a) { return simd::shift_right<32>(a); };
    const auto lower = [](__m128i a) { return simd::low_and_high_words(a, _mm_setzero_si128()); };
    const auto add = [](__m128i a, __m128i b) { return simd::add(a, b); };

    const __m128i m0 = significand, m1 = upper(significand);
    const __m128i w0 = words(2), w2 = words(1), w4 = words(0);
    const __m128i w1 = upper(w0), w3 = upper(w2), w5 = upper(w4);

    const __m128i p2 = times(m0, w2), p3 = times(m0, w3), p4 = times(m0, w4);
    const __m128i column2 = add(add(upper(times(m0, w1)), upper(times(m1, w0))), add(times(m1, w1), lower(p2)));
    const __m128i column3 = add(add(upper(p2), times(m1, w2)), add(lower(p3), upper(column2)));
    const __m128i column4 = add(add(upper(p3), times(m1, w3)), add(lower(p4), upper(column3)));
    const __m128i column5 = add(add(upper(p4), times(m1, w4)), add(times(m0, w5), upper(column4)));
    return {simd::bit_or(simd::shift_left<32>(column5), lower(column4)),
            simd::bit_or(simd::shift_left<32>(column3), lower(column2))};
}

struct LargeConstants {
    simd::SplatBits<uint64_t> exponent{0x7FF}, last_row{2046};
    simd::SplatBits<uint64_t> fraction{0x000FFFFFFFFFFFFF}, leading_bit{0x0010000000000000};
    Splat<double> one{1.0}, unit2{0x1p-52}, unit3{0x1p-104};
    Splat<double> nine_digits{0x1.8p+43};                                     // what rounds to 9 digits after the point
    Splat<double> two_pi_a{0x1.921fb54p+2}, two_pi_b{0x1.10b4611a62633p-28};  // 26 and 27 bits
    Splat<double> two_pi{0x1.921fb54442d18p+2};
    simd::SplatBits<uint32_t> last_small{0x3EB00000};  // the high word of 2^-20
    // Digits of 2^84 and 2^52 to which the halves of a 64-bit integer are put, and both offsets.
    Splat<double> digits_84{0x1p84 + 0x1p63}, digits_52{0x1p52}, digits{0x1p84 + 0x1p63 + 0x1p52};
    Splat<double> radians{0x1.921fb54442d18p-62};  // 2 pi 2^-64
};
inline constexpr LargeConstants large;

// The fraction of a turn that |x| comes to.
inline Fraction fraction_of_turn(D x) {
    const __m128i bits = simd::bits_of(x);
    // The last row serves infinities and NaNs too; what comes of them is not used.
    const __m128i exponent = _mm_min_epi16(simd::bit_and(simd::shift_right<52>(bits), large.exponent), large.last_row);
    const simd::Indices<2> rows(exponent);
    const __m128i significand = simd::bit_or(simd::bit_and(bits, large.fraction), large.leading_bit);
    return fraction_of_turn(significand, inv_two_pi_192[rows.lane[0] & 2047], inv_two_pi_192[rows.lane[1] & 2047]);
}

inline Reduced reduce_large(D x) {
    const Fraction f = fraction_of_turn(x);
    const D sign = simd::sign_of(x);

    // The fraction in three pieces of 52 bits, each as a number 1 + m less its 1, with the sign of x.
    const auto piece = [=](__m128i digits, D unit) {
        return simd::bit_or(simd::doubles(digits), simd::bit_xor(unit, sign));
    };
    const __m128i digits1 = simd::shift_right<12>(f.high);
    const __m128i digits2 =
        simd::bit_or(simd::shift_right<12>(simd::shift_left<52>(f.high)), simd::shift_right<24>(f.next));
    const __m128i digits3 = simd::shift_right<12>(simd::shift_left<40>(f.next));

    // Nine digits after the point are those of the table's index. Pieces and remainder are exact.
    const D turn = piece(digits1, large.one);
    const D shifted = turn + large.nine_digits;
    const D remainder = turn - (shifted - large.nine_digits);
    const D piece2 = piece(digits2, large.unit2) - simd::bit_xor(large.unit2, sign);
    const D piece3 = piece(digits3, large.unit3) - simd::bit_xor(large.unit3, sign);
    // The remainder is zero or a multiple of 2^-52, which no piece reaches.
    const D high = remainder + piece2;
    const D low = ((remainder - high) + piece2) + piece3;

    // Times 2 pi. The product of the leading parts is exact.
    const D h1 = upper_26(high);
    const D h2 = high - h1;
    const D product = h1 * large.two_pi_a;
    const D rest = h2 * large.two_pi_a + h1 * large.two_pi_b + h2 * large.two_pi_b + low * large.two_pi;
    const D r = product + rest;
    const D r_low = (product - r) + rest;

    // Arguments this small are their own reduction, and keep all their digits that way.
    const __m128i high_words = simd::shuffle_32<1, 1, 3, 3>(simd::bits_of(simd::magnitude(x)));
    const D is_large = simd::doubles(simd::greater_32(high_words, large.last_small));
    return {simd::select(is_large, r, x), simd::bit_and(is_large, r_low),
            simd::bits_of(simd::bit_and(shifted, is_large))};
}

// ---- The same for the kernels of least accuracy: radians from the nearest half or quarter turn ------------------------

// 64-bit integers with sign to doubles.
inline D signed_to_doubles(__m128i x) {
    const __m128i low = simd::low_and_high_words(x, simd::bits_of(D(large.digits_52)));
    const __m128i high = simd::bit_xor(simd::shift_right<32>(x), simd::bits_of(D(large.digits_84)));
    return (simd::doubles(high) - large.digits) + simd::doubles(low);
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
    const __m128i k = simd::shift_right<64 - Bits>(simd::add(f.high, simd::splat_bits(half_step)));
    const D high = signed_to_doubles(simd::subtract(f.high, simd::shift_left<64 - Bits>(k)));
    // 52 bits of the next word are enough.
    const D next = simd::bit_or(simd::doubles(simd::shift_right<12>(f.next)), large.one) - large.one;
    return {(high + next) * large.radians, k};
}

}  // namespace orv::vecmath
