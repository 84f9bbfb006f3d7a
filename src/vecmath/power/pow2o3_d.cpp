// dPow2o3: a^(2/3).
//
// |a| = 2^(3q + r) m with r of 0, 1, 2 and m in [1, 2). r and the 7 leading bits of m's fraction select a row, with R close to
// 1/c for the c in the middle; with z = m R - 1, |z| < 2^-8,
//
//   a^(2/3) = 2^(2q) T (1 + z)^(2/3),  T = (2^r / R)^(2/3).
//
// R has 21 bits, so that its product with the upper 32 bits of m is exact, and among the R of that length the row takes the one
// next to 1/c whose T lies within 2^-6 of an ulp of a double: T needs no second part. (1 + z)^(2/3) - 1 is a polynomial of degree 5,
// in "EP" of degree 2.
//
// The result is normal for all arguments but zero; subnormal arguments are scaled by 2^54 in the scalar path.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

#include <math.h>

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;

struct Pow2o3Block {
    // fpminimax(((1+x)^(2/3)-1)/x, 4, [|D...|], [-2^-8;2^-8]): 2^-59 of the power
    Splat<double> c1{0x1.5555555555555p-1}, c2{-0x1.c71c71c70ab0ep-4}, c3{0x1.948b0fce97fd5p-5},
        c4{-0x1.d7f8ae7e2654dp-6}, c5{0x1.3aa3eb293f33bp-6};
    // The same of degree 1: 2^-30
    Splat<double> short_c1{0x1.555561f9b1bap-1}, short_c2{-0x1.c71cd6ea0e2c8p-4};
    Splat<double> one{1.0};
    SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF}, fraction{0x000FFFFFFFFFFFFF}, exponent_0{0x3FF0000000000000};
    SplatBits<uint64_t> upper{0xFFFFFFFFFFE00000}, row_bits{0x7F};
    SplatBits<uint64_t> third{
        43691};  // 2^17 / 3, rounded up: its product with an exponent field has the third above bit 17
    SplatBits<uint64_t> bias{682};  // two thirds of 1023
    SplatBits<uint32_t> least_normal{0x00100000}, greatest{0x7FEFFFFF};
    alignas(16) double rows[384][2] = {
    // R, T
#include "vecmath/tables/pow2o3.inc"
    };
};
constexpr Pow2o3Block K;

template <bool Short>
struct Pow2o3 : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        const __m128i high = _mm_and_si128(simd::bits_of(x), K.magnitude);
        return simd::doubles(_mm_or_si128(_mm_cmpgt_epi32(K.least_normal, high), _mm_cmpgt_epi32(high, K.greatest)));
    }

    static __m128d lanes(__m128d x) {
        const __m128i bits = _mm_and_si128(simd::bits_of(x), K.magnitude);
        const __m128i field = _mm_srli_epi64(bits, 52);
        const __m128i q = _mm_srli_epi64(_mm_mul_epu32(field, K.third), 17);
        const __m128i r = _mm_sub_epi64(field, _mm_add_epi64(q, _mm_add_epi64(q, q)));
        const __m128i row = _mm_add_epi64(_mm_slli_epi64(r, 7), _mm_and_si128(_mm_srli_epi64(bits, 45), K.row_bits));
        const simd::Indices<2> at(row);
        const __m128d row0 = _mm_load_pd(K.rows[at.lane[0]]), row1 = _mm_load_pd(K.rows[at.lane[1]]);
        const __m128d rcp = _mm_unpacklo_pd(row0, row1), t = _mm_unpackhi_pd(row0, row1);

        const __m128i m_bits = _mm_or_si128(_mm_and_si128(bits, K.fraction), K.exponent_0);
        const __m128d m = simd::doubles(m_bits);
        __m128d p;
        if constexpr (Short) {
            const __m128d z = m * rcp - K.one;
            p = z * (K.short_c1 + z * K.short_c2);
        } else {
            const __m128d m_high = simd::doubles(_mm_and_si128(m_bits, K.upper));
            const __m128d z = (m_high * rcp - K.one) + (m - m_high) * rcp;
            p = z * (K.c1 + z * ((K.c2 + z * K.c3) + (z * z) * (K.c4 + z * K.c5)));
        }
        const __m128i exponent = _mm_slli_epi64(_mm_sub_epi64(_mm_add_epi64(q, q), K.bias), 52);
        return simd::doubles(_mm_add_epi64(simd::bits_of(t + t * p), exponent));
    }

    static int32_t scalar(const double* at, double* y) {
        if (vecmath::is_nan(*at)) {
            *y = vecmath::quiet(*at);
            return frame::status_ok;
        }
        const double x = std::fabs(*at);
        if (x == 0 || !vecmath::is_finite(x))
            *y = x + x;
        else
            *y = _mm_cvtsd_f64(lanes(simd::splat(x * 0x1p+54))) * 0x1p-36;
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(dPow2o3, la, Pow2o3<false>)
ORV_ONE_INPUT(dPow2o3, ha, Pow2o3<false>)
ORV_ONE_INPUT(dPow2o3, ep, Pow2o3<true>)
