// Arg of complex numbers: the angle atan2(im, re), by the rows of atan2_d.h.
// "EP" has one part of everything, and so have floats.
#include "vecmath/complex/parts.h"
#include "vecmath/inverse/atan2_d.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

template <bool Short, class Z>
int32_t scalar_angle(const Z* z, decltype(Z::re)* y) {
    using T = decltype(Z::re);
    if (any_nan(*z)) {
        *y = z->re + z->im;
    } else {
        const double size =
            angle<atan_radians, turn_radians, Short>(std::fabs(z->im), std::fabs(z->re), std::signbit(z->re));
        *y = std::copysign(static_cast<T>(size), z->im);
    }
    return frame::status_ok;
}

template <bool Short>
inline D lanes_of_angle(ComplexD z) {
    return atan2_lanes<atan_radians, turn_radians, Short>(z.im, z.re);
}

template <bool Short>
struct ArgZ : frame::Elementwise<orv_complex_d, 4, frame::Tail::masked, frame::Rejected::by_lane, double> {
    static D doubt(ComplexD z) { return any_part_beyond<(1023 - 150) << 20, (1023 + 150) << 20>(z); }
    static D lanes(ComplexD z) { return lanes_of_angle<Short>(z); }
    static int32_t scalar(const orv_complex_d* z, double* y) { return scalar_angle<Short>(z, y); }
};

struct ArgC : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked, frame::Rejected::by_lane, float> {
    static __m128 doubt(ComplexS z) {
        const __m128 zero{};
        const __m128 on_axis = simd::bit_or(simd::equal(z.re, zero), simd::equal(z.im, zero));
        return simd::bit_or(on_axis, any_part_from<infinity_s>(z));
    }
    static __m128 lanes(ComplexS z) {
        return simd::narrow(lanes_of_angle<true>(widen_low(z)), lanes_of_angle<true>(widen_high(z)));
    }
    static int32_t scalar(const orv_complex_s* z, float* y) { return scalar_angle<false>(z, y); }
};

using ArgZHA = ArgZ<false>;
using ArgZEP = ArgZ<true>;

}  // namespace

ORV_ONE_INPUT(cArg, la, ArgC)
ORV_ONE_INPUT(cArg, ha, ArgC)
ORV_ONE_INPUT(cArg, ep, ArgC)
ORV_ONE_INPUT(zArg, la, ArgZHA)
ORV_ONE_INPUT(zArg, ha, ArgZHA)
ORV_ONE_INPUT(zArg, ep, ArgZEP)
