// One double to an eighth of a turn, and its sine from there.
//
// Below 2^30 the multiple of pi/4 has 31 bits, and the leading parts of pi/4 so few that their products with it are exact;
// below 2^23 four parts do, beyond it is five.
//
// From 2^30 on, x * 4/pi is formed from pieces of 4/pi of 25 bits. The exponent tells from which piece on: everything
// before it makes multiples of 8 eighths, which are whole turns. With x in halves of 27 and 26 bits every product is exact;
// a product of magnitude 2^54 or more, having at most 52 bits, is a multiple of 8 too, and of the others the multiple of 8
// is taken away before they are added. Eight pieces leave less than 2^-95 of an eighth; no double comes closer than 2^-62
// to a multiple of pi/4.
#include "vecmath/trig/scalar_reduction_d.h"

#include "vecmath/trig/steps_d.h"

#include <bit>
#include <span>

namespace orv::trig {

namespace {

uint32_t exponent_field(double x) { return static_cast<uint32_t>(std::bit_cast<uint64_t>(x) >> 52) & 0x7FF; }

double leading_27_bits(double x) { return std::bit_cast<double>(std::bit_cast<uint64_t>(x) & 0xFFFFFFFFFC000000); }

// Adds x to high + low; low takes the rounding errors.
void accumulate(double& high, double& low, double x) {
    const double sum = high + x;
    const double part = sum - high;
    low += (high - (sum - part)) + (x - part);
    high = sum;
}

void normalise(double& high, double& low) {
    const double sum = high + low;
    low = (high - sum) + low;
    high = sum;
}

// |x| below 2^30.
Quadrant reduce_by_parts(double a) {
    constexpr double four[4] = {0.78539816290140152, 4.9604679044912281e-10, -6.088525906594782e-19,
                                1.7607799325916001e-27};
    constexpr double five[5] = {0.78539752960205078, 6.3379548009834252e-07, -8.2569910110630307e-14,
                                -6.675151087907452e-20, 8.2231284681621288e-27};
    const std::span<const double> parts = exponent_field(a) < 0x416 ? std::span<const double>(four) : five;
    // The nearest even multiple of pi/4.
    const int64_t eighths = (static_cast<int64_t>(a * 1.2732395447351628) + 1) & ~int64_t{1};
    const double k = static_cast<double>(eighths);
    double high = a, low = 0;
    for (const double part : parts) accumulate(high, low, -(k * part));
    normalise(high, low);
    return {static_cast<int32_t>(eighths / 2 & 3), high, low};
}

Quadrant reduce_by_pieces(double a) {
    const uint32_t e = exponent_field(a);
    const uint32_t first = ((e - 0x41C) * 0x147AE) >> 21;  // (e - 0x41C)/25
    const double scaled = std::bit_cast<double>(std::bit_cast<uint64_t>(a) - (uint64_t{200} << 52));
    const double x[2] = {leading_27_bits(scaled), scaled - leading_27_bits(scaled)};
    constexpr double keep_eights = 1.5 * 0x1p55;
    double high = 0, low = 0;
    for (uint32_t i = first; i < first + 8; ++i) {
        for (const double half : x) {
            const double product = half * four_over_pi_pieces[i];
            if (product >= 0x1p54 || product <= -0x1p54) continue;
            accumulate(high, low, product - ((product + keep_eights) - keep_eights));
        }
    }
    normalise(high, low);
    const double quarters = (high * 0.5 + shifter) - shifter;
    high -= 2 * quarters;
    normalise(high, low);

    // Times pi/4 in two parts; the product of the leading ones, of 27 and 23 bits, is exact.
    const double lead = leading_27_bits(high), rest = (high - lead) + low;
    const double product = lead * 0.78539812564849854;
    const double correction = rest * 0.78539812564849854 + (lead + rest) * 3.7748949774459412e-08;
    Quadrant result{static_cast<int32_t>(quarters) & 3, product + correction, 0};
    result.low = (product - result.high) + correction;
    return result;
}

}  // namespace

Quadrant reduce_to_quadrant(double x) {
    const double a = std::bit_cast<double>(std::bit_cast<uint64_t>(x) & 0x7FFFFFFFFFFFFFFF);
    Quadrant q = exponent_field(a) < 0x41D ? reduce_by_parts(a) : reduce_by_pieces(a);
    if (std::bit_cast<uint64_t>(x) >> 63) q = {-q.quadrant & 3, -q.high, -q.low};
    return q;
}

double sine_of_one(double x, int32_t quarters) {
    const uint32_t e = exponent_field(x);
    if (e < 0x303 && quarters == 0) {
        // The sine of so small a number is the number, a subnormal one inexactly: scaled up, a bit is lost on the way down.
        if (x == 0) return x;
        const double scaled = x * 36028797018963968.0;
        return (scaled - x) * 2.7755575615628914e-17;
    }
    const Quadrant q = e < 0x410 ? Quadrant{0, x, 0} : reduce_to_quadrant(x);
    // Steps of pi/32, every other row of the table.
    const double shifted = q.high * 10.1859163578813 + shifter;
    const double k = shifted - shifter;
    const double r0 = q.high - k * 0.09817477042088285;
    const double t = k * 3.7981878164399788e-12;
    const double r = r0 - t;
    const double low = (((r0 - r) - t) + q.low) - k * 1.2639164054974691e-22;
    const uint32_t row =
        static_cast<uint32_t>(std::bit_cast<uint64_t>(shifted)) + 16 * static_cast<uint32_t>(q.quadrant + quarters);
    const Step128 step({splat(r), splat(low)});
    return _mm_cvtsd_f64(step.sin(Indices(_mm_set1_epi64x(2 * static_cast<int64_t>(row))), 0));
}

}  // namespace orv::trig
