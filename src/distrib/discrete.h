// What the discrete distributions share: a setup that the stream keeps from call to call, numbers of one argument, and the
// inversion of a tabulated distribution function.
#pragma once

#include "distrib/transforms.h"
#include "simd/integers.h"
#include "streams/chunks.h"

#include <string.h>

namespace orv::distrib {

// ---- Setups --------------------------------------------------------------------------------------------------------

// The setup of the stream's chunk with this id and size, for parameters that it `matches`; else made anew there by
// `make`. Null without memory. A new chunk is all NaN, which no parameters match.
template <class Setup, class Matches, class Make>
Setup* setup_in_chunk(Stream* stream, int32_t id, int32_t size, Matches matches, Make make) {
    Chunk* chunk = streams::find_chunk(stream, id);
    if (!chunk || chunk->dataBytes != size) {
        chunk = streams::replace_chunks(stream, id, size);
        if (!chunk) return nullptr;
        memset(chunk->data, 0xFF, static_cast<size_t>(size));
    }
    Setup* setup = static_cast<Setup*>(chunk->data);
    if (!matches(*setup)) make(*setup);
    return setup;
}

// By the high-accuracy kernel, as accurate_exponential is.
inline double accurate_power(double x, double y) {
    run(reinterpret_cast<WithScalar<double>>(orv_arq_kernel_dPowx_ttab[1]), 1, &x, y, &x);
    return x;
}

// ---- Inversion of a distribution function --------------------------------------------------------------------------

// F(0), F(1), ... of a distribution on the integers from 0, and how it goes on past the table's end.
struct DistributionFunction {
    const double* entries;
    int32_t size;
    int32_t start;     // where a walk begins: near the mode, inside the table
    double increment;  // the last entry's share of it
    int32_t most;      // the largest integer of the support
};

// The least k whose F(k) exceeds u, from the end of the table on. ratio(k) is f(k) / f(k - 1). Where u lies above all that
// the sum reaches in double precision, the integer from which on nothing changes.
template <class Ratio>
int32_t invert_beyond(const DistributionFunction& f, double u, Ratio ratio) {
    double sum = f.entries[f.size - 1], increment = f.increment;
    int32_t k = f.size;
    for (; k < f.most; ++k) {
        increment *= ratio(k);
        const double next = sum + increment;
        if (next > u) return k;
        if (!(next > sum)) break;
        sum = next;
    }
    if (k > f.size) return k;
    for (--k; k > 0 && f.entries[k - 1] == sum;) --k;
    return k;
}

// The first entry that exceeds u, found step by step from the start.
template <class Ratio>
int32_t invert_walking(const DistributionFunction& f, double u, Ratio ratio) {
    int32_t k = f.start;
    if (f.entries[k] > u) {
        while (k > 0 && f.entries[k - 1] > u) --k;
        return k;
    }
    while (k < f.size && !(f.entries[k] > u)) ++k;
    return k < f.size ? k : invert_beyond(f, u, ratio);
}

// Where to begin for u in [j / cells, (j + 1) / cells): the first entry that exceeds j / cells.
struct Guide {
    static constexpr int32_t cells = 256;
    uint16_t first[cells + 1];

    explicit Guide(const DistributionFunction& f) {
        int32_t k = 0;
        for (int32_t j = 0; j <= cells; ++j) {
            while (k < f.size && f.entries[k] <= j * (1.0 / cells)) ++k;
            first[j] = static_cast<uint16_t>(k < UINT16_MAX ? k : UINT16_MAX);
        }
    }
};

// The same for n uniforms: most of them are at their entry or at the one before it after one look into the guide, which
// costs no branch that goes either way.
template <class Ratio>
void invert_guided(const DistributionFunction& f, const Guide& guide, int32_t n, const double* u, int32_t* r,
                   Ratio ratio) {
    const __m128d cells = simd::splat(static_cast<double>(Guide::cells));
    const __m128i zero = _mm_setzero_si128(), most = simd::splat_32(Guide::cells);
    const int32_t last = f.size - 1;
    const auto find = [&](int32_t cell, double x) {
        int32_t k = guide.first[cell];
        if (k < last) {
            k += f.entries[k] <= x;
            if (f.entries[k] > x) return k;
        }
        while (k < f.size && !(f.entries[k] > x)) ++k;
        return k < f.size ? k : invert_beyond(f, x, ratio);
    };
    const auto cells_of = [&](__m128i words) { return simd::least_32(simd::greatest_32(words, zero), most); };
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const __m128i low = simd::truncate(simd::load(u + i) * cells);
        const __m128i high = simd::truncate(simd::load(u + i + 2) * cells);
        const __m128i cell = cells_of(simd::low_halves(low, high));
        r[i] = find(simd::word<0>(cell), u[i]);
        r[i + 1] = find(simd::word<1>(cell), u[i + 1]);
        r[i + 2] = find(simd::word<2>(cell), u[i + 2]);
        r[i + 3] = find(simd::word<3>(cell), u[i + 3]);
    }
    for (; i < n; ++i) r[i] = find(simd::word<0>(cells_of(simd::truncate(simd::load_one(u + i) * cells))), u[i]);
}

// n numbers by inversion, from double-precision uniforms in blocks of `most_drawn`.
template <int32_t most_drawn, class Ratio>
int32_t draw_by_inversion(Stream* stream, int32_t n, int32_t* r, const DistributionFunction& f, Ratio ratio) {
    constexpr int32_t guide_pays = 200;
    double u[most_drawn];
    int32_t status = StatusOk;
    const auto draw_blocks = [&](auto invert) {
        for (int32_t done = 0; done < n;) {
            const int32_t count = n - done < most_drawn ? n - done : most_drawn;
            status = draw_uniforms(stream, count, u, 0.0, 1.0);
            if (status < 0) return;
            invert(count, r + done);
            done += count;
        }
    };
    if (n < guide_pays) {
        draw_blocks([&](int32_t count, int32_t* to) {
            for (int32_t i = 0; i < count; ++i) to[i] = invert_walking(f, u[i], ratio);
        });
    } else {
        const Guide guide(f);
        draw_blocks([&](int32_t count, int32_t* to) { invert_guided(f, guide, count, u, to, ratio); });
    }
    return status;
}

}  // namespace orv::distrib
