// Finds the members of the MT2203 family: twist constants whose recurrence has an irreducible characteristic
// polynomial (2203 is a Mersenne exponent, so that it is primitive), each with tempering masks.
//
//     mt2203_search FILE COUNT [THREADS]
//
// writes lines "twist mask_b mask_c" and "block N: ..." to FILE until COUNT members stand in finished blocks, and goes on
// from where FILE ends when it is started again. Constants with a factor of degree up to 24 fall to a sieve: the residue by such
// a factor is affine in the constant, so that the constants to strike form an affine space.
//
// Masks that reach the least dimensions of the first members at every number of bits exist for one constant in 28. With bits
// 1, 10 and 17 set and bit 3 clear they do for one in 21; the top bit is set, being the polynomial's last term, and bit 28 to
// leave no more constants than are needed.
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#include "mt2203_masks.h"
#include "mt2203_polynomial.h"

namespace {

constexpr int sieve_degree = 24;
constexpr size_t block_size = 128;

// The bits of an ordinal go to the places of the constant that are not fixed.
constexpr uint32_t fixed_places = 0x9002040A;
constexpr uint32_t fixed_bits = 0x90020402;
constexpr int free_bits = std::popcount(~fixed_places);

constexpr std::array<int, free_bits> place_of_bit = [] {
    std::array<int, free_bits> place{};
    int k = 0;
    for (int bit = 0; bit < 32; ++bit)
        if ((fixed_places >> bit & 1) == 0) place[k++] = bit;
    return place;
}();

uint32_t constant_of(uint32_t ordinal) {
    uint32_t constant = fixed_bits;
    for (; ordinal != 0; ordinal &= ordinal - 1) constant |= 1U << place_of_bit[std::countr_zero(ordinal)];
    return constant;
}

// Residues by g in the Montgomery form with R = t^32.
struct Residues {
    uint32_t g;  // without its leading term if that is t^32
    int degree;
    uint32_t inverse;  // of g modulo R

    static uint64_t multiply_free(uint64_t a, uint64_t b) {
        return static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_clmulepi64_si128(
            _mm_cvtsi64_si128(static_cast<long long>(a)), _mm_cvtsi64_si128(static_cast<long long>(b)), 0)));
    }

    explicit Residues(uint32_t polynomial) : g(polynomial), degree(31 - std::countl_zero(polynomial)), inverse(1) {
        for (int k = 0; k < 5; ++k)
            inverse = static_cast<uint32_t>(multiply_free(static_cast<uint32_t>(multiply_free(inverse, inverse)), g));
    }
    uint32_t multiply(uint32_t a, uint32_t b) const {
        const uint64_t product = multiply_free(a, b);
        const uint32_t q = static_cast<uint32_t>(multiply_free(static_cast<uint32_t>(product), inverse));
        return static_cast<uint32_t>((product ^ multiply_free(q, g)) >> 32);
    }
    uint32_t times_t(uint32_t a, int times) const {
        for (; times > 0; --times) {
            a <<= 1;
            a ^= (a >> degree & 1) != 0 ? g : 0;
        }
        return a;
    }
};

// The irreducible polynomials with a last term.
std::vector<uint32_t> irreducible_polynomials(int degree) {
    std::vector<bool> composite(size_t{2} << degree);
    for (uint32_t g = 3; g < 2U << degree / 2; g += 2) {
        if (composite[g]) continue;
        const int own = 31 - std::countl_zero(g);
        uint32_t product = 0;
        uint32_t factor = 0;  // by a Gray code
        for (uint32_t k = 1; k < 2U << (degree - own); ++k) {
            factor ^= 1U << std::countr_zero(k);
            product ^= g << std::countr_zero(k);
            if (factor > 1) composite[product] = true;
        }
    }
    std::vector<uint32_t> found;
    for (uint32_t g = (1U << degree) + 1; g < 2U << degree; g += 2)
        if (!composite[g]) found.push_back(g);
    return found;
}

// Strikes the ordinals whose polynomial is a multiple of that of `residues`.
void strike(std::vector<bool>& struck, const Residues& residues) {
    const uint32_t one = residues.times_t(1, 32);
    const uint32_t t33 = residues.times_t(one, 33);
    const uint32_t t34 = residues.times_t(t33, 1);
    const uint32_t t68 = residues.multiply(t34, t34);
    const uint32_t v = t68 ^ t33;
    const uint32_t u = residues.times_t(v, 1);
    std::array<uint32_t, 32> of_bit;
    uint32_t fixed = one;
    for (int i = 31; i >= 5; --i, fixed = residues.multiply(fixed, u)) of_bit[i] = fixed;
    for (int i = 4; i >= 0; --i, fixed = residues.multiply(fixed, v)) of_bit[i] = fixed;
    for (uint32_t bits = fixed_bits; bits != 0; bits &= bits - 1) fixed ^= of_bit[std::countr_zero(bits)];

    struct Row {  // of an elimination: a residue, and the ordinal that gives it
        uint32_t residue, ordinal;
    };
    std::array<Row, 32> echelon{};
    std::array<uint32_t, free_bits> kernel;
    int kernel_size = 0;
    const auto eliminate = [&](Row row) {
        while (row.residue != 0) {
            const Row& by = echelon[31 - std::countl_zero(row.residue)];
            if (by.residue == 0) break;
            row = {row.residue ^ by.residue, row.ordinal ^ by.ordinal};
        }
        return row;
    };
    for (int k = 0; k < free_bits; ++k) {
        const Row row = eliminate({of_bit[place_of_bit[k]], 1U << k});
        if (row.residue == 0)
            kernel[kernel_size++] = row.ordinal;
        else
            echelon[31 - std::countl_zero(row.residue)] = row;
    }
    const Row solution = eliminate({fixed, 0});
    if (solution.residue != 0) return;
    uint32_t ordinal = solution.ordinal;
    struck[ordinal] = true;
    for (uint32_t k = 1; k < 1U << kernel_size; ++k) {
        ordinal ^= kernel[std::countr_zero(k)];
        struck[ordinal] = true;
    }
}

std::vector<uint32_t> sieve() {
    std::vector<bool> struck(size_t{1} << free_bits);
    for (int degree = 2; degree <= sieve_degree; ++degree)
        for (const uint32_t g : irreducible_polynomials(degree)) strike(struck, Residues(g));
    std::vector<uint32_t> left;
    for (uint32_t k = 0; k < struck.size(); ++k)
        if (!struck[k]) left.push_back(k);
    return left;
}

struct Progress {
    std::vector<bool> done;
    size_t members = 0;
};

Progress read_progress(const char* path, size_t blocks) {
    Progress progress{std::vector<bool>(blocks), 0};
    if (FILE* file = std::fopen(path, "r")) {
        char line[100];
        size_t pending = 0;
        while (std::fgets(line, sizeof line, file) != nullptr) {
            size_t number;
            if (std::sscanf(line, "block %zu", &number) == 1) {
                progress.done.at(number) = true;
                progress.members += pending;
                pending = 0;
            } else {
                ++pending;
            }
        }
        std::fclose(file);
    }
    return progress;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return std::fprintf(stderr, "usage: mt2203_search FILE COUNT [THREADS]\n"), 2;
    const size_t wanted = std::strtoul(argv[2], nullptr, 10);
    const unsigned threads = argc > 3 ? static_cast<unsigned>(std::atoi(argv[3])) : 1;
    const std::vector<uint32_t> ordinals = sieve();
    const size_t blocks = ordinals.size() / block_size;
    std::fprintf(stderr, "%zu constants left by the sieve\n", ordinals.size());
    Progress progress = read_progress(argv[1], blocks);
    FILE* out = std::fopen(argv[1], "a");
    if (out == nullptr) return std::perror(argv[1]), 1;
    std::mutex mutex;
    size_t stride = blocks * 5 / 13;  // so that the members found lie all over the space
    while (std::gcd(stride, blocks) != 1) ++stride;
    size_t turn = 0;

    const mt2203::AffinePolynomial polynomial;
    const auto work = [&] {
        auto irreducible = std::make_unique<mt2203::Irreducibility>();
        auto masks = std::make_unique<mt2203::MaskSearch>();
        while (true) {
            size_t block;
            {
                const std::scoped_lock lock(mutex);
                while (turn < blocks && progress.done[turn * stride % blocks]) ++turn;
                if (turn == blocks || progress.members >= wanted) return;
                block = turn++ * stride % blocks;
            }
            std::string lines;
            size_t found = 0, irreducible_ones = 0;
            for (size_t k = block * block_size; k < (block + 1) * block_size; ++k) {
                const uint32_t twist = constant_of(ordinals[k]);
                if (!(*irreducible)(polynomial(twist), sieve_degree)) continue;
                ++irreducible_ones;
                const std::optional<mt2203::Member> member = (*masks)(twist);
                if (!member) continue;
                char line[100];
                std::snprintf(line, sizeof line, "%08X %08X %08X\n", twist, member->mask_b, member->mask_c);
                lines += line;
                ++found;
            }
            const std::scoped_lock lock(mutex);
            progress.members += found;
            std::fprintf(out, "%sblock %zu: %zu irreducible\n", lines.c_str(), block, irreducible_ones);
            std::fflush(out);
        }
    };
    std::vector<std::thread> pool;
    for (unsigned k = 0; k < threads; ++k) pool.emplace_back(work);
    for (std::thread& thread : pool) thread.join();
    return std::fclose(out);
}
