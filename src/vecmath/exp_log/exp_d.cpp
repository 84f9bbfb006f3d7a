// dExp: e^x.
//
// Reduction: k is the integer next to x * N / ln 2 with N = 128 ("LA", "EP") or 64 ("HA"); then e^x = 2^(k/N) e^r with
// r = x - k ln 2 / N, |r| at most ln 2 / (2N). ln 2 / N is split so that k times its high part is exact. With j = k mod N
// and n = k div N, 2^(k/N) is a table value joined with the exponent n by bit operations; e^r - 1 is a polynomial, in "HA"
// added to the table value's high part last and to its low part before that.
//
// Adding 1.5 * 2^52 rounds to the nearest integer and leaves that integer in the low word.
//
// The vector path serves |x| with a high word up to 0x4086232A (|x| < 708.396), where the result's exponent stays normal.
// Beyond it the scalar path forms the result within the normal range and scales it last, so subnormal results are rounded
// once more than others in "LA" and "EP", and once in all in "HA".
//
// The error of "LA" is mostly the polynomial's own: r^5/120, up to 5 ulp, is spread over its coefficients. Subnormal results
// have the unit of the least normal ones, and of it half their error at most, and a rounding.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;
using vecmath::high_word;
using vecmath::power_of_two_d;

constexpr double last_finite = 0x1.62e42fefa39efp+9;       // 709.78, the last argument with a finite result
constexpr double last_above_zero = -0x1.74910d52d3051p+9;  // -745.13, the last with a result above zero
constexpr double last_normal = -0x1.6232bdd7abcd2p+9;      // -708.396, the last with a normal result
constexpr uint32_t last_vector_high = 0x4086232A;

// The lanes beyond the vector path.
inline __m128d beyond_vector_path(__m128d x, __m128i magnitude_mask, __m128i limit) {
    return simd::doubles(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), magnitude_mask), limit));
}

// ---- "LA" and "EP" ---------------------------------------------------------------------------------------------------

struct Exp128 {
    bool only_square;        // the polynomial ends with r^2, and ln 2 / 128 is in one part
    Splat<double> shifter;   // 1.5 * 2^52
    Splat<double> scale;     // 128 / ln 2
    Splat<double> ln2_high;  // ln 2 / 128
    Splat<double> ln2_low;
    Splat<double> c2, c3, c4;           // of r^2, r^3, r^4
    SplatBits<uint64_t> bias{0x1FF80};  // 1023 above the 7 index bits
    SplatBits<uint64_t> exponent_mask{uint64_t{0x7FF} << 52};
    SplatBits<uint64_t> index_mask{0x7F};
    SplatBits<uint32_t> magnitude_mask{0x7FFFFFFF};
    SplatBits<uint32_t> limit{last_vector_high};
    uint64_t rows[128] = {
    // fraction bits of 2^(j/128)
#include "vecmath/tables/exp2_bits_128.inc"
    };
};

constexpr Exp128 exp_la{false,
                        0x1.8p+52,
                        0x1.71547652b82fep+7,
                        0x1.62e42feep-8,
                        0x1.a39ef35793c76p-40,
                        0x1.ffffffffffebp-2,
                        0x1.55555b7bae976p-3,
                        0x1.55555c2a9c0fap-5};
constexpr Exp128 exp_ep{true, 0x1.8p+52, 0x1.71547652b82fep+7, 0x1.62e42fefa39efp-8, 0.0, 0.5, 0.0, 0.0};

template <const Exp128& K>
struct Exp : frame::OneInput<double, 4, frame::Tail::by_element, frame::Rejected::whole_block> {
    static __m128d doubt(__m128d x) { return beyond_vector_path(x, K.magnitude_mask, K.limit); }

    static __m128d lanes(__m128d x) {
        const __m128d shifted = x * K.scale + K.shifter;
        const __m128d k = shifted - K.shifter;
        __m128d r = x - k * K.ln2_high;
        if constexpr (!K.only_square) r = r - k * K.ln2_low;

        const __m128i words = simd::bits_of(shifted);
        const simd::Indices<2> j(_mm_and_si128(words, K.index_mask));
        const __m128i row = simd::gather(&K.rows[j.lane[0]], &K.rows[j.lane[1]]);
        const __m128i exponent = _mm_and_si128(_mm_slli_epi64(_mm_add_epi32(words, K.bias), 45), K.exponent_mask);
        const __m128d power = simd::doubles(_mm_or_si128(exponent, row));
        return power * polynomial(r) + power;
    }

    // e^r - 1.
    template <class V>
    static V polynomial(V r) {
        if constexpr (K.only_square)
            return r + r * r * K.c2;
        else
            return r + r * r * (K.c2 + r * (K.c3 + r * K.c4));
    }

    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        const uint64_t bits = std::bit_cast<uint64_t>(x);
        const uint64_t magnitude = bits & ~(uint64_t{1} << 63);
        const uint64_t infinity = uint64_t{0x7FF} << 52;
        if (magnitude > infinity) {
            *y = x + x;
            return frame::status_ok;
        }
        if (magnitude == infinity) {
            *y = bits == infinity ? x : 0.0;
            return frame::status_ok;
        }
        if (x < last_above_zero) {
            *y = 0.0;
            return frame::status_underflow;
        }
        if (x > last_finite) {
            *y = std::numeric_limits<double>::infinity();
            return frame::status_overflow;
        }

        const double shifted = x * K.scale + K.shifter;
        const double k = shifted - K.shifter;
        double r = x - k * K.ln2_high;
        if constexpr (!K.only_square) r = r - k * K.ln2_low;
        const int32_t whole = static_cast<int32_t>(std::bit_cast<uint64_t>(shifted));
        const int32_t n = whole >> 7;
        const double power = std::bit_cast<double>(K.rows[whole & 0x7F] | uint64_t{1023} << 52);
        const double unscaled = power * polynomial(r) + power;
        if (x < last_normal) {
            *y = unscaled * power_of_two_d(n + 1022) * 0x1p-1022;
            return frame::status_underflow;
        }
        *y = n > 1023 ? unscaled * 0x1p+1023 * 2.0 : unscaled * power_of_two_d(n);
        // Next to the last argument "EP" can err to the far side of the largest number.
        return *y == std::numeric_limits<double>::infinity() ? frame::status_overflow : frame::status_ok;
    }
};

// ---- "HA" ------------------------------------------------------------------------------------------------------------

struct Exp64 {
    Splat<double> shifter;   // 1.5 * 2^52
    Splat<double> scale;     // 64 / ln 2
    Splat<double> ln2_high;  // ln 2 / 64
    Splat<double> ln2_low;
    Splat<double> c2, c3, c4, c5;
    Splat<double> overflow, underflow;  // the last arguments with a finite result and with one above zero
    SplatBits<uint64_t> index_mask{0x3F};
    SplatBits<uint32_t> magnitude_mask{0x7FFFFFFF};
    SplatBits<uint32_t> limit{last_vector_high};
    double scalar_c2, scalar_c3, scalar_c4, scalar_c5, scalar_c6;
    alignas(16) double rows[64][2] = {
    // 2^(j/64) and what rounding took from it
#include "vecmath/tables/exp2_64.inc"
    };
};

constexpr Exp64 exp_ha{
    .shifter = 0x1.8p+52,
    .scale = 0x1.71547652b82fep+6,
    .ln2_high = 0x1.62e42fefap-7,
    .ln2_low = 0x1.cf79abc9e3b3ap-46,
    .c2 = 0x1.fffffffffdb3bp-2,
    .c3 = 0x1.555555555653ep-3,
    .c4 = 0x1.555573f218b93p-5,
    .c5 = 0x1.111112d9f549bp-7,
    .overflow = last_finite,
    .underflow = last_above_zero,
    .scalar_c2 = 0.5,
    .scalar_c3 = 0x1.55555555548f8p-3,
    .scalar_c4 = 0x1.5555555558fccp-5,
    .scalar_c5 = 0x1.111123aaf20d3p-7,
    .scalar_c6 = 0x1.6c16a1c2a3ffdp-10,
};

struct ExpHa : frame::OneInput<double, 4, frame::Tail::masked, frame::Rejected::settled_where_silent> {
    static constexpr const Exp64& K = exp_ha;

    static __m128d doubt(__m128d x) { return beyond_vector_path(x, K.magnitude_mask, K.limit); }

    static __m128d lanes(__m128d x) {
        const __m128d shifted = x * K.scale + K.shifter;
        const __m128d k = shifted - K.shifter;
        const __m128i words = simd::bits_of(shifted);
        const __m128i index = _mm_and_si128(words, K.index_mask);
        const __m128i exponent = _mm_slli_epi64(_mm_andnot_si128(K.index_mask, words), 46);
        const simd::Indices<2> j(index);
        const __m128d row0 = _mm_load_pd(K.rows[j.lane[0]]), row1 = _mm_load_pd(K.rows[j.lane[1]]);
        const __m128d high = _mm_unpacklo_pd(row0, row1), low = _mm_unpackhi_pd(row0, row1);

        const __m128d r = (x - k * K.ln2_high) - k * K.ln2_low;
        const __m128d p = r + r * r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5)));
        const __m128d y = (p * high + low) + high;
        return simd::doubles(_mm_add_epi64(simd::bits_of(y), exponent));
    }

    // Where no report can be made: the arguments beyond all finite results, on both sides.
    static __m128d settle_silent(__m128d x, __m128d y, __m128d& doubt) {
        const __m128d number = simd::bit_and(_mm_cmpord_pd(x, x), x);  // comparing a NaN would raise invalid
        const __m128d above = _mm_cmpgt_pd(number, K.overflow), below = _mm_cmplt_pd(number, K.underflow);
        const __m128d infinity = simd::splat(std::numeric_limits<double>::infinity());
        doubt = simd::bit_and_not(simd::bit_or(above, below), doubt);
        return simd::bit_and_not(below, _mm_blendv_pd(y, infinity, above));
    }

    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        const uint32_t exponent_field = high_word(x) >> 20 & 0x7FF;
        if (exponent_field == 0x7FF) {
            *y = x == -std::numeric_limits<double>::infinity() ? 0.0 : x * x;
            return frame::status_ok;
        }
        if (exponent_field <= 0x3CA) {
            *y = 1.0 + x;
            return frame::status_ok;
        }
        if (x > last_finite) {
            *y = vecmath::overflow<double>();
            return frame::status_overflow;
        }
        if (x < last_above_zero) {
            *y = vecmath::underflow<double>();
            return frame::status_underflow;
        }

        const double shifted = x * K.scale + K.shifter;
        const double k = shifted - K.shifter;
        const double r = (x - k * K.ln2_high) - k * K.ln2_low;
        const int32_t whole = static_cast<int32_t>(std::bit_cast<uint64_t>(shifted));
        const int32_t n = whole >> 6;
        const double high = K.rows[whole & 0x3F][0];
        const double low = K.rows[whole & 0x3F][1];
        const double p =
            r + r * r * (K.scalar_c2 + r * (K.scalar_c3 + r * (K.scalar_c4 + r * (K.scalar_c5 + r * K.scalar_c6))));
        const double rest = p * high + low;
        *y = vecmath::scaled_sum(high, rest, n);
        return x < last_normal ? frame::status_underflow : frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(dExp, la, Exp<exp_la>)
ORV_ONE_INPUT(dExp, ha, ExpHa)
ORV_ONE_INPUT(dExp, ep, Exp<exp_ep>)
