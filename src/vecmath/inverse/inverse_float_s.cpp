// sAsin, sAcos, sAtan, their forms in multiples of pi, sAtan2 and sAtan2pi in float: "LA", and "EP" by polynomials of fewer
// terms. What is not on their vector paths is that of inverse_s.h.
//
//   asin w = w + w z P(z), z = w^2, up to 1/2; above, by the root w of z = (1 - |x|) / 2, asin |x| = -2 (asin w - pi/4),
// acos |x| = 2 asin w and acos -|x| = -2 (asin w - pi/2). atan t = t + t z P(z), z = t^2, for t = |x| or 1 / |x|, whichever is below 1.
//
// Next to where a quarter or half of a turn comes in, three roundings count: up to 1.8 ulp, in units of pi 2. By way of double,
// within 0.51, "LA" takes two to three times as long.
#include "vecmath/inverse/inverse_s.h"

namespace {

using namespace orv;
using simd::bit_and;
using simd::bit_or;
using simd::bit_xor;
using simd::Splat;
using vecmath::float_by_double::ArcBlock;

// A polynomial by ascending powers.
template <int Terms>
struct Series {
    Splat<float> c[Terms];
};

template <int Terms>
inline __m128 value(const Series<Terms>& s, __m128 z) {
    if constexpr (Terms == 2) return s.c[0] + z * s.c[1];
    const __m128 z2 = z * z;
    if constexpr (Terms == 4) return (s.c[0] + z * s.c[1]) + z2 * (s.c[2] + z * s.c[3]);
    if constexpr (Terms == 5) return (s.c[0] + z * s.c[1]) + z2 * ((s.c[2] + z * s.c[3]) + z2 * s.c[4]);
    if constexpr (Terms == 9 || Terms == 10) {
        const __m128 low = (s.c[0] + z * s.c[1]) + z2 * (s.c[2] + z * s.c[3]);
        __m128 top = s.c[8];
        if constexpr (Terms == 10) top = top + z * s.c[9];
        const __m128 high = (s.c[4] + z * s.c[5]) + z2 * ((s.c[6] + z * s.c[7]) + z2 * top);
        return low + (z2 * z2) * high;
    }
}

// fpminimax((asin(sqrt(x))/sqrt(x)-1)/x, N, [|SG...|], [2^-30;1/4], absolute), N = 4: 2^-25.9 of the arc sine; N = 1: 2^-13.1;
// and over pi
constexpr Series<5> asin_la{{0x1.55555ep-3, 0x1.332638p-4, 0x1.70ce26p-5, 0x1.b1164ap-6, 0x1.39fbbcp-5}};
constexpr Series<5> asinpi_la{{0x1.b2996ap-5, 0x1.8712e8p-6, 0x1.d5997ap-7, 0x1.139838p-7, 0x1.8ffbd8p-7}};
constexpr Series<2> asin_ep{{0x1.546298p-3, 0x1.6a78d8p-4}}, asinpi_ep{{0x1.b16494p-5, 0x1.cd7e5ap-6}};
// The same of atan up to 1, N = 8: 2^-26.0, over pi N = 9: 2^-28.8; N = 3: 2^-12.4
constexpr Series<9> atan_la{{-0x1.555554p-2, 0x1.99984cp-3, -0x1.246f74p-3, 0x1.c423eep-4, -0x1.636df2p-4,
                             0x1.01e514p-4, -0x1.2a759ap-5, 0x1.c62ea6p-7, -0x1.449a16p-9}};
constexpr Series<10> atanpi_la{{-0x1.b2995ep-4, 0x1.04c236p-4, -0x1.74772ap-5, 0x1.211fc6p-5, -0x1.d1ce32p-6,
                                0x1.6eefa6p-6, -0x1.ffe85ep-7, 0x1.13f664p-7, -0x1.81862ep-9, 0x1.f8d262p-12}};
constexpr Series<4> atan_ep{{-0x1.552ec2p-2, 0x1.8e355ap-3, -0x1.bd4852p-4, 0x1.0e613cp-5}};
constexpr Series<4> atanpi_ep{{-0x1.b268aep-4, 0x1.fb0ffep-5, -0x1.1b8126p-5, 0x1.582c68p-7}};

template <int AsinTerms, int AtanTerms>
struct Block {
    bool in_pi;
    bool in_parts = AsinTerms > 2;  // what "EP" has as one number
    Series<AsinTerms> asin;
    Series<AtanTerms> atan;
    Splat<float> half_turn{in_pi ? 1.0f : in_parts ? 2.0f : 0x1.921fb6p+1f}, half_turn_rest{0x1.243f6ap+0f};
    Splat<float> quarter_turn{in_pi ? 0.5f : in_parts ? 1.0f : 0x1.921fb6p+0f}, quarter_turn_rest{0x1.243f6ap-1f};
    Splat<float> eighth_turn{in_pi      ? 0.25f
                             : in_parts ? 0.5f
                                        : 0x1.921fb6p-1f},
        eighth_turn_rest{0x1.243f6ap-2f}, quarter_turn_of_acos{in_pi ? 0.5f : 0x1.921fb6p+0f};
    Splat<float> half{0.5f}, one{1.0f}, minus{-0.0f};
    Splat<float> over_pi{0x1.45f306p-2f}, over_pi_high{0x1.45ep-2f}, over_pi_low{0x1.306dcap-14f};
    simd::SplatBits<uint32_t> leading{0xFFFFF000}, twice{0x00800000}, twice_and_minus{0x80800000},
        less_one_and_turned{0x7FFFFFFF}, least{((127 - 100) << 23) + 0x7FFFFFFFu};
};
constexpr Block<5, 9> la{.in_pi = false, .asin = asin_la, .atan = atan_la};
constexpr Block<5, 10> la_in_pi{.in_pi = true, .asin = asinpi_la, .atan = atanpi_la};
constexpr Block<2, 4> ep{.in_pi = false, .asin = asin_ep, .atan = atan_ep},
    ep_in_pi{.in_pi = true, .asin = asinpi_ep, .atan = atanpi_ep};

// The angle of a sine or tangent w of either sign, w + w z P(z), joined to a turn. The turn has two parts: the second is so near
// the middle of all w that their difference loses nothing above 1/14, and the first is 1 or 2. Times 1/pi by leading parts so
// short that their product is exact.
template <const auto& K>
inline __m128 joined(__m128 turn, __m128 turn_rest, __m128 w, __m128 z, __m128 p) {
    if constexpr (!K.in_pi && K.in_parts) return turn + ((turn_rest + w) + (w * z) * p);
    if constexpr (!K.in_pi) return (turn + w) + (w * z) * p;
    if constexpr (!K.in_parts) return (turn + w * K.over_pi) + (w * z) * p;
    const __m128 leading = bit_and(w, simd::floats(K.leading));
    const __m128 low = ((w - leading) * K.over_pi_high + w * K.over_pi_low) + w * (z * p);
    return (turn + leading * K.over_pi_high) + low;
}

// Numbers of which 1/pi is subnormal, or nearly, are in doubt in units of pi, but for 0: the double lanes round them once.
template <const auto& K>
inline __m128 tiny(__m128 x) {
    if constexpr (!K.in_pi) return _mm_setzero_ps();
    // What is one less than 0 is above all.
    const __m128i size = simd::add_32(simd::bits_of(simd::magnitude(x)), K.less_one_and_turned);
    return simd::floats(_mm_cmpgt_epi32(K.least, size));
}
template <const auto& K, class Double>
inline int32_t beyond_lanes(const float* at, float* y) {
    if (simd::lane_bits(tiny<K>(simd::splat(*at))) != 0)
        simd::store_one(y, Double::lanes(simd::splat(*at)));
    else
        return Double::scalar(at, y);
    return frame::status_ok;
}

// The sine w of the arc of |x|, folded about 1/2, and the terms of the arc behind w, over w.
struct Sine {
    __m128 folded, w, terms;
};
template <const auto& K>
inline Sine sine_of(__m128 size) {
    const __m128 left = K.one - size, half_left = left * K.half;
    const __m128 z = simd::least(size * size, half_left);
    return {simd::less(K.half, size), simd::least(size, _mm_sqrt_ps(half_left)), z * value(K.asin, z)};
}

// The arc less a turn. Times 1/pi by leading parts so short that their product is exact.
template <const auto& K>
inline __m128 arc_less_turn(__m128 w, __m128 terms, __m128 turn, __m128 turn_rest = _mm_setzero_ps()) {
    if constexpr (K.in_parts && !K.in_pi) return ((w - turn_rest) + w * terms) - turn;
    if constexpr (!K.in_pi) return (w - turn) + w * terms;
    if constexpr (!K.in_parts) return (w * K.over_pi - turn) + w * terms;
    const __m128 leading = bit_and(w, simd::floats(K.leading));
    return (leading * K.over_pi_high - turn) + ((w - leading) * K.over_pi_high + w * (terms + K.over_pi_low));
}

template <const auto& K, const ArcBlock& U>
struct Asin : vecmath::float_by_double::Asin<U> {
    using Double = vecmath::float_by_double::Asin<U>;
    static __m128 doubt(__m128 x) { return bit_or(Double::doubt(x), tiny<K>(x)); }
    static __m128 lanes(__m128 x) {
        const Sine s = sine_of<K>(simd::magnitude(x));
        __m128 turn_rest = _mm_setzero_ps();
        if constexpr (K.in_parts && !K.in_pi) turn_rest = bit_and(s.folded, K.eighth_turn_rest);
        const __m128 y = arc_less_turn<K>(s.w, s.terms, bit_and(s.folded, K.eighth_turn), turn_rest);
        const __m128 bits = bit_and(s.folded, simd::floats(K.twice_and_minus));
        return vecmath::float_by_double::with_bits(y, bit_xor(bits, simd::sign_of(x)));
    }
    static int32_t scalar(const float* at, float* y) { return beyond_lanes<K, Double>(at, y); }
};

template <const auto& K, const ArcBlock& U>
struct Acos : vecmath::float_by_double::Acos<U> {
    static __m128 lanes(__m128 x) {
        const __m128 sign = simd::sign_of(x);
        const Sine s = sine_of<K>(simd::magnitude(x));
        const __m128 w = bit_xor(s.w, simd::bit_and_not(s.folded, sign));
        // All but those next to 1.
        const __m128 turned = bit_or(sign, simd::bit_and_not(s.folded, K.minus));
        const __m128 mask = simd::floats(_mm_srai_epi32(simd::bits_of(turned), 31));
        const __m128 y = arc_less_turn<K>(w, s.terms, bit_and(mask, K.quarter_turn_of_acos));
        return vecmath::float_by_double::with_bits(y, bit_or(bit_and(s.folded, simd::floats(K.twice)), turned));
    }
};

template <const auto& K, const vecmath::AtanBlock& D>
struct Atan : vecmath::float_by_double::Atan<D> {
    using Double = vecmath::float_by_double::Atan<D>;
    static constexpr int block = 8;
    static __m128 doubt(__m128 x) { return bit_or(Double::doubt(x), tiny<K>(x)); }
    static int32_t scalar(const float* at, float* y) { return beyond_lanes<K, Double>(at, y); }
    static __m128 lanes(__m128 x) {
        const __m128 size = simd::magnitude(x), folded = simd::less(K.one, size);
        const __m128 q = simd::least(size, K.one) / simd::greatest(size, K.one), z = q * q;
        const __m128 t = bit_or(q, bit_and(folded, K.minus));
        const __m128 y =
            joined<K>(bit_and(folded, K.quarter_turn), bit_and(folded, K.quarter_turn_rest), t, z, value(K.atan, z));
        return bit_xor(y, simd::sign_of(x));
    }
};

template <const auto& K, const vecmath::AtanBlock& D, const vecmath::TurnBlock& Turn>
struct Atan2 : vecmath::float_by_double::Atan2<D, Turn> {
    using Double = vecmath::float_by_double::Atan2<D, Turn>;
    static constexpr int block = 8;
    // In doubt is also a quotient far below 1, which could be subnormal before 1/pi comes to it.
    static __m128 doubt(__m128 a, __m128 b) {
        constexpr int far = 100 << 23;
        const __m128i apart = simd::subtract_32(simd::bits_of(simd::magnitude(b)), simd::bits_of(simd::magnitude(a)));
        return bit_or(Double::doubt(a, b), simd::floats(_mm_cmpgt_epi32(apart, _mm_set1_epi32(far))));
    }
    static __m128 lanes(__m128 a, __m128 b) {
        const __m128 y = simd::magnitude(a), x = simd::magnitude(b), steep = simd::less(x, y);
        const __m128 q = simd::least(y, x) / simd::greatest(y, x), z = q * q;
        const __m128 t = bit_xor(q, bit_xor(bit_and(steep, K.minus), simd::sign_of(b)));
        const __m128 behind = simd::floats(_mm_srai_epi32(simd::bits_of(b), 31));
        const __m128 turn = simd::select(steep, K.quarter_turn, bit_and(behind, K.half_turn));
        __m128 rest = turn;
        if constexpr (K.in_parts && !K.in_pi)
            rest = simd::select(steep, K.quarter_turn_rest, bit_and(behind, K.half_turn_rest));
        return bit_xor(joined<K>(turn, rest, t, z, value(K.atan, z)), simd::sign_of(a));
    }
    static int32_t scalar(const float* a, const float* b, float* y) {
        const __m128 one_a = simd::splat(*a), one_b = simd::splat(*b);
        if (simd::lane_bits(Double::doubt(one_a, one_b)) != 0) return Double::scalar(a, b, y);
        simd::store_one(y, Double::lanes(one_a, one_b));
        return frame::status_ok;
    }
};

using SAsinLa = Asin<la, vecmath::float_by_double::arc_radians>;
using SAcosLa = Acos<la, vecmath::float_by_double::arc_radians>;
using SAtanLa = Atan<la, vecmath::atan_radians>;
using SAtan2La = Atan2<la, vecmath::atan_radians, vecmath::turn_radians>;
using SAsinEp = Asin<ep, vecmath::float_by_double::arc_radians>;
using SAcosEp = Acos<ep, vecmath::float_by_double::arc_radians>;
using SAtanEp = Atan<ep, vecmath::atan_radians>;
using SAtan2Ep = Atan2<ep, vecmath::atan_radians, vecmath::turn_radians>;
using SAsinpiLa = Asin<la_in_pi, vecmath::float_by_double::arc_half_turns>;
using SAcospiLa = Acos<la_in_pi, vecmath::float_by_double::arc_half_turns>;
using SAtanpiLa = Atan<la_in_pi, vecmath::atan_half_turns>;
using SAtan2piLa = Atan2<la_in_pi, vecmath::atan_half_turns, vecmath::turn_half_turns>;
using SAsinpiEp = Asin<ep_in_pi, vecmath::float_by_double::arc_half_turns>;
using SAcospiEp = Acos<ep_in_pi, vecmath::float_by_double::arc_half_turns>;
using SAtanpiEp = Atan<ep_in_pi, vecmath::atan_half_turns>;
using SAtan2piEp = Atan2<ep_in_pi, vecmath::atan_half_turns, vecmath::turn_half_turns>;

}  // namespace

ORV_ONE_INPUT(sAsin, la, SAsinLa)
ORV_ONE_INPUT(sAcos, la, SAcosLa)
ORV_ONE_INPUT(sAtan, la, SAtanLa)
ORV_TWO_INPUTS(sAtan2, la, SAtan2La)
ORV_ONE_INPUT(sAsin, ep, SAsinEp)
ORV_ONE_INPUT(sAcos, ep, SAcosEp)
ORV_ONE_INPUT(sAtan, ep, SAtanEp)
ORV_TWO_INPUTS(sAtan2, ep, SAtan2Ep)
ORV_ONE_INPUT(sAsinpi, la, SAsinpiLa)
ORV_ONE_INPUT(sAcospi, la, SAcospiLa)
ORV_ONE_INPUT(sAtanpi, la, SAtanpiLa)
ORV_TWO_INPUTS(sAtan2pi, la, SAtan2piLa)
ORV_ONE_INPUT(sAsinpi, ep, SAsinpiEp)
ORV_ONE_INPUT(sAcospi, ep, SAcospiEp)
ORV_ONE_INPUT(sAtanpi, ep, SAtanpiEp)
ORV_TWO_INPUTS(sAtan2pi, ep, SAtan2piEp)
