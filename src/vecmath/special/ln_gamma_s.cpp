// sLGamma: from 2^-5 to 128 by the expansion in double, rounded once; elsewhere one by one.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/wide.h"
#include "vecmath/special/ln_gamma.h"

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;

struct Block {
    SplatBits<uint32_t> first{std::bit_cast<uint32_t>(0x1p-5f)}, last{std::bit_cast<uint32_t>(128.0f) - 1};
    Splat<double> one{1.0}, two{2.0};
};
constexpr Block K;

inline __m128d ln_gamma_lanes(__m128d x) {
    constexpr const auto& L = vecmath::ln_gamma_block;
    const vecmath::Expanded f = vecmath::expand<L.first, 3>(L.rows, x, x - vecmath::expansion_centre(x));
    return ((x - K.one) * (x - K.two)) * (f.high + f.low) + _mm_setzero_pd();  // +0 at both zeros
}

struct LGamma : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) {
        const __m128i bits = simd::bits_of(x);
        return simd::floats(_mm_or_si128(_mm_cmpgt_epi32(K.first, bits), _mm_cmpgt_epi32(bits, K.last)));
    }
    static __m128 lanes(__m128 x) { return vecmath::in_double(x, ln_gamma_lanes); }
    static int32_t scalar(const float* x, float* y) {
        const vecmath::ExtendedPrecision extended;
        return vecmath::ln_gamma_scalar(*x, y);
    }
};

}  // namespace

ORV_ONE_INPUT(sLGamma, la, LGamma)
