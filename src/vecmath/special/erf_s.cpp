// sErf: in double, with the terms that a float needs, rounded once.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/wide.h"
#include "vecmath/special/erf.h"

namespace {

using namespace orv;
using vecmath::ErfTerms;

constexpr simd::SplatBits<uint32_t> magnitude{0x7FFFFFFF}, greatest{0x7F7FFFFF};

template <ErfTerms Terms>
struct Erf : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) {
        return simd::floats(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), magnitude), greatest));
    }
    static __m128 lanes(__m128 x) {
        return vecmath::in_double(x, [](__m128d d) { return vecmath::erf_lanes<Terms>(d); });
    }
    static int32_t scalar(const float* x, float* y) { return vecmath::erf_scalar(*x, y); }
};

}  // namespace

ORV_ONE_INPUT(sErf, la, Erf<ErfTerms::float_full>)
ORV_ONE_INPUT(sErf, ha, Erf<ErfTerms::float_full>)
ORV_ONE_INPUT(sErf, ep, Erf<ErfTerms::float_short>)
