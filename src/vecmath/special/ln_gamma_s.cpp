// sLGamma: in double, rounded once. From 2^-5 to 128 by the expansion; below, down to -34, the logarithm of |Gamma|, but for
// results next to zero, which keep their relative accuracy on the scalar path; there goes what is left, too.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/ln_513.h"
#include "vecmath/exp_log/wide.h"
#include "vecmath/special/gamma_lanes.h"
#include "vecmath/special/ln_gamma.h"

namespace {

using namespace orv;
using simd::Splat;
using simd::SplatBits;

struct Block {
    SplatBits<uint32_t> first{std::bit_cast<uint32_t>(0x1p-5f)}, last{std::bit_cast<uint32_t>(128.0f) - 1};
    Splat<double> one{1.0}, two{2.0};
    Splat<float> small_result{0x1p-6f};
};
constexpr Block K;

inline __m128d ln_gamma_lanes(__m128d x) {
    constexpr const auto& L = vecmath::ln_gamma_block;
    const vecmath::Expanded f = vecmath::expand<L.first, 3>(L.rows, x, x - vecmath::expansion_centre(x));
    return ((x - K.one) * (x - K.two)) * (f.high + f.low) + _mm_setzero_pd();  // +0 at both zeros
}
inline __m128d ln_of_gamma_lanes(__m128d x) {
    return vecmath::log_513<vecmath::ln_513>(simd::magnitude(vecmath::gamma_lanes(x)));
}

struct LGamma : frame::OneInput<float, 8, frame::Tail::masked, frame::Rejected::settled> {
    static __m128 doubt(__m128 x) {
        const __m128i bits = simd::bits_of(x);
        return simd::floats(_mm_or_si128(_mm_cmpgt_epi32(K.first, bits), _mm_cmpgt_epi32(bits, K.last)));
    }
    static __m128 lanes(__m128 x) { return vecmath::in_double(x, ln_gamma_lanes); }
    static __m128 settle(__m128 x, __m128 y, __m128& doubt) {
        const __m128 not_served = vecmath::gamma_doubt(x);
        const __m128 result =
            vecmath::in_double(simd::select_by_sign(not_served, simd::splat(fill), x), ln_of_gamma_lanes);
        const __m128 settled = simd::select_by_sign(doubt, result, y);
        const __m128 left = simd::bit_or(not_served, simd::less(simd::magnitude(result), K.small_result));
        doubt = simd::bit_and(doubt, left);
        return settled;
    }
    static int32_t scalar(const float* x, float* y) {
        const vecmath::ExtendedPrecision extended;
        return vecmath::ln_gamma_scalar(*x, y);
    }
};

}  // namespace

ORV_ONE_INPUT(sLGamma, la, LGamma)
