// Kernels of doubles that run element by element in extended precision, with poles at 0 and the negative whole numbers.
#pragma once

#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/special/extended.h"

namespace orv::vecmath {

// High words of magnitudes: what is below the first or above the last goes by the scalar path.
struct ExtendedEnds {
    simd::SplatBits<uint32_t> magnitude{0x7FFFFFFF}, first, last;
};

// With `ends`, a function compute(double) to long double, and the scalar path settle(double, double*).
template <class Function>
struct ByExtended : frame::OneInput<double, 4, frame::Tail::masked> {
    using Frame = ExtendedFrame;

    // Negative whole numbers have their sign left.
    static __m128d doubt(__m128d x) {
        constexpr const ExtendedEnds& K = Function::ends;
        const __m128i size = _mm_and_si128(simd::bits_of(x), K.magnitude);
        const __m128d far = simd::doubles(_mm_or_si128(_mm_cmpgt_epi32(K.first, size), _mm_cmpgt_epi32(size, K.last)));
        const __m128d whole = simd::equal(x, simd::round<_MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC>(x));
        return simd::bit_or(far, simd::bit_and(x, whole));
    }
    static __m128d lanes(__m128d x) {
        const double y0 = static_cast<double>(Function::compute(_mm_cvtsd_f64(x)));
        const double y1 = static_cast<double>(Function::compute(_mm_cvtsd_f64(_mm_unpackhi_pd(x, x))));
        return _mm_set_pd(y1, y0);
    }
    static int32_t scalar(const double* x, double* y) { return Function::settle(*x, y); }
};

}  // namespace orv::vecmath
