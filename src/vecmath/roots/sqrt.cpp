// Sqrt: by the instruction, which is correctly rounded; sSqrt "EP" is x times the processor's approximation of the reciprocal
// root, 1.5 * 2^-12 relative at most.
//
// A NaN among the results comes from a negative argument, which is reported, or from a NaN. The approximation is right for
// normal arguments alone; the others take the instruction.
#include "frame/kernel_loops.h"
#include "vecmath/exp_log/special.h"
#include "vecmath/roots/normal.h"

namespace {

using namespace orv;

template <class T>
int32_t scalar_sqrt(const T* at, T* y) {
    simd::store_one(y, simd::square_root(simd::load_one(at)));
    return *y == *y || vecmath::is_nan(*at) ? frame::status_ok : frame::status_domain;
}

template <class T, int Block>
struct Sqrt : frame::OneInput<T, Block, frame::Tail::masked> {
    using V = typename frame::OneInput<T, Block, frame::Tail::masked>::V;
    static V lanes(V x, V& doubt) {
        const V y = simd::square_root(x);
        doubt = simd::unordered(y, y);
        return y;
    }
    static int32_t scalar(const T* x, T* y) { return scalar_sqrt(x, y); }
};

using SqrtS = Sqrt<float, 8>;
using SqrtD = Sqrt<double, 8>;

struct SqrtEP : frame::OneInput<float, 16, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return vecmath::not_positive_normal(x); }
    static __m128 lanes(__m128 x) { return x * _mm_rsqrt_ps(x); }
    static int32_t scalar(const float* x, float* y) { return scalar_sqrt(x, y); }
};

}  // namespace

ORV_ONE_INPUT(sSqrt, la, SqrtS)
ORV_ONE_INPUT(sSqrt, ha, SqrtS)
ORV_ONE_INPUT(sSqrt, ep, SqrtEP)
ORV_ONE_INPUT(dSqrt, la, SqrtD)
