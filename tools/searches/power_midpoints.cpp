// Finds powers of doubles next to the middle between two doubles.
//
//     power_midpoints [INTERVALS [SEED]]
//
// prints lines "x, y, // distance from the middle, in ulp", as the list of hard powers takes them. Three kinds:
//
// For a fixed exponent y, x^y over 2^18 successive x is a straight line but for 2^-15 ulp or so. In units of the last place,
// modulo 1 and as integers of 62 bits, it is a + b t, and the t at which it meets a narrow window about 1/2 follow from the
// first of them by the steps of Euclid's algorithm on (b, 1). What the window holds is taken exactly. With a million
// intervals the least distances come to 2^-37 ulp.
//
// Squares are integers: X^2 = 2^52 + d modulo 2^53 (modulo 2^54 for X^2 of 106 bits) for the least odd d that has a root,
// which is found digit by digit.
//
// Next to 1 every exponent has its hard base: with y = ln m / ln x for a middle m = 1 + (k + 1/2) ulp, rounding y moves the
// power by |ln m| half an ulp of 1, little as ln m is.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include <mpfr.h>

namespace {

using Wide = unsigned __int128;

constexpr int digits = 53;
constexpr mpfr_prec_t precision = 240;

struct Found {
    double x, y, distance;
};

struct Number {
    mpfr_t value;
    Number() { mpfr_init2(value, precision); }
    ~Number() { mpfr_clear(value); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
};

// x^y in units of its last place: from 2^52 to 2^53.
void power_in_ulp(mpfr_t power, double x, double y) {
    static Number exponent;
    mpfr_set_d(power, x, MPFR_RNDN);
    mpfr_set_d(exponent.value, y, MPFR_RNDN);
    mpfr_pow(power, power, exponent.value, MPFR_RNDN);
    mpfr_mul_2si(power, power, digits - mpfr_get_exp(power), MPFR_RNDN);
}

// Of x^y from the nearest middle; 1 where it is one or no double's neighbour is.
double distance_of(double x, double y) {
    static Number power;
    power_in_ulp(power.value, x, y);
    mpfr_frac(power.value, power.value, MPFR_RNDN);
    mpfr_sub_d(power.value, power.value, 0.5, MPFR_RNDN);
    const double distance = std::fabs(mpfr_get_d(power.value, MPFR_RNDN));
    return distance == 0 ? 1 : distance;
}

// The first t with low <= b t mod m <= high, where there is one.
uint64_t first_in(uint64_t b, uint64_t m, uint64_t low, uint64_t high) {
    if (low == 0) return 0;
    if (b == 0) return UINT64_MAX;
    if (2 * Wide{b} > m) return first_in(m - b, m, m - high, m - low);
    const uint64_t t = (low + b - 1) / b;
    if (Wide{t} * b <= high) return t;
    const uint64_t turns = first_in(b - m % b, b, low % b, high % b);
    if (turns == UINT64_MAX) return turns;
    return static_cast<uint64_t>((low + Wide{m} * turns + b - 1) / b);
}

constexpr int fraction_bits = 62;
constexpr uint64_t one = uint64_t{1} << fraction_bits;

// The fraction of a number of units, as an integer.
uint64_t fraction_of(mpfr_t value) {
    static Number part;
    mpfr_floor(part.value, value);
    mpfr_sub(part.value, value, part.value, MPFR_RNDN);
    mpfr_mul_2si(part.value, part.value, fraction_bits, MPFR_RNDN);
    return static_cast<uint64_t>(mpfr_get_d(part.value, MPFR_RNDD)) & (one - 1);
}

// Along 2^18 numbers from x on.
void search_line(double x, double y, std::vector<Found>& list) {
    constexpr uint64_t length = 1 << 18;
    static Number start, middle, end, slope;
    const double step = std::ldexp(1.0, std::ilogb(x) - digits + 1);
    const double last = x + static_cast<double>(length) * step;
    if (std::ilogb(last) != std::ilogb(x)) return;
    power_in_ulp(start.value, x, y);
    power_in_ulp(middle.value, x + static_cast<double>(length / 2) * step, y);
    power_in_ulp(end.value, last, y);
    // Over a power of two the unit changes.
    mpfr_sub(slope.value, end.value, start.value, MPFR_RNDN);
    if (mpfr_cmpabs_ui(slope.value, uint64_t{1} << 30) > 0) return;
    mpfr_div_ui(slope.value, slope.value, length, MPFR_RNDN);
    // Halfway between chord and tangent the curve is at most half of its height over the chord away.
    mpfr_add(end.value, end.value, start.value, MPFR_RNDN);
    mpfr_div_ui(end.value, end.value, 2, MPFR_RNDN);
    mpfr_sub(end.value, middle.value, end.value, MPFR_RNDN);
    const double height = mpfr_get_d(end.value, MPFR_RNDN);
    mpfr_add_d(start.value, start.value, height / 2, MPFR_RNDN);
    const double window = std::fabs(height) / 2 + 0x1p-20;
    if (window > 0x1p-10) return;
    const uint64_t reach = static_cast<uint64_t>(window * static_cast<double>(one));
    const uint64_t b = fraction_of(slope.value);
    uint64_t a = fraction_of(start.value);
    for (uint64_t t = 0;; ++t) {
        // low <= a + b t <= high about a half.
        const uint64_t low = (one / 2 - reach + one - a) % one;
        const uint64_t next = low + 2 * reach >= one ? 0 : first_in(b, one, low, low + 2 * reach);
        if (next >= length - t) return;
        t += next;
        a = static_cast<uint64_t>((a + Wide{b} * (next + 1)) % one);
        const double found = x + static_cast<double>(t) * step;
        list.push_back({found, y, distance_of(found, y)});
    }
}

// The odd X of 53 bits with X^2 = half + d modulo 2 half.
void search_squares(int half_bit, std::vector<Found>& list) {
    const uint64_t half = uint64_t{1} << half_bit;
    for (int64_t d = -63; d < 64; ++d) {
        const uint64_t target = half + static_cast<uint64_t>(d);
        if ((target & 7) != 1) continue;  // squares of odd numbers
        uint64_t root = 1;
        for (int bit = 3; bit <= half_bit; ++bit)
            if (((root * root ^ target) >> bit & 1) != 0) root ^= uint64_t{1} << (bit - 1);
        const uint64_t range = half / 2;
        for (const uint64_t sign : {root, ~root + 1})
            for (uint64_t X = sign % range; X < uint64_t{1} << digits; X += range) {
                if (X >> (digits - 1) == 0) continue;
                const double x = std::ldexp(static_cast<double>(X), 1 - digits);
                if ((X * X - target) % (2 * half) == 0 && distance_of(x, 2) < 0x1p-40)
                    list.push_back({x, 2, distance_of(x, 2)});
            }
    }
}

void search_next_to_one(std::mt19937_64& random, std::vector<Found>& list) {
    static Number middle, base;
    for (int i = 0; i < 4000; ++i) {
        const double k = static_cast<double>(random() >> (20 + random() % 16));
        const double x =
            std::ldexp(1 + static_cast<double>(random() >> 12) * 0x1p-52, static_cast<int>(random() % 64) - 32);
        mpfr_set_d(middle.value, k + 0.5, MPFR_RNDN);
        mpfr_mul_2si(middle.value, middle.value, 1 - digits, MPFR_RNDN);
        mpfr_log1p(middle.value, middle.value, MPFR_RNDN);
        mpfr_set_d(base.value, x, MPFR_RNDN);
        mpfr_log(base.value, base.value, MPFR_RNDN);
        mpfr_div(middle.value, middle.value, base.value, MPFR_RNDN);
        const double y = mpfr_get_d(middle.value, MPFR_RNDN);
        list.push_back({x, y, distance_of(x, y)});
    }
}

void print_hardest(std::vector<Found>& list, size_t most) {
    std::sort(list.begin(), list.end(), [](const Found& a, const Found& b) { return a.distance < b.distance; });
    for (size_t i = 0; i < std::min(most, list.size()); ++i)
        std::printf("%a, %a,  // 2^%.1f\n", list[i].x, list[i].y, std::log2(list[i].distance));
    std::fflush(stdout);
    list.clear();
}

}  // namespace

int main(int argc, char** argv) {
    const long intervals = argc > 1 ? std::atol(argv[1]) : 10'000;
    std::mt19937_64 random(argc > 2 ? static_cast<uint64_t>(std::atoll(argv[2])) : 1);
    std::vector<Found> list;
    for (const int half_bit : {digits - 1, digits}) search_squares(half_bit, list);
    print_hardest(list, 4);
    for (const double y : {3.0, 1.5, 0.5, -1.0, -0.5, 2.5, 1 / 3.0, 2 / 3.0, 0.1, 10.0, -7.25}) {
        for (long i = 0; i < intervals; ++i) {
            // All residues of the power's exponent come up.
            const double x = 1 + static_cast<double>(random() >> 12) * 0x1p-52;
            search_line(std::ldexp(x, static_cast<int>(random() % 6) - 3), y, list);
            if (list.size() > 100'000) {
                std::nth_element(list.begin(), list.begin() + 100, list.end(),
                                 [](const Found& a, const Found& b) { return a.distance < b.distance; });
                list.resize(100);
            }
        }
        print_hardest(list, 2);
    }
    search_next_to_one(random, list);
    print_hardest(list, 12);
}
