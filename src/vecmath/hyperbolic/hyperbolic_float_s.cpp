// sSinh, sCosh, sTanh in float: "LA", and "EP" by polynomials of fewer terms. What is not on their vector paths is that of
// hyperbolic_s.h.
//
// With k the integer next to x / ln 2, r = x - k ln 2, and s and c half the sum and difference of 2^k and 2^-k,
//
//   sinh x = s cosh r + c sinh r,  cosh x = c cosh r + s sinh r,
//
// where s and cosh r - 1, c and cosh r - 1 join last. k = 0 leaves sinh r, so that small arguments need no path of their own.
//
// With T the tangent of the eighth c below |x|, from a table with 1 - T^2, r = |x| - c, which is exact, and t = tanh r,
//
//   tanh |x| = T + (1 - T^2) t / (1 + T t).
//
// "EP" takes the nearest eighth, which makes the second term negative, but so small that 1 - T t serves for the quotient.
//
// The roundings of the products and sums make up to 1.9 ulp next to k = 1, where s cosh r and c sinh r cancel, and 1.7 in the
// tangent. By way of double, within 0.51, "LA" takes half as long again, the tangent two and a half times.
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
    Splat<float> ln2{0x1.62e43p-1f};
    // fpminimax((sinh(sqrt(x))/sqrt(x)-1)/x, 2, [|SG...|], [2^-30;0.1206], absolute): 2^-33; degree 0: 2^-14
    Splat<float> s0{few_terms ? 0x1.565d8cp-3f : 0x1.555556p-3f}, s1{0x1.110f8ap-7f}, s2{0x1.a35dc8p-13f};
    // fpminimax((cosh(sqrt(x))-1)/x, 2, ...): 2^-32; degree 1: 2^-21.6
    Splat<float> c0{few_terms ? 0x1.ffff56p-2f : 0x1p-1f}, c1{few_terms ? 0x1.56b55cp-5f : 0x1.5555p-5f},
        c2{0x1.6d30b6p-10f};
    SplatBits<uint32_t> half{0x3F000000};
};
constexpr Block la{false}, ep{true};

struct TanhBlock {
    bool few_terms;
    Splat<float> shifter{0x1.8p+20f}, half_step{0x1p-4f}, one_from{few_terms ? 9.125f : 9.1875f}, one{1.0f};
    // fpminimax((tanh(sqrt(x))/sqrt(x)-1)/x, 2, [|SG...|], [2^-30;2^-6], absolute): 2^-33.6; degree 0 to 2^-8: 2^-19.9
    Splat<float> c0{few_terms ? -0x1.55112cp-2f : -0x1.555556p-2f}, c1{0x1.11113p-3f}, c2{-0x1.b748bcp-5f};
    SplatBits<uint32_t> index_mask{0x7F};
    alignas(16) float rows[74][2] = {
    // tanh k/8, 1 - tanh^2 k/8
#include "vecmath/tables/tanh_eighths.inc"
    };
};
constexpr TanhBlock tanh_la{false}, tanh_ep{true};

template <const Block& K>
struct Growth {
    __m128 s, c, sinh_r, cosh_r_less_1;

    explicit Growth(__m128 x) {
        const __m128 shifted = x * K.scale + K.shifter, k = shifted - K.shifter;
        __m128 r;
        if constexpr (K.few_terms)
            r = x - k * K.ln2;
        else
            r = (x - k * K.ln2_high) - k * K.ln2_low;
        const __m128 z = r * r;
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

template <const TanhBlock& K>
struct Tanh : vecmath::float_by_double::Tanh {
    static constexpr int block = 8;
    static __m128 lanes(__m128 x) {
        const __m128 size = simd::least(simd::magnitude(x), K.one_from);
        const __m128 shifted = (K.few_terms ? size : size - K.half_step) + K.shifter;
        const __m128 r = size - (shifted - K.shifter), z = r * r;
        __m128 tangent, slope;
        simd::gather_pairs(K.rows, simd::Indices<4>(_mm_and_si128(bits_of(shifted), K.index_mask)), tangent, slope);
        __m128 rest;
        if constexpr (K.few_terms) {
            const __m128 t = r + (r * z) * K.c0;
            rest = (slope * t) * (K.one - tangent * t);
        } else {
            const __m128 t = r + (r * z) * (K.c0 + z * (K.c1 + z * K.c2));
            rest = (slope * t) / (K.one + tangent * t);
        }
        return simd::bit_or(tangent + rest, simd::sign_of(x));
    }
};

}  // namespace

ORV_ONE_INPUT(sSinh, la, Sinh<la>)
ORV_ONE_INPUT(sSinh, ep, Sinh<ep>)
ORV_ONE_INPUT(sCosh, la, Cosh<la>)
ORV_ONE_INPUT(sCosh, ep, Cosh<ep>)
ORV_ONE_INPUT(sTanh, la, Tanh<tanh_la>)
ORV_ONE_INPUT(sTanh, ep, Tanh<tanh_ep>)
