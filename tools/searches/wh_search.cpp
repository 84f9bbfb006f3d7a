// Finds the moduli and multipliers of the WH family's 273 members.
//
//     wh_search FILE
//
// The moduli are primes below 2^24 in falling order over all members. Within a member the numbers (m - 1) / 2 are pairwise
// coprime, so that its period is twice their product; a multiplier is a primitive root from 112 to 127. Of all
// choices of four multipliers it takes the one with the best spectral test of the combined congruence (modulus the product
// of the four, multiplier by the Chinese remainder theorem): the largest of the least normalised figures in dimensions 2
// to 6. The first member is given whole, the second one's moduli are.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <vector>

namespace {

using Wide = unsigned __int128;
using Signed = __int128;
// 113 bits: between a vector that is new and the reduced ones there are up to 98 bits of squared length.
using Real = __float128;

constexpr int members = 273;
constexpr int congruences = 4;
constexpr uint32_t first_multiplier = 112, last_multiplier = 127;
constexpr int last_dimension = 6;

uint64_t power(uint64_t a, uint64_t n, uint64_t m) {
    uint64_t result = 1;
    for (; n != 0; n >>= 1, a = a * a % m)
        if ((n & 1) != 0) result = result * a % m;
    return result;
}

bool is_prime(uint32_t n) {
    for (uint32_t d = 2; d * d <= n; ++d)
        if (n % d == 0) return false;
    return n > 1;
}

std::vector<uint32_t> primitive_roots(uint32_t m) {
    std::vector<uint32_t> factors;
    uint32_t rest = m - 1;
    for (uint32_t d = 2; d * d <= rest; ++d)
        if (rest % d == 0) {
            factors.push_back(d);
            while (rest % d == 0) rest /= d;
        }
    if (rest > 1) factors.push_back(rest);
    std::vector<uint32_t> roots;
    for (uint32_t a = first_multiplier; a <= last_multiplier; ++a)
        if (std::none_of(factors.begin(), factors.end(), [&](uint32_t f) { return power(a, (m - 1) / f, m) == 1; }))
            roots.push_back(a);
    return roots;
}

Wide multiply(Wide a, Wide b, Wide m) {
    Wide sum = 0;
    for (; b != 0; b >>= 1, a = (a << 1) % m)
        if ((b & 1) != 0) sum = (sum + a) % m;
    return sum;
}

using Vector = std::array<Signed, last_dimension>;

Real dot(const Vector& a, const Vector& b) {
    Real sum = 0;
    for (int k = 0; k < last_dimension; ++k) sum += static_cast<Real>(a[k]) * static_cast<Real>(b[k]);
    return sum;
}

// Gram-Schmidt: mu and the squared lengths.
struct Orthogonal {
    std::array<std::array<Real, last_dimension>, last_dimension> mu{};
    std::array<Real, last_dimension> length{};

    Orthogonal(const std::array<Vector, last_dimension>& basis, int t) {
        std::array<std::array<Real, last_dimension>, last_dimension> r{};
        for (int i = 0; i < t; ++i) {
            for (int j = 0; j <= i; ++j) {
                r[i][j] = dot(basis[i], basis[j]);
                for (int k = 0; k < j; ++k) r[i][j] -= mu[j][k] * r[i][k];
                if (j < i) mu[i][j] = r[i][j] / length[j];
            }
            length[i] = r[i][i];
        }
    }
};

void reduce(std::array<Vector, last_dimension>& basis, int t) {
    for (int i = 1; i < t;) {
        for (int j = i - 1; j >= 0; --j) {
            // The quotient is wider than a Real's significand at first: again until nothing is left to take.
            while (true) {
                const Real mu = Orthogonal(basis, i + 1).mu[i][j];
                if (mu > -0.51 && mu < 0.51) break;
                for (int k = 0; k < last_dimension; ++k)
                    basis[i][k] -= static_cast<Signed>(mu + (mu < 0 ? -0.5 : 0.5)) * basis[j][k];
            }
        }
        const Orthogonal o(basis, i + 1);
        if (o.length[i] >= (0.99 - o.mu[i][i - 1] * o.mu[i][i - 1]) * o.length[i - 1]) {
            ++i;
        } else {
            std::swap(basis[i], basis[i - 1]);
            i = std::max(1, i - 1);
        }
    }
}

// The squared length of the shortest vector, by enumeration under the best one known.
void enumerate(const Orthogonal& o, int t, int level, std::array<Real, last_dimension>& x, Real sum, Real& best) {
    if (level < 0) {
        if (sum > 0.5) best = std::min(best, sum);
        return;
    }
    Real centre = 0;
    for (int k = level + 1; k < t; ++k) centre -= x[k] * o.mu[k][level];
    const double radius = std::sqrt(static_cast<double>(std::max(Real{0}, (best - sum) / o.length[level])));
    for (Real c = std::ceil(static_cast<double>(centre) - radius); c <= centre + radius; c += 1) {
        x[level] = c;
        enumerate(o, t, level - 1, x, sum + (c - centre) * (c - centre) * o.length[level], best);
    }
}

// A nearly reduced basis of the pairs s with s_0 + s_1 multiplier = 0 modulo the modulus, by Euclid's algorithm, which is
// exact: a floating-point orthogonalisation would lose all of the short side of the first basis.
std::array<Vector, last_dimension> first_basis(Wide multiplier, Wide modulus) {
    Signed r0 = static_cast<Signed>(modulus), r1 = static_cast<Signed>(multiplier), t0 = 0, t1 = -1;
    while (r1 > Signed{1} << 52) {
        const Signed q = r0 / r1;
        std::swap(r0 -= q * r1, r1);
        std::swap(t0 -= q * t1, t1);
    }
    std::array<Vector, last_dimension> basis{};
    basis[0] = {r1, t1};
    basis[1] = {r0, t0};
    return basis;
}

// The least normalised figure over the dimensions; gives up when it falls below `enough`. The basis of a dimension and
// one vector more make that of the next.
double figure(Wide multiplier, Wide modulus, double enough) {
    constexpr double hermite[] = {0, 1, 4.0 / 3, 2, 4, 8, 64.0 / 3};  // to the power of the dimension
    double least = 1;
    std::array<Vector, last_dimension> basis = first_basis(multiplier, modulus);
    Wide a = multiplier;
    for (int t = 2; t <= last_dimension; ++t) {
        if (t > 2) {
            a = multiply(a, multiplier, modulus);
            basis[t - 1] = {-static_cast<Signed>(a)};
            basis[t - 1][t - 1] = 1;
        }
        reduce(basis, t);
        const Orthogonal o(basis, t);
        Real shortest = dot(basis[0], basis[0]) * (1 + 1e-9);
        std::array<Real, last_dimension> x{};
        enumerate(o, t, t - 1, x, 0, shortest);
        const double bound = std::pow(hermite[t], 0.5 / t) * std::pow(static_cast<double>(modulus), 1.0 / t);
        least = std::min(least, std::sqrt(static_cast<double>(shortest)) / bound);
        if (least < enough) break;
    }
    return least;
}

struct Member {
    std::array<uint32_t, congruences> moduli;
    std::array<uint32_t, congruences> multipliers;
    double merit = 0;
};

// What each multiplier adds to the combined one.
Wide share(const Member& member, int k, uint32_t multiplier, Wide modulus) {
    const uint32_t m = member.moduli[k];
    const Wide others = modulus / m;
    const uint64_t inverse = power(static_cast<uint64_t>(others % m), m - 2, m);
    return multiply(others, inverse * multiplier % m, modulus);
}

void choose_multipliers(Member& member) {
    Wide modulus = 1;
    for (const uint32_t m : member.moduli) modulus *= m;
    std::array<std::vector<uint32_t>, congruences> roots;
    for (int k = 0; k < congruences; ++k) roots[k] = primitive_roots(member.moduli[k]);
    std::array<size_t, congruences> at{};
    while (true) {
        Wide combined = 0;
        for (int k = 0; k < congruences; ++k)
            combined = (combined + share(member, k, roots[k][at[k]], modulus)) % modulus;
        const double merit = figure(combined, modulus, member.merit);
        if (merit > member.merit) {
            member.merit = merit;
            for (int k = 0; k < congruences; ++k) member.multipliers[k] = roots[k][at[k]];
        }
        int k = 0;
        while (k < congruences && ++at[k] == roots[k].size()) at[k++] = 0;
        if (k == congruences) return;
    }
}

// The next primes below that fit together.
Member next_member(uint32_t below) {
    Member member{};
    int found = 0;
    for (uint32_t m = below - 1; found < congruences; --m) {
        if (!is_prime(m) || primitive_roots(m).empty()) continue;
        const auto shares = [&](uint32_t other) { return std::gcd((m - 1) / 2, (other - 1) / 2) != 1; };
        if (std::none_of(member.moduli.begin(), member.moduli.begin() + found, shares)) member.moduli[found++] = m;
    }
    return member;
}

}  // namespace

int main(int argc, char** argv) {
    std::FILE* out = argc == 2 ? std::fopen(argv[1], "w") : nullptr;
    if (out == nullptr) return std::fprintf(stderr, "usage: wh_search FILE\n"), 2;
    double least = 1;
    Member member{};
    for (int row = 0; row < members; ++row) {
        if (row == 0)
            member = {{16770647, 16770643, 16770623, 16770617}, {125, 117, 127, 126}, 0};
        else if (row == 1)
            member = {{16770311, 16770283, 16770263, 16770209}, {}, 0};
        else
            member = next_member(member.moduli.back());
        if (row > 0) {
            choose_multipliers(member);
            least = std::min(least, member.merit);
        } else {
            Wide modulus = 1, combined = 0;
            for (const uint32_t m : member.moduli) modulus *= m;
            for (int k = 0; k < congruences; ++k)
                combined = (combined + share(member, k, member.multipliers[k], modulus)) % modulus;
            std::fprintf(stderr, "merit of the first member: %.4f\n", figure(combined, modulus, 0));
        }
        const auto& [m, a, merit] = member;
        std::fprintf(out, "{{%u, %u, %u, %u}, 0x%02X%02X%02X%02X},\n", m[0], m[1], m[2], m[3], a[3], a[2], a[1], a[0]);
        std::fflush(out);
    }
    std::fprintf(stderr, "least merit of the others: %.4f\n", least);
    return std::fclose(out);
}
