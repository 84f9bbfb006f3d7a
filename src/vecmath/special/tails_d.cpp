// dErfc, dCdfNorm.
//
// dCdfNorm "EP" is a table at steps of 1/64: with c the step next to |x|, d = |x| - c, e the distribution at -c and g its
// derivative, both times 2^128, the distribution at -|x| is
//
//   e - g (d + d^2 P(d)),
//
// P being the polynomial in d and c of the density's Taylor series (d^n c^(n-1) and the second terms of the Hermite polynomials),
// fitted. With u = c d, d P(d) is a polynomial in u and d^2 times one in u.
#include "frame/kernel_loops.h"
#include "vecmath/special/tails.h"

namespace {

using namespace orv;
using simd::Splat, simd::SplatBits;

template <class Tail>
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
    static int32_t scalar(const double* x, double* y) { return vecmath::tail_scalar<Tail>(*x, y); }
};

template <class Tail>
struct InParts : TailD<Tail> {
    static __m128d lanes(__m128d x) { return vecmath::tail_lanes<Tail, vecmath::TailForm::in_parts>(x); }
};

struct CdfNormBlock {
    Splat<double> limit{38.5}, shifter{70368744177664.0};                      // 2^46
    Splat<double> half{1.7014118346046923e+38}, unit{2.9387358770557188e-39};  // 2^127, 2^-128
    Splat<double> c_d2{-0.49999999999533284}, cc_d3{0.166666668468198}, d3{-0.16665437033398192};
    Splat<double> c3_d4{-0.041666667310122252}, c_d4{0.12499139258046472};
    Splat<double> c4_d5{0.0083332538617517729}, cc_d5{-0.050541907071994921};
    Splat<double> c5_d6{-0.0013888741291414501}, c3_d6{0.014031116148495016};
    Splat<double> c6_d7{0.00019928882331276897}, c7_d8{-2.4914234950031343e-05};
    // 2^128 times the distribution and the density; 39488 bytes.
    alignas(16) double rows[2468][2] = {
#include "vecmath/tables/cdf_norm_2468.inc"
    };
};
constexpr CdfNormBlock cdf_norm_block;

struct CdfNormEp : TailD<vecmath::NormalTail> {
    static __m128d lanes(__m128d x) {
        constexpr const auto& K = cdf_norm_block;
        const __m128d magnitude = simd::least(K.limit, simd::magnitude(x));
        const __m128d shifted = magnitude + K.shifter;
        const __m128d c = shifted - K.shifter, d = magnitude - c;
        const simd::Indices<2> at(simd::bits_of(shifted));
        const __m128d row0 = _mm_load_pd(K.rows[at.lane[0]]), row1 = _mm_load_pd(K.rows[at.lane[1]]);
        const __m128d e = _mm_unpacklo_pd(row0, row1), g = _mm_unpackhi_pd(row0, row1);

        const __m128d u = c * d, dd = d * d, uu = u * u;
        const __m128d first =
            (K.c_d2 + u * K.cc_d3) + uu * ((K.c3_d4 + u * K.c4_d5) + uu * ((K.c5_d6 + u * K.c6_d7) + uu * K.c7_d8));
        const __m128d second = (K.d3 + u * K.c_d4) + uu * (K.cc_d5 + u * K.c3_d6);
        const __m128d y = e - g * (d + d * (u * first + dd * second));

        const __m128d turned = simd::sign_of(vecmath::rising_side<vecmath::NormalTail>(x));
        const __m128d base = simd::select_by_sign(turned, _mm_add_pd(K.half, K.half), _mm_setzero_pd());
        return (base + simd::bit_or(y, turned)) * K.unit;
    }
};

using Erfc = InParts<vecmath::ErfcTail>;
using CdfNorm = InParts<vecmath::NormalTail>;

}  // namespace

ORV_ONE_INPUT(dErfc, la, Erfc)
ORV_ONE_INPUT(dCdfNorm, la, CdfNorm)
ORV_ONE_INPUT(dCdfNorm, ha, CdfNorm)
ORV_ONE_INPUT(dCdfNorm, ep, CdfNormEp)
