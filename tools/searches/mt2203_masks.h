#ifndef ORV_TOOLS_MT2203_MASKS_H
#define ORV_TOOLS_MT2203_MASKS_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "mt2203_lattice.h"

// Tempering masks for a twist constant by an exhaustive search with backtracking. Output bit i, counted from the top, depends on bits i and i + 15
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

class MaskSearch {
public:
    MaskSearch() {
        least_.fill(Lattice<69>::period);
        for (const Member& member : first_members) {
            const Profile profile = lattice_.profile(member);
            for (int v = 1; v <= 32; ++v) least_[v] = std::min(least_[v], profile[v]);
        }
    }

    // The least dimensions of the first members.
    const Profile& least() const { return least_; }
    Profile profile(const Member& member) { return lattice_.profile(member); }

    // Masks whose dimensions reach the least ones, if there are any.
    std::optional<Member> operator()(uint32_t twist) { return extend({twist, 0, 0}, 1); }

private:
    Lattice<69> lattice_;
    Profile least_;

    bool reaches(const Member& member, int first, int last) {
        return lattice_.each_dimension(member, first, last, [this](int v, int k) { return k >= least_[v]; });
    }

    std::optional<Member> extend(const Member& member, int v) {
        if (v == 18) return reaches(member, 32, 18) ? std::optional(member) : std::nullopt;
        for (int choice = 0; choice < 8; ++choice) {
            Member longer;
            if (!lengthen(member, v, choice, longer)) continue;
            if (!reaches(longer, v, v)) continue;
            if (const auto found = extend(longer, v + 1)) return found;
        }
        return std::nullopt;
    }
};

}  // namespace mt2203

#endif
