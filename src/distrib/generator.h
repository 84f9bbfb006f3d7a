// The generator behind a stream, as every distribution reaches it: through the registry row of the stream's id.
#pragma once

#include <orv/streams.h>

#include <stdint.h>

namespace orv::distrib {

inline const BrngProperties& generator_of(const Stream* stream) {
    int32_t row, member;
    const BrngProperties* table = __kuzGetBrngBaseOffset(stream->brngId, &row, &member);
    return table[row];
}

}  // namespace orv::distrib
