#ifndef ORV_TOOLS_MT2203_POLYNOMIAL_H
#define ORV_TOOLS_MT2203_POLYNOMIAL_H

#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

// The characteristic polynomial of the recurrence of 69 words, middle 34, 5 low bits, over F2, and whether it is
// irreducible. With u = t^69 + t^34 and v = t^68 + t^33 and a_i the bits of the twist constant it is
//     u^27 (v^5 + a_0 v^4 + a_1 v^3 + a_2 v^2 + a_3 v + a_4) + a_5 u^26 + a_6 u^25 + ... + a_31
// (Matsumoto and Nishimura), of degree 2203 and affine in the constant.
namespace mt2203 {

constexpr int limbs = 36;  // 64-bit words of a polynomial; also the exponent of the Montgomery radix R = t^2304
using Polynomial = std::array<uint64_t, limbs>;

inline void add_shifted(Polynomial& sum, const Polynomial& p, int shift) {
    const int words = shift / 64;
    const int bits = shift % 64;
    for (int k = words; k < limbs; ++k) {
        sum[k] ^= p[k - words] << bits;
        if (bits != 0 && k > words) sum[k] ^= p[k - words - 1] >> (64 - bits);
    }
}

// The part that stands without the constant, and the polynomial that each bit of the constant adds.
struct AffinePolynomial {
    Polynomial fixed{};
    std::array<Polynomial, 32> of_bit{};

    AffinePolynomial() {
        const auto times = [](const Polynomial& p, int high, int low) {
            Polynomial product{};
            add_shifted(product, p, high);
            add_shifted(product, p, low);
            return product;
        };
        Polynomial power{};
        power[0] = 1;
        for (int i = 31; i >= 5; --i, power = times(power, 69, 34)) of_bit[i] = power;
        for (int i = 4; i >= 0; --i, power = times(power, 68, 33)) of_bit[i] = power;
        fixed = power;
    }

    Polynomial operator()(uint32_t twist) const {
        Polynomial p = fixed;
        for (int i = 0; i < 32; ++i)
            if ((twist >> i & 1) != 0) add_shifted(p, of_bit[i], 0);
        return p;
    }
};

// Arithmetic modulo f in the Montgomery form: p / R = (p + q f) / R with q = p / f mod R. Both products are needed by half only.
// They run column by column over blocks of four limbs, with an accumulator for each offset of a limb in a block.
//
// Most reducible polynomials have a factor of small degree d, which divides t^(2^d) + t: so the product of these is gathered
// along the squarings, and its greatest common divisor with f looked at a few times on the way.
class Irreducibility {
public:
    // f divides t^(2^2203) + t and has neither of the factors t and t + 1, so that all its factors are of degree 2203.
    // `known` says that there is none of a degree up to it, so that the products may begin after it.
    bool operator()(const Polynomial& f, int known = 1) {
        if ((f[0] & 1) == 0) return false;
        int terms = 0;
        for (const uint64_t limb : f) terms += __builtin_popcountll(limb);
        if (terms % 2 == 0) return false;
        f_ = f;
        invert();
        Polynomial start{};  // t R modulo f
        start[0] = 1;
        for (int k = 0; k < 64 * limbs + 1; ++k) times_t(start);
        Polynomial power = start;
        Polynomial product{};
        product[0] = 1;
        for (int k = 1; k <= 2203; ++k) {
            square(power);
            if (k <= known || k > gcd_at.back()) continue;
            Polynomial sum = power;
            add_shifted(sum, start, 0);
            multiply(product, sum);
            if (std::find(gcd_at.begin(), gcd_at.end(), k) != gcd_at.end() && !coprime(product)) return false;
        }
        return power == start;
    }

private:
    static constexpr int blocks = limbs / 4;
    static constexpr std::array<int, 3> gcd_at = {56, 130, 320};  // degrees
    alignas(32) Polynomial f_;
    alignas(32) Polynomial inverse_;  // of f modulo R

    void times_t(Polynomial& p) const {
        for (int k = limbs - 1; k > 0; --k) p[k] = p[k] << 1 | p[k - 1] >> 63;
        p[0] <<= 1;
        if ((p[2203 / 64] >> 2203 % 64 & 1) != 0) add_shifted(p, f_, 0);
    }

    // Newton's steps would save nothing worth having: limb by limb.
    void invert() {
        uint64_t first = 1;
        for (int k = 0; k < 6; ++k) first = low(low(first, first), f_[0]);
        Polynomial rest{};  // 1 + f times the limbs found
        rest[0] = 1;
        for (int k = 0; k < limbs; ++k) {
            inverse_[k] = low(rest[k], first);
            for (int j = 0; j + k < limbs; ++j) {
                const __m128i product = multiply_limbs(inverse_[k], f_[j]);
                rest[k + j] ^= static_cast<uint64_t>(_mm_cvtsi128_si64(product));
                if (k + j + 1 < limbs) rest[k + j + 1] ^= static_cast<uint64_t>(_mm_extract_epi64(product, 1));
            }
        }
    }

    static __m128i multiply_limbs(uint64_t a, uint64_t b) {
        return _mm_clmulepi64_si128(_mm_cvtsi64_si128(static_cast<long long>(a)),
                                    _mm_cvtsi64_si128(static_cast<long long>(b)), 0);
    }
    static uint64_t low(uint64_t a, uint64_t b) {
        return static_cast<uint64_t>(_mm_cvtsi128_si64(multiply_limbs(a, b)));
    }

    // Adds the blocks (i, k - i) of a b to the limbs from 4 k on.
    static void add_column(uint64_t* sum, const uint64_t* a, const uint64_t* b, int k) {
        const int first = std::max(0, k - blocks + 1);
        const int last = std::min(k, blocks - 1);
        __m256i at[5]{};
        for (int i = first; i <= last; ++i) {
            const __m256i right = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(b + 4 * (k - i)));
#pragma GCC unroll 4
            for (int s = 0; s < 4; ++s) {
                const __m256i left = _mm256_set1_epi64x(static_cast<long long>(a[4 * i + s]));
                at[s] = _mm256_xor_si256(at[s], _mm256_clmulepi64_epi128(left, right, 0x00));
                at[s + 1] = _mm256_xor_si256(at[s + 1], _mm256_clmulepi64_epi128(left, right, 0x10));
            }
        }
        for (int s = 0; s < 5; ++s) {
            auto* to = reinterpret_cast<__m256i*>(sum + 4 * k + s);
            _mm256_storeu_si256(to, _mm256_xor_si256(_mm256_loadu_si256(to), at[s]));
        }
    }

    using Wide = std::array<uint64_t, 2 * limbs + 8>;  // the last block is never looked at

    void square(Polynomial& p) const {
        alignas(32) Wide wide;
        for (int k = 0; k < limbs; ++k)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(wide.data() + 2 * k), multiply_limbs(p[k], p[k]));
        std::fill(wide.begin() + 2 * limbs, wide.end(), 0);
        reduce(wide, p);
    }

    void multiply(Polynomial& p, const Polynomial& factor) const {
        alignas(32) Wide wide{};
        for (int k = 0; k < 2 * blocks - 1; ++k) add_column(wide.data(), p.data(), factor.data(), k);
        reduce(wide, p);
    }

    void reduce(Wide& wide, Polynomial& p) const {
        alignas(32) uint64_t q[limbs + 8]{};
        for (int k = 0; k < blocks; ++k) add_column(q, wide.data(), inverse_.data(), k);
        for (int k = blocks - 1; k < 2 * blocks - 1; ++k) add_column(wide.data(), q, f_.data(), k);
        std::memcpy(p.data(), wide.data() + limbs, sizeof p);
    }

    // No common factor of f and p. Steps on the low coefficients as in the binary method: with f odd, g becomes
    // (g + g_0 f) / t, after an exchange if g is odd and the larger. Blocks of 62 steps are found on the low limbs and applied to
    // all limbs as a matrix of polynomials.
    bool coprime(const Polynomial& p) const {
        Polynomial f = f_;
        Polynomial g = p;
        int delta = 1;
        const auto is_zero = [](const Polynomial& x) {
            uint64_t any = 0;
            for (const uint64_t limb : x) any |= limb;
            return any == 0;
        };
        while (!is_zero(g)) {
            constexpr int steps = 62;
            uint64_t ff = 1, fg = 0, gf = 0, gg = 1;  // t^steps times the new f and g, by the old ones
            uint64_t f_low = f[0];
            uint64_t g_low = g[0];
            for (int k = 0; k < steps; ++k) {
                const uint64_t odd = 0 - (g_low & 1);
                const uint64_t exchange = odd & (delta > 0 ? ~uint64_t{0} : 0);
                delta = exchange != 0 ? 1 - delta : 1 + delta;
                const uint64_t f_mask = exchange;
                const uint64_t df = (f_low ^ g_low) & f_mask;
                const uint64_t d1 = (ff ^ gf) & f_mask;
                const uint64_t d2 = (fg ^ gg) & f_mask;
                f_low ^= df, g_low ^= df;
                ff ^= d1, gf ^= d1;
                fg ^= d2, gg ^= d2;
                g_low = (g_low ^ (f_low & odd)) >> 1;
                gf ^= ff & odd;
                gg ^= fg & odd;
                ff <<= 1;
                fg <<= 1;
            }
            Polynomial new_f{};
            Polynomial new_g{};
            apply(new_f, ff, f, fg, g, steps);
            apply(new_g, gf, f, gg, g, steps);
            f = new_f;
            g = new_g;
        }
        for (int k = 1; k < limbs; ++k)
            if (f[k] != 0) return false;
        return f[0] == 1;
    }

    // (a f + b g) / t^steps, which divides without a rest.
    static void apply(Polynomial& sum, uint64_t a, const Polynomial& f, uint64_t b, const Polynomial& g, int steps) {
        uint64_t carry = 0;
        uint64_t before = 0;
        for (int k = 0; k <= limbs; ++k) {
            uint64_t limb = carry;
            if (k < limbs) {
                const __m128i product = _mm_xor_si128(multiply_limbs(a, f[k]), multiply_limbs(b, g[k]));
                limb ^= static_cast<uint64_t>(_mm_cvtsi128_si64(product));
                carry = static_cast<uint64_t>(_mm_extract_epi64(product, 1));
            }
            if (k > 0) sum[k - 1] = before >> steps | limb << (64 - steps);
            before = limb;
        }
    }
};

}  // namespace mt2203

#endif
