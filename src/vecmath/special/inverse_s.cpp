// sErfInv, sErfcInv, sCdfNormInv: in double, rounded once, and with shorter expansions. "EP" in floats: v Q(q), a quadratic for
// each fourth of each power of two of q down to 2^-126.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/wide.h"
#include "vecmath/special/inverse.h"

namespace {

using namespace orv;
using simd::Splat, simd::SplatBits;
using vecmath::Inverse;

struct Ends {
    SplatBits<uint32_t> magnitude{0x7FFFFFFF};
    SplatBits<uint32_t> first, last;
};
constexpr uint32_t exponent(int e) { return uint32_t(127 + e) << 23; }

// The arguments that a kernel's vector path serves.
template <Inverse Which>
constexpr Ends accurate_ends = Which == Inverse::erf    ? Ends{.first = 0, .last = exponent(0) - 0x4001}
                               : Which == Inverse::erfc ? Ends{.first = exponent(-10), .last = exponent(1) - 0x2001}
                                                        : Ends{.first = exponent(-11), .last = exponent(0) - 0x2001};
template <Inverse Which>
constexpr Ends short_ends = Which == Inverse::erf    ? Ends{.first = 0, .last = exponent(0) - 1}
                            : Which == Inverse::erfc ? Ends{.first = exponent(-126), .last = exponent(1) - 1}
                                                     : Ends{.first = exponent(-126), .last = exponent(0) - 1};

template <Inverse Which, const Ends& K>
struct InverseS : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) {
        __m128i bits = simd::bits_of(x);
        if constexpr (Which == Inverse::erf) bits = _mm_and_si128(bits, K.magnitude);
        return simd::floats(_mm_or_si128(_mm_cmpgt_epi32(K.first, bits), _mm_cmpgt_epi32(bits, K.last)));
    }
    static int32_t scalar(const float* x, float* y) { return vecmath::inverse_scalar<Which>(*x, y); }
};

template <Inverse Which>
struct Accurate : InverseS<Which, accurate_ends<Which>> {
    static __m128 lanes(__m128 x) {
        return vecmath::in_double(x, [](__m128d d) { return vecmath::inverse_lanes<Which, 2, false>(d); });
    }
};

struct ShortBlock {
    Splat<float> one{1.0f}, two{2.0f}, below_one{0x1.fffffep-1f}, root_half{0x1.6a09e6p-1f}, middle{1.125f};
    SplatBits<uint32_t> within_row{0x001FFFFF}, top{exponent(0) >> 21};
    alignas(16) float rows[1 + 4 * 126][4] = {
        {},  // of 1, which does not come
#include "vecmath/tables/cdf_norm_inv_float.inc"
    };
};
constexpr ShortBlock short_block;

template <Inverse Which>
struct Short : InverseS<Which, short_ends<Which>> {
    static __m128 lanes(__m128 x) {
        constexpr const auto& K = short_block;
        __m128 v = x, q;
        if constexpr (Which == Inverse::erf) {
            q = K.one - simd::magnitude(x);
        } else {
            const __m128 p = Which == Inverse::normal ? x + x : x;
            v = Which == Inverse::normal ? p - K.one : K.one - p;
            q = simd::least(p, K.two - p);
        }
        const __m128i bits = simd::bits_of(simd::least(q, K.below_one));
        const __m128 d = simd::floats(_mm_or_si128(_mm_and_si128(bits, K.within_row), simd::bits_of(K.one))) - K.middle;
        const __m128i row = _mm_sub_epi32(K.top, _mm_srli_epi32(bits, 21));
        __m128 c0, c1, c2;
        simd::gather_triples(K.rows[0], simd::Indices<4>(_mm_slli_epi32(row, 4)), c0, c1, c2);
        __m128 ratio = c0 + d * (c1 + d * c2);
        if constexpr (Which != Inverse::normal) ratio = ratio * K.root_half;
        return v * ratio;
    }
};

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
