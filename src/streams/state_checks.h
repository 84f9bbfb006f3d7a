// What a loader asks of a state that it has read from an image.
#pragma once

#include "streams/builtin_generators.h"

#include <orv/streams.h>

// The checks of the generators, each defined in its unit.
#define ORV_DECLARE_TRUSTED(space)
#define ORV_DECLARE_TESTED(space)        \
    namespace orv::brng::space {         \
    bool is_sound(const Stream* stream); \
    }
#define ORV_DECLARE_CHUNKED(space)               \
    ORV_DECLARE_TESTED(space)                    \
    namespace orv::brng::space {                 \
    bool chunks_are_sound(const Stream* stream); \
    }
#define ORV_DECLARE(mark, name, space, figures, members, width, state) ORV_DECLARE_##state(space)
ORV_BUILTIN_GENERATORS(ORV_DECLARE)
#undef ORV_DECLARE
#undef ORV_DECLARE_CHUNKED
#undef ORV_DECLARE_TESTED
#undef ORV_DECLARE_TRUSTED

namespace orv::streams {

// Whether the stream's generator can be in this state: residues below their modulus, not zero where zero would stay zero,
// indices in range. True where nothing can tell: for abstract and registered generators.
bool state_is_sound(const Stream* stream);

// Whether the stream has the chunks that its generator wants to find in this state.
bool chunks_are_sound(const Stream* stream);

}  // namespace orv::streams
