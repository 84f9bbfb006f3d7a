// What the double precision logarithms share: the range test, the scalar path, and the method of 513 rows.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/log_special.h"

namespace orv::vecmath {

inline constexpr uint64_t fraction_bits = 0x000FFFFFFFFFFFFF;
inline constexpr uint64_t bits_of_one = uint64_t{0x3FF} << 52;
inline constexpr uint64_t bits_of_2_52 = uint64_t{0x433} << 52;
constexpr uint64_t in_high_word(uint32_t word) { return uint64_t{word} << 32; }

// In doubt is all but the positive normal numbers, by the high word, which is moved to the bottom of the signed range.
struct NormalTest {
    simd::SplatBits<uint32_t> bottom{0x80100000};
    simd::SplatBits<uint32_t> last{0xFFDFFFFF};

    __m128d doubt(__m128d x) const {
        return simd::doubles(_mm_cmpgt_epi32(_mm_sub_epi32(simd::bits_of(x), bottom), last));
    }
};

// x 2^52 for a positive subnormal x. Its fraction field counts 2^-1074; as a number it takes a product of normal numbers
// alone, where the product of x itself would take the processor's slow way.
inline double subnormal_by_2_52(double x) {
    const uint64_t bits = std::bit_cast<uint64_t>(x) | bits_of_2_52;
    return (std::bit_cast<double>(bits) - 0x1p+52) * 0x1p-1022;
}

// The scalar path. The vector path serves an element that is no longer special; log_of_2_52 is what scaling a subnormal
// by 2^52 adds.
template <class Kernel>
int32_t scalar_log_d(const double* at, double* y, double log_of_2_52) {
    const double x = *at;
    int32_t status;
    if (settled_log(x, 0.0, y, status)) return status;
    const bool subnormal = x < std::numeric_limits<double>::min();
    const double result = _mm_cvtsd_f64(Kernel::lanes(simd::splat(subnormal ? subnormal_by_2_52(x) : x)));
    *y = subnormal ? result - log_of_2_52 : result;
    return frame::status_ok;
}

// The method of 513 rows, for the logarithm of base b.
//
// x = 2^k m. m in [1, 2) selects a row by its leading bits, with rcp close to L/m and of so few bits that the product with
// the upper half of m is exact; L has few bits too and is close to log_b e, or 1. With R = m rcp - L, |R| < 2^-9 L,
//   log_b x = k log_b 2 - log_b(rcp / L) + log_b(1 + R / L),   log_b(1 + R / L) = R + R q(R).
// From m = 1.499 on k is one higher and the row one for m/2, so that neither next to 1 nor anywhere else large terms
// cancel. log_b 2 and the table are split so that a = k log_high + table_high and b = a + u are exact, u being the exact
// leading part of R. Where a is zero, next to 1, the rest v of R joins u in one exact sum; elsewhere it joins the small
// terms.
struct Log513Block {
    simd::Splat<double> log2_high, log2_low;
    simd::Splat<double> leading;             // L
    simd::Splat<double> q0, q1, q2, q3, q4;  // of q, from the constant term
    double log_of_2_52;
    alignas(16) double rows[513][4];  // rcp, rcp again, -log_b(rcp / L) (or its half's), high and low
    NormalTest normal{};
    simd::SplatBits<uint64_t> fraction{fraction_bits}, exponent_0{bits_of_one};
    simd::SplatBits<uint64_t> half_row{in_high_word(0x400)}, row_bits{in_high_word(0xFFFFF800)};
    simd::SplatBits<uint64_t> upper{in_high_word(0xFFFFFFFF)};
    // Turns the high word into k + 1024 in its exponent field; then 2^52 + 1024 as the number that carries that.
    simd::SplatBits<uint64_t> to_exponent{in_high_word(0x40000000 - 0x3FE7FC00)}, carrier{bits_of_2_52};
    simd::Splat<double> carrier_value{0x1p+52 + 1024};
};

// log_b(x + y) for a y far below x, or none: `rest` is y 2^-exponent(x).
template <const Log513Block& K, class... Rest>
inline __m128d log_513(__m128d x, Rest... rest) {
    const __m128i bits = simd::bits_of(x);
    const __m128i m_bits = _mm_or_si128(_mm_and_si128(bits, K.fraction), K.exponent_0);
    // The leading bits of m rounded to 9 of the fraction select the row, at 32 bytes a row once they are shifted.
    const __m128i leading = _mm_and_si128(_mm_add_epi64(m_bits, K.half_row), K.row_bits);
    const simd::Indices<2> at(_mm_srli_epi64(leading, 38));
    constexpr uint32_t at_1 = bits_of_one >> 38;
    const double* row0 = simd::behind(K.rows[0], at.lane[0] - at_1);
    const double* row1 = simd::behind(K.rows[0], at.lane[1] - at_1);
    const __m128d rcp = simd::gather(row0, row1);
    const __m128d logs0 = _mm_load_pd(row0 + 2), logs1 = _mm_load_pd(row1 + 2);
    const __m128d log_high = _mm_unpacklo_pd(logs0, logs1), log_low = _mm_unpackhi_pd(logs0, logs1);

    const __m128i exponent = _mm_srli_epi64(_mm_add_epi64(bits, K.to_exponent), 52);
    const __m128d k = simd::doubles(_mm_or_si128(exponent, K.carrier)) - K.carrier_value;
    const __m128d m = simd::doubles(m_bits), m_high = simd::doubles(_mm_and_si128(m_bits, K.upper));

    const __m128d u = m_high * rcp - K.leading;
    const __m128d v = (m - m_high) * rcp;
    const __m128d r = ((u + v) + ... + (rest * rcp));
    const __m128d a = k * K.log2_high + log_high;
    const __m128d next_to_one = simd::equal(a, _mm_setzero_pd());
    // Next to one u + v is exact and adding the rest rounds to what r is.
    const __m128d exact = (a + u) + simd::bit_and(next_to_one, v);
    const __m128d b = (exact + ... + simd::bit_and(next_to_one, rest * rcp));
    const __m128d late = simd::bit_and_not(next_to_one, (v + ... + (rest * rcp)));
    __m128d c = log_low;
    if constexpr (K.log2_low != 0.0) c = k * K.log2_low + log_low;
    if constexpr (sizeof...(rest) != 0) c = c + ((exact - b) + ... + simd::bit_and(next_to_one, rest * rcp));
    __m128d q = r * (K.q1 + r * (K.q2 + r * (K.q3 + r * K.q4)));
    if constexpr (K.q0 != 0.0) q = K.q0 + q;
    return ((r * q + c) + late) + b;
}

// The method of centres: m in [1, 2) selects the centre c next to it on a grid of 2^-8 or 2^-9, and with r = (m - c) / c,
//   log_b x = k log_b 2 + log_b c + p(r).
// log_b 2 and the table are rounded to a common grid, so that they cancel without a rest next to 1. Rows can be folded as
// above. A polynomial that ends with r^2 goes with a table in one part.
//
// With `exact_leading` the rows have L/c in two parts, L being short and close to log_b e, and r is L times the above. Its
// part u by the first of them is exact, and the sum of the table and u is taken with its rounding error; u has coefficient
// one, and the rest v of r and what log_b(e) / L - 1 times r is are small terms.
struct LogCentresShape {
    int bits;                 // of the grid from 1 to 2
    uint32_t exponent_carry;  // added to the high word it raises the exponent where the row is folded
    bool exact_leading = false;

    constexpr uint32_t steps() const { return 1u << bits; }
    constexpr int shift() const { return 52 - bits - 5; }  // brings the bits of a centre to 32 bytes a row
    constexpr uint64_t half_step() const { return uint64_t{1} << (51 - bits); }
    constexpr uint64_t grid() const { return ~(2 * half_step() - 1); }
};
inline constexpr LogCentresShape centres_257{8, 0};
inline constexpr LogCentresShape centres_513{9, 0x100000 - 0x6A400};
inline constexpr LogCentresShape centres_513_exact{9, 0x100000 - 0x6A400, true};

template <const LogCentresShape& Shape>
struct LogCentresBlock {
    simd::Splat<double> log2_high, log2_low;
    simd::Splat<double> c1;              // less one with exact_leading
    simd::Splat<double> c2, c3, c4, c5;  // zero from the first that is left out
    double log_of_2_52;
    alignas(16) double rows[Shape.steps() + 1][4];  // log_b c high and low, L/c and the rest of it
    NormalTest normal{};
    simd::SplatBits<uint64_t> fraction{fraction_bits}, exponent_0{bits_of_one};
    simd::SplatBits<uint64_t> half_step{Shape.half_step()}, grid{Shape.grid()};
    simd::SplatBits<uint64_t> exponent_carry{in_high_word(Shape.exponent_carry)}, carrier{bits_of_2_52};
    simd::Splat<double> carrier_value{0x1p+52 + 1023};
    static constexpr const LogCentresShape& shape = Shape;
};

template <const auto& K, class... Rest>
inline __m128d log_centres(__m128d x, Rest... rest) {
    const __m128i bits = simd::bits_of(x);
    const __m128i m = _mm_or_si128(_mm_and_si128(bits, K.fraction), K.exponent_0);
    // The next number of the grid, a tie upwards: a carry out of the fraction makes it 2, and its row the last.
    const __m128i centre = _mm_and_si128(_mm_add_epi64(m, K.half_step), K.grid);
    const simd::Indices<2> at(_mm_srli_epi64(centre, K.shape.shift()));
    constexpr uint32_t at_1 = bits_of_one >> K.shape.shift();
    const double* row0 = simd::behind(K.rows[0], at.lane[0] - at_1);
    const double* row1 = simd::behind(K.rows[0], at.lane[1] - at_1);
    const __m128d logs0 = _mm_load_pd(row0), logs1 = _mm_load_pd(row1);
    const __m128d log_high = _mm_unpacklo_pd(logs0, logs1), log_low = _mm_unpackhi_pd(logs0, logs1);

    const __m128d beyond = ((simd::doubles(m) - simd::doubles(centre)) + ... + rest);
    const __m128d u = beyond * simd::gather(row0 + 2, row1 + 2);
    __m128d r = u, v = _mm_setzero_pd();
    if constexpr (K.shape.exact_leading) {
        v = beyond * simd::gather(row0 + 3, row1 + 3);
        r = u + v;
    }
    __m128i raised = bits;
    if constexpr (K.shape.exponent_carry != 0) raised = _mm_add_epi64(bits, K.exponent_carry);
    const __m128d k = simd::doubles(_mm_or_si128(_mm_srli_epi64(raised, 52), K.carrier)) - K.carrier_value;

    if constexpr (K.c3 == 0.0) return (r + r * r * K.c2) + (k * K.log2_high + log_high);
    __m128d p;
    if constexpr (K.c4 == 0.0)
        p = r * r * (K.c2 + r * K.c3);
    else
        p = r * r * ((K.c2 + r * K.c3) + r * r * (K.c4 + r * K.c5));
    __m128d low = log_low, high = k + log_high;
    if constexpr (K.log2_low != 0.0) low = k * K.log2_low + log_low;
    if constexpr (K.log2_high != 1.0) high = k * K.log2_high + log_high;
    if constexpr (K.shape.exact_leading) {
        const __m128d sum = high + u, lost = (high - sum) + u;
        return sum + (p + ((r * K.c1 + v) + (low + lost)));
    }
    __m128d linear = r;
    if constexpr (K.c1 != 1.0) linear = r * K.c1;
    return high + (linear + (p + low));
}

// The kernel of a block of either method.
template <const auto& K>
struct LogD : frame::OneInput<double, 4, frame::Tail::by_element> {
    static __m128d doubt(__m128d x) { return K.normal.doubt(x); }
    static __m128d lanes(__m128d x) {
        if constexpr (requires { K.leading; })
            return log_513<K>(x);
        else
            return log_centres<K>(x);
    }
    static int32_t scalar(const double* x, double* y) { return scalar_log_d<LogD>(x, y, K.log_of_2_52); }
};

}  // namespace orv::vecmath
