// Seeding, choosing a coordinate, and jumps. The point with index i is the sum of the direction numbers at the ones of its Gray code
// i ^ (i >> 1); from there to index j, those at the ones of the difference of both codes are added.
#include "brng/quasi/stream.h"
#include "streams/chunks.h"

namespace orv::brng::quasi {

namespace {

void add_code(const Tables& t, int32_t count, uint32_t code) {
    for (; code != 0; code &= code - 1) add_numbers(t, count, __builtin_ctz(code));
}

// Leapfrog with this number of streams chooses one coordinate; nothing else is a leapfrog here.
constexpr int32_t choose_dimension = 0x7FFFFFFF;

int32_t leapfrog(Head& head, const Tables& t, int32_t streams, int32_t k) {
    if (streams != choose_dimension || k < 0 || k >= head.dimension) return BrngStatusNoLeapfrog;
    if (head.selectedDim == k) return StatusOk;
    const Tables one = {t.by_bit + k, t.row, t.point + k};
    if (head.selectedDim != all_dimensions) {
        // The coordinate has stood still while another was handed out.
        ++head.pointIndex;
        t.point[k] = 0;
        add_code(one, 1, gray_code(head.pointIndex));
    } else if (head.coordsLeft > 0 && k < head.dimension - head.coordsLeft) {
        add_numbers(one, 1, step_bit(head.pointIndex));
        ++head.pointIndex;
    }
    head.coordsLeft = 0;
    head.selectedDim = k;
    return StatusOk;
}

// Passes over `count` coordinates.
int32_t skip_ahead(Head& head, const Tables& t, uint64_t count) {
    constexpr uint64_t end = 0xFFFFFFFF;
    const uint64_t dimension = static_cast<uint64_t>(head.dimension), begun = static_cast<uint64_t>(head.coordsLeft);
    if (count / dimension >= end || count / dimension + head.pointIndex >= end) return BrngStatusNoSkipAhead;
    if (count < begun) {
        head.coordsLeft -= static_cast<int32_t>(count);
        return StatusOk;
    }
    const uint64_t points = (count - begun) / dimension + (begun > 0 ? 1 : 0);
    const int32_t rest = static_cast<int32_t>((count - begun) % dimension);
    const uint32_t target = head.pointIndex + static_cast<uint32_t>(points);
    add_code(t, head.dimension, gray_code(head.pointIndex) ^ gray_code(target));
    head.pointIndex = target;
    head.coordsLeft = rest == 0 ? 0 : head.dimension - rest;
    return StatusOk;
}

}  // namespace

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const void* params, Seed seed, FindTables find_tables) {
    Tables t;
    switch (method) {
        case InitMethodSeed:
            return seed(stream, n, static_cast<const uint32_t*>(params));
        case InitMethodLeapfrog:
            if (!find_tables(stream, &t)) return StreamStatusBadImage;
            return leapfrog(head_of(stream), t, n, *static_cast<const int32_t*>(params));
        case InitMethodSkipAhead:
            if (n <= 0) return BrngStatusNoSkipAhead;
            if (!find_tables(stream, &t)) return StreamStatusBadImage;
            return skip_ahead(head_of(stream), t, *static_cast<const uint64_t*>(params));
        case InitMethodSkipAheadEx:
            return BrngStatusNoSkipAheadEx;
        default:
            return StatusBadMethod;
    }
}

bool tables_are_sound(const Stream* stream, FindTables find_tables, int32_t point_chunk) {
    Tables t;
    const Chunk* point = streams::find_chunk(stream, point_chunk);
    return find_tables(stream, &t) && (!point || (point->key[0] | point->key[1]) == 0);
}

}  // namespace orv::brng::quasi
