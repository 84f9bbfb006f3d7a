// Raw words of the generator, and words of exactly 32 or 64 bits from the generators that have them.
#include "distrib/generator.h"
#include "platform/export.h"

#include <orv/random.h>

#include <stddef.h>

using namespace orv::distrib;

namespace {

constexpr int32_t block = 2048;
constexpr int unused_bits = 27;  // a 59-bit word keeps its upper 32

int32_t refuse(int32_t, Stream*, int32_t, uint32_t*) { return BrngStatusNoFullWidth; }

int32_t words(int32_t method, Stream* stream, int32_t n, uint32_t* r) {
    return _kuziRngUniformBits(method, stream, n, r);
}

int32_t upper_halves(int32_t method, Stream* stream, int32_t n, uint32_t* r) {
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
constexpr Fill fills[] = {
    refuse,        // MCG31M1
    refuse,        // R250
    refuse,        // MRG32K3A
    upper_halves,  // MCG59
    refuse,        // WH
    refuse,        // Sobol
    refuse,        // Niederr
    words,         // MT19937
    words,         // MT2203
    refuse,        // iAbstract
    refuse,        // dAbstract
    refuse,        // sAbstract
    words,         // SFMT19937
    words,         // TRNG
    words,         // ARS5
    words,         // PHILOX4X32X10
};
constexpr int32_t rows = sizeof fills / sizeof fills[0];

int32_t fill(int32_t method, Stream* stream, int32_t n, uint32_t* r) {
    int32_t row, member;
    __kuzGetBrngBaseOffset(stream->brngId, &row, &member);
    return row < rows ? fills[row](method, stream, n, r) : BrngStatusNoFullWidth;
}

}  // namespace

ORV_API int32_t _kuziRngUniformBits(int32_t, Stream* stream, int32_t n, void* r) {
    return generator_of(stream).iBRng(stream, n, r);
}

ORV_API int32_t _kuziRngUniformBits32(int32_t method, Stream* stream, int32_t n, uint32_t* r) {
    return fill(method, stream, n, r);
}

ORV_API int32_t _kuziRngUniformBits64(int32_t method, Stream* stream, int32_t n, uint64_t* r) {
    return fill(method, stream, 2 * n, reinterpret_cast<uint32_t*>(r));
}
