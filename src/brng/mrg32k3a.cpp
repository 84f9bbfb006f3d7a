// MRG32K3A, the combined multiple recursive generator: seeding, jumps, and the plain walk. Long runs go through the
// lanes of mrg32k3a_lanes.h, whose numbers and state are those of the plain walk.
#include "brng/modular.h"
#include "brng/mrg32k3a_jump.h"
#include "brng/mrg32k3a_lanes.h"
#include "brng/outputs.h"
#include "platform/export.h"
#include "streams/state_checks.h"

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

// One step of both components; returns the new words. The products are below 2^53, so their difference, brought above
// zero by a multiple of the modulus, is below 2^55, and three folds leave less than 2^32.
__m128i step(MrgVector& v) {
    constexpr uint64_t lift1 = uint64_t{m1} << 20, lift2 = uint64_t{m2} << 21;
    static_assert(lift1 > uint64_t{mrg_a13} * m1 && lift2 > uint64_t{mrg_b23} * m2);
    const __m128i lift = _mm_set_epi64x(static_cast<int64_t>(lift2), static_cast<int64_t>(lift1));
    const __m128i plus = _mm_mul_epu32(_mm_blend_epi16(v.at[1], v.at[2], 0xF0), words_in_lanes(mrg_a12, mrg_b21));
    const __m128i minus = _mm_mul_epu32(v.at[0], words_in_lanes(mrg_a13, mrg_b23));
    const __m128i folded = fold(fold(fold(_mm_sub_epi64(_mm_add_epi64(plus, lift), minus))));
    const __m128i next = _mm_min_epu32(folded, _mm_sub_epi32(folded, moduli()));
    v = {{v.at[1], v.at[2], next}};
    return next;
}

uint32_t word(__m128i lanes) { return static_cast<uint32_t>(_mm_cvtsi128_si32(lanes)); }
uint32_t upper_word(__m128i lanes) { return static_cast<uint32_t>(_mm_extract_epi32(lanes, 2)); }

template <class Output>
void generate_tail(MrgState& s, int32_t n, typename Output::Element* r, const Output& output) {
    MrgVector v = vector_of(s);
    for (int32_t i = 0; i < n; ++i) {
        const __m128i next = step(v);
        const uint32_t x = word(next), y = upper_word(next);
        output.one(r + i, x >= y ? x - y : x - y + m1);
    }
    for (int i = 0; i < 3; ++i) {
        s.x[i] = word(v.at[i]);
        s.y[i] = upper_word(v.at[i]);
    }
}

template <class Output>
int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    MrgState& s = reinterpret_cast<Mrg32k3a*>(stream)->state;
    int32_t left = n;
    if (left >= mrg_shortest_block)
        for (const int log_rows : mrg_row_lengths) {
            const int32_t block = mrg_lanes << log_rows;
            for (; left >= block; left -= block, r += block) generate_block(s, log_rows, r, output);
        }
    if (left > 0) generate_tail(s, left, r, output);
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

namespace orv::brng::mrg32k3a {

bool is_sound(const Stream* stream) {
    const MrgState& s = reinterpret_cast<const Mrg32k3a*>(stream)->state;
    const auto below = [](const uint32_t* v, uint32_t m) { return v[0] < m && v[1] < m && v[2] < m; };
    return below(s.x, m1) && below(s.y, m2) && (s.x[0] | s.x[1] | s.x[2]) != 0 && (s.y[0] | s.y[1] | s.y[2]) != 0;
}

}  // namespace orv::brng::mrg32k3a

ORV_API int32_t __kuzBRngMRG32K3AInitStream(int32_t method, Stream* stream, int32_t n, const void* params) {
    MrgState& state = reinterpret_cast<Mrg32k3a*>(stream)->state;
    switch (method) {
        case InitMethodSeed:
            seed(state, n, static_cast<const uint32_t*>(params));
            return StatusOk;
        case InitMethodLeapfrog:
            return BrngStatusNoLeapfrog;
        case InitMethodSkipAhead:
            skip_ahead(state, 1, static_cast<const uint64_t*>(params));
            return StatusOk;
        case InitMethodSkipAheadEx:
            skip_ahead(state, n, static_cast<const uint64_t*>(params));
            return StatusOk;
        default:
            return StatusBadMethod;
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
