// Round: the integer next to x, halves away from zero.
//
// With h the largest number below one half, y = trunc(x + copysign(h, x)). A fraction below one half stays below the next
// integer: where the sum is not exact it is at most h away from an integer by more than the rounding error. A half comes
// out as the next integer, since k + 1/2 + h lies halfway between it and its predecessor at the most and rounds to the
// even one of them, or closer to it. From 2^52 (2^23) on x is an integer and h less than half a unit of it, so x stays. The
// sign of x is that of the sum and so of a zero result. The same value for every x as rounding |x| to nearest even and
// adding 1 where that went down by exactly one half, with fewer operations.
//
// The addition signals inexact for integers too, which the function must not: the frame takes that back where no element
// changed.
#include "frame/kernel_loops.h"

namespace {

using namespace orv;

template <class T>
struct RoundFrame {
    using V = typename simd::Lanes<T>::V;
    static constexpr uint32_t inexact = 0x20;

    frame::GeneralFrame general;
    V changed = simd::splat(T{0});  // bits in which any result differs from its argument

    RoundFrame() = default;
    ~RoundFrame() {
        if ((general.mxcsr.saved & inexact) || simd::any_bit(changed)) return;
        frame::write_mxcsr(frame::read_mxcsr() & ~inexact);
    }
    RoundFrame(const RoundFrame&) = delete;
    RoundFrame& operator=(const RoundFrame&) = delete;
};

template <class T>
struct Round : frame::OneInput<T, 2 * 16 / sizeof(T), sizeof(T) == 4 ? frame::Tail::by_element : frame::Tail::masked> {
    using Frame = RoundFrame<T>;
    static constexpr T below_half = sizeof(T) == 4 ? T(0x1.fffffep-2) : T(0x1.fffffffffffffp-2);
    using V = typename simd::Lanes<T>::V;
    static V lanes(V x, Frame& frame) {
        const V h = simd::bit_or(simd::sign_of(x), simd::splat(below_half));
        const V y = simd::round<_MM_FROUND_TO_ZERO>(x + h);
        frame.changed = simd::bit_or(frame.changed, simd::bit_xor(x, y));
        return y;
    }
};

}  // namespace

ORV_ONE_INPUT(sRound, la, Round<float>)
ORV_ONE_INPUT(dRound, la, Round<double>)
