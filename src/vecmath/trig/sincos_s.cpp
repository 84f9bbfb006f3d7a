// SinCos of floats: y is the sine and z the cosine. The method stands in sincos_s.h.
#include "vecmath/trig/sincos_s.h"

#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

struct SinCos : frame::Elementwise<float, 4, frame::Tail::masked, frame::Rejected::settled> {
    static S doubt(S x) { return simd::exceeds(simd::magnitude(x), trig_s.last_8192); }
    static void settle(S x, S& y, S& z, S& doubt) {
        S sine, cosine;
        sincos_large(x, sine, cosine);
        y = simd::select_by_sign(doubt, sine, y);
        z = simd::select_by_sign(doubt, cosine, z);
        doubt = simd::not_finite(x);
    }
    static int32_t scalar(const float* x, float* y, float* z) {
        const int32_t status = not_finite(x, y);
        *z = *y;
        return status;
    }
};

struct SinCosLA : SinCos {
    static constexpr int block = 8;
    static void lanes(S x, S& y, S& z) { sincos_in_float(x, y, z); }
};

struct SinCosHA : SinCos {
    static void lanes(S x, S& y, S& z) { sincos_in_double(x, y, z); }
};

}  // namespace

ORV_TWO_OUTPUTS(sSinCos, la, SinCosLA)
ORV_TWO_OUTPUTS(sSinCos, ha, SinCosHA)
