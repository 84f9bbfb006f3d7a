// Inv: 1 / x by the division, which is correctly rounded; sInv "EP" is the processor's approximation, 1.5 * 2^-12 relative at
// most.
//
// An infinite result comes from a zero or from an overflow, both of them reported. The approximation is right where argument
// and result are normal; the others take the division.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace {

using namespace orv;

template <class T>
int32_t scalar_inverse(const T* at, T* y) {
    const T x = *at;
    *y = T{1} / vecmath::at_run_time(x);
    if (x == 0) return frame::status_singularity;
    return vecmath::is_finite(*y) || vecmath::is_nan(x) ? frame::status_ok : frame::status_overflow;
}

template <class T, int Block>
struct Inverse : frame::OneInput<T, Block, frame::Tail::masked> {
    using V = typename frame::OneInput<T, Block, frame::Tail::masked>::V;
    static V lanes(V x, V& doubt) {
        const V y = simd::splat(T{1}) / x;
        doubt = simd::equal(simd::magnitude(y), simd::splat(std::numeric_limits<T>::infinity()));
        return y;
    }
    static int32_t scalar(const T* x, T* y) { return scalar_inverse(x, y); }
};

struct InverseEP : frame::OneInput<float, 16, frame::Tail::masked> {
    // Outside [2^-126, 2^126) in magnitude: with the sign shifted out, by bits moved to the bottom of the signed range.
    static __m128 doubt(__m128 x) {
        const __m128i magnitude = simd::shift_left_32<1>(simd::bits_of(x));
        return simd::floats(simd::greater_32(simd::subtract_32(magnitude, simd::splat_32(0x81000000u)),
                                             simd::splat_32(0xFD000000u - 0x81000000u - 1)));
    }
    static __m128 lanes(__m128 x) { return _mm_rcp_ps(x); }
    static int32_t scalar(const float* x, float* y) { return scalar_inverse(x, y); }
};

using InverseS = Inverse<float, 8>;
using InverseD = Inverse<double, 8>;

}  // namespace

ORV_ONE_INPUT(sInv, la, InverseS)
ORV_ONE_INPUT(sInv, ep, InverseEP)
ORV_ONE_INPUT(dInv, la, InverseD)
