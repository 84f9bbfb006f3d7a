// dErfc, dCdfNorm.
#include "frame/kernel_loops.h"
#include "vecmath/special/tails.h"

namespace {

using namespace orv;
using simd::SplatBits;

template <class Tail, int Pairs = 0>
struct TailD : frame::OneInput<double, 4, frame::Tail::masked> {
    static constexpr SplatBits<uint32_t> limit{static_cast<uint32_t>(std::bit_cast<uint64_t>(Tail::last_vector) >> 32) -
                                               1};
    static constexpr SplatBits<uint32_t> magnitude{0x7FFFFFFF}, greatest{0x7FEFFFFF};

    // Beyond the limit on the falling side; not finite.
    static __m128d doubt(__m128d x) {
        const __m128i bits = simd::bits_of(x), turned = simd::bits_of(vecmath::rising_side<Tail>(x));
        return simd::doubles(
            _mm_or_si128(_mm_cmpgt_epi32(turned, limit), _mm_cmpgt_epi32(_mm_and_si128(bits, magnitude), greatest)));
    }
    static __m128d lanes(__m128d x) { return vecmath::tail_lanes<Tail, Pairs>(x); }
    static int32_t scalar(const double* x, double* y) { return vecmath::tail_scalar<Tail>(*x, y); }
};

using Erfc = TailD<vecmath::ErfcTail>;
using CdfNorm = TailD<vecmath::NormalTail>;
using CdfNormEp = TailD<vecmath::NormalTail, 3>;

}  // namespace

ORV_ONE_INPUT(dErfc, la, Erfc)
ORV_ONE_INPUT(dCdfNorm, la, CdfNorm)
ORV_ONE_INPUT(dCdfNorm, ha, CdfNorm)
ORV_ONE_INPUT(dCdfNorm, ep, CdfNormEp)
