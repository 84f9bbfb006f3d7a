// sExpInt1: in double, rounded once. Results from 82 on go one by one, since they become subnormal.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/wide.h"
#include "vecmath/special/exp_int.h"

namespace {

using namespace orv;
using simd::SplatBits;

constexpr SplatBits<uint32_t> first{(127 - 4) << 23}, last{std::bit_cast<uint32_t>(82.0f)};

template <int Pairs>
struct ExpInt : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) {
        const __m128i bits = simd::bits_of(x);
        return simd::floats(_mm_or_si128(_mm_cmpgt_epi32(first, bits), _mm_cmpgt_epi32(bits, last)));
    }
    static __m128 lanes(__m128 x) {
        return vecmath::in_double(x, [](__m128d d) { return vecmath::exp_int_lanes<Pairs>(d); });
    }
    static int32_t scalar(const float* x, float* y) { return vecmath::exp_int_scalar<true>(*x, y); }
};

}  // namespace

ORV_ONE_INPUT(sExpInt1, la, ExpInt<3>)
ORV_ONE_INPUT(sExpInt1, ep, ExpInt<1>)
