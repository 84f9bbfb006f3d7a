#ifndef ORV_TOOLS_MT2203_LATTICE_H
#define ORV_TOOLS_MT2203_LATTICE_H

#include <immintrin.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

// Dimensions of equidistribution of a small Mersenne twister (69 words, middle 34, 5 low bits of the oldest word unused,
// p = 2203), from the lattice of its generating functions in F2((1/t))^v.
//
// A state s gives the vector G(s) = sum over j >= 0 of o(f^j s) t^(-j-1), o its v leading output bits; the lattice is all
// q + G(s) with q in F2[t]^v. Its determinant is t^-p when the characteristic polynomial is irreducible and a state
// that is not 0 has an output that is not 0, and the v leading bits are equidistributed in k(v) dimensions, -k(v) being
// the largest degree of a reduced basis (Couture and L'Ecuyer; Harase, L'Ecuyer, Matsumoto and Saito for the states).
//
// A vector stands as its leading coefficient (v bits), its degree, and the state that follows the output of that
// coefficient. So the multiples by powers of t that bring a set of vectors to one degree are free, and a
// reduction is one exclusive or of states. The basis of v bits is found once for 32; that of v - 1 follows by forgetting the
// last bit, which leaves one dependence.
namespace mt2203 {

struct Member {
    uint32_t twist, mask_b, mask_c;
    bool operator==(const Member&) const = default;
};

inline uint32_t temper(uint32_t y, const Member& member) {
    y ^= y >> 12;
    y ^= (y << 7) & member.mask_b;
    y ^= (y << 15) & member.mask_c;
    return y ^ (y >> 18);
}

using Profile = std::array<int, 33>;  // k(v) for v = 1 to 32; slot 0 unused

template <int state_words>
class Lattice {
public:
    static constexpr int middle = state_words / 2;
    static constexpr int period = 32 * state_words - 5;

    // The dimensions k(v) from v = `first` down to `last`; stops at the first where `reached(v, k)` is false.
    template <class Reached>
    bool each_dimension(const Member& member, int first, int last, Reached reached) {
        start(member, first);
        for (int v = first;; --v) {
            while (degree_sum_ > -period && !exhausted_) {
                uint32_t set = 0;
                for (uint32_t lead = lead_; lead != 0; lead &= lead - 1) set ^= expansion_[std::countr_zero(lead)];
                reduce(set);
            }
            int largest = -period;
            for (uint32_t rest = live_; rest != 0; rest &= rest - 1)
                largest = std::max(largest, degree_[vector_[std::countr_zero(rest)]]);
            if (!reached(v, -largest)) return false;
            if (v == last) return true;
            forget_bit(32 - v);
        }
    }

    Profile profile(const Member& member) {
        Profile dimensions{};
        each_dimension(member, 32, 1, [&](int v, int k) { return dimensions[v] = k, true; });
        return dimensions;
    }

private:
    static constexpr int room = 96;                        // words that a state may wander before it is moved back
    static constexpr int packets = (state_words + 7) / 8;  // of eight words, to cover a state
    alignas(64) uint32_t words_[33][state_words + room + 8];
    int begin_[33];
    int degree_[33];
    int vector_[32];          // which of the 33 vectors stands under a label of the basis; sets are sets of labels
    uint32_t expansion_[32];  // for each unit vector of the leading bits, the set whose leading coefficients sum to it
    uint32_t live_;           // labels of the basis
    int lowest_;              // of the labels and bits in use
    uint32_t output_mask_;
    int free_;        // the vector that is being reduced
    uint32_t lead_;   // its leading coefficient
    int degree_sum_;  // over the basis
    bool exhausted_;  // the free vector is 0, or its outputs are
    Member member_;

    static uint32_t next_word(const uint32_t* words, uint32_t twist) {
        const uint32_t y = (words[0] & 0xFFFFFFE0) | (words[1] & 0x1F);
        return words[middle] ^ (y >> 1) ^ ((y & 1) != 0 ? twist : 0);
    }

    // Moves the free vector, whose state stands at the front of its buffer, to its leading coefficient.
    void advance() {
        uint32_t* buffer = words_[free_];
        int at = 0;
        int steps = 0;
        do {
            if (++steps > period) {
                exhausted_ = true;
                return;
            }
            if (at == room) {
                std::memmove(buffer, buffer + at, state_words * sizeof(uint32_t));
                at = 0;
            }
            buffer[at + state_words] = next_word(buffer + at, member_.twist);
            lead_ = temper(buffer[at + state_words], member_) & output_mask_;
            ++at;
            --degree_[free_];
        } while (lead_ == 0);
        begin_[free_] = at;
    }

    void start(const Member& member, int v) {
        member_ = member;
        output_mask_ = live_ = ~0U << (32 - v);
        degree_sum_ = 0;
        exhausted_ = false;
        lowest_ = 32 - v;
        for (int i = lowest_; i <= 32; ++i) std::memset(words_[i], 0, packets * 8 * sizeof(uint32_t));
        for (int i = lowest_; i < 32; ++i) {
            begin_[i] = degree_[i] = 0;
            vector_[i] = i;
            expansion_[i] = 1U << i;
        }
        free_ = 32;
        degree_[free_] = 0;
        words_[free_][0] = 0x80000000;
        advance();
    }

    struct Sum {
        __m256i part[packets];

        void add(const uint32_t* from) {
            for (int k = 0; k < packets; ++k)
                part[k] = _mm256_xor_si256(part[k], _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + 8 * k)));
        }
        void store(uint32_t* to) const {
            for (int k = 0; k < packets; ++k) _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + 8 * k), part[k]);
        }
    };

    // The states of `set` summed; the label of the largest degree comes back.
    int add_up(uint32_t set, Sum& sum) const {
        int top = std::countr_zero(set);
        for (uint32_t rest = set; rest != 0; rest &= rest - 1) {
            const int label = std::countr_zero(rest);
            sum.add(words_[vector_[label]] + begin_[vector_[label]]);
            if (degree_[vector_[label]] > degree_[vector_[top]]) top = label;
        }
        return top;
    }

    void replace_in_expansions(int label, uint32_t toggled) {
        for (int b = lowest_; b < 32; ++b) expansion_[b] ^= (expansion_[b] >> label & 1) != 0 ? toggled : 0;
    }

    static bool is_zero(const uint32_t* words) {
        uint32_t any = words[0] & 0xFFFFFFE0;
        for (int k = 1; k < state_words; ++k) any |= words[k];
        return any == 0;
    }

    // The sum becomes the free vector; by a finished basis it is 0 and of no more use.
    void follow(const Sum& sum) {
        if (degree_sum_ == -period) return;
        sum.store(words_[free_]);
        exhausted_ = is_zero(words_[free_]);
        if (!exhausted_) advance();
    }

    // The leading coefficient of the free vector is the sum of those of `set`. If a vector of the set has a larger degree than the
    // free one, they change places. Then the free vector becomes the sum of all, of smaller degree than it was.
    void reduce(uint32_t set) {
        Sum sum{};
        const int top = add_up(set, sum);
        sum.add(words_[free_] + begin_[free_]);
        if (degree_[vector_[top]] > degree_[free_]) {
            degree_sum_ += degree_[free_] - degree_[vector_[top]];
            std::swap(free_, vector_[top]);
            replace_in_expansions(top, set & ~(1U << top));
        }
        follow(sum);
    }

    // Drops an output bit: the set that summed to its unit vector is dependent now, and all others are not.
    void forget_bit(int bit) {
        const uint32_t set = expansion_[bit];
        Sum sum{};
        const int top = add_up(set, sum);
        live_ &= ~(1U << top);
        output_mask_ &= ~(1U << bit);
        exhausted_ = false;
        free_ = vector_[top];
        degree_sum_ -= degree_[free_];
        replace_in_expansions(top, set);
        follow(sum);
    }
};

}  // namespace mt2203

#endif
