// dErf. "HA" leaves what is next to zero, where its parts would be subnormal, to its scalar path.
#include "frame/kernel_loops.h"
#include "vecmath/special/erf.h"

namespace {

using namespace orv;
using simd::SplatBits;
using vecmath::ErfTerms;

struct Ends {
    SplatBits<uint32_t> magnitude{0x7FFFFFFF}, first{(1023 - 900) << 20}, greatest{0x7FEFFFFF};
};
constexpr Ends K;

template <ErfTerms Terms>
struct Erf : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        return simd::doubles(_mm_cmpgt_epi32(_mm_and_si128(simd::bits_of(x), K.magnitude), K.greatest));
    }
    static __m128d lanes(__m128d x) { return vecmath::erf_lanes<Terms>(x); }
    static int32_t scalar(const double* x, double* y) { return vecmath::erf_scalar(*x, y); }
};

struct ErfHa : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        const __m128i bits = _mm_and_si128(simd::bits_of(x), K.magnitude);
        return simd::doubles(_mm_or_si128(_mm_cmpgt_epi32(K.first, bits), _mm_cmpgt_epi32(bits, K.greatest)));
    }
    static __m128d lanes(__m128d x) { return vecmath::erf_wide_lanes(x); }
    static int32_t scalar(const double* x, double* y) { return vecmath::erf_scalar(*x, y); }
};

}  // namespace

ORV_ONE_INPUT(dErf, la, Erf<ErfTerms::full>)
ORV_ONE_INPUT(dErf, ha, ErfHa)
ORV_ONE_INPUT(dErf, ep, Erf<ErfTerms::short_double>)
