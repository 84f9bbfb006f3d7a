// MRG32K3A, the combined multiple recursive generator: seeding and jumps. Long runs go through the lanes of
// mrg32k3a_lanes.h, short ones and the ends of long ones by fours; numbers and state are those of the plain walk.
#include "brng/mrg32k3a.h"

#include "brng/entries.h"
#include "brng/mrg32k3a_fours.h"
#include "brng/mrg32k3a_lanes.h"
#include "brng/outputs.h"
#include "streams/state_checks.h"

#include <stddef.h>

namespace orv::brng::mrg32k3a {

namespace {

constexpr double unit = 2.328306549837829e-10;  // maps m1 to 1
constexpr int32_t seed_words = 6;
constexpr int32_t table_words = 4;

struct State {
    Stream header;
    Residues residues;
};
static_assert(sizeof(State) == 40 && offsetof(State, residues) == 16);

Residues& residues_of(Stream* stream) { return reinterpret_cast<State*>(stream)->residues; }

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    Residues& s = residues_of(stream);
    int32_t left = n;
    if (left >= shortest_block)
        for (const int log_rows : row_lengths) {
            const int32_t block = lanes << log_rows;
            for (; left >= block; left -= block, r += block) generate_block(s, log_rows, r, output);
        }
    if (left > 0) generate_fours(s, left, r, output);
    return StatusOk;
}

void seed(Residues& s, int32_t n, const uint32_t* words) {
    uint32_t all[seed_words];
    for (int32_t i = 0; i < seed_words; ++i) all[i] = i < n ? words[i] : 1;
    for (int i = 0; i < 3; ++i) {
        s.x[i] = all[i] >= m1 ? all[i] - m1 : all[i];
        s.y[i] = all[i + 3] >= m2 ? all[i + 3] - m2 : all[i + 3];
    }
    if ((s.x[0] | s.x[1] | s.x[2]) == 0) s.x[0] = 1;
    if ((s.y[0] | s.y[1] | s.y[2]) == 0) s.y[0] = 1;
}

void skip_ahead(Residues& s, int32_t n, const uint64_t* count) {
    while (n > 0 && count[n - 1] == 0) --n;
    if (n < table_words || (n == table_words && count[table_words - 1] <= 1)) {
        __kuziVect3PowArrayMod_M1(s.x, n, count, &powers1.power[0].at[0][0]);
        __kuziVect3PowArrayMod_M2(s.y, n, count, &powers2.power[0].at[0][0]);
        return;
    }
    // Beyond the last matrix of the tables, 2^192.
    static const uint32_t row1[] = {0, a12, m1 - a13};
    static const uint32_t row2[] = {b21, 0, m2 - b23};
    __kuziVect3PowArrayMod(s.x, row1, m1, n, count);
    __kuziVect3PowArrayMod(s.y, row2, m2, n, count);
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    switch (method) {
        case InitMethodSeed:
            seed(residues_of(stream), n, static_cast<const uint32_t*>(params));
            return StatusOk;
        case InitMethodSkipAhead:
            skip_ahead(residues_of(stream), 1, static_cast<const uint64_t*>(params));
            return StatusOk;
        case InitMethodSkipAheadEx:
            skip_ahead(residues_of(stream), n, static_cast<const uint64_t*>(params));
            return StatusOk;
        default:
            return status_of_missing(method);
    }
}

using Outputs = LinearOutputs<unit>;

}  // namespace

bool is_sound(const Stream* stream) {
    const Residues& s = reinterpret_cast<const State*>(stream)->residues;
    const auto below = [](const uint32_t* v, uint32_t m) { return v[0] < m && v[1] < m && v[2] < m; };
    return below(s.x, m1) && below(s.y, m2) && (s.x[0] | s.x[1] | s.x[2]) != 0 && (s.y[0] | s.y[1] | s.y[2]) != 0;
}

}  // namespace orv::brng::mrg32k3a

ORV_BRNG_DEFINE(MRG32K3A, mrg32k3a)
