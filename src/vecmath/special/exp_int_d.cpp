// dExpInt1. Results from 700 on are small enough to be rounded one by one.
#include "frame/kernel_loops.h"
#include "vecmath/special/exp_int.h"

namespace {

using namespace orv;
using simd::SplatBits;

constexpr SplatBits<uint32_t> first{(1023 - 4) << 20}, last{0x4085DFFF};  // 2^-4, 700

template <int Pairs, bool Underflow>
struct ExpInt : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        const __m128i bits = simd::bits_of(x);
        return simd::doubles(_mm_or_si128(_mm_cmpgt_epi32(first, bits), _mm_cmpgt_epi32(bits, last)));
    }
    static __m128d lanes(__m128d x) { return vecmath::exp_int_lanes<Pairs>(x); }
    static int32_t scalar(const double* x, double* y) { return vecmath::exp_int_scalar<Underflow>(*x, y); }
};
using ExpIntAccurate = ExpInt<0, true>;
using ExpIntShort = ExpInt<3, false>;

}  // namespace

ORV_ONE_INPUT(dExpInt1, la, ExpIntAccurate)
ORV_ONE_INPUT(dExpInt1, ep, ExpIntShort)
