// The list of the built-in generators, in the order of their rows and ids. A consumer hands a macro of its own to
// ORV_BUILTIN_GENERATORS, which calls it once a row:
//
//   ROW(mark, name, space, figures, members, width, state)
//
//   mark    HERE, or LATER while the generator is not written: such a row keeps its place and figures, and creation
//           refuses its id. Marks only ever turn into HERE.
//   name    as in its id and its entries: BrngMCG59, __kuziBRngMCG59
//   space   the generator's namespace in orv::brng
//   figures stateBytes, seedCount, includesZero, wordBytes, bitCount
//   members of the family, 1 where there is none
//   width   what the generator gives where words of exactly 32 bits are asked for: WORDS its own, UPPER the upper half
//           of a longer one, NONE nothing
//   state   TESTED if orv::brng::space::is_sound(stream) tells whether a state that was read from an image is one that
//           the generator can be in; CHUNKED if it does so for the state, and chunks_are_sound(stream) for the chunks
//           once they are there; TRUSTED where nothing can tell
#pragma once

#include <stdint.h>

// clang-format off
#define ORV_BUILTIN_GENERATORS(ROW) \
    ROW(HERE,   MCG31M1,       mcg31m1,       FIGURES(   24,     1, 0,  4, 31), 1,    NONE,  TESTED)  \
    ROW(HERE,   R250,          r250,          FIGURES( 1024,   252, 1,  4, 32), 1,    NONE,  TESTED)  \
    ROW(HERE,   MRG32K3A,      mrg32k3a,      FIGURES(   40,     6, 1,  4, 32), 1,    NONE,  TESTED)  \
    ROW(HERE,   MCG59,         mcg59,         FIGURES(   32,     1, 0,  8, 59), 1,    UPPER, TESTED)  \
    ROW(HERE,   WH,            wh,            FIGURES(   48,     4, 1, 16, 24), 273,  NONE,  TESTED)  \
    ROW(HERE,   Sobol,         sobol,         FIGURES(11712,  2604, 0,  4, 32), 1,    NONE,  CHUNKED) \
    ROW(HERE,   Niederr,       niederr,       FIGURES(84288, 10498, 0,  4, 32), 1,    NONE,  CHUNKED) \
    ROW(HERE,   MT19937,       mt19937,       FIGURES( 2520,   625, 1,  4, 32), 1,    WORDS, TESTED)  \
    ROW(HERE,   MT2203,        mt2203,        FIGURES(  312,    70, 1,  4, 32), 6024, WORDS, TESTED)  \
    ROW(HERE,   iAbstract,     abstract,      FIGURES(   40,     0, 1,  4, 32), 1,    NONE,  TESTED)  \
    ROW(HERE,   dAbstract,     abstract,      FIGURES(   56,     0, 1,  4, 32), 1,    NONE,  TESTED)  \
    ROW(HERE,   sAbstract,     abstract,      FIGURES(   48,     0, 1,  4, 32), 1,    NONE,  TESTED)  \
    ROW(HERE,   SFMT19937,     sfmt19937,     FIGURES( 2536,   625, 1,  4, 32), 1,    WORDS, TESTED)  \
    ROW(HERE,   TRNG,          trng,          FIGURES(   24,     1, 0,  4, 32), 1,    WORDS, TRUSTED) \
    ROW(HERE,   ARS5,          ars5,          FIGURES(   72,     8, 1,  4, 32), 1,    WORDS, TESTED)  \
    ROW(HERE,   PHILOX4X32X10, philox4x32x10, FIGURES(   64,     8, 1,  4, 32), 1,    WORDS, TESTED)
// clang-format on

namespace orv::streams {

#define ORV_ROW_OF(mark, name, space, figures, members, width, state) row_of_##name,
enum BuiltinRow : int32_t { ORV_BUILTIN_GENERATORS(ORV_ROW_OF) builtin_rows };
#undef ORV_ROW_OF

}  // namespace orv::streams
