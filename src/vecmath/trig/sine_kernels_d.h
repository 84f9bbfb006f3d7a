// What Sin and Cos of doubles have in common outside their main paths: the cosine is the sine a quarter turn on.
#pragma once

#include "frame/kernel_loops.h"
#include "vecmath/trig/not_finite.h"
#include "vecmath/trig/reduction_d.h"

namespace orv::vecmath {

// Large arguments in vector form.
template <unsigned Quarters, int Block>
struct SineKernel : frame::OneInput<double, Block, frame::Tail::masked, frame::Rejected::settled> {
    static D settle(D x, D y, D& doubt) {
        const D result = simd::select_by_sign(doubt, Step512<>(reduce_large(x)).sin(Quarters), y);
        doubt = simd::not_finite(x);
        return result;
    }
    static int32_t scalar(const double* x, double* y) { return not_finite(x, y); }
};

// Large arguments by the nearest half turn, which is enough for "EP".
template <unsigned Quarters>
struct SineKernelEP : frame::OneInput<double, 8, frame::Tail::masked, frame::Rejected::settled> {
    static D settle(D x, D y, D& doubt) {
        Fraction turn = fraction_of_turn(x);
        turn.high = simd::add(turn.high, simd::splat_bits(uint64_t{Quarters} << 62));
        const auto [r, k] = nearest_direction<1>(turn);
        D half_turns = simd::bit_xor(sine<sine_26>(r), odd_sign(simd::doubles(k)));
        if constexpr (Quarters == 0) half_turns = simd::bit_xor(half_turns, simd::sign_of(x));
        const D result = simd::select_by_sign(doubt, half_turns, y);
        doubt = simd::not_finite(x);
        return result;
    }
    static int32_t scalar(const double* x, double* y) { return not_finite(x, y); }
};

}  // namespace orv::vecmath
