// Blocks of words in a jump: a ring that begins at an index, where the length stands for 0. A State has `words` and `index`.
#pragma once

#include "simd/integers.h"

#include <orv/streams.h>

#include <stdint.h>
#include <string.h>

namespace orv::brng::ring {

// to ^= from, each from its own first word on.
template <int32_t Words>
void add(uint32_t (&to)[Words], int32_t to_first, const uint32_t (&from)[Words], int32_t from_first) {
    int32_t i = to_first % Words, j = from_first % Words;
    for (int32_t left = Words; left > 0;) {
        const int32_t before_end = Words - (i > j ? i : j);
        const int32_t run = left < before_end ? left : before_end;
        int32_t k = 0;
        for (; k + 4 <= run; k += 4)
            simd::store(to + i + k, simd::bit_xor(simd::load(to + i + k), simd::load(from + j + k)));
        for (; k < run; ++k) to[i + k] ^= from[j + k];
        i = i + run == Words ? 0 : i + run;
        j = j + run == Words ? 0 : j + run;
        left -= run;
    }
}

template <class State>
void zero(Stream* state) {
    State& s = *reinterpret_cast<State*>(state);
    memset(s.words, 0, sizeof s.words);
    s.index = 0;
}

template <class State>
void copy(Stream* dest, const Stream* source) {
    State& to = *reinterpret_cast<State*>(dest);
    const State& from = *reinterpret_cast<const State*>(source);
    memcpy(to.words, from.words, sizeof to.words);
    to.index = from.index;
}

template <class State>
void add(Stream* dest, const Stream* source) {
    State& to = *reinterpret_cast<State*>(dest);
    const State& from = *reinterpret_cast<const State*>(source);
    add(to.words, to.index, from.words, from.index);
}

// The ring from its first word on.
template <int32_t Words>
void unroll(uint32_t* to, const uint32_t* from, int32_t first) {
    const int32_t i = first % Words;
    memcpy(to, from + i, static_cast<size_t>(Words - i) * sizeof *to);
    memcpy(to + (Words - i), from, static_cast<size_t>(i) * sizeof *to);
}

}  // namespace orv::brng::ring
