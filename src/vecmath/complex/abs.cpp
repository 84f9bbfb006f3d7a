// Abs of complex numbers: the modulus, by the kernels of Hypot.
#include "vecmath/complex/parts.h"
#include "vecmath/roots/hypot_d.h"
#include "vecmath/roots/hypot_s.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

template <class Hypot, class Z>
struct Modulus
    : frame::Elementwise<Z, Hypot::block, frame::Tail::masked, frame::Rejected::by_lane, typename Hypot::Element> {
    using Parts = simd::Complex<typename Hypot::Element>;
    using V = typename Hypot::V;
    static V doubt(Parts z) { return Hypot::doubt(z.re, z.im); }
    static V lanes(Parts z) { return Hypot::lanes(z.re, z.im); }
    static int32_t scalar(const Z* z, typename Hypot::Element* y) { return Hypot::scalar(&z->re, &z->im, y); }
};

// sHypot "HA" finds what it does not serve in its results.
struct ModulusCHA : frame::Elementwise<orv_complex_s, 4, frame::Tail::masked, frame::Rejected::by_lane, float> {
    static __m128 lanes(ComplexS z, __m128& doubt) { return HypotSHA::lanes(z.re, z.im, doubt); }
    static int32_t scalar(const orv_complex_s* z, float* y) { return HypotSHA::scalar(&z->re, &z->im, y); }
};

using ModulusCLA = Modulus<HypotSLA, orv_complex_s>;
using ModulusCEP = Modulus<HypotSEP, orv_complex_s>;
using ModulusZ = Modulus<HypotD<false>, orv_complex_d>;
using ModulusZHA = Modulus<HypotD<true>, orv_complex_d>;

}  // namespace

ORV_ONE_INPUT(cAbs, la, ModulusCLA)
ORV_ONE_INPUT(cAbs, ha, ModulusCHA)
ORV_ONE_INPUT(cAbs, ep, ModulusCEP)
ORV_ONE_INPUT(zAbs, la, ModulusZ)
ORV_ONE_INPUT(zAbs, ha, ModulusZHA)
ORV_ONE_INPUT(zAbs, ep, ModulusZ)
