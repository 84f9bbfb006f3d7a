// WH: 273 combined generators, each of four small multiplicative congruences x <- a x mod m. The residues stand in
// doubles. A product p = a x is below 2^48, p / m lies at least 2^-24 from an integer, and p times the rounded 1 / m less than 2^-27
// from p / m, so that in every rounding mode its floor is the quotient and p - q m is exact.
//
// Kernels run in the truncating mode, which the sum of the four fractions, its scaling and the rounding to single
// precision follow. Long runs take four steps at once, each with the multiplier's fourth power.
#include "brng/entries.h"
#include "brng/outputs.h"
#include "streams/record.h"
#include "streams/state_checks.h"

#include <iterator>
#include <stddef.h>

namespace orv::brng::wh {

namespace {

constexpr int congruences = 4;
constexpr int32_t shortest_lane_run = 8;

struct MemberRow {
    uint32_t moduli[congruences];
    uint32_t multipliers;  // a byte each, the first in the lowest
};
// Found by tools/searches/wh_search.
constexpr MemberRow members[] = {
#include "../../data/wh.inc"
};
static_assert(std::size(members) == 273);

// The reciprocals of the moduli, rounded to nearest whatever mode a caller is in.
struct alignas(16) Reciprocals {
    double of[congruences];
};
struct ReciprocalTable {
    Reciprocals row[std::size(members)];

    constexpr ReciprocalTable() : row{} {
        for (size_t i = 0; i < std::size(members); ++i)
            for (int k = 0; k < congruences; ++k) row[i].of[k] = 1.0 / members[i].moduli[k];
    }
};
constexpr ReciprocalTable reciprocals;

struct State {
    Stream header;
    uint32_t x[congruences];  // the next output
    uint32_t a[congruences];  // the multipliers in force
};
static_assert(sizeof(State) == 48 && offsetof(State, a) == 32);

State& state_of(Stream* stream) { return *reinterpret_cast<State*>(stream); }
int32_t member_of(const Stream* stream) { return streams::resolve(stream->brngId).member; }

// ---- Arithmetic -------------------------------------------------------------------------------------------------------

// a b mod m, for residues.
__m128d product(__m128d a, __m128d b, __m128d m, __m128d reciprocal) {
    const __m128d p = a * b;
    return p - simd::round<_MM_FROUND_FLOOR>(p * reciprocal) * m;
}

// Two of the congruences: one step after the other.
struct Pair {
    __m128d x, a, m, reciprocal;

    Pair(const State& s, int32_t member, int first)
        : x(residues(s.x + first)),
          a(residues(s.a + first)),
          m(residues(members[member].moduli + first)),
          reciprocal(simd::load_aligned(reciprocals.row[member].of + first)) {}
    static __m128d residues(const uint32_t* words) { return simd::to_doubles(simd::load_half(words)); }
    void step() { x = product(x, a, m, reciprocal); }
};

// Four successive steps of one congruence.
struct alignas(16) Chain {
    __m128d steps01, steps23;
    __m128d a4, m, reciprocal;
};

void start_chains(const Pair& pair, Chain* chains) {
    const __m128d a2 = product(pair.a, pair.a, pair.m, pair.reciprocal);
    const __m128d a4 = product(a2, a2, pair.m, pair.reciprocal);
    const __m128d x1 = product(pair.x, pair.a, pair.m, pair.reciprocal);
    const __m128d x2 = product(pair.x, a2, pair.m, pair.reciprocal);
    const __m128d x3 = product(x1, a2, pair.m, pair.reciprocal);
    const auto low = [](__m128d v) { return _mm_unpacklo_pd(v, v); };
    const auto high = [](__m128d v) { return _mm_unpackhi_pd(v, v); };
    chains[0] = {_mm_unpacklo_pd(pair.x, x1), _mm_unpacklo_pd(x2, x3), low(a4), low(pair.m), low(pair.reciprocal)};
    chains[1] = {_mm_unpackhi_pd(pair.x, x1), _mm_unpackhi_pd(x2, x3), high(a4), high(pair.m), high(pair.reciprocal)};
}

// Two steps of the four congruences, a register each.
struct TwoSteps {
    __m128d x[congruences];
};

// Moves two of the steps by four and returns what they were.
[[gnu::always_inline]] inline TwoSteps advance(__m128d Chain::*steps, Chain* chains) {
    const auto one = [&](int k) {
        Chain& c = chains[k];
        const __m128d x = c.*steps;
        c.*steps = product(x, c.a4, c.m, c.reciprocal);
        return x;
    };
    return {{one(0), one(1), one(2), one(3)}};
}

// ---- Outputs: of one step in two pairs, and of two steps, one register for each congruence ------------------------------

struct Words {
    using Element = uint32_t[congruences];

    void one(Element* r, const Pair& low, const Pair& high) const {
        simd::store(*r, simd::low_halves(simd::truncate(low.x), simd::truncate(high.x)));
    }
    void two(Element* r, const TwoSteps& steps, const Chain*) const {
        const __m128d(&x)[congruences] = steps.x;
        const __m128i x01 = simd::interleave_low_32(simd::truncate(x[0]), simd::truncate(x[1]));
        const __m128i x23 = simd::interleave_low_32(simd::truncate(x[2]), simd::truncate(x[3]));
        simd::store(r[0], simd::low_halves(x01, x23));
        simd::store(r[1], simd::high_halves(x01, x23));
    }
};

// The fraction of the sum of the residues over their moduli, times the scale, plus the shift.
template <class Real>
struct Fractions {
    using Element = Real;
    double scale, shift;

    void one(Element* r, const Pair& low, const Pair& high) const {
        const __m128d u01 = low.x * low.reciprocal, u23 = high.x * high.reciprocal;
        put_one(r, map(u01 + _mm_unpackhi_pd(u01, u01) + u23 + _mm_unpackhi_pd(u23, u23)));
    }
    void two(Element* r, const TwoSteps& steps, const Chain* chains) const {
        const auto term = [&](int k) { return steps.x[k] * chains[k].reciprocal; };
        const __m128d u = term(0) + term(1) + term(2) + term(3);
        simd::store_doubles(r, map(u));
    }
    __m128d map(__m128d u) const {
        const __m128d fraction = u - simd::round<_MM_FROUND_TRUNC>(u);
        return fraction * simd::splat(scale) + simd::splat(shift);
    }
    static void put_one(Element* r, __m128d v) { simd::store_one_double(r, v); }
};

// ---- Kernels ----------------------------------------------------------------------------------------------------------

// The truncating mode with every exception masked, until the end of the scope. All flags are up from the start: raising
// one would take a hundred cycles, and the caller gets its own back.
class TruncatingMode {
public:
    TruncatingMode() {
        __asm__ volatile("stmxcsr %0" : "=m"(saved) : : "memory");
        constexpr uint32_t truncating = 0x6000, masks = 0x1F80, flags = 0x3F;
        const uint32_t mode = truncating | masks | flags;
        __asm__ volatile("ldmxcsr %0" : : "m"(mode) : "memory");
    }
    ~TruncatingMode() { __asm__ volatile("ldmxcsr %0" : : "m"(saved) : "memory"); }
    TruncatingMode(const TruncatingMode&) = delete;
    TruncatingMode& operator=(const TruncatingMode&) = delete;

private:
    uint32_t saved;
};

// Apart from the change of the mode, so that no arithmetic crosses it.
template <class Output>
[[gnu::noinline]] void walk(State& s, int32_t n, typename Output::Element* r, const Output& output) {
    const int32_t member = member_of(&s.header);
    Pair low(s, member, 0), high(s, member, 2);
    if (n >= shortest_lane_run) {
        Chain chains[congruences];
        start_chains(low, chains);
        start_chains(high, chains + 2);
        for (; n >= 4; n -= 4, r += 4) {
            output.two(r, advance(&Chain::steps01, chains), chains);
            output.two(r + 2, advance(&Chain::steps23, chains), chains);
        }
        low.x = _mm_unpacklo_pd(chains[0].steps01, chains[1].steps01);
        high.x = _mm_unpacklo_pd(chains[2].steps01, chains[3].steps01);
    }
    for (; n > 0; --n, ++r) {
        output.one(r, low, high);
        low.step();
        high.step();
    }
    simd::store(s.x, simd::low_halves(simd::truncate(low.x), simd::truncate(high.x)));
}

// Not inlined, since b - a in the output is formed in the caller's mode.
template <class Output>
[[gnu::noinline]] int32_t generate(Stream* stream, int32_t n, typename Output::Element* r, Output output) {
    if (n < 1) return StatusOk;
    const TruncatingMode mode;
    walk(state_of(stream), n, r, output);
    return StatusOk;
}

struct Outputs {
    template <class Real>
    static Fractions<Real> numbers(Real a, Real b) {
        return {static_cast<double>(b) - static_cast<double>(a), static_cast<double>(a)};
    }
    static Words words() { return {}; }
};

// ---- Seeding and jumps ------------------------------------------------------------------------------------------------

void seed(State& s, int32_t n, const uint32_t* words) {
    const MemberRow& row = members[member_of(&s.header)];
    for (int k = 0; k < congruences; ++k) {
        const uint32_t x = n > k ? words[k] % row.moduli[k] : 1;
        s.x[k] = x == 0 ? 1 : x;
        s.a[k] = row.multipliers >> 8 * k & 0xFF;
    }
}

void skip(State& s, uint64_t count) {
    const MemberRow& row = members[member_of(&s.header)];
    for (int k = 0; k < congruences; ++k) {
        const uint32_t m = row.moduli[k];
        s.x[k] = static_cast<uint32_t>(uint64_t{s.x[k]} * __kuziPowMod(s.a[k], count, m) % m);
    }
}

void leapfrog(State& s, uint32_t index, uint32_t streams) {
    skip(s, index);
    const MemberRow& row = members[member_of(&s.header)];
    for (int k = 0; k < congruences; ++k) s.a[k] = __kuziPowMod(s.a[k], streams, row.moduli[k]);
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params) {
    switch (method) {
        case InitMethodSeed:
            seed(state_of(stream), n, static_cast<const uint32_t*>(params));
            return StatusOk;
        case InitMethodLeapfrog:
            leapfrog(state_of(stream), *static_cast<const uint32_t*>(params), static_cast<uint32_t>(n));
            return StatusOk;
        case InitMethodSkipAhead:
            skip(state_of(stream), *static_cast<const uint64_t*>(params));
            return StatusOk;
        default:
            return status_of_missing(method);
    }
}

}  // namespace

bool is_sound(const Stream* stream) {
    const State& s = *reinterpret_cast<const State*>(stream);
    const MemberRow& row = members[member_of(stream)];
    for (int k = 0; k < congruences; ++k)
        if (s.x[k] - 1 >= row.moduli[k] - 1 || s.a[k] - 1 >= row.moduli[k] - 1) return false;
    return true;
}

}  // namespace orv::brng::wh

ORV_BRNG_DEFINE(WH, wh)
