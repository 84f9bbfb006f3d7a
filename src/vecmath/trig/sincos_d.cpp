// SinCos of doubles: y is the sine and z the cosine. The method stands in sincos_d.h.
#include "vecmath/trig/sincos_d.h"

#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

struct SinCos : frame::Elementwise<double, 4, frame::Tail::masked, frame::Rejected::settled> {
    static void settle(D x, D& y, D& z, D& doubt) {
        D sine, cosine;
        sincos_large(x, sine, cosine);
        y = simd::select_by_sign(doubt, sine, y);
        z = simd::select_by_sign(doubt, cosine, z);
        doubt = simd::not_finite(x);
    }
    static int32_t scalar(const double* x, double* y, double* z) {
        const int32_t status = not_finite(x, y);
        *z = *y;
        return status;
    }
};

struct SinCosHA : SinCos {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), last_128); }
    static void lanes(D x, D& y, D& z) { sincos_128(x, y, z); }
};

struct SinCosEP : SinCos {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), last_sincos_ep); }
    static void lanes(D x, D& y, D& z) { sincos_ep(x, y, z); }
};

}  // namespace

ORV_TWO_OUTPUTS(dSinCos, la, SinCosHA)
ORV_TWO_OUTPUTS(dSinCos, ep, SinCosEP)
