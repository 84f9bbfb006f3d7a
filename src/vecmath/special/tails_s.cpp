// sErfc, sCdfNorm: in double, rounded once.
//
// Results become subnormal beyond 9.19 and 12.98: what lies beyond the whole numbers below goes one by one.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/wide.h"
#include "vecmath/special/tails.h"

namespace {

using namespace orv;
using simd::SplatBits;
using vecmath::TailForm;

template <class Tail, TailForm Form>
struct TailS : frame::OneInput<float, 8, frame::Tail::masked> {
    static constexpr SplatBits<uint32_t> limit{std::bit_cast<uint32_t>(Tail::sign > 0 ? 9.0f : 12.0f)};
    static constexpr SplatBits<uint32_t> magnitude{0x7FFFFFFF}, greatest{0x7F7FFFFF};

    static __m128 doubt(__m128 x) {
        const __m128i bits = simd::bits_of(x);
        const __m128i turned = Tail::sign > 0 ? bits : simd::bits_of(simd::bit_xor(x, simd::splat(-0.0f)));
        return simd::floats(
            _mm_or_si128(_mm_cmpgt_epi32(turned, limit), _mm_cmpgt_epi32(_mm_and_si128(bits, magnitude), greatest)));
    }
    static __m128 lanes(__m128 x) {
        return vecmath::in_double(x, [](__m128d d) { return vecmath::tail_lanes<Tail, Form>(d); });
    }
    static int32_t scalar(const float* x, float* y) { return vecmath::tail_scalar<Tail>(*x, y); }
};

template <TailForm Form>
using Erfc = TailS<vecmath::ErfcTail, Form>;
template <TailForm Form>
using CdfNorm = TailS<vecmath::NormalTail, Form>;

}  // namespace

ORV_ONE_INPUT(sErfc, la, Erfc<TailForm::short_six>)
ORV_ONE_INPUT(sErfc, ha, Erfc<TailForm::short_six>)
ORV_ONE_INPUT(sErfc, ep, Erfc<TailForm::short_two>)
ORV_ONE_INPUT(sCdfNorm, la, CdfNorm<TailForm::short_six>)
ORV_ONE_INPUT(sCdfNorm, ha, CdfNorm<TailForm::short_six>)
ORV_ONE_INPUT(sCdfNorm, ep, CdfNorm<TailForm::short_two>)
