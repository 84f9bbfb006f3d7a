// sErfc, sCdfNorm: in double, rounded once; "EP" in floats, of
//
//   erfc x = 2^(-x^2 log2 e) F(x),  x from 0,
//
// with F by quadratics in x + 1, eight a power of two, and the normal distribution at -x as half of erfc at x / sqrt 2.
//
// Results become subnormal beyond 9.19 and 12.98: what lies beyond the whole numbers below goes one by one.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/wide.h"
#include "vecmath/special/tails.h"

namespace {

using namespace orv;
using simd::Splat, simd::SplatBits;

template <class Tail>
struct TailS : frame::OneInput<float, 8, frame::Tail::masked> {
    static constexpr float last = Tail::sign > 0 ? 9.0f : 12.0f;
    static constexpr SplatBits<uint32_t> limit{std::bit_cast<uint32_t>(last)};
    static constexpr SplatBits<uint32_t> magnitude{0x7FFFFFFF}, greatest{0x7F7FFFFF};

    static __m128 turned(__m128 x) { return Tail::sign > 0 ? x : simd::bit_xor(x, simd::splat(-0.0f)); }
    static __m128 doubt(__m128 x) {
        const __m128i bits = simd::bits_of(x);
        return simd::floats(_mm_or_si128(_mm_cmpgt_epi32(simd::bits_of(turned(x)), limit),
                                         _mm_cmpgt_epi32(_mm_and_si128(bits, magnitude), greatest)));
    }
    static __m128 lanes(__m128 x) {
        return vecmath::in_double(x,
                                  [](__m128d d) { return vecmath::tail_lanes<Tail, vecmath::TailForm::short_six>(d); });
    }
    static int32_t scalar(const float* x, float* y) { return vecmath::tail_scalar<Tail>(*x, y); }
};

struct TailEpBlock {
    Splat<float> least{0x1p-40f}, one{1.0f}, root_half{0x1.6a09e6p-1f}, half{0.5f}, shifter{0x1.8p+23f};
    SplatBits<uint32_t> row{0xFFF00000}, half_row{0x00080000}, first{0x3F800000};
    alignas(16) float exp2_cubic[1][4] = {
#include "vecmath/tables/exp2_cubic_float.inc"
    };
    alignas(16) float rows[32][4] = {
#include "vecmath/tables/erfcx_float.inc"
    };
};
constexpr TailEpBlock K;

template <class Tail>
struct TailEp : TailS<Tail> {
    static __m128 lanes(__m128 x) {
        constexpr bool normal = Tail::half != 1.0;
        constexpr static Splat<float> log2_e{static_cast<float>(0x1.71547652b82fep+0 * Tail::half)};
        // From below too, so that no square underflows.
        const __m128 a = simd::greatest(K.least, simd::least(simd::magnitude(x), simd::splat(TailS<Tail>::last)));
        const __m128 w = a * a * log2_e;
        const __m128 shifted = w + K.shifter;
        const __m128 f = (shifted - K.shifter) - w;
        const float* c = K.exp2_cubic[0];
        const __m128 p = (simd::load_splat(c) + f * simd::load_splat(c + 1)) +
                         f * f * (simd::load_splat(c + 2) + f * simd::load_splat(c + 3));
        const __m128 e = simd::floats(_mm_sub_epi32(simd::bits_of(p), _mm_slli_epi32(simd::bits_of(shifted), 23)));

        const __m128 t = (normal ? a * K.root_half : a) + K.one;
        const __m128i bits = simd::bits_of(t);
        const __m128 d = t - simd::floats(_mm_or_si128(_mm_and_si128(bits, K.row), K.half_row));
        const __m128i offset = _mm_slli_epi32(_mm_srli_epi32(_mm_sub_epi32(bits, K.first), 20), 4);
        __m128 c0, c1, c2;
        simd::gather_triples(K.rows[0], simd::Indices<4>(offset), c0, c1, c2);
        __m128 y = (c0 + d * (c1 + d * c2)) * e;
        if constexpr (normal) y = y * K.half;

        const __m128 rising = simd::sign_of(TailS<Tail>::turned(x));
        const __m128 base =
            simd::select_by_sign(rising, simd::splat(static_cast<float>(Tail::whole)), _mm_setzero_ps());
        return base + simd::bit_or(y, rising);
    }
};

using Erfc = TailS<vecmath::ErfcTail>;
using ErfcEp = TailEp<vecmath::ErfcTail>;
using CdfNorm = TailS<vecmath::NormalTail>;
using CdfNormEp = TailEp<vecmath::NormalTail>;

}  // namespace

ORV_ONE_INPUT(sErfc, la, Erfc)
ORV_ONE_INPUT(sErfc, ha, Erfc)
ORV_ONE_INPUT(sErfc, ep, ErfcEp)
ORV_ONE_INPUT(sCdfNorm, la, CdfNorm)
ORV_ONE_INPUT(sCdfNorm, ha, CdfNorm)
ORV_ONE_INPUT(sCdfNorm, ep, CdfNormEp)
