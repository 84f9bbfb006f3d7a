// Sin of doubles.
//
// "LA": |x| = k pi + r with k to nearest, four parts of pi, |r| up to pi/2; sin x = +-(r + r^3 Q(r^2)), the errors of the
// subtractions put in with the polynomial. From 2^24 on by the bits of 1/(2 pi) and the table of 512 rows.
// "HA": |x| = k pi/64 + r with three parts, the table of 128 rows; from 90112 on as "LA".
// "EP": as "LA" with three parts and a shorter polynomial; from 2^24 on the bits of 1/(2 pi) give the nearest half turn.
//
// Valid for every finite x. About half of the error of "LA" is the polynomial's own.
#include "vecmath/trig/sine_kernels_d.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

struct SinLABlock {
    Splat<double> last{0x1.fffffffffffffp+23};  // the last number below 2^24
    Splat<double> c3{-0x1.55555555554a8p-3}, c5{0x1.111111110a573p-7}, c7{-0x1.a01a019a659ddp-13},
        c9{0x1.71de3806add1ap-19}, c11{-0x1.ae6355aaa4a53p-26}, c13{0x1.60e6bee01d83ep-33}, c15{-0x1.9f1517e9f65fp-41};
    // The cosine to three digits. remez(1 - cos(x), [|2,4|], [0; pi/2]);
    Splat<double> cos2{0.4967}, cos4{0.03705};
};
constexpr SinLABlock sin_la;
constexpr StepParts pi_la{0x1.45f306dc9c883p-2, 0x1.921fb4p+1, 0x1.4442dp-23, 0x1.846988p-47, 0x1.8cc51701b839ap-71};

struct SinLA : SineKernel<0, 8> {
    static constexpr const SinLABlock& K = sin_la;
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), K.last); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Nearest<pi_la> nearest(a);
        const D sign = simd::bit_xor(simd::sign_of(x), odd_sign(nearest.shifted));
        const auto [r, low] = less_steps_exactly<pi_la>(a, nearest.k);
        const D z = r * r;
        const D q = K.c3 + z * (K.c5 + z * (K.c7 + z * (K.c9 + z * (K.c11 + z * (K.c13 + z * K.c15)))));
        // The low part counts cos r, which three digits of are enough.
        const D cosine = trig.one - z * (K.cos2 - z * K.cos4);
        return simd::bit_xor(r + (r * (z * q) + low * cosine), sign);
    }
};

struct SinHA : SineKernel<0, 4> {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), last_128); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Main128 main(a);
        return simd::bit_xor(main.step.sin(main.j, 0), simd::sign_of(x));
    }
};

struct SinEP : SineKernelEP<0> {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), sin_la.last); }
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
