// Pack and Unpack: every form and width against the definition, with nothing read or written beside what it names.
#include "support/guarded.h"
#include "support/rows.h"

#include <orv/vecmath_entries.h>

#include <gtest/gtest.h>

#include <xmmintrin.h>

#include <cstring>
#include <random>
#include <vector>

namespace {

using namespace orv::test;

// Bytes between pages that may not be touched, ending at the second of them.
struct Guarded {
    GuardedPages pages;
    char* start;
    explicit Guarded(size_t bytes) : pages(bytes / page + 1), start(pages.end() - bytes) {}
};

// n elements of `bytes` each, all of them signalling NaNs whatever they are taken for, and all different.
struct Elements : Guarded {
    Elements(size_t n, size_t bytes) : Guarded(n * bytes) {
        for (size_t i = 0; i < n * bytes / 4; ++i) {
            const uint32_t word = 0x7FA00000u + static_cast<uint32_t>(i);
            std::memcpy(start + 4 * i, &word, 4);
        }
    }
};

// Masks or indices of 32 or 64 bits.
struct List : Guarded {
    List(const std::vector<int64_t>& values, bool wide) : Guarded(values.size() * (wide ? 8 : 4)) {
        for (size_t i = 0; i < values.size(); ++i) std::memcpy(start + i * (wide ? 8 : 4), &values[i], wide ? 8 : 4);
    }
};

using ByStride = void(int64_t n, const void* a, int64_t inca, void* y, int32_t flag);
using ByList = void(int64_t n, const void* a, const void* list, void* y, int32_t flag);
using UnpackByStride = void(int64_t n, const void* a, void* y, int64_t incy, int32_t flag);
using UnpackByList = void(int64_t n, const void* a, void* y, const void* list, int32_t flag);

struct Move {
    int64_t from, to;
};

// One call, given by the moves that it should make: `n` and `stride` are passed as they are.
void check(const Row& row, int32_t flag, int64_t n, int64_t stride, const std::vector<int64_t>& values,
           const std::vector<Move>& moves) {
    const size_t bytes = row.type == 's' ? 4 : row.type == 'z' ? 16 : 8;
    int64_t last_from = -1, last_to = -1;
    for (const Move& m : moves) last_from = std::max(last_from, m.from), last_to = std::max(last_to, m.to);
    // Of what is read by stride or mask nothing lies behind the last element named; a masked input is n long.
    size_t a_count = static_cast<size_t>(last_from + 1);
    if (row.function() == "PackM") a_count = values.size();
    const size_t y_count = row.function() == "UnpackM" ? values.size() : static_cast<size_t>(last_to + 1);
    const Elements a(a_count, bytes);
    const List l(values, flag != 1);
    const Guarded y(y_count * bytes);
    std::memset(y.start, 0x5A, y_count * bytes);
    std::vector<char> expected(y_count * bytes, 0x5A);
    for (const Move& m : moves)
        std::memcpy(expected.data() + static_cast<size_t>(m.to) * bytes, a.start + static_cast<size_t>(m.from) * bytes,
                    bytes);

    const bool packs = row.function().starts_with("Pack"), by_stride = row.function().ends_with("I");
    const auto kernel = row.dense.ttab[0];
    _mm_setcsr(0x1F80);
    if (by_stride && packs)
        reinterpret_cast<ByStride*>(kernel)(n, a.start, stride, y.start, flag);
    else if (by_stride)
        reinterpret_cast<UnpackByStride*>(kernel)(n, a.start, y.start, stride, flag);
    else if (packs)
        reinterpret_cast<ByList*>(kernel)(n, a.start, l.start, y.start, flag);
    else
        reinterpret_cast<UnpackByList*>(kernel)(n, a.start, y.start, l.start, flag);
    EXPECT_EQ(_mm_getcsr(), 0x1F80u) << row.name();
    ASSERT_TRUE(expected.empty() || std::memcmp(expected.data(), y.start, expected.size()) == 0)
        << row.name() << " flag " << flag << " n " << n << " stride " << stride;
}

// The high words of a count or a stride: what a flag of 1 leaves unread.
constexpr int64_t garbage = int64_t{1} << 32;

void check_strides(const Row& row) {
    const bool packs = row.function() == "PackI";
    for (const int32_t flag : {1, 0, 2})
        for (const int64_t stride : {1, 2, 3, 7, 0})
            for (int64_t n = 0; n < 40; ++n) {
                std::vector<Move> moves;
                for (int64_t i = 0; i < n; ++i) moves.push_back(packs ? Move{i * stride, i} : Move{i, i * stride});
                check(row, flag, n, stride, {}, moves);
                if (flag != 1) continue;
                check(row, flag, n + 5 * garbage, stride + 3 * garbage, {}, moves);
                check(row, flag, n - garbage, stride - garbage, {}, moves);
            }
    for (const int64_t n : {int64_t{0}, int64_t{-1}, int64_t{INT32_MIN}, garbage, garbage + INT32_MIN})
        check(row, 1, n, 1, {}, {});
    for (const int64_t n : {int64_t{0}, int64_t{-1}, -garbage - 1, INT64_MIN}) check(row, 0, n, 1, {}, {});
}

void check_masks(const Row& row, std::mt19937& random) {
    const bool packs = row.function() == "PackM";
    for (const int32_t flag : {1, 0, 2})
        for (const int64_t n : {0, 1, 2, 3, 5, 31, 511, 512, 513, 1500})
            for (const unsigned density : {0u, 1u, 2u, 4u}) {
                std::vector<int64_t> masks;
                std::vector<Move> moves;
                for (int64_t i = 0; i < n; ++i) {
                    const bool counts = random() % 4 < density;
                    // Any bit counts, of a wide mask those of the high word too.
                    const int64_t one = flag == 1 ? int64_t{1} << random() % 32 : int64_t{1} << random() % 64;
                    masks.push_back(counts ? one : 0);
                    const int64_t place = static_cast<int64_t>(moves.size());
                    if (counts) moves.push_back(packs ? Move{i, place} : Move{place, i});
                }
                check(row, flag, flag == 1 ? n + garbage : n, 0, masks, moves);
            }
}

void check_indices(const Row& row, std::mt19937& random) {
    const bool packs = row.function() == "PackV";
    for (const int32_t flag : {1, 0, 2})
        for (const int64_t n : {0, 1, 2, 3, 5, 31, 200}) {
            std::vector<int64_t> indices;
            std::vector<Move> moves;
            for (int64_t i = 0; i < n; ++i) {
                indices.push_back(static_cast<int64_t>(random() % 300));
                moves.push_back(packs ? Move{indices.back(), i} : Move{i, indices.back()});
            }
            check(row, flag, flag == 1 ? n - garbage : n, 0, indices, moves);
        }
}

TEST(Move, GoesByStrideMaskAndIndexOfBothWidths) {
    std::mt19937 random(1);
    for (const Row& row : move_rows()) {
        if (row.function().ends_with("I")) check_strides(row);
        if (row.function().ends_with("M")) check_masks(row, random);
        if (row.function().ends_with("V")) check_indices(row, random);
        if (HasFatalFailure()) return;
    }
}

// Negative strides go down from the start, which is the last place of the other side.
TEST(Move, NegativeStridesGoDown) {
    float a[9], y[9];
    for (int i = 0; i < 9; ++i) a[i] = static_cast<float>(i);
    for (const int32_t flag : {1, 0}) {
        std::memset(y, 0, sizeof y);
        reinterpret_cast<ByStride*>(orv_arq_kernel_sPackI_ttab[0])(4, a + 8, -2, y, flag);
        EXPECT_EQ((std::vector<float>(y, y + 5)), (std::vector<float>{8, 6, 4, 2, 0}));
        std::memset(y, 0, sizeof y);
        reinterpret_cast<UnpackByStride*>(orv_arq_kernel_sUnpackI_ttab[0])(3, a + 1, y + 6, -3, flag);
        EXPECT_EQ((std::vector<float>(y, y + 8)), (std::vector<float>{3, 0, 0, 2, 0, 0, 1, 0}));
    }
}

// The named entries take the 32-bit forms.
TEST(Move, NamedEntriesHaveNarrowLists) {
    const double a[4] = {1, 2, 3, 4};
    const int32_t masks[4] = {0, 1, 0, -1}, indices[3] = {3, 0, 3};
    double y[4] = {};
    _arqdPackI(garbage + 2, a, garbage + 3, y);
    EXPECT_EQ(y[1], 4);
    _arqdPackM_50(4, a, masks, y);
    EXPECT_EQ(y[0], 2);
    EXPECT_EQ(y[1], 4);
    _arqdPackV_26(3, a, indices, y);
    EXPECT_EQ(y[2], 4);
    _arqdUnpackV_HA(3, a, y, indices);
    EXPECT_EQ(y[3], 3);
    EXPECT_EQ(y[0], 2);
}

}  // namespace
