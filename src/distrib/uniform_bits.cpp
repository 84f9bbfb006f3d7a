// Raw words of the generator, and words of exactly 32 or 64 bits from the generators that have them.
#include "services/export.h"
#include "streams/builtin_generators.h"
#include "streams/record.h"

#include <orv/random.h>

#include <stddef.h>

using namespace orv::streams;

namespace {

constexpr int32_t block = 2048;
constexpr int unused_bits = 27;  // a 59-bit word keeps its upper 32

int32_t give_none(int32_t, Stream*, int32_t, uint32_t*) { return BrngStatusNoFullWidth; }

int32_t give_words(int32_t method, Stream* stream, int32_t n, uint32_t* r) {
    return _kuziRngUniformBits(method, stream, n, r);
}

int32_t give_upper(int32_t method, Stream* stream, int32_t n, uint32_t* r) {
    uint64_t buffer[block];
    int32_t status = StatusOk;
    for (int32_t done = 0; done < n;) {
        const int32_t count = n - done < block ? n - done : block;
        status = _kuziRngUniformBits(method, stream, count, buffer);
        if (status < 0) return status;
        for (int32_t i = 0; i < count; ++i) r[done + i] = static_cast<uint32_t>(buffer[i] >> unused_bits);
        done += count;
    }
    return status;
}

// By row of the registry. A 64-bit word is two 32-bit words, the earlier one low, so one table serves both widths.
using Fill = int32_t (*)(int32_t method, Stream* stream, int32_t n, uint32_t* r);
#define ORV_GIVE_NONE give_none
#define ORV_GIVE_WORDS give_words
#define ORV_GIVE_UPPER give_upper
#define ORV_FILL(mark, name, space, figures, members, width, state) ORV_GIVE_##width,
constexpr Fill fills[] = {ORV_BUILTIN_GENERATORS(ORV_FILL)};

// No row above the last of these in the table of small ids is one of a generator with such words.
int32_t fill(int32_t method, Stream* stream, int32_t n, uint32_t* r) {
    const int32_t row = resolve(stream->brngId).row;
    return row < builtin_rows ? fills[row](method, stream, n, r) : BrngStatusNoFullWidth;
}

}  // namespace

ORV_API int32_t _kuziRngUniformBits(int32_t, Stream* stream, int32_t n, void* r) {
    return row_of(stream)->iBRng(stream, n, r);
}

ORV_API int32_t _kuziRngUniformBits32(int32_t method, Stream* stream, int32_t n, uint32_t* r) {
    return fill(method, stream, n, r);
}

ORV_API int32_t _kuziRngUniformBits64(int32_t method, Stream* stream, int32_t n, uint64_t* r) {
    // Twice a count far below 0 would come out above it.
    return fill(method, stream, n > 0 ? 2 * n : n, reinterpret_cast<uint32_t*>(r));
}
