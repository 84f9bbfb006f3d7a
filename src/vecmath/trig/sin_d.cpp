// Sin of doubles.
//
// "LA": |x| = k pi + r with k to nearest, four parts of pi, |r| up to pi/2; sin x = +-(r + r^3 Q(r^2)), the errors of the
// subtractions put in with the polynomial. From 2^24 on by the bits of 1/(2 pi) and the table of 512 rows.
// "HA": |x| = k pi/64 + r with three parts, the table of 128 rows; from 90112 on as "LA".
// "EP": as "LA" with three parts and a shorter polynomial; from 2^24 on the bits of 1/(2 pi) give the nearest half turn.
//
// Valid for every finite x. Worst errors measured: "LA" 3.2 ulp, of which the polynomial has 1.5, "HA" 0.540 ulp, "EP"
// 2^-27.1 relative; from the limits on 0.502 ulp ("EP" 2^-27.1).
#include "vecmath/trig/sine_kernels_d.h"

namespace {

using namespace orv;
using namespace orv::trig;

struct SinLA : SineKernel<0, 8> {
    static constexpr char name[] = "vdSin";
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), splat(0x1.fffffffffffffp+23)); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const D shifted = a * splat(0.31830988618379069) + splat(shifter);
        const D k = shifted - splat(shifter);
        const D sign = simd::bit_xor(simd::sign_of(x), odd_sign(shifted));
        const D r0 = a - k * splat(3.1415925025939941);
        const D t1 = k * splat(1.5099578831723193e-07);
        const D r1 = r0 - t1;
        const D t2 = k * splat(1.078060505991553e-14);
        const D r = r1 - t2;
        const D low = (((r0 - r1) - t1) + ((r1 - r) - t2)) - k * splat(6.5640070857470009e-22);
        const D z = r * r;
        const D q = splat(-0.16666666666666186) +
                    z * (splat(0.0083333333332855416) +
                         z * (splat(-0.00019841269825056256) +
                              z * (splat(2.7557316600552628e-06) +
                                   z * (splat(-2.5051880273862881e-08) +
                                        z * (splat(1.6048095404959637e-10) + z * splat(-7.3733445331106646e-13))))));
        // The low part counts cos r, which three digits of are enough.
        const D cosine = splat(1.0) - z * (splat(0.4967) - z * splat(0.03705));
        return simd::bit_xor(r + (r * (z * q) + low * cosine), sign);
    }
};

struct SinHA : SineKernel<0, 4> {
    static constexpr char name[] = "vdSin";
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), splat(last_128)); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Main128 main(a);
        return simd::bit_xor(main.step.sin(main.j, 0), simd::sign_of(x));
    }
};

struct SinEP : SineKernelEP<0> {
    static constexpr char name[] = "vdSin";
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), splat(0x1.fffffffffffffp+23)); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Nearest<pi_ep> nearest(a);
        const D sign = simd::bit_xor(simd::sign_of(x), odd_sign(nearest.shifted));
        return simd::bit_xor(sine<sine_26>(less_steps<pi_ep>(a, nearest.k)), sign);
    }
};

}  // namespace

ORV_ONE_INPUT(dSin, la, SinLA)
ORV_ONE_INPUT(dSin, ha, SinHA)
ORV_ONE_INPUT(dSin, ep, SinEP)
