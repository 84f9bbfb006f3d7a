#ifndef ORV_TOOLS_MT2203_MASKS_H
#define ORV_TOOLS_MT2203_MASKS_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "mt2203_lattice.h"

// Tempering masks for a twist constant by a search with backtracking. Output bit i, counted from the top, depends on bits i and i + 15
// of the first mask and on bit i of the second (the shifts are 7 and 15, the masks' low 7 and 15 bits are without effect),
// and from bit 18 on only on what stands fixed by then. So the masks grow from the top, and k(v) is looked at as soon
// as the bits of level v stand.
namespace mt2203 {

// The members that the family begins with; every further member reaches, at each v, the least of their dimensions.
constexpr std::array<Member, 4> first_members = {{{0xAF81055F, 0xDD7EEF80, 0xEFD78000},
                                                  {0x832604E1, 0x66AD7F80, 0xEBD58000},
                                                  {0x92F70739, 0x656D7780, 0xEFC50000},
                                                  {0x8B75046E, 0x76957780, 0xEFC48000}}};

// The eight ways to give level v its bits, those left out that change nothing.
inline bool lengthen(const Member& member, int v, int choice, Member& longer) {
    const int bit = 32 - v;
    const bool takes_c = (choice & 1) != 0;
    const bool takes_b = (choice & 2) != 0;
    const bool takes_later_b = (choice & 4) != 0;
    if (takes_b && v > 15 && (member.mask_c >> (bit + 15) & 1) != 0) return false;  // chosen at level v - 15
    if (takes_later_b && (!takes_c || bit - 15 < 7)) return false;
    longer = member;
    if (takes_c) longer.mask_c |= 1U << bit;
    if (takes_b) longer.mask_b |= 1U << bit;
    if (takes_later_b) longer.mask_b |= 1U << bit >> 15;
    return true;
}

// The dimensions of a member of any number n of words are n floor(32 / v) and a few more or less, the same few for all n that are
// not too small: they belong to the twist constant and the masks alone. So a short recurrence tells in a fraction of
// the time which masks are worth a look. Short recurrences have reducible polynomials, whose factors may spoil a
// dimension; a few good masks are lost by that, and none is taken for good without the full measurement.
class ShortSearch {
public:
    bool operator()(uint32_t twist) {
        for (const Member& start : beginnings) {
            looks_left_ = 1000;
            const Member member = {twist, start.mask_b, start.mask_c};
            if (promises(member, 3) && promises(member, 2) && extend(member, 4)) return true;
        }
        return false;
    }
    const Member& member() const { return member_; }

private:
    Lattice<6> six_;
    Lattice<8> eight_;
    Lattice<12> twelve_;
    Lattice<26> twenty_six_;
    Member member_;
    int looks_left_;

    // The bits of the first three levels. A search through all of them found nearly all masks under these.
    static constexpr std::array<Member, 3> beginnings = {
        {{0, 0x60014000, 0xE0000000}, {0, 0xC000C000, 0xE0000000}, {0, 0xA000C000, 0xE0000000}}};

    template <int words>
    static bool reaches(Lattice<words>& lattice, const Member& member, int v, int excess) {
        return lattice.each_dimension(member, v, v, [&](int, int k) { return k >= 32 / v * words + excess; });
    }

    bool promises(const Member& member, int v) {
        constexpr std::array<int, 18> excess = {0, 0, -4, 15, -4, 0, 0, 1, -2, 2, 0, 6, 0, 0, 0, 0, -1, 1};
        if (v == 2) return reaches(six_, member, 2, excess[2]);
        if (v <= 4 && !reaches(eight_, member, v, std::min(excess[v], 2))) return false;
        if (v == 3) return reaches(twenty_six_, member, 3, excess[3]);
        return v == 4 || reaches(twelve_, member, v, excess[v]);
    }

    bool extend(const Member& member, int v) {
        if (v == 18) {
            member_ = member;
            return true;
        }
        for (int choice = 0; choice < 8; ++choice) {
            Member longer;
            if (!lengthen(member, v, choice, longer)) continue;
            if (--looks_left_ < 0) return false;
            if (promises(longer, v) && extend(longer, v + 1)) return true;
        }
        return false;
    }
};

// The full measurement: masks that reach every required dimension, if there are any.
class MaskSearch {
public:
    MaskSearch() {
        required_.fill(Lattice<69>::period);
        for (const Member& member : first_members) {
            const Profile profile = lattice_.profile(member);
            for (int v = 1; v <= 32; ++v) required_[v] = std::min(required_[v], profile[v]);
        }
    }

    const Profile& required() const { return required_; }

    bool reaches(const Member& member) {
        return lattice_.each_dimension(member, 32, 1, [&](int v, int k) { return k >= required_[v]; });
    }

    std::optional<Member> operator()(uint32_t twist) {
        looks_left_ = 20000;
        return extend({twist, 0, 0}, 1);
    }

private:
    Lattice<69> lattice_;
    Profile required_;
    int looks_left_;

    std::optional<Member> extend(const Member& member, int v) {
        const auto enough = [&](int bits, int k) { return k >= required_[bits]; };
        if (v == 18) return lattice_.each_dimension(member, 32, 18, enough) ? std::optional(member) : std::nullopt;
        for (int choice = 0; choice < 8; ++choice) {
            Member longer;
            if (!lengthen(member, v, choice, longer)) continue;
            if (--looks_left_ < 0) return std::nullopt;
            if (v > 1 && !lattice_.each_dimension(longer, v, v, enough)) continue;
            if (const auto found = extend(longer, v + 1)) return found;
        }
        return std::nullopt;
    }
};

}  // namespace mt2203

#endif
