// Fmax, Fmin, MaxMag, MinMag: one of the arguments, the larger or smaller of them or of their magnitudes. (C99 7.12.12; IEC
// 60559 maxNumMag and minNumMag.)
//
// The instructions give their second operand where the two compare equal: taken both ways round, the results differ in zeros
// of two signs alone, and joined by `and` they are +0, by `or` -0. Numbers of equal magnitude and different sign are joined
// likewise. The greater of that and itself is the number as the instructions have it: a zero where the mode has subnormal
// numbers count as zeros.
//
// The instructions and comparisons raise invalid for quiet NaNs, so blocks with NaNs are taken out by the one test that does
// not; there the other argument is the result.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/special.h"

namespace {

using namespace orv;

template <class T>
struct Selecting : frame::Elementwise<T, 32 / sizeof(T), frame::Tail::masked> {
    using V = typename simd::Lanes<T>::V;
    static V doubt(V a, V b) { return simd::unordered(a, b); }
    static int32_t scalar(const T* a, const T* b, T* y) {
        *y = vecmath::is_nan(*b) ? vecmath::quiet(*a) : *b;
        return frame::status_ok;
    }
};

template <class T>
struct Fmax : Selecting<T> {
    using V = typename Selecting<T>::V;
    static V lanes(V a, V b) { return simd::bit_and(simd::greatest(a, b), simd::greatest(b, a)); }
};

template <class T>
struct Fmin : Selecting<T> {
    using V = typename Selecting<T>::V;
    static V lanes(V a, V b) { return simd::bit_or(simd::least(a, b), simd::least(b, a)); }
};

template <class T>
struct MaxMag : Selecting<T> {
    using V = typename Selecting<T>::V;
    static V lanes(V a, V b) {
        const V size_a = simd::magnitude(a), size_b = simd::magnitude(b);
        const V chosen =
            simd::bit_and(simd::bit_or(a, simd::less(size_a, size_b)), simd::bit_or(b, simd::less(size_b, size_a)));
        return simd::greatest(chosen, chosen);
    }
};

template <class T>
struct MinMag : Selecting<T> {
    using V = typename Selecting<T>::V;
    static V lanes(V a, V b) {
        const V size_a = simd::magnitude(a), size_b = simd::magnitude(b);
        const V chosen = simd::bit_or(simd::bit_and_not(simd::less(size_b, size_a), a),
                                      simd::bit_and_not(simd::less(size_a, size_b), b));
        return simd::greatest(chosen, chosen);
    }
};

}  // namespace

ORV_TWO_INPUTS(sFmax, la, Fmax<float>)
ORV_TWO_INPUTS(dFmax, la, Fmax<double>)
ORV_TWO_INPUTS(sFmin, la, Fmin<float>)
ORV_TWO_INPUTS(dFmin, la, Fmin<double>)
ORV_TWO_INPUTS(sMaxMag, la, MaxMag<float>)
ORV_TWO_INPUTS(dMaxMag, la, MaxMag<double>)
ORV_TWO_INPUTS(sMinMag, la, MinMag<float>)
ORV_TWO_INPUTS(dMinMag, la, MinMag<double>)
