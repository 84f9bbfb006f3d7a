// sErfInv, sErfcInv, sCdfNormInv: in double, rounded once, and with shorter expansions.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/wide.h"
#include "vecmath/special/inverse.h"

namespace {

using namespace orv;
using simd::SplatBits;
using vecmath::Inverse;

struct Ends {
    SplatBits<uint32_t> magnitude{0x7FFFFFFF};
    SplatBits<uint32_t> first, last;
};
constexpr uint32_t exponent(int e) { return uint32_t(127 + e) << 23; }
constexpr Ends erf_ends{.first = 0, .last = exponent(0) - 0x4001};
constexpr Ends erfc_ends{.first = exponent(-10), .last = exponent(1) - 0x2001};
constexpr Ends normal_ends{.first = exponent(-11), .last = exponent(0) - 0x2001};

template <Inverse Which, int Pairs>
struct InverseS : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) {
        constexpr const Ends& K = Which == Inverse::erf ? erf_ends : Which == Inverse::erfc ? erfc_ends : normal_ends;
        __m128i bits = simd::bits_of(x);
        if constexpr (Which == Inverse::erf) bits = _mm_and_si128(bits, K.magnitude);
        return simd::floats(_mm_or_si128(_mm_cmpgt_epi32(K.first, bits), _mm_cmpgt_epi32(bits, K.last)));
    }
    static __m128 lanes(__m128 x) {
        return vecmath::in_double(x, [](__m128d d) { return vecmath::inverse_lanes<Which, Pairs, false>(d); });
    }
    static int32_t scalar(const float* x, float* y) { return vecmath::inverse_scalar<Which>(*x, y); }
};

template <Inverse Which>
using Accurate = InverseS<Which, 2>;
template <Inverse Which>
using Short = InverseS<Which, 1>;

}  // namespace

ORV_ONE_INPUT(sErfInv, la, Accurate<Inverse::erf>)
ORV_ONE_INPUT(sErfInv, ha, Accurate<Inverse::erf>)
ORV_ONE_INPUT(sErfInv, ep, Short<Inverse::erf>)
ORV_ONE_INPUT(sErfcInv, la, Accurate<Inverse::erfc>)
ORV_ONE_INPUT(sErfcInv, ha, Accurate<Inverse::erfc>)
ORV_ONE_INPUT(sErfcInv, ep, Short<Inverse::erfc>)
ORV_ONE_INPUT(sCdfNormInv, la, Accurate<Inverse::normal>)
ORV_ONE_INPUT(sCdfNormInv, ha, Accurate<Inverse::normal>)
ORV_ONE_INPUT(sCdfNormInv, ep, Short<Inverse::normal>)
