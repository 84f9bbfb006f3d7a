// Conj: the sign of the imaginary part turned, as a bit operation; the real part untouched. No flag is ever raised.
#include "frame/kernel_loops.h"

namespace {

using namespace orv;

template <class Part>
struct Conj : frame::OneInput<simd::Pair<Part>, 4 * 8 / sizeof(Part), frame::Tail::by_element> {
    using V = typename simd::Lanes<Part>::V;
    static V lanes(V x) {
        if constexpr (sizeof(Part) == 4)
            return simd::bit_xor(x, _mm_setr_ps(0.0f, -0.0f, 0.0f, -0.0f));
        else
            return simd::bit_xor(x, _mm_setr_pd(0.0, -0.0));
    }
};

}  // namespace

ORV_ONE_INPUT(cConj, la, Conj<float>)
ORV_ONE_INPUT(zConj, la, Conj<double>)
