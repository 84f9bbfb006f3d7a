// Integer lanes. A register of integers is two 64-bit lanes or, where a name ends in _32, four 32-bit ones; a mask or a
// bit operation does not care. What is done to the bits of doubles too, splat_bits and the 64-bit shifts, is in lanes.h.
#pragma once

#include "simd/lanes.h"

namespace orv::simd {

// ---- To and from memory ----------------------------------------------------------------------------------------------

// Sixteen bytes of whole integers.
template <class Integer>
requires(std::is_integral_v<Integer>) inline __m128i load(const Integer* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
template <class Integer>
requires(std::is_integral_v<Integer>) inline __m128i load_aligned(const Integer* p) {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(p));
}
template <class Integer>
requires(std::is_integral_v<Integer>) inline void store(Integer* p, __m128i v) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
}
template <class Integer>
requires(std::is_integral_v<Integer>) inline void store_aligned(Integer* p, __m128i v) {
    _mm_store_si128(reinterpret_cast<__m128i*>(p), v);
}

// Eight bytes, in the lower half; a load makes the upper half zero.
inline __m128i load_half(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
inline void store_half(void* p, __m128i v) { _mm_storel_epi64(static_cast<__m128i*>(p), v); }

// Two places.
inline __m128i gather(const uint64_t* p0, const uint64_t* p1) {
    return bits_of(gather(reinterpret_cast<const double*>(p0), reinterpret_cast<const double*>(p1)));
}

inline __m128i splat_32(int32_t x) { return _mm_set1_epi32(x); }
inline __m128i splat_32(uint32_t x) { return _mm_set1_epi32(static_cast<int32_t>(x)); }
// Two words, each zero-extended to its 64-bit lane.
inline __m128i words_in_lanes(uint32_t lane0, uint32_t lane1) {
    return _mm_unpacklo_epi64(_mm_cvtsi32_si128(static_cast<int32_t>(lane0)),
                              _mm_cvtsi32_si128(static_cast<int32_t>(lane1)));
}
template <int Word>
inline int32_t word(__m128i v) {
    if constexpr (Word == 0) return _mm_cvtsi128_si32(v);
    return _mm_extract_epi32(v, Word);
}

// ---- Bits ------------------------------------------------------------------------------------------------------------

inline __m128i bit_and(__m128i a, __m128i b) { return _mm_and_si128(a, b); }
inline __m128i bit_or(__m128i a, __m128i b) { return _mm_or_si128(a, b); }
inline __m128i bit_xor(__m128i a, __m128i b) { return _mm_xor_si128(a, b); }
inline __m128i bit_and_not(__m128i a, __m128i b) { return _mm_andnot_si128(a, b); }
// a where the mask is all ones, b in the other lanes.
inline __m128i select(__m128i mask, __m128i a, __m128i b) { return _mm_blendv_epi8(b, a, mask); }

template <int Bits>
inline __m128i shift_left_32(__m128i x) {
    return _mm_slli_epi32(x, Bits);
}
template <int Bits>
inline __m128i shift_right_32(__m128i x) {
    return _mm_srli_epi32(x, Bits);
}
// The sign bit moves in.
template <int Bits>
inline __m128i shift_right_signed_32(__m128i x) {
    return _mm_srai_epi32(x, Bits);
}

// ---- Arithmetic and comparison; sums and differences wrap ------------------------------------------------------------

inline __m128i add(__m128i a, __m128i b) { return _mm_add_epi64(a, b); }
inline __m128i subtract(__m128i a, __m128i b) { return _mm_sub_epi64(a, b); }
inline __m128i add_32(__m128i a, __m128i b) { return _mm_add_epi32(a, b); }
inline __m128i subtract_32(__m128i a, __m128i b) { return _mm_sub_epi32(a, b); }
// The low words of 64-bit lanes, unsigned, to whole 64-bit products.
inline __m128i multiply_words(__m128i a, __m128i b) { return _mm_mul_epu32(a, b); }

// a with the sign of b, zero where b is zero.
inline __m128i times_sign_32(__m128i a, __m128i b) { return _mm_sign_epi32(a, b); }

inline __m128i least_32(__m128i a, __m128i b) { return _mm_min_epi32(a, b); }
inline __m128i greatest_32(__m128i a, __m128i b) { return _mm_max_epi32(a, b); }
inline __m128i least_unsigned_32(__m128i a, __m128i b) { return _mm_min_epu32(a, b); }
inline __m128i greatest_unsigned_32(__m128i a, __m128i b) { return _mm_max_epu32(a, b); }
inline __m128i equal_32(__m128i a, __m128i b) { return _mm_cmpeq_epi32(a, b); }
inline __m128i greater_32(__m128i a, __m128i b) { return _mm_cmpgt_epi32(a, b); }

// ---- Between lanes ---------------------------------------------------------------------------------------------------

// Lane k of the result is lane Wk.
template <int W0, int W1, int W2, int W3>
inline __m128i shuffle_32(__m128i x) {
    return _mm_shuffle_epi32(x, _MM_SHUFFLE(W3, W2, W1, W0));
}
// a and b by turns, from the lower and from the upper half of each.
inline __m128i interleave_low_32(__m128i a, __m128i b) { return _mm_unpacklo_epi32(a, b); }
inline __m128i interleave_high_32(__m128i a, __m128i b) { return _mm_unpackhi_epi32(a, b); }
// The even words of a, then those of b; and the odd ones.
inline __m128i even_words(__m128i a, __m128i b) { return bits_of(even_lanes(floats(a), floats(b))); }
inline __m128i odd_words(__m128i a, __m128i b) { return bits_of(odd_lanes(floats(a), floats(b))); }
// The last three words of a, then the first of b.
inline __m128i words_after_first(__m128i a, __m128i b) { return _mm_alignr_epi8(b, a, 4); }
// All 128 bits by whole bytes.
template <int Bytes>
inline __m128i shift_left_bytes(__m128i x) {
    return _mm_slli_si128(x, Bytes);
}
template <int Bytes>
inline __m128i shift_right_bytes(__m128i x) {
    return _mm_srli_si128(x, Bytes);
}
// Half of a, then half of b.
inline __m128i low_halves(__m128i a, __m128i b) { return _mm_unpacklo_epi64(a, b); }
inline __m128i high_halves(__m128i a, __m128i b) { return _mm_unpackhi_epi64(a, b); }
inline __m128i low_and_high_half(__m128i a, __m128i b) { return _mm_blend_epi16(a, b, 0xF0); }
// 64-bit lanes of the low words of one and the high words of the other.
inline __m128i low_and_high_words(__m128i low, __m128i high) { return _mm_blend_epi16(low, high, 0xCC); }
// The words whose bits are set in `chosen`, lane 0 lowest, moved to the front in their order; zeros behind them.
inline __m128i pack_chosen_32(unsigned chosen, __m128i x) {
    struct alignas(16) Moves {
        int8_t byte[16][16];
    };
    static constexpr Moves moves = [] {
        Moves m{};
        for (int set = 0; set < 16; ++set) {
            int to = 0;
            for (int from = 0; from < 4; ++from)
                if (set >> from & 1)
                    for (int b = 0; b < 4; ++b) m.byte[set][to++] = static_cast<int8_t>(4 * from + b);
            while (to < 16) m.byte[set][to++] = -1;
        }
        return m;
    }();
    return _mm_shuffle_epi8(x, _mm_load_si128(reinterpret_cast<const __m128i*>(moves.byte[chosen])));
}
// The greatest of four signed words.
inline int32_t greatest_word(__m128i v) {
    v = greatest_32(v, shuffle_32<2, 3, 0, 1>(v));
    return word<0>(greatest_32(v, shuffle_32<1, 0, 3, 2>(v)));
}

// ---- To and from numbers ---------------------------------------------------------------------------------------------

// Signed words as numbers: all four, or the lower two.
inline __m128 to_floats(__m128i words) { return _mm_cvtepi32_ps(words); }
inline __m128d to_doubles(__m128i words) { return _mm_cvtepi32_pd(words); }
// Toward zero; what does not fit becomes the most negative integer. Two doubles give the lower two words.
inline __m128i truncate(__m128 x) { return _mm_cvttps_epi32(x); }
inline __m128i truncate(__m128d x) { return _mm_cvttpd_epi32(x); }
// The lower two words, signed, as 64-bit lanes.
inline __m128i widen_low(__m128i words) { return _mm_cvtepi32_epi64(words); }

}  // namespace orv::simd
