// MRG32K3A, the combined multiple recursive generator: seeding, jumps, and the plain walk. Long runs go through the
// lanes of mrg32k3a_lanes.h, whose numbers and state are those of the plain walk.
#include "brng/modular.h"
#include "brng/mrg32k3a_jump.h"
#include "brng/mrg32k3a_lanes.h"
#include "brng/outputs.h"
#include "platform/export.h"

#include <orv/random.h>

#include <stddef.h>

using namespace orv::brng;

namespace {

constexpr double unit = 2.328306549837829e-10;  // maps m1 to 1
constexpr int32_t seed_words = 6;
constexpr int32_t table_words = 4;

struct Mrg32k3a {
    Stream header;
    MrgState state;
};
static_assert(sizeof(Mrg32k3a) == 40 && offsetof(Mrg32k3a, state) == 16);

// One step; the products are below 2^53, so the difference brought above zero by a multiple of the modulus is below 2^55.
uint32_t step(MrgState& s) {
    constexpr uint64_t lift1 = uint64_t{m1} << 20, lift2 = uint64_t{m2} << 21;
    static_assert(lift1 > uint64_t{mrg_a13} * m1 && lift2 > uint64_t{mrg_b23} * m2);
    const uint32_t x = reduce<m1>(uint64_t{mrg_a12} * s.x[1] + lift1 - uint64_t{mrg_a13} * s.x[0]);
    const uint32_t y = reduce<m2>(uint64_t{mrg_b21} * s.y[2] + lift2 - uint64_t{mrg_b23} * s.y[0]);
    s = {{s.x[1], s.x[2], x}, {s.y[1], s.y[2], y}};
    return x >= y ? x - y : x - y + m1;
}

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    MrgState& state = reinterpret_cast<Mrg32k3a*>(stream)->state;
    MrgState s = state;
    int32_t left = n;
    for (const int log_rows : mrg_row_lengths) {
        const int32_t block = mrg_lanes << log_rows;
        for (; left >= block; left -= block, r += block) s = generate_block(s, log_rows, r, output);
    }
    for (; left > 0; --left, ++r) output.one(r, step(s));
    state = s;
    return StatusOk;
}

void seed(MrgState& s, int32_t n, const uint32_t* words) {
    uint32_t all[seed_words];
    for (int32_t i = 0; i < seed_words; ++i) all[i] = i < n ? words[i] : 1;
    for (int i = 0; i < 3; ++i) {
        s.x[i] = all[i] >= m1 ? all[i] - m1 : all[i];
        s.y[i] = all[i + 3] >= m2 ? all[i + 3] - m2 : all[i + 3];
    }
    if ((s.x[0] | s.x[1] | s.x[2]) == 0) s.x[0] = 1;
    if ((s.y[0] | s.y[1] | s.y[2]) == 0) s.y[0] = 1;
}

void skip_ahead(MrgState& s, int32_t n, const uint64_t* count) {
    while (n > 0 && count[n - 1] == 0) --n;
    if (n < table_words || (n == table_words && count[table_words - 1] <= 1)) {
        __kuziVect3PowArrayMod_M1(s.x, n, count, &mrg_powers1.power[0].at[0][0]);
        __kuziVect3PowArrayMod_M2(s.y, n, count, &mrg_powers2.power[0].at[0][0]);
        return;
    }
    // Beyond the last matrix of the tables, 2^192.
    static const uint32_t row1[] = {0, mrg_a12, m1 - mrg_a13};
    static const uint32_t row2[] = {mrg_b21, 0, m2 - mrg_b23};
    __kuziVect3PowArrayMod(s.x, row1, m1, n, count);
    __kuziVect3PowArrayMod(s.y, row2, m2, n, count);
}

}  // namespace

ORV_API int32_t __kuzBRngMRG32K3AInitStream(int32_t method, Stream* stream, int32_t n, const void* params) {
    MrgState& state = reinterpret_cast<Mrg32k3a*>(stream)->state;
    switch (method) {
        case InitMethodSeed: seed(state, n, static_cast<const uint32_t*>(params)); return StatusOk;
        case InitMethodLeapfrog: return BrngStatusNoLeapfrog;
        case InitMethodSkipAhead: skip_ahead(state, 1, static_cast<const uint64_t*>(params)); return StatusOk;
        case InitMethodSkipAheadEx: skip_ahead(state, n, static_cast<const uint64_t*>(params)); return StatusOk;
        default: return StatusBadMethod;
    }
}

ORV_API int32_t __kuzsBRngMRG32K3A(Stream* stream, int32_t n, float* r, float a, float b) {
    return generate(stream, n, r, float_output(a, b, unit));
}

ORV_API int32_t __kuzdBRngMRG32K3A(Stream* stream, int32_t n, double* r, double a, double b) {
    return generate(stream, n, r, double_output(a, b, unit));
}

ORV_API int32_t __kuziBRngMRG32K3A(Stream* stream, int32_t n, void* r) {
    return generate(stream, n, static_cast<uint32_t*>(r), RawOutput{});
}
