// Tan of doubles.
//
// "LA": |x| = k pi/2 + r, |r| up to pi/4, and tan r = r N(r^2)/D(r^2); for odd k the tangent is -D/(r N). Numerator and
// denominator are kept as sums of two numbers, the latter with the error of r^2, and their quotient is rounded once.
// "EP": the same without the small parts.
// "HA": |x| = k pi/256 + r and the addition theorem over the table of 512 rows, numerator and denominator as sums of two.
// From 128000 (in "HA" 65536) on the bits of 1/(2 pi) give the row and r.
//
// Valid for every finite x; no double is close enough to a pole to overflow.
#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_d.h"

namespace {

using namespace orv;
using namespace orv::vecmath;

struct Tan : frame::OneInput<double, 4, frame::Tail::masked, frame::Rejected::settled> {
    static D settle(D x, D y, D& doubt) {
        const D result = simd::select_by_sign(doubt, Tangent512(reduce_large(x)).value(), y);
        doubt = simd::not_finite(x);
        return result;
    }
    static int32_t scalar(const double* x, double* y) { return not_finite(x, y); }
};

struct TanBlock {
    Splat<double> last{0x1.f3fffffffffffp+16};     // the last number below 128000
    Splat<double> last_ha{0x1.000000e4db24bp+16};  // and below 65536.00349206588, of "HA"
    // D is next to 1 - 15/32 r^2; its coefficient of r^2 less that of the leading part.
    Splat<double> lead{0x1.ep-2}, d1_rest{0x1.d37b2e3d0448p-8};
    Splat<double> slope{0x1.4cccccccccccdp-1};
};
constexpr TanBlock K;
constexpr StepParts pi_over_256{0x1.45f306dc9c883p+6, 0x1.921fb544p-7, 0x1.0b4611a6p-41, 0x1.3198a2e037073p-76};

// N and D without their leading 1, over z.
inline D numerator_rest(D z) { return (tan_52.n1 + z * tan_52.n2) + (z * z) * tan_52.n3; }
inline D denominator_rest(D z, D constant_term) { return (constant_term + z * tan_52.d2) + (z * z) * tan_52.d3; }

struct TanLA : Tan {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), K.last); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Nearest<half_pi> nearest(a);
        const D odd = odd_sign(nearest.shifted);
        const auto [r, low] = less_steps_exactly<half_pi>(a, nearest.k);
        const D z = r * r;
        const D n = (r * z) * numerator_rest(z);
        // The low part counts D(r) / cos^2 r, which two digits of are enough.
        Pair num{r + n, ((r - (r + n)) + n) + low * (trig.one + z * K.slope)};
        // 1 - 15/32 r^2 is exact for the leading 24 bits of r.
        const D r_lead = simd::bit_and(r, simd::doubles(trig.upper_24));
        const D leading = (r_lead * r_lead) * K.lead;
        const D rest_of_square = (r - r_lead) * (r + r_lead);
        Pair den{trig.one - leading, z * denominator_rest(z, K.d1_rest) - rest_of_square * K.lead};
        den.low += (trig.one - den.high) - leading;
        exchange(odd, num.high, den.high);
        exchange(odd, num.low, den.low);
        const Pair y = quotient(num, den);
        return simd::bit_xor(y.high + y.low, simd::bit_xor(simd::sign_of(x), odd));
    }
};

struct TanEP : Tan {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), K.last); }
    static D lanes(D x) {
        const D a = simd::magnitude(x);
        const Nearest<half_pi_ep> nearest(a);
        const D odd = odd_sign(nearest.shifted);
        const D r = less_steps<half_pi_ep>(a, nearest.k);
        const D z = r * r;
        D num = r + (r * z) * numerator_rest(z), den = trig.one + z * denominator_rest(z, tan_52.d1);
        exchange(odd, num, den);
        return simd::bit_xor(num / den, simd::bit_xor(simd::sign_of(x), odd));
    }
};

struct TanHA : Tan {
    static D doubt(D x) { return simd::exceeds(simd::magnitude(x), K.last_ha); }
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
