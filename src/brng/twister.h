// Mersenne twisters of 32-bit words: the block in place, the outputs along with it, seeding from an array.
//
// With the bits of `upper` taken from the oldest word and the others from the next, y, a new word is
//   x(k + n) = x(k + m) ^ (y >> 1) ^ (twist if y is odd),
// and what is handed out is the word tempered. New words take the places of the old ones four at a time; the two groups
// that straddle the place where a source passes from old words to new ones are put together from both.
#pragma once

#include "simd/integers.h"

#include <orv/streams.h>

namespace orv::brng::twister {

// The two figures of a family's members that may differ, and the masks of the tempering.
struct Coefficients {
    uint32_t twist, mask_b, mask_c;
};

// Recurrence: words (n), middle (m), upper, first_shift of the tempering.
template <class Recurrence>
uint32_t temper(uint32_t y, const Coefficients& c) {
    y ^= y >> Recurrence::first_shift;
    y ^= y << 7 & c.mask_b;
    y ^= y << 15 & c.mask_c;
    return y ^ y >> 18;
}
template <class Recurrence>
__m128i temper(__m128i y, const Coefficients& c) {
    y = simd::bit_xor(y, simd::shift_right_32<Recurrence::first_shift>(y));
    y = simd::bit_xor(y, simd::bit_and(simd::shift_left_32<7>(y), simd::splat_32(c.mask_b)));
    y = simd::bit_xor(y, simd::bit_and(simd::shift_left_32<15>(y), simd::splat_32(c.mask_c)));
    return simd::bit_xor(y, simd::shift_right_32<18>(y));
}

template <class Recurrence>
uint32_t next_word(uint32_t oldest, uint32_t next, uint32_t far, uint32_t twist) {
    const uint32_t y = (oldest & Recurrence::upper) | (next & ~Recurrence::upper);
    return far ^ y >> 1 ^ ((y & 1) != 0 ? twist : 0);
}
template <class Recurrence>
__m128i next_words(__m128i oldest, __m128i next, __m128i far, __m128i twist) {
    const __m128i upper = simd::bit_and(oldest, simd::splat_32(Recurrence::upper));
    const __m128i y = simd::bit_or(upper, simd::bit_and(next, simd::splat_32(~Recurrence::upper)));
    const __m128i odd = simd::bit_and(next, simd::splat_32(1));
    return simd::bit_xor(simd::bit_xor(far, simd::shift_right_32<1>(y)), simd::times_sign_32(twist, odd));
}

// Replaces the block, aligned to 16 bytes, by the next one, and hands each new raw word to `emit` with its index:
// emit(k, word) or emit(k, four words).
template <class Recurrence, class Emit>
[[gnu::always_inline]] inline void regenerate(uint32_t* words, uint32_t twist, const Emit& emit) {
    constexpr int32_t n = Recurrence::words, m = Recurrence::middle;
    constexpr int32_t straddle = n - m - 3;  // the group whose middle words end with the first new word
    static_assert(straddle % 4 == 0 && n % 4 <= 1);
    const __m128i twists = simd::splat_32(twist);
    const auto group = [&](int32_t k, __m128i next, __m128i far) {
        const __m128i fresh = next_words<Recurrence>(simd::load_aligned(words + k), next, far, twists);
        simd::store_aligned(words + k, fresh);
        emit(k, fresh);
        return fresh;
    };
    const __m128i first = group(0, simd::load(words + 1), simd::load(words + m));
    int32_t k = 4;
    for (; k < straddle; k += 4) group(k, simd::load(words + k + 1), simd::load(words + k + m));
    group(k, simd::load(words + k + 1), simd::words_after_first(simd::load(words + n - 4), first));
    for (k += 4; k + 4 < n; k += 4) group(k, simd::load(words + k + 1), simd::load(words + k + m - n));
    if constexpr (n % 4 == 0) {
        group(k, simd::words_after_first(simd::load(words + k), first), simd::load(words + k + m - n));
    } else {
        words[k] = next_word<Recurrence>(words[k], words[0], words[k + m - n], twist);
        emit(k, words[k]);
    }
}

template <class Recurrence>
void regenerate(uint32_t* words, uint32_t twist) {
    regenerate<Recurrence>(words, twist, [](int32_t, auto) {});
}

// Writes n numbers. `index` is that of the next word to hand out; at the block's length the block is spent.
template <class Recurrence, class Output>
[[gnu::always_inline]] inline int32_t generate(uint32_t* words, int32_t& index, const Coefficients& c, int32_t n,
                                               typename Output::Element* r, const Output& output) {
    const auto emit = [&](int32_t k, auto raw) {
        if constexpr (sizeof raw == sizeof(uint32_t))
            output.one(r + k, temper<Recurrence>(raw, c));
        else
            output.four(r + k, temper<Recurrence>(raw, c));
    };
    while (n > 0) {
        if (index == Recurrence::words) {
            if (n >= Recurrence::words) {
                regenerate<Recurrence>(words, c.twist, emit);
                r += Recurrence::words;
                n -= Recurrence::words;
                continue;
            }
            regenerate<Recurrence>(words, c.twist);
            index = 0;
        }
        const int32_t left = Recurrence::words - index;
        const int32_t count = n < left ? n : left;
        const uint32_t* raw = words + index;
        int32_t k = 0;
        for (; k + 4 <= count; k += 4) emit(k, simd::load(raw + k));
        for (; k < count; ++k) emit(k, raw[k]);
        index += count;
        r += count;
        n -= count;
    }
    return StatusOk;
}

// The array initialisation of M. Matsumoto and T. Nishimura; without words the key is the word 1.
template <class Recurrence>
void seed(uint32_t* words, int32_t n, const uint32_t* key) {
    constexpr int32_t length = Recurrence::words;
    static constexpr uint32_t one = 1;
    if (n < 1) n = 1, key = &one;
    const auto mixed = [&](int32_t i, uint32_t factor) { return factor * (words[i - 1] ^ words[i - 1] >> 30); };
    int32_t i = 1;
    const auto advance = [&] {
        if (++i < length) return;
        words[0] = words[length - 1];
        i = 1;
    };
    words[0] = 19650218;
    for (int32_t k = 1; k < length; ++k) words[k] = mixed(k, 1812433253) + static_cast<uint32_t>(k);
    int32_t j = 0;
    for (int32_t k = n < length ? length : n; k > 0; --k) {
        words[i] = (words[i] ^ mixed(i, 1664525)) + key[j] + static_cast<uint32_t>(j);
        advance();
        if (++j == n) j = 0;
    }
    for (int32_t k = 1; k < length; ++k) {
        words[i] = (words[i] ^ mixed(i, 1566083941)) - static_cast<uint32_t>(i);
        advance();
    }
    words[0] = 0x80000000;
}

}  // namespace orv::brng::twister
