// Verifies all members of the MT2203 family: irreducible characteristic polynomials, different constants, and how the
// dimensions of equidistribution compare with the least of the first members.
//
//     mt2203_check FILE        a table as in data/mt2203.inc
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>

#include "mt2203_masks.h"
#include "mt2203_polynomial.h"

int main(int argc, char** argv) {
    std::FILE* file = argc == 2 ? std::fopen(argv[1], "r") : nullptr;
    if (file == nullptr) return std::fprintf(stderr, "usage: mt2203_check FILE\n"), 2;
    const mt2203::AffinePolynomial polynomial;
    auto irreducible = std::make_unique<mt2203::Irreducibility>();
    auto masks = std::make_unique<mt2203::MaskSearch>();
    std::set<uint32_t> twists;
    std::map<int, int> rows_with_defect;
    int rows = 0, reducible = 0, reaching = 0;
    mt2203::Member member;
    while (std::fscanf(file, " {%x, %x, %x},", &member.twist, &member.mask_b, &member.mask_c) == 3) {
        ++rows;
        twists.insert(member.twist);
        if (!(*irreducible)(polynomial(member.twist))) ++reducible;
        const mt2203::Profile profile = masks->profile(member);
        bool reaches = true;
        int defect = 0;
        for (int v = 1; v <= 32; ++v) {
            reaches = reaches && profile[v] >= masks->least()[v];
            defect += 2203 / v - profile[v];
        }
        reaching += reaches;
        ++rows_with_defect[defect / 5 * 5];
    }
    std::printf("%d rows, %zu different constants, %d reducible\n", rows, twists.size(), reducible);
    std::printf("%d rows reach the least dimensions of the first members at every v\n", reaching);
    std::printf("rows by the sum of floor(2203 / v) - k(v):");
    for (const auto& [defect, count] : rows_with_defect) std::printf(" %d: %d,", defect, count);
    std::printf("\n");
    return reducible != 0 || reaching != rows || twists.size() != static_cast<size_t>(rows);
}
