// The sine of theta + r, theta a row of a table and r small, for every double
// kernel that works by table.
//
// With s = sin theta, c = cos theta and the reduced argument r + low,
//
//   sin(theta + r + low) = s + c r + [c (sin r - r) + s (cos r - 1) + (c - s r)
//   low].
//
// The cosine is kept as a power of two next to it (its product with r is exact)
// and the rest. The three large terms s + lead r + rest r are added with their
// errors kept; the bracket is small. The cosine of the angle is its sine a
// quarter turn on, which is another row.
#pragma once

#include "simd/constants.h"
#include "vecmath/exp_log/pairs_d.h"
#include "vecmath/trig/tables/trig_tables.h"

namespace orv::vecmath {

using D = __m128d;

using simd::splat;
using simd::Splat;

struct TrigConstants {
    Splat<double> zero{0.0}, one{1.0};
    Splat<double> shifter{0x1.8p+52};  // adding it leaves an integer in the low bits
    simd::SplatBits<uint64_t> upper_24{0xFFFFFFFFE0000000};
};
inline constexpr TrigConstants trig;

// ---- The nearest multiple of a step, the step in parts
// --------------------------------------------------------------

// The first two parts have so few bits that their products with every multiple
// of the main paths are exact.
struct StepParts {
    Splat<double> inverse;  // of the step
    Splat<double> high, middle, low;
    Splat<double> last{0.0};  // where three parts are not enough
};

template <const StepParts& P>
struct Nearest {
    D shifted;  // the multiple in the low bits
    D k;        // the multiple
    explicit Nearest(D a) : shifted(a * P.inverse + trig.shifter), k(shifted - trig.shifter) {}
};

// a less k steps; and the same with what rounding took from it.
template <const StepParts& P>
inline D less_steps(D a, D k) {
    return ((a - k * P.high) - k * P.middle) - k * P.low;
}
template <const StepParts& P>
inline Pair less_steps_exactly(D a, D k) {
    const D r0 = a - k * P.high;
    const D t1 = k * P.middle;
    const D r1 = r0 - t1;
    const D lost = (r0 - r1) - t1;
    if constexpr (P.last == 0.0) return {r1, lost - k * P.low};
    const D t2 = k * P.low;
    const D r2 = r1 - t2;
    return {r2, (lost + ((r1 - r2) - t2)) - k * P.last};
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

// Polynomials next to the sine and the cosine over a step of a table; the
// sine's last term may be absent.
struct StepPolynomials {
    Splat<double> s3, s5, s7;
    Splat<double> c2, c4, c6;
};

// ---- 128 rows: |r| up to pi/128, Taylor polynomials
// ------------------------------------------------------------------

inline constexpr StepPolynomials taylor_128{-0x1.5555555555555p-3,  0x1.1111111111111p-7,
                                            -0x1.a01a01a01a01ap-13, -0x1p-1,
                                            0x1.5555555555555p-5,   -0x1.6c16c16c16c17p-10};

struct Step128 {
    D r, low, z, sine,
        cosine;  // sin r / r - 1 and cos r - 1 over the reduced argument

    explicit Step128(const Pair& angle) : r(angle.high), low(angle.low), z(r * r) {
        constexpr const StepPolynomials& P = taylor_128;
        sine = z * (P.s3 + z * (P.s5 + z * P.s7));
        cosine = z * (P.c2 + z * (P.c4 + z * P.c6));
    }

    // The sine of r + low and the angle of row j of a lane, `quarters` quarter
    // turns on; and its leading part and the rest.
    D sin(simd::Indices<2> j, unsigned quarters) const {
        const Pair y = sin_in_two(j, quarters);
        return y.high + y.low;
    }
    Pair sin_in_two(simd::Indices<2> j, unsigned quarters) const {
        const Columns row(sin_128[(j.lane[0] + 32 * quarters) & 127], sin_128[(j.lane[1] + 32 * quarters) & 127]);
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
        return {high2, low1 + low2 + e + sine_term + cosine_term};
    }
};

// ---- 512 rows: |r| up to pi/512, exceeded by less than 2^-28 of it where k
// comes from a rounded product --------------

// An angle of index * 2 pi/512 + r + low; the index is in the low bits of the
// 64-bit lanes.
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

inline constexpr StepPolynomials steps_512{-0x1.5555555554448p-3, 0x1.1110fabb3551cp-7,  0.0, -0x1p-1,
                                           0x1.5555555554ccfp-5,  -0x1.6c16ab163b2d7p-10};

template <Sums Kind = Sums::compensated>
struct Step512 {
    D r, p, q;
    simd::Indices<2> j;

    explicit Step512(const Reduced& x) : r(x.r), j(x.index) {
        constexpr const StepPolynomials& P = steps_512;
        const D z = r * r;
        p = (r * z) * (P.s3 + z * P.s5) + x.low;
        q = z * (P.c2 + z * (P.c4 + z * P.c6)) - r * x.low;
    }

    D sin(unsigned quarters) const {
        const Pair y = sin_in_two(quarters);
        return y.high + y.low;
    }
    Pair sin_in_two(unsigned quarters) const {
        return sum_512<true, Kind>(j.lane[0] + 128 * quarters, j.lane[1] + 128 * quarters, r, p, q);
    }
};

struct Tangent512Block {
    // Of the tangent over a step, from r^3 on.
    Splat<double> t3{0x1.5555555555559p-2}, t5{0x1.1111110fe825dp-3}, t7{0x1.ba1eec0271523p-5};
};
inline constexpr Tangent512Block tangent_512;

// The tangent of an angle: with T = tan(r + low), (s + c T)/(c - s T), and c -
// s T is s + c T a quarter turn on.
struct Tangent512 {
    Pair numerator, denominator;

    explicit Tangent512(const Reduced& x) {
        constexpr const Tangent512Block& P = tangent_512;
        const simd::Indices<2> j(x.index);
        const D z = x.r * x.r;
        const D t = (x.r * z) * (P.t3 + z * (P.t5 + z * P.t7));
        numerator = sum_512<false>(j.lane[0], j.lane[1], x.r, t + x.low, z);
        denominator = sum_512<false>(j.lane[0] + 128, j.lane[1] + 128, x.r, t + x.low, z);
    }
    D value() const {
        const Pair y = quotient(numerator, denominator);
        return y.high + y.low;
    }
};

}  // namespace orv::vecmath
