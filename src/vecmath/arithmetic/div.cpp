// Div: a / b by the division, which is correctly rounded. Overflow and underflow are as the operation gives them.
#include "frame/kernel_loops.h"
#include "vecmath/arithmetic/quotient.h"

namespace {

using namespace orv;

template <class T, int Block>
struct Div : frame::Elementwise<T, Block, frame::Tail::masked> {
    using V = typename frame::Elementwise<T, Block, frame::Tail::masked>::V;
    static V lanes(V a, V b, V& doubt) {
        const V y = a / b;
        doubt = vecmath::doubtful_quotient(b, y);
        return y;
    }
    static int32_t scalar(const T* a, const T* b, T* y) {
        *y = *a / vecmath::at_run_time(*b);
        return vecmath::status_of_quotient(*a, *b, *y, vecmath::is_nan(*a) || vecmath::is_nan(*b));
    }
};

using DivS = Div<float, 16>;
using DivD = Div<double, 4>;

}  // namespace

ORV_TWO_INPUTS(sDiv, la, DivS)
ORV_TWO_INPUTS(dDiv, la, DivD)
