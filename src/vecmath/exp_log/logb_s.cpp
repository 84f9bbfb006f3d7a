// sLogb: the exponent of x, one kernel for all accuracies. Exact.
//
// The vector path serves normal numbers of either sign; a subnormal's exponent is that of x 2^23, less 23.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace {

using namespace orv;
using simd::bits_of;

struct LogbBlock {
    simd::SplatBits<uint32_t> magnitude{0x7FFFFFFF}, least{0x00800000}, greatest{0x7F7FFFFF}, bias{127};
};
constexpr LogbBlock K;

struct Logb : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) {
        const __m128i bits = _mm_and_si128(bits_of(x), K.magnitude);
        return simd::floats(_mm_or_si128(_mm_cmpgt_epi32(K.least, bits), _mm_cmpgt_epi32(bits, K.greatest)));
    }

    static __m128 lanes(__m128 x) {
        const __m128i field = _mm_srli_epi32(_mm_and_si128(bits_of(x), K.magnitude), 23);
        return _mm_cvtepi32_ps(_mm_sub_epi32(field, K.bias));
    }

    static int32_t scalar(const float* at, float* y) {
        const float x = *at;
        if (x == 0) {
            *y = vecmath::minus_infinity_at_pole<float>();
            return frame::status_singularity;
        }
        *y = vecmath::is_finite(x) ? _mm_cvtss_f32(lanes(simd::splat(x * 0x1p+23f))) - 23 : x * x;
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(sLogb, la, Logb)
