// dLogb: the exponent of x, one kernel for all accuracies. Exact.
//
// The exponent field, above the fraction of 2^52, reads as 2^52 plus the field. The vector path serves normal numbers of
// either sign; a subnormal's exponent is that of x 2^52, less 52.
#include "vecmath/exp_log/log_d.h"

namespace {

using namespace orv;

struct LogbBlock {
    simd::SplatBits<uint32_t> magnitude{0x7FFFFFFF}, least{0x00100000}, greatest{0x7FEFFFFF};
    simd::SplatBits<uint64_t> magnitude_64{~uint64_t{0} >> 1}, carrier{vecmath::bits_of_2_52};
    simd::Splat<double> carrier_value{0x1p+52 + 1023};
};
constexpr LogbBlock K;

struct Logb : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        const __m128i high = _mm_and_si128(simd::bits_of(x), K.magnitude);
        return simd::doubles(_mm_or_si128(_mm_cmpgt_epi32(K.least, high), _mm_cmpgt_epi32(high, K.greatest)));
    }

    static __m128d lanes(__m128d x) {
        const __m128i field = _mm_srli_epi64(_mm_and_si128(simd::bits_of(x), K.magnitude_64), 52);
        return simd::doubles(_mm_or_si128(field, K.carrier)) - K.carrier_value;
    }

    static int32_t scalar(const double* at, double* y) {
        const double x = *at;
        if (x == 0) {
            *y = vecmath::minus_infinity_at_pole<double>();
            return frame::status_singularity;
        }
        *y = vecmath::is_finite(x) ? _mm_cvtsd_f64(lanes(simd::splat(x * 0x1p+52))) - 52 : x * x;
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(dLogb, la, Logb)
