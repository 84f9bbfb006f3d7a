// dPow, dPowr, dPowx: a^b.
//
// "LA" and "HA" are one method, with the logarithm in two parts (log2_exp2_d.h): the sum of a row of the power's table and all
// that is small is the one rounding that counts. "EP" has one double for the logarithm and a chord for the exponential
// (pow_ep_d.h). Subnormal results are joined after scaling and rounded once. The functions differ in the cases that are no
// ordinary numbers (pow_cases.h); Powx has one b for all elements.
#include "frame/kernel_loops.h"
#include "vecmath/power/log2_exp2_d.h"
#include "vecmath/power/pow_cases.h"
#include "vecmath/power/pow_ep_d.h"

namespace {

using namespace orv;
using vecmath::Pow;
using vecmath::Powr;

constexpr vecmath::PowDBlock two_parts;
constexpr vecmath::PowEpDBlock one_part;

template <class Function>
struct TwoParts : frame::Elementwise<double, 4, frame::Tail::by_element> {
    static __m128d lanes(__m128d a, __m128d b, __m128d& doubt) { return vecmath::pow_lanes<two_parts>(a, b, doubt); }
    static int32_t scalar(const double* a, const double* b, double* y) {
        return Function::cases(*a, *b, y, vecmath::pow_magnitude<two_parts>);
    }
};

template <class Function>
struct OnePart : frame::Elementwise<double, 8, frame::Tail::by_element> {
    static __m128d lanes(__m128d a, __m128d b, __m128d& doubt) { return vecmath::pow_ep_lanes<one_part>(a, b, doubt); }
    static int32_t scalar(const double* a, const double* b, double* y) {
        return Function::cases(*a, *b, y, vecmath::pow_ep_magnitude<one_part>);
    }
};

}  // namespace

ORV_TWO_INPUTS(dPow, la, TwoParts<Pow>)
ORV_TWO_INPUTS(dPow, ep, OnePart<Pow>)
ORV_TWO_INPUTS(dPowr, la, TwoParts<Powr>)
ORV_TWO_INPUTS(dPowr, ha, TwoParts<Powr>)
ORV_TWO_INPUTS(dPowr, ep, OnePart<Powr>)
ORV_SCALAR_INPUT(dPowx, la, TwoParts<Pow>)
ORV_SCALAR_INPUT(dPowx, ha, TwoParts<Pow>)
ORV_SCALAR_INPUT(dPowx, ep, OnePart<Pow>)
