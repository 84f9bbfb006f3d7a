// Round: the integer next to x, halves away from zero.
//
// On m = |x|, r = m rounded to nearest even is off only where a tie went down, which is where m - r is exactly one half;
// there r + 1 is the answer. A tie that went up leaves -1/2, a value just below one half leaves something else, so no
// carry is made up. The sign of x goes back on at the end and is that of a zero result too. Exact for every x.
#include "frame/kernel_loops.h"

namespace {

using namespace orv;

template <class T>
struct Round {
    using Element = T;
    using Result = T;
    using Frame = frame::GeneralFrame;
    static constexpr int block = 2 * 16 / sizeof(T);
    static constexpr frame::Tail tail = sizeof(T) == 4 ? frame::Tail::by_element : frame::Tail::masked;
    using V = typename simd::Lanes<T>::V;
    static V lanes(V x) {
        const V sign = simd::sign_of(x);
        const V m = simd::bit_xor(x, sign);
        const V r = simd::round<_MM_FROUND_TO_NEAREST_INT>(m);
        const V tie_went_down = simd::equal(m - r, simd::splat(T{0.5}));
        return simd::bit_or(r + simd::bit_and(tie_went_down, simd::splat(T{1})), sign);
    }
};

}  // namespace

ORV_ONE_INPUT(sRound, la, Round<float>)
ORV_ONE_INPUT(dRound, la, Round<double>)
