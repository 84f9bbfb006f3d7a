// Writes the characteristic polynomials of the one-step maps of MT19937 and SFMT19937 over GF(2) as increasing lists of
// exponents: the shortest linear recurrence that a bit of the state satisfies, by the algorithm of Berlekamp and Massey.
//
//     jumpgen FILE
#include <array>
#include <cstdint>
#include <cstdio>
#include <utility>
#include <vector>

namespace {

// The states begin as words of a congruence: any state that is not in a proper invariant subspace will do.
template <size_t words>
std::array<uint32_t, words> scrambled() {
    std::array<uint32_t, words> state;
    uint32_t x = 19937;
    for (uint32_t& word : state) {
        x = 1664525 * x + 1013904223;
        word = x ^ x >> 16;
    }
    return state;
}

std::vector<bool> mt19937_bits(size_t count) {
    auto words = scrambled<624>();
    std::vector<bool> bits(count);
    for (size_t k = 0; k < count; ++k) {
        uint32_t& oldest = words[k % 624];
        const uint32_t y = (oldest & 0x80000000) | (words[(k + 1) % 624] & 0x7FFFFFFF);
        oldest = words[(k + 397) % 624] ^ y >> 1 ^ ((y & 1) != 0 ? 0x9908B0DF : 0);
        bits[k] = (oldest >> 31 & 1) != 0;
    }
    return bits;
}

// One step makes four words; the shifts of 8 bits run through all four, the others stay in a word.
std::vector<bool> sfmt19937_bits(size_t count) {
    constexpr uint32_t mask[4] = {0xDFFFFFEF, 0xDDFECB7F, 0xBFFAFFFF, 0xBFFFFFF6};
    auto words = scrambled<624>();
    std::vector<bool> bits(count);
    for (size_t k = 0; k < count; ++k) {
        const auto at = [&](size_t step) { return &words[4 * (step % 156)]; };
        uint32_t *a = at(k), *b = at(k + 122), *c = at(k + 154), *d = at(k + 155);
        uint32_t fresh[4];
        for (int i = 0; i < 4; ++i) {
            const uint32_t left = a[i] << 8 | (i > 0 ? a[i - 1] >> 24 : 0);
            const uint32_t right = c[i] >> 8 | (i < 3 ? c[i + 1] << 24 : 0);
            fresh[i] = a[i] ^ left ^ (b[i] >> 11 & mask[i]) ^ right ^ d[i] << 18;
        }
        for (int i = 0; i < 4; ++i) a[i] = fresh[i];
        bits[k] = (fresh[0] & 1) != 0;
    }
    return bits;
}

// Bit i of a polynomial is the coefficient of t^i.
using Polynomial = std::vector<uint64_t>;

void add_shifted(Polynomial& sum, const Polynomial& p, size_t shift) {
    const size_t words = shift / 64, bits = shift % 64;
    for (size_t k = words; k < sum.size(); ++k) {
        sum[k] ^= p[k - words] << bits;
        if (bits != 0 && k > words) sum[k] ^= p[k - words - 1] >> (64 - bits);
    }
}

// The exponents of the characteristic polynomial of a sequence whose recurrence is no longer than half its length.
std::vector<size_t> exponents(const std::vector<bool>& bits) {
    const size_t limbs = bits.size() / 2 / 64 + 2;
    Polynomial connection(limbs), before(limbs), past(limbs);  // bit i of `past` is the sequence i bits ago
    connection[0] = before[0] = 1;
    size_t length = 0, shift = 1;
    for (size_t k = 0; k < bits.size(); ++k) {
        for (size_t i = limbs; i-- > 1;) past[i] = past[i] << 1 | past[i - 1] >> 63;
        past[0] = past[0] << 1 | static_cast<uint64_t>(bits[k]);
        uint64_t discrepancy = 0;
        for (size_t i = 0; i < limbs; ++i) discrepancy ^= connection[i] & past[i];
        if (__builtin_parityll(discrepancy) == 0) {
            ++shift;
            continue;
        }
        const Polynomial old = connection;
        add_shifted(connection, before, shift);
        if (2 * length <= k) {
            length = k + 1 - length;
            before = old;
            shift = 1;
        } else {
            ++shift;
        }
    }
    std::vector<size_t> found;
    for (size_t e = 0; e <= length; ++e)
        if ((connection[(length - e) / 64] >> (length - e) % 64 & 1) != 0) found.push_back(e);
    return found;
}

}  // namespace

int main(int argc, char** argv) {
    std::FILE* file = argc == 2 ? std::fopen(argv[1], "w") : nullptr;
    if (file == nullptr) return std::fprintf(stderr, "usage: jumpgen FILE\n"), 2;
    const std::pair<const char*, std::vector<bool>> generators[] = {
        {"mt19937_terms", mt19937_bits(2 * 19968)},
        {"sfmt19937_terms", sfmt19937_bits(2 * 19968 + 64)},
    };
    for (const auto& [name, bits] : generators) {
        std::fprintf(file, "inline constexpr int32_t %s[] = {", name);
        size_t column = 0;
        for (const size_t e : exponents(bits)) std::fprintf(file, "%s%zu,", column++ % 16 == 0 ? "\n    " : " ", e);
        std::fprintf(file, "\n};\n");
    }
    return std::fclose(file) == 0 ? 0 : 1;
}
