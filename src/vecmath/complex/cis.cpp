// CIS: cos x + i sin x, by the reductions of SinCos (sincos_d.h, sincos_s.h).
#include "vecmath/complex/parts.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/sincos_d.h"
#include "vecmath/trig/sincos_s.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

template <class T, int Block, class Z>
struct Cis : frame::Elementwise<T, Block, frame::Tail::masked, frame::Rejected::settled, Z> {
    using V = typename simd::Lanes<T>::V;
    using Parts = simd::Complex<T>;
    static Parts settle(V x, Parts y, V& doubt) {
        V sine, cosine;
        sincos_large(x, sine, cosine);
        y = {simd::select_by_sign(doubt, cosine, y.re), simd::select_by_sign(doubt, sine, y.im)};
        doubt = simd::not_finite(x);
        return y;
    }
    static int32_t scalar(const T* x, Z* y) {
        const int32_t status = not_finite(x, &y->re);
        y->im = y->re;
        return status;
    }
};

struct CisZHA : Cis<double, 4, orv_complex_d> {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), last_128); }
    static ComplexD lanes(D x) {
        ComplexD y;
        sincos_128(x, y.im, y.re);
        return y;
    }
};
struct CisZEP : Cis<double, 4, orv_complex_d> {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), last_sincos_ep); }
    static ComplexD lanes(D x) {
        ComplexD y;
        sincos_ep(x, y.im, y.re);
        return y;
    }
};

struct CisC : Cis<float, 8, orv_complex_s> {
    static S doubt(S x) { return simd::exceeds(simd::magnitude(x), trig_s.last_8192); }
    static ComplexS lanes(S x) {
        ComplexS y;
        sincos_in_float(x, y.im, y.re);
        return y;
    }
};
struct CisCHA : CisC {
    static constexpr int block = 4;
    static ComplexS lanes(S x) {
        ComplexS y;
        sincos_in_double(x, y.im, y.re);
        return y;
    }
};

}  // namespace

ORV_ONE_INPUT(cCIS, la, CisC)
ORV_ONE_INPUT(cCIS, ha, CisCHA)
ORV_ONE_INPUT(cCIS, ep, CisC)
ORV_ONE_INPUT(zCIS, la, CisZHA)
ORV_ONE_INPUT(zCIS, ha, CisZHA)
ORV_ONE_INPUT(zCIS, ep, CisZEP)
