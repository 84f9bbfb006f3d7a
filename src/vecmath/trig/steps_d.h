// The sine of theta + r, theta a row of a table and r small, for every double kernel that works by table.
//
// With s = sin theta, c = cos theta and the reduced argument r + low,
//
//   sin(theta + r + low) = s + c r + [c (sin r - r) + s (cos r - 1) + (c - s r) low].
//
// The cosine is kept as a power of two next to it (its product with r is exact) and the rest. The three large terms
// s + lead r + rest r are added with their errors kept; the bracket is small. The cosine of the angle is its sine a
// quarter turn on, which is another row.
#pragma once

#include "simd/lanes.h"
#include "vecmath/trig/tables/trig_tables.h"

namespace orv::trig {

using D = __m128d;

using simd::splat;

// A value as an unevaluated sum.
struct Pair {
    D high, low;
};

// ---- The nearest multiple of a step, the step in three parts --------------------------------------------------------

inline constexpr double shifter = 6755399441055744.0;  // 1.5 * 2^52: adding it leaves an integer in the low bits

// The first two parts have so few bits that their products with every multiple of the main paths are exact.
struct StepParts {
    double inverse;  // of the step
    double high, middle, low;
};

template <const StepParts& P>
struct Nearest {
    D shifted;  // the multiple in the low bits
    D k;        // the multiple
    explicit Nearest(D a) : shifted(a * splat(P.inverse) + splat(shifter)), k(shifted - splat(shifter)) {}
};

// a less k steps; and the same with what rounding took from it.
template <const StepParts& P>
inline D less_steps(D a, D k) {
    return ((a - k * splat(P.high)) - k * splat(P.middle)) - k * splat(P.low);
}
template <const StepParts& P>
inline Pair less_steps_exactly(D a, D k) {
    const D r0 = a - k * splat(P.high);
    const D t = k * splat(P.middle);
    const D r = r0 - t;
    return {r, ((r0 - r) - t) - k * splat(P.low)};
}

// A row of four doubles for each of two lanes, by columns.
struct Columns {
    D c[4];
    Columns(const double* row0, const double* row1) {
        const D a0 = _mm_load_pd(row0), a1 = _mm_load_pd(row1);
        const D b0 = _mm_load_pd(row0 + 2), b1 = _mm_load_pd(row1 + 2);
        c[0] = _mm_unpacklo_pd(a0, a1);
        c[1] = _mm_unpackhi_pd(a0, a1);
        c[2] = _mm_unpacklo_pd(b0, b1);
        c[3] = _mm_unpackhi_pd(b0, b1);
    }
};

// The low 16 bits of both 64-bit lanes.
struct Indices {
    unsigned lane0, lane1;
    explicit Indices(__m128i bits)
        : lane0(static_cast<unsigned>(_mm_cvtsi128_si32(bits))),
          lane1(static_cast<unsigned>(_mm_extract_epi16(bits, 4))) {}
};

// ---- 128 rows: |r| up to pi/128, Taylor polynomials ------------------------------------------------------------------

struct Step128 {
    D r, low, z, sine, cosine;  // sin r / r - 1 and cos r - 1 over the reduced argument

    explicit Step128(const Pair& angle) : r(angle.high), low(angle.low), z(r * r) {
        sine = z * (splat(-1.0 / 6) + z * (splat(1.0 / 120) + z * splat(-1.0 / 5040)));
        cosine = z * (splat(-0.5) + z * (splat(1.0 / 24) + z * splat(-1.0 / 720)));
    }

    // The sine of r + low and the angle of row j of a lane, `quarters` quarter turns on.
    D sin(const Indices& j, unsigned quarters) const {
        const Columns row(sin_128[(j.lane0 + 32 * quarters) & 127], sin_128[(j.lane1 + 32 * quarters) & 127]);
        const D rest = row.c[0], s = row.c[1], s_low = row.c[2], lead = row.c[3];
        const D c = lead + rest;
        const D e = (c - s * r) * low + s_low;
        const D t1 = lead * r;
        const D t2 = rest * r;
        const D sine_term = sine * r * c;
        const D cosine_term = cosine * s;
        const D high = s + t1;
        const D low1 = (s - high) + t1;
        const D high2 = high + t2;
        const D low2 = (high - high2) + t2;
        return high2 + (low1 + low2 + e + sine_term + cosine_term);
    }
};

// ---- 512 rows: |r| up to pi/512 and a little more --------------------------------------------------------------------

// An angle of index * 2 pi/512 + r + low; the index is in the low bits of the 64-bit lanes.
struct Reduced {
    D r, low;
    __m128i index;
};

// What sum_512 keeps of the errors of its additions.
enum class Sums { plain, compensated };

// s + c (r + p) + s q for row j of two lanes. The tangent has no q.
template <bool WithQ, Sums Kind = Sums::compensated>
inline Pair sum_512(unsigned j0, unsigned j1, D r, D p, D q) {
    const Columns row(sin_cos_512[j0 & 511], sin_cos_512[j1 & 511]);
    const D rest = row.c[0], lead = row.c[1], s = row.c[2], s_low = row.c[3];
    const D t1 = lead * r;
    const D t2 = rest * r;
    D bracket = (lead + rest) * p + s_low;
    if constexpr (WithQ) bracket += s * q;
    if constexpr (Kind == Sums::plain) return {s, t1 + (t2 + bracket)};
    const D high = s + t1;
    const D low1 = (s - high) + t1;
    const D high2 = high + t2;
    const D low2 = (high - high2) + t2;
    return {high2, (low1 + low2) + bracket};
}

template <Sums Kind = Sums::compensated>
struct Step512 {
    D r, p, q;
    Indices j;

    explicit Step512(const Reduced& x) : r(x.r), j(x.index) {
        const D z = r * r;
        p = (r * z) * (splat(-0.1666666666665455) + z * splat(0.0083333229326095146)) + x.low;
        q = z * (splat(-0.5) + z * (splat(0.041666666666651524) + z * splat(-0.0013888875887985619))) - r * x.low;
    }

    D sin(unsigned quarters) const {
        const Pair y = sum_512<true, Kind>(j.lane0 + 128 * quarters, j.lane1 + 128 * quarters, r, p, q);
        return y.high + y.low;
    }
};

// n/d rounded once but for a trifle: a quotient q of 26 bits has an exact product with the leading 26 bits of d, and what
// n exceeds that product by, over d, completes it. The low parts may be of any size up to a small part of the high ones.
inline Pair quotient(Pair n, Pair d) {
    const D leading_bits = simd::doubles(simd::splat_bits(0xFFFFFFFFF8000000));
    const D inverse = splat(1.0) / (d.high + d.low);
    const D q = simd::bit_and(n.high * inverse, leading_bits);
    const D d_lead = simd::bit_and(d.high, leading_bits);
    const D d_rest = (d.high - d_lead) + d.low;
    return {q, ((n.high - q * d_lead) + (n.low - q * d_rest)) * inverse};
}

// The tangent of an angle: with T = tan(r + low), (s + c T)/(c - s T), and c - s T is s + c T a quarter turn on.
struct Tangent512 {
    Pair numerator, denominator;

    explicit Tangent512(const Reduced& x) {
        const Indices j(x.index);
        const D z = x.r * x.r;
        const D t = (x.r * z) *
                    (splat(0.33333333333333354) + z * (splat(0.13333333329957756) + z * splat(0.053969822841774005)));
        numerator = sum_512<false>(j.lane0, j.lane1, x.r, t + x.low, z);
        denominator = sum_512<false>(j.lane0 + 128, j.lane1 + 128, x.r, t + x.low, z);
    }
    D value() const {
        const Pair y = quotient(numerator, denominator);
        return y.high + y.low;
    }
};

}  // namespace orv::trig
