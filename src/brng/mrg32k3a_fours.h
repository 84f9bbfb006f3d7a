// Runs of MRG32K3A too short for lanes of their own: four successive values at once, each from the same three words of the
// state. The value n steps ahead is row 2 of A^n times the state, with coefficients that may be taken as c or, with the
// opposite sign, as m - c. For n = 1 to 4 there is a choice of signs, the same for both components, with which the
// coefficients of either add up to less than 2^32: then positive products, negative ones and a multiple of m that keeps
// the sum above zero all fit in 64 bits, and one reduction serves the three products.
#pragma once

#include "brng/jumps/mrg32k3a_powers.h"

namespace orv::brng::mrg32k3a {

struct Ahead {
    bool fits;
    bool minus[3];
    BothWords c[3];
    BothWords lift;
};

// A coefficient under a choice of sign.
template <uint32_t m>
constexpr uint32_t with_sign(uint32_t c, bool minus) {
    return minus ? (m - c) % m : c;
}

constexpr Ahead find_ahead(int steps) {
    Matrix3 power1 = one_step1, power2 = one_step2;
    for (int i = 1; i < steps; ++i) {
        power1 = multiply_mod<m1>(power1, one_step1);
        power2 = multiply_mod<m2>(power2, one_step2);
    }
    constexpr uint64_t limit = uint64_t{1} << 32;
    for (int signs = 0; signs < 8; ++signs) {
        Ahead a = {};
        BothWords sum = {}, negative = {};
        for (int k = 0; k < 3; ++k) {
            const bool minus = (signs >> k & 1) != 0;
            a.minus[k] = minus;
            a.c[k] = {with_sign<m1>(power1.at[2][k], minus), with_sign<m2>(power2.at[2][k], minus)};
            sum = {sum.x + a.c[k].x, sum.y + a.c[k].y};
            if (minus) negative = {negative.x + a.c[k].x, negative.y + a.c[k].y};
        }
        a.lift = {negative.x * m1, negative.y * m2};
        a.fits = sum.x < limit && sum.y < limit;
        if (a.fits) return a;
    }
    return {};
}

// Both components `steps` ahead.
template <int steps>
__m128i ahead(const Both& v) {
    static constexpr Ahead a = find_ahead(steps);
    static_assert(a.fits);
    __m128i sum = a.lift.lanes();
    for (int k = 0; k < 3; ++k) {
        const __m128i product = simd::multiply_words(v.at[k], a.c[k].lanes());
        sum = a.minus[k] ? simd::subtract(sum, product) : simd::add(sum, product);
    }
    return below_moduli(fold(fold(fold(sum))));
}

// Writes n outputs and moves the state behind them.
template <class Output>
void generate_fours(Residues& s, int32_t n, typename Output::Element* r, const Output& output) {
    Both v = load_both(s);
    int32_t left = n;
    for (; left >= 4; left -= 4, r += 4) {
        const __m128i v1 = ahead<1>(v);
        v = {{ahead<2>(v), ahead<3>(v), ahead<4>(v)}};
        const __m128i early = simd::even_words(v1, v.at[0]), late = simd::even_words(v.at[1], v.at[2]);
        output.four(r, combine(simd::even_words(early, late), simd::odd_words(early, late)));
    }
    for (; left > 0; --left, ++r) {
        v = {{v.at[1], v.at[2], ahead<1>(v)}};
        const uint32_t x = static_cast<uint32_t>(simd::word<0>(v.at[2]));
        const uint32_t y = static_cast<uint32_t>(simd::word<2>(v.at[2]));
        output.one(r, x >= y ? x - y : x - y + m1);
    }
    store_both(s, v);
}

}  // namespace orv::brng::mrg32k3a
