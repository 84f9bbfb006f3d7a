// The inverse trigonometric and hyperbolic functions of complex numbers, of doubles by inverse_d.h and of floats by inverse_s.h.
//
// asinh z is asin with the parts of argument and result exchanged, and atan z so from atanh; acosh z is acos turned by a quarter.
// The branch cuts are those of the signed zeros: both sides of a cut are continued onto it. One kernel serves all accuracies.
#include "vecmath/complex/inverse_d.h"
#include "vecmath/complex/inverse_rare.h"
#include "vecmath/complex/inverse_s.h"

#include "frame/kernel_loops.h"

namespace {

using namespace orv;
using vecmath::ComplexD;
using vecmath::ComplexS;

enum class Inverse { asin, acos, asinh, acosh, atan, atanh };

inline ComplexD exchanged(ComplexD z) { return {z.im, z.re}; }

// `asin`, `acos` and `atanh` are functions of lanes.
template <Inverse F, class Asin, class Acos, class Atanh>
inline ComplexD inverse_lanes(ComplexD z, Asin asin, Acos acos, Atanh atanh) {
    if constexpr (F == Inverse::asin) return asin(z);
    if constexpr (F == Inverse::asinh) return exchanged(asin(exchanged(z)));
    if constexpr (F == Inverse::atanh) return atanh(z);
    if constexpr (F == Inverse::atan) return exchanged(atanh(exchanged(z)));
    const ComplexD w = acos(z);
    if constexpr (F == Inverse::acosh) return {simd::magnitude(w.im), simd::bit_or(w.re, simd::sign_of(z.im))};
    return w;
}

template <Inverse F>
int32_t rare(const orv_complex_d* at, orv_complex_d* w) {
    constexpr bool exchange = F == Inverse::asinh || F == Inverse::atan;
    orv_complex_d z = *at;
    if constexpr (exchange) z = {z.im, z.re};
    int32_t status;
    if constexpr (F == Inverse::asin || F == Inverse::asinh) status = vecmath::rare_asin(z, w);
    if constexpr (F == Inverse::acos) status = vecmath::rare_acos(z, w);
    if constexpr (F == Inverse::acosh) status = vecmath::rare_acosh(z, w);
    if constexpr (F == Inverse::atan || F == Inverse::atanh) status = vecmath::rare_atanh(z, w);
    if constexpr (exchange) *w = {w->im, w->re};
    return status;
}

template <Inverse F>
struct InverseD : frame::OneInput<orv_complex_d, 2, frame::Tail::masked> {
    static __m128d doubt(ComplexD z) { return vecmath::outside_inverse(z); }
    static ComplexD lanes(ComplexD z) {
        return inverse_lanes<F>(z, vecmath::asin_lanes, vecmath::acos_lanes, vecmath::atanh_lanes);
    }
    static int32_t scalar(const orv_complex_d* z, orv_complex_d* w) { return rare<F>(z, w); }
};

template <Inverse F>
struct InverseS : frame::OneInput<orv_complex_s, 4, frame::Tail::masked> {
    static __m128 doubt(ComplexS z) {
        const __m128 beyond = vecmath::any_part_from<vecmath::infinity_s>(z);
        if constexpr (F != Inverse::atan && F != Inverse::atanh) return beyond;
        // The poles.
        const __m128 one = F == Inverse::atan ? z.im : z.re, zero = F == Inverse::atan ? z.re : z.im;
        return simd::bit_or(beyond, simd::bit_and(simd::equal(simd::magnitude(one), simd::splat(1.0f)),
                                                  simd::equal(zero, _mm_setzero_ps())));
    }
    static ComplexS lanes(ComplexS z) {
        const auto in_double = [](ComplexD x) {
            return inverse_lanes<F>(x, vecmath::asin_lanes_s, vecmath::acos_lanes_s, vecmath::atanh_lanes_s);
        };
        return vecmath::by_double(in_double, z);
    }
    // Nothing overflows.
    static int32_t scalar(const orv_complex_s* z, orv_complex_s* w) {
        return vecmath::scalar_by_double<rare<F>>(z, w, false);
    }
};

using ZAcos = InverseD<Inverse::acos>;
using ZAsin = InverseD<Inverse::asin>;
using ZAtan = InverseD<Inverse::atan>;
using ZAcosh = InverseD<Inverse::acosh>;
using ZAsinh = InverseD<Inverse::asinh>;
using ZAtanh = InverseD<Inverse::atanh>;
using CAcos = InverseS<Inverse::acos>;
using CAsin = InverseS<Inverse::asin>;
using CAtan = InverseS<Inverse::atan>;
using CAcosh = InverseS<Inverse::acosh>;
using CAsinh = InverseS<Inverse::asinh>;
using CAtanh = InverseS<Inverse::atanh>;

}  // namespace

ORV_ONE_INPUT(zAcos, la, ZAcos)
ORV_ONE_INPUT(zAsin, la, ZAsin)
ORV_ONE_INPUT(zAtan, la, ZAtan)
ORV_ONE_INPUT(zAcosh, la, ZAcosh)
ORV_ONE_INPUT(zAsinh, la, ZAsinh)
ORV_ONE_INPUT(zAtanh, la, ZAtanh)
ORV_ONE_INPUT(cAcos, la, CAcos)
ORV_ONE_INPUT(cAsin, la, CAsin)
ORV_ONE_INPUT(cAtan, la, CAtan)
ORV_ONE_INPUT(cAcosh, la, CAcosh)
ORV_ONE_INPUT(cAsinh, la, CAsinh)
ORV_ONE_INPUT(cAtanh, la, CAtanh)
