// sLog1p: the natural logarithm of 1 + x.
//
// "HA": dLog1p's "EP" method, right to 2^-32, rounded to single.
//
// "LA", "EP": s = 1 + x rounded, and t = 1 + x - s exactly; s = 2^k m as in log_s.h, but with m in [11/16, 11/8), which
// keeps r^2 small against the result on both sides; r = (m - 1) + t 2^-k. Then as sLn: "LA" as "HA" of it, without the
// split of r^2 and with the rounding error of r, by 1 - r for 1/(1 + r), among the small terms; "EP" as its "EP". The
// polynomials are minimax in the relative error of the logarithm.
// These two serve -1 < x < 2^64 on the vector path, where 2^-k is a normal number; above, "HA" does.
#include "vecmath/exp_log/log1p.h"
#include "vecmath/exp_log/log_s.h"
#include "vecmath/exp_log/wide.h"

namespace {

using namespace orv;
using simd::bits_of;
using simd::floats;
using simd::Splat;
using simd::SplatBits;

inline __m128 log1p_ha_lanes(__m128 x) {
    return vecmath::in_double(x, [](__m128d d) { return vecmath::log1p_lanes<vecmath::log1p_ep>(d); });
}

int32_t scalar_log1p(const float* at, float* y) {
    const float x = *at;
    int32_t status;
    if (!vecmath::settled_log(x, -1.0f, y, status)) simd::store_one(y, log1p_ha_lanes(simd::splat(x)));
    return status;
}

// The sum 1 + x is normal and positive above -1, and not finite where x is not. In doubt is what lies outside [2^-126,
// limit), by bits moved to the bottom of the signed range.
struct SumTest {
    SplatBits<uint32_t> bottom{0x80800000}, last;
    Splat<float> one{1.0f};

    constexpr SumTest(float limit) : last(std::bit_cast<uint32_t>(limit) - 1 - 0x80800000) {}
    __m128 doubt(__m128 x) const { return floats(_mm_cmpgt_epi32(_mm_sub_epi32(bits_of(x + one), bottom), last)); }
};
constexpr SumTest below_2_64{0x1p+64f}, finite{std::numeric_limits<float>::infinity()};

struct Log1pBlock {
    SplatBits<uint32_t> exponent_0{0x3F800000};
    Splat<float> ln2{0x1.62e43p-24f}, ln2_high{0x1.62e4p-24f}, ln2_low{0x1.7f7d1cp-43f};
    Splat<float> la2{-0.5f}, la3{0x1.555526p-2f}, la4{-0x1.00016cp-2f}, la5{0x1.99bef2p-3f}, la6{-0x1.54d04ap-3f},
        la7{0x1.202d22p-3f}, la8{-0x1.06395p-3f}, la9{0x1.1684a4p-3f}, la10{-0x1.938064p-4f};
    Splat<float> ep2{-0x1.ff5b14p-2f}, ep3{0x1.564b1cp-2f}, ep4{-0x1.1845aep-2f}, ep5{0x1.98ca4cp-3f};
    vecmath::LogReduction reduction{.least_m = 0x3F300000};
};
constexpr Log1pBlock K;

struct Reduced {
    __m128 k, r, r_low;
};
inline Reduced reduce(__m128 x) {
    const __m128 greater = _mm_max_ps(x, K.reduction.one), smaller = _mm_min_ps(x, K.reduction.one);
    const __m128 s = greater + smaller;
    const __m128 t = (greater - s) + smaller;
    Reduced result;
    __m128 leading;
    const __m128i m = K.reduction.reduce(s, _mm_setzero_si128(), result.k, leading);
    const __m128 scale = floats(_mm_add_epi32(_mm_sub_epi32(m, bits_of(s)), K.exponent_0));
    result.r = leading + t * scale;
    result.r_low = (leading - result.r) + t * scale;
    return result;
}

struct Log1pSingle : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return below_2_64.doubt(x); }
    static int32_t scalar(const float* x, float* y) { return scalar_log1p(x, y); }
};

struct Log1pLa : Log1pSingle {
    static __m128 lanes(__m128 x) {
        const Reduced reduced = reduce(x);
        const __m128 r = reduced.r;
        const __m128 p =
            K.la2 +
            r * (K.la3 +
                 r * (K.la4 + r * (K.la5 + r * (K.la6 + r * (K.la7 + r * (K.la8 + r * (K.la9 + r * K.la10)))))));
        const __m128 k_high = reduced.k * K.ln2_high;
        const __m128 sum = k_high + r;
        const __m128 lost = (k_high - sum) + r;
        const __m128 y = sum + (r * r * p + ((reduced.k * K.ln2_low + reduced.r_low * (K.reduction.one - r)) + lost));
        return simd::bit_or(y, simd::sign_of(x));  // which is that of the result, zero included
    }
};

struct Log1pHa : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return finite.doubt(x); }
    static __m128 lanes(__m128 x) { return log1p_ha_lanes(x); }
    static int32_t scalar(const float* x, float* y) { return scalar_log1p(x, y); }
};

struct Log1pEp : Log1pSingle {
    static __m128 lanes(__m128 x) {
        const Reduced reduced = reduce(x);
        const __m128 r = reduced.r;
        const __m128 y = (r + r * r * (K.ep2 + r * (K.ep3 + r * (K.ep4 + r * K.ep5)))) + reduced.k * K.ln2;
        return simd::bit_or(y, simd::sign_of(x));
    }
};

}  // namespace

ORV_ONE_INPUT(sLog1p, la, Log1pLa)
ORV_ONE_INPUT(sLog1p, ha, Log1pHa)
ORV_ONE_INPUT(sLog1p, ep, Log1pEp)
