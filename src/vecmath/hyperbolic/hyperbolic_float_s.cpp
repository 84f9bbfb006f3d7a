// sSinh, sCosh, sTanh in float: "LA", and "EP" by polynomials of fewer terms. What is not on their vector paths is that of
// hyperbolic_s.h.
//
// With k the integer next to x / ln 2, r = x - k ln 2, and s and c half the sum and difference of 2^k and 2^-k,
//
//   sinh x = s cosh r + c sinh r,  cosh x = c cosh r + s sinh r,
//
// where s and cosh r - 1, c and cosh r - 1 join last. k = 0 leaves sinh r, so that small arguments need no path of their own.
// tanh x is an odd polynomial up to 5/8, and 1 - 2 / (e^(2x) + 1) from there on.
//
// The roundings of the products and sums make up to 1.9 ulp next to k = 1, where s cosh r and c sinh r cancel. By way of double,
// within 0.51, "LA" takes two to four times as long.
//
// Adding 1.5 * 2^23 rounds to the nearest integer and leaves that integer in the low bits.
#include "vecmath/hyperbolic/hyperbolic_s.h"

#include "simd/constants.h"

namespace {

using namespace orv;
using simd::bits_of;
using simd::floats;
using simd::Splat;
using simd::SplatBits;

struct Block {
    bool few_terms;
    Splat<float> shifter{0x1.8p+23f};
    Splat<float> scale{0x1.715476p+0f};                             // 1 / ln 2
    Splat<float> ln2_high{0x1.62e4p-1f}, ln2_low{0x1.7f7d1cp-20f};  // products with k up to 2^9 are exact
    // fpminimax((sinh(sqrt(x))/sqrt(x)-1)/x, 2, [|SG...|], [2^-30;0.1206], absolute): 2^-33; degree 0: 2^-14
    Splat<float> s0{few_terms ? 0x1.565d8cp-3f : 0x1.555556p-3f}, s1{0x1.110f8ap-7f}, s2{0x1.a35dc8p-13f};
    // fpminimax((cosh(sqrt(x))-1)/x, 2, ...): 2^-32; degree 1: 2^-21.6
    Splat<float> c0{few_terms ? 0x1.ffff56p-2f : 0x1p-1f}, c1{few_terms ? 0x1.56b55cp-5f : 0x1.5555p-5f},
        c2{0x1.6d30b6p-10f};
    // fpminimax((expm1(x)/x-1)/x, 4, [|SG...|], [-0.3475;0.3475], absolute): 2^-25.2; degree 2: 2^-14.8
    Splat<float> e0{few_terms ? 0x1.fffeacp-2f : 0x1p-1f}, e1{few_terms ? 0x1.56e1f6p-3f : 0x1.5554dcp-3f},
        e2{few_terms ? 0x1.570dbap-5f : 0x1.5554e8p-5f}, e3{0x1.120c8ep-7f}, e4{0x1.6d4ea6p-10f};
    // fpminimax((tanh(sqrt(x))/sqrt(x)-1)/x, 4, [|SG...|], [2^-30;0.390625], absolute): 2^-25.8; degree 2: 2^-16.2
    Splat<float> t0{few_terms ? -0x1.554d66p-2f : -0x1.555552p-2f}, t1{few_terms ? 0x1.0e0ffp-3f : 0x1.110e16p-3f},
        t2{few_terms ? -0x1.622d0cp-5f : -0x1.b92674p-5f}, t3{0x1.5813cp-6f}, t4{-0x1.8ff18p-8f};
    Splat<float> one{1.0f}, two{2.0f}, near_zero{0.625f}, one_from{10.0f};  // tanh 9.02 rounds to 1
    SplatBits<uint32_t> half{0x3F000000};
};
constexpr Block la{false}, ep{true};

template <const Block& K>
struct Growth {
    __m128 s, c, sinh_r, cosh_r_less_1;

    explicit Growth(__m128 x) {
        const __m128 shifted = x * K.scale + K.shifter, k = shifted - K.shifter;
        const __m128 r = (x - k * K.ln2_high) - k * K.ln2_low, z = r * r;
        if constexpr (K.few_terms) {
            sinh_r = r + (r * z) * K.s0;
            cosh_r_less_1 = z * (K.c0 + z * K.c1);
        } else {
            sinh_r = r + (r * z) * (K.s0 + z * (K.s1 + z * K.s2));
            cosh_r_less_1 = z * (K.c0 + z * (K.c1 + z * K.c2));
        }
        const __m128i exponent = simd::shift_left_32<23>(bits_of(shifted));
        const __m128 up = floats(simd::add_32(K.half, exponent)), down = floats(simd::subtract_32(K.half, exponent));
        s = up - down;
        c = up + down;
    }
};

// Up to 86, where 2^-k / 2 is a normal number.
constexpr uint32_t last_bits = 0x42AC0000;

// Beyond by the double lanes as far as these serve.
template <class Double>
struct Growing : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return vecmath::magnitude_beyond(x, last_bits); }
    static int32_t scalar(const float* at, float* y) {
        if (simd::lane_bits(Double::doubt(simd::splat(*at))) != 0) return Double::scalar(at, y);
        simd::store_one(y, Double::lanes(simd::splat(*at)));
        return frame::status_ok;
    }
};

template <const Block& K>
struct Sinh : Growing<vecmath::float_by_double::Sinh> {
    static __m128 lanes(__m128 x) {
        const Growth<K> g(x);
        // The sign is that of -0 as well.
        return simd::bit_or(g.s + (g.s * g.cosh_r_less_1 + g.c * g.sinh_r), simd::sign_of(x));
    }
};

template <const Block& K>
struct Cosh : Growing<vecmath::float_by_double::Cosh> {
    static __m128 lanes(__m128 x) {
        const Growth<K> g(x);
        return g.c + (g.c * g.cosh_r_less_1 + g.s * g.sinh_r);
    }
};

template <const Block& K>
struct Tanh : vecmath::float_by_double::Tanh {
    static constexpr int block = 8;
    static __m128 lanes(__m128 x) {
        const __m128 size = simd::magnitude(x), small = simd::least(size, K.near_zero), z = small * small;
        const __m128 half_way = simd::least(size, K.one_from), v = half_way + half_way;
        const __m128 shifted = v * K.scale + K.shifter, k = shifted - K.shifter;
        const __m128 r = (v - k * K.ln2_high) - k * K.ln2_low, r2 = r * r;
        __m128 p, t;
        if constexpr (K.few_terms) {
            p = (K.e0 + r * K.e1) + r2 * K.e2;
            t = K.t0 + z * (K.t1 + z * K.t2);
        } else {
            p = (K.e0 + r * K.e1) + r2 * ((K.e2 + r * K.e3) + r2 * K.e4);
            t = (K.t0 + z * K.t1) + (z * z) * ((K.t2 + z * K.t3) + z * z * K.t4);
        }
        const __m128 of_2x = K.one + (r + r2 * p);
        const __m128 power = floats(simd::add_32(bits_of(of_2x), simd::shift_left_32<23>(bits_of(shifted))));
        const __m128 y = K.one - _mm_div_ps(K.two, power + K.one);
        return simd::bit_or(simd::select(simd::less(size, K.near_zero), small + (small * z) * t, y), simd::sign_of(x));
    }
};

}  // namespace

ORV_ONE_INPUT(sSinh, la, Sinh<la>)
ORV_ONE_INPUT(sSinh, ep, Sinh<ep>)
ORV_ONE_INPUT(sCosh, la, Cosh<la>)
ORV_ONE_INPUT(sCosh, ep, Cosh<ep>)
ORV_ONE_INPUT(sTanh, la, Tanh<la>)
ORV_ONE_INPUT(sTanh, ep, Tanh<ep>)
