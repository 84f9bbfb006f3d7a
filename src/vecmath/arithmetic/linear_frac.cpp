// LinearFrac: (scalea a + shifta) / (scaleb b + shiftb), each operation rounded once, in this order.
//
// A denominator of 0 b + 1 is 1 for every finite b, and the quotient by it the numerator itself: then nothing is divided.
#include "frame/kernel_loops.h"
#include "vecmath/arithmetic/quotient.h"

namespace {

using namespace orv;

template <class T, int Block>
struct Fraction : frame::Elementwise<T, Block, frame::Tail::masked> {
    using V = typename frame::Elementwise<T, Block, frame::Tail::masked>::V;
    static V lanes(V a, V b, V scalea, V shifta, V scaleb, V shiftb, V& doubt) {
        const V denominator = scaleb * b + shiftb;
        const V y = (scalea * a + shifta) / denominator;
        doubt = vecmath::doubtful_quotient(denominator, y);
        return y;
    }
    static int32_t scalar(const T* a, const T* b, const T* scalea, const T* shifta, const T* scaleb, const T* shiftb,
                          T* y) {
        const T numerator = *scalea * *a + *shifta;
        const T denominator = vecmath::at_run_time(*scaleb * *b + *shiftb);
        *y = numerator / denominator;
        bool any_nan = false;
        for (const T* argument : {a, b, scalea, shifta, scaleb, shiftb}) any_nan |= vecmath::is_nan(*argument);
        return vecmath::status_of_quotient(numerator, denominator, *y, any_nan);
    }
};

// The numerator alone. An infinite or undefined b is as doubtful as ever.
template <class T, int Block>
struct Linear : Fraction<T, Block> {
    using V = typename Fraction<T, Block>::V;
    static V lanes(V a, V b, V scalea, V shifta, V, V, V& doubt) {
        const V y = scalea * a + shifta;
        doubt = simd::bit_or(simd::not_finite(b), simd::unordered(y, y));
        return y;
    }
};

template <class T, int Block, class Out, class In>
void linear_frac(const char* name, int32_t n, In a, In b, T scalea, T shifta, T scaleb, T shiftb, Out y) {
    using frame::Scalar;
    if (scaleb == 0 && shiftb == 1)
        frame::map<Linear<T, Block>>(name, n, frame::to(y), a, b, Scalar{scalea}, Scalar{shifta}, Scalar{scaleb},
                                     Scalar{shiftb});
    else
        frame::map<Fraction<T, Block>>(name, n, frame::to(y), a, b, Scalar{scalea}, Scalar{shifta}, Scalar{scaleb},
                                       Scalar{shiftb});
}

using FractionS = Fraction<float, 8>;
using FractionD = Fraction<double, 4>;

}  // namespace

ORV_LINEAR(sLinearFrac, la, FractionS, (linear_frac<float, 8>))
ORV_LINEAR(dLinearFrac, la, FractionD, (linear_frac<double, 4>))
