// sErf: in double, with the terms that a float needs, rounded once; "EP" in floats, by quadratics about the multiples of 1/32.
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

struct ErfEpBlock {
    simd::Splat<float> limit{4.0f}, shifter{0x1.8p+18};
    alignas(16) float rows[129][4] = {
#include "vecmath/tables/erf_float.inc"
    };
};
constexpr ErfEpBlock K;

struct ErfEp : Erf<ErfTerms::float_full> {
    static __m128 lanes(__m128 x) {
        const __m128 a = simd::least(K.limit, simd::magnitude(x));
        const __m128 shifted = a + K.shifter;
        const __m128 d = a - (shifted - K.shifter);
        __m128 c0, c1, c2;
        const __m128i offset = _mm_srli_epi32(_mm_slli_epi32(simd::bits_of(shifted), 24), 20);
        simd::gather_triples(K.rows[0], simd::Indices<4>(offset), c0, c1, c2);
        return simd::bit_or(c0 + d * (c1 + d * c2), simd::sign_of(x));
    }
};

}  // namespace

ORV_ONE_INPUT(sErf, la, Erf<ErfTerms::float_full>)
ORV_ONE_INPUT(sErf, ha, Erf<ErfTerms::float_full>)
ORV_ONE_INPUT(sErf, ep, ErfEp)
