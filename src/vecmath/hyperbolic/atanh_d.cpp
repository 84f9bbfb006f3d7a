// dAtanh, by rows.
//
// The exponent and the five leading fraction bits of w, which is x > 0 up to 1/2 and 1 - x above, select a row, with c or 1 - c in
// the middle of what it serves:
//
//   atanh x = atanh c + atanh t,  t = (x - c) / (1 - c x);
//
// above 1/2, with d = 1 - c and w, which are exact, t = (d - w) / (d + w - d w). The difference is exact. t is 1/48 of the result at the
// most, so that its roundings are a twentieth of an ulp of the sum; below 2^-5 c is 0 and t is x.
// atanh t = t + t^3 P(t^2) with |t| < 2^-5.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/hyperbolic/atanh_ends.h"

namespace {

using namespace orv;

constexpr uint32_t small_rows = 130, least_place = 1535;  // of x; what the place of 2^-53 lacks to 0
constexpr uint32_t atanh_rows = small_rows + least_place + 129;

struct AtanhBlock {
    // fpminimax((atanh(sqrt(x))/sqrt(x)-1)/x, 3, [|D...|], [2^-40;2^-10], absolute): 2^-60 of atanh t
    simd::Splat<double> c0{0x1.555555555554ap-2}, c1{0x1.9999999a52d1fp-3}, c2{0x1.24923a9d64faap-3},
        c3{0x1.c7d6a926e55p-4};
    simd::Splat<double> one{1.0}, half{0.5}, minus{-0.0};
    simd::Splat<double> least_square{0x1p-200};  // what is below has no part in P: its square would underflow
    simd::Splat<double> least_row{0x1p-5};
    simd::SplatBits<uint64_t> magnitude{0x7FFFFFFFFFFFFFFF};
    simd::SplatBits<uint64_t> row_bits{0xFFFF800000000000}, half_row{0x0000400000000000};
    // Of high words: the place before 1 and the offset of the rows of 1 - x.
    simd::SplatBits<uint32_t> before_first{((1023 - 5) << 5) - 1}, no_row{0};
    simd::SplatBits<uint32_t> behind{small_rows + least_place}, below_one{0x3FEFFFFF};
    alignas(16) double rows[atanh_rows][2] = {
    // atanh c high and low
#include "vecmath/tables/atanh_pair_rows.inc"
    };
};
constexpr AtanhBlock K;

struct Atanh : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        return simd::doubles(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.below_one));
    }
    static __m128d lanes(__m128d x) {
        const __m128d sign = simd::sign_of(x);
        x = simd::magnitude(x);
        const __m128d far = simd::less(K.half, x), w = simd::least(x, K.one - x);
        const __m128i place = _mm_sub_epi32(_mm_srli_epi32(simd::bits_of(w), 15), K.before_first);
        const __m128i offset = _mm_and_si128(simd::bits_of(far), K.behind);
        const __m128i row = _mm_max_epi32(_mm_add_epi32(place, offset), K.no_row);
        const simd::Indices<2> at(_mm_srli_epi64(row, 32));
        const __m128d row0 = _mm_load_pd(K.rows[at.lane[0]]), row1 = _mm_load_pd(K.rows[at.lane[1]]);
        const __m128d high = _mm_unpacklo_pd(row0, row1), low = _mm_unpackhi_pd(row0, row1);

        const __m128d middle = simd::bit_or(simd::bit_and(w, simd::doubles(K.row_bits)), simd::doubles(K.half_row));
        const __m128d c = simd::bit_and(middle, simd::bit_or(far, simd::less_equal(K.least_row, w)));
        const __m128d base = simd::select_by_sign(far, c + w, K.one);
        const __m128d t = simd::bit_xor(w - c, simd::bit_and(far, K.minus)) / (base - c * w);
        const __m128d v = simd::bit_and(t, simd::less(K.least_square, x)), z = v * v;
        const __m128d rest = (v * z) * ((K.c0 + z * K.c1) + (z * z) * (K.c2 + z * K.c3));
        return simd::bit_or(high + (t + (low + rest)), sign);
    }
    static int32_t scalar(const double* x, double* y) { return vecmath::atanh_at_ends(*x, y); }
};

}  // namespace

ORV_ONE_INPUT(dAtanh, la, Atanh)
ORV_ONE_INPUT(dAtanh, ha, Atanh)
ORV_ONE_INPUT(dAtanh, ep, Atanh)
