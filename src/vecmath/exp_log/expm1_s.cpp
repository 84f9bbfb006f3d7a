// sExpm1: e^x - 1, one kernel for all accuracies: dExpm1's "EP" method, right to 2^-30, rounded to single.
//
// The vector path serves x up to 88.7228, the last with a finite result, and minus infinity.
#include "vecmath/exp_log/expm1.h"
#include "vecmath/exp_log/wide.h"

namespace {

using namespace orv;

constexpr vecmath::Expm1Words expm1_block{};
constexpr simd::SplatBits<uint32_t> last_finite{std::bit_cast<uint32_t>(0x1.62e42ep+6f)};

struct Expm1 : frame::OneInput<float, 8, frame::Tail::masked> {
    static __m128 doubt(__m128 x) { return vecmath::above_or_nan(x, last_finite); }
    static __m128 lanes(__m128 x) {
        return vecmath::in_double(x, [](__m128d d) { return vecmath::expm1_words<expm1_block>(d); });
    }
    static int32_t scalar(const float* x, float* y) {
        if (vecmath::is_finite(*x)) {
            *y = vecmath::overflow<float>();
            return frame::status_overflow;
        }
        *y = vecmath::quiet(*x);
        return frame::status_ok;
    }
};

}  // namespace

ORV_ONE_INPUT(sExpm1, la, Expm1)
