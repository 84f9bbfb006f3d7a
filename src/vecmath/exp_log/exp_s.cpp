// sExp: e^x.
//
// "LA", "EP": k is the integer next to x / ln 2, e^x = 2^k e^r, and e^r is a polynomial on |r| <= ln 2 / 2, to which k is
// added in the exponent. "EP" works with f = x / ln 2 - k and the polynomial of 2^f, so that ln 2 is not needed.
// "HA": k is the integer next to 128 x / ln 2, and 2^(k mod 128 / 128) comes from a table of pairs t_high (1 + t_low);
// e^x = 2^n t_high (1 + t_low)(1 + r + r^2/2), of which the product of the small terms is left out.
//
// Adding 1.5 * 2^23 rounds to the nearest integer and leaves that integer in the low bits.
//
// The vector path serves |x| up to 0x42AEAC4F (87.3365), where the result is normal.
//
// In "LA" and "EP" it is the polynomials' own error that shows: 2^-22.6 and 2^-12.4, and 2^-22.7 on the scalar path.
#include "vecmath/exp_log/exp_base_s.h"

namespace {

using namespace orv;
using simd::bits_of;
using simd::floats;
using simd::Splat;
using simd::SplatBits;
using vecmath::power_of_two_s;

constexpr float last_finite = 0x1.62e42ep+6f;       // 88.7228, the last argument with a finite result
constexpr float last_above_zero = -0x1.9fe368p+6f;  // -103.972, the last with a result above zero
constexpr float last_normal = -0x1.5d589ep+6f;      // -87.3365, the last with a normal result

struct MagnitudeTest {
    SplatBits<uint32_t> magnitude{0x7FFFFFFF};
    SplatBits<uint32_t> last{0x42AEAC4F};

    __m128 doubt(__m128 x) const { return floats(_mm_cmpgt_epi32(_mm_and_si128(bits_of(x), magnitude), last)); }
};

// The arguments that have one answer each. True where x is one of them, with the answer in y and the status.
inline bool settled(float x, float* y, int32_t* status) {
    *status = frame::status_ok;
    if (!vecmath::is_finite(x)) {
        *y = x == -std::numeric_limits<float>::infinity() ? 0.0f : x * x;
    } else if (x > last_finite) {
        *y = vecmath::overflow<float>();
        *status = frame::status_overflow;
    } else if (x < last_above_zero) {
        *y = vecmath::underflow<float>();
        *status = frame::status_underflow;
    } else {
        return false;
    }
    return true;
}

// ---- "LA" and "EP" ---------------------------------------------------------------------------------------------------

struct ExpPolynomial {
    Splat<float> ln2_high, ln2_low;   // zero where the polynomial is one of 2^f
    Splat<float> c1, c2, c3, c4, c5;  // the leading coefficient is 1
    Splat<float> one{1.0f};
    Splat<float> shifter{0x1.8p+23f};
    Splat<float> scale{0x1.715476p+0f};  // 1 / ln 2
    MagnitudeTest test{};
};

constexpr ExpPolynomial exp_la{0x1.62e4p-1f,   0x1.7f7d1cp-20f, 0x1.fffffcp-1f, 0x1.fffe68p-2f,
                               0x1.555958p-3f, 0x1.570724p-5f,  0x1.0fb3fcp-7f};
constexpr ExpPolynomial exp_ep{0.0f, 0.0f, 0x1.62e844p-1f, 0x1.efacd4p-3f, 0x1.c6b056p-5f, 0.0f, 0.0f};

template <const ExpPolynomial& K>
struct Exp : frame::OneInput<float, 16, frame::Tail::masked> {
    static constexpr bool of_two = K.ln2_high == 0.0f;

    static __m128 doubt(__m128 x) { return K.test.doubt(x); }

    static __m128 lanes(__m128 x) {
        const __m128 scaled = x * K.scale;
        const __m128 shifted = scaled + K.shifter;
        const __m128 k = shifted - K.shifter;
        __m128 p;
        if constexpr (of_two) {
            const __m128 f = scaled - k;
            p = K.one + f * (K.c1 + f * (K.c2 + f * K.c3));
        } else {
            const __m128 r = (x - k * K.ln2_high) - k * K.ln2_low;
            p = K.one + r * (K.c1 + r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5))));
        }
        return floats(_mm_add_epi32(bits_of(p), _mm_slli_epi32(bits_of(shifted), 23)));
    }

    // One routine for both: results here are as good as "LA" asks.
    static int32_t scalar(const float* at, float* y) {
        const float x = *at;
        int32_t status;
        if (settled(x, y, &status)) return status;
        const float shifted = x * exp_la.scale + exp_la.shifter;
        const float k = shifted - exp_la.shifter;
        const float r = (x - k * exp_la.ln2_high) - k * exp_la.ln2_low;
        const float p = 0x1.000002p+0f +
                        r * (0x1.000002p+0f +
                             r * (0x1.fffd0ap-2f + r * (0x1.55538cp-3f + r * (0x1.57636cp-5f + r * 0x1.12a1dep-7f))));
        const int n = static_cast<int>(k);
        if (x < last_normal) {
            *y = p * power_of_two_s(n + 60) * 0x1p-60f;
            return frame::status_underflow;
        }
        *y = n > 127 ? p * power_of_two_s(n - 1) * 2.0f : p * power_of_two_s(n);
        return frame::status_ok;
    }
};

// ---- "HA" ------------------------------------------------------------------------------------------------------------

struct ExpPairs {
    Splat<float> shifter{0x1.6p+23f};
    Splat<float> scale{0x1.715476p+7f};                            // 128 / ln 2
    Splat<float> ln2_high{0x1.63p-8f}, ln2_low{-0x1.bd0106p-20f};  // ln 2 / 128
    Splat<float> half{0.5f};
    SplatBits<uint32_t> index_mask{0x7F}, bias{0x7F};
    MagnitudeTest test{};
    alignas(16) float rows[128][2] = {
    // 2^(j/128), and the relative rest of it
#include "vecmath/tables/exp2_float_128.inc"
    };
};
constexpr ExpPairs exp_ha;

struct ExpHa : frame::OneInput<float, 8, frame::Tail::by_element, frame::Rejected::whole_block> {
    static constexpr const ExpPairs& K = exp_ha;

    static __m128 doubt(__m128 x) { return K.test.doubt(x); }

    static __m128 lanes(__m128 x) {
        const __m128 shifted = x * K.scale + K.shifter;
        const __m128 minus_k = K.shifter - shifted;
        const __m128 r = (x + minus_k * K.ln2_high) + minus_k * K.ln2_low;
        __m128 t_high, t_low;
        simd::gather_pairs(K.rows, simd::Indices<4>(_mm_and_si128(bits_of(shifted), K.index_mask)), t_high, t_low);
        const __m128 p = (r + t_low) + K.half * r * r;
        const __m128i exponent = _mm_add_epi32(_mm_srai_epi32(bits_of(shifted), 7), K.bias);
        return (p * t_high + t_high) * floats(_mm_slli_epi32(exponent, 23));
    }

    // Near the ends of the range in double, where neither limit is near.
    static int32_t scalar(const float* at, float* y) {
        const float x = *at;
        if (simd::lane_bits(doubt(simd::splat(x))) == 0) {
            simd::store_one(y, lanes(simd::splat(x)));
            return frame::status_ok;
        }
        int32_t status;
        if (settled(x, y, &status)) return status;
        *y = vecmath::exp2_rounded(x * 0x1.71547652b82fep+0);
        return x < last_normal ? frame::status_underflow : frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(sExp, la, Exp<exp_la>)
ORV_ONE_INPUT(sExp, ha, ExpHa)
ORV_ONE_INPUT(sExp, ep, Exp<exp_ep>)
