// dTGamma: element by element in extended precision. What lies near the ends of the range, and poles, go by the scalar path.
#include "frame/kernel_loops.h"
#include "vecmath/special/gamma.h"

namespace {

using namespace orv;
using simd::SplatBits;

struct Ends {
    SplatBits<uint32_t> magnitude{0x7FFFFFFF}, tiny{(1023 - 1000) << 20}, last{0x40653FFF};  // 2^-1000, 170: high words
};
constexpr Ends K;

struct TGamma : frame::OneInput<double, 4, frame::Tail::masked> {
    using Frame = vecmath::ExtendedFrame;

    // Negative whole numbers have their sign left.
    static __m128d doubt(__m128d x) {
        const __m128i size = _mm_and_si128(simd::bits_of(x), K.magnitude);
        const __m128d far = simd::doubles(_mm_or_si128(_mm_cmpgt_epi32(K.tiny, size), _mm_cmpgt_epi32(size, K.last)));
        const __m128d whole = simd::equal(x, simd::round<_MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC>(x));
        return simd::bit_or(far, simd::bit_and(x, whole));
    }
    static __m128d lanes(__m128d x) {
        const double y0 = static_cast<double>(vecmath::gamma_extended(_mm_cvtsd_f64(x)));
        const double y1 = static_cast<double>(vecmath::gamma_extended(_mm_cvtsd_f64(_mm_unpackhi_pd(x, x))));
        return _mm_set_pd(y1, y0);
    }
    static int32_t scalar(const double* x, double* y) { return vecmath::gamma_scalar(*x, y); }
};

}  // namespace

ORV_ONE_INPUT(dTGamma, la, TGamma)
