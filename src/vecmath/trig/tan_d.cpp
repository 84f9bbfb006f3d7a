// Tan of doubles.
//
// "LA": |x| = k pi/2 + r, |r| up to pi/4, and tan r = r N(r^2)/D(r^2); for odd k the tangent is -D/(r N). Numerator and
// denominator are kept as sums of two numbers, the latter with the error of r^2, and their quotient is rounded once.
// "EP": the same without the small parts.
// "HA": |x| = k pi/256 + r and the addition theorem over the table of 512 rows, numerator and denominator as sums of two.
// From 128000 (in "HA" 65536) on the bits of 1/(2 pi) give the row and r.
//
// Valid for every finite x; no double is close enough to a pole to overflow. Worst errors measured: "LA" 0.99 ulp, "HA"
// 0.542 ulp, "EP" 2^-33.2 relative.
#include "frame/kernel_loops.h"
#include "vecmath/trig/half_turns_d.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_d.h"

namespace {

using namespace orv;
using namespace orv::trig;

struct Tan : frame::OneInput<double, 4, frame::Tail::masked, frame::Rejected::settled> {
    static D settle(D x, D y, D& doubt) {
        const D result = simd::select(doubt, Tangent512(reduce_large(x)).value(), y);
        doubt = simd::not_finite(x);
        return result;
    }
    static int32_t scalar(const double* x, double* y) { return not_finite(x, y); }
};

constexpr StepParts half_pi{0.63661977236758138, 1.5707963267923333, 2.5633441515839558e-12, 1.0562999066987428e-23};
constexpr StepParts pi_over_256{81.487330863050417, 0.012271846302610356, 4.7477347705499734e-13,
                                1.5798955068718364e-23};

// N and D without their leading 1, over z.
inline D numerator_rest(D z) {
    return (splat(-0.12828347003747023) + z * splat(0.0028059181997214249)) + (z * z) * splat(-7.4836345641659391e-06);
}
constexpr double denominator_1 = -0.46161680337080113;
inline D denominator_rest(D z, double constant_term) {
    return (splat(constant_term) + z * splat(0.023344852656587221)) + (z * z) * splat(-0.00020844803827304198);
}

struct TanLA : Tan {
    static D doubt(D x) { return simd::not_less(simd::magnitude(x), splat(128000.0)); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Nearest<half_pi> nearest(a);
        const D odd = odd_sign(nearest.shifted);
        const auto [r, low] = less_steps_exactly<half_pi>(a, nearest.k);
        const D z = r * r;
        const D n = (r * z) * numerator_rest(z);
        // The low part counts D(r) / cos^2 r, which two digits of are enough.
        Pair num{r + n, ((r - (r + n)) + n) + low * (splat(1.0) + z * splat(0.65))};
        // D is next to 1 - 15/32 r^2, which is exact for the leading 24 bits of r.
        constexpr double lead = 0.46875;
        const D r_lead = simd::bit_and(r, simd::doubles(simd::splat_bits(0xFFFFFFFFE0000000)));
        const D leading = (r_lead * r_lead) * splat(lead);
        const D rest_of_square = (r - r_lead) * (r + r_lead);
        Pair den{splat(1.0) - leading, z * denominator_rest(z, denominator_1 + lead) - rest_of_square * splat(lead)};
        den.low += (splat(1.0) - den.high) - leading;
        exchange(odd, num.high, den.high);
        exchange(odd, num.low, den.low);
        const Pair y = quotient(num, den);
        return simd::bit_xor(y.high + y.low, simd::bit_xor(simd::sign_of(x), odd));
    }
};

struct TanEP : Tan {
    static D doubt(D x) { return simd::not_less(simd::magnitude(x), splat(128000.0)); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Nearest<half_pi_ep> nearest(a);
        const D odd = odd_sign(nearest.shifted);
        const D r = less_steps<half_pi_ep>(a, nearest.k);
        const D z = r * r;
        D num = r + (r * z) * numerator_rest(z), den = splat(1.0) + z * denominator_rest(z, denominator_1);
        exchange(odd, num, den);
        return simd::bit_xor(num / den, simd::bit_xor(simd::sign_of(x), odd));
    }
};

struct TanHA : Tan {
    static D doubt(D x) { return simd::not_less(simd::magnitude(x), splat(65536.00349206588)); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Nearest<pi_over_256> nearest(a);
        const auto [r, low] = less_steps_exactly<pi_over_256>(a, nearest.k);
        return simd::bit_xor(Tangent512(Reduced{r, low, simd::bits_of(nearest.shifted)}).value(), simd::sign_of(x));
    }
};

}  // namespace

ORV_ONE_INPUT(dTan, la, TanLA)
ORV_ONE_INPUT(dTan, ha, TanHA)
ORV_ONE_INPUT(dTan, ep, TanEP)
