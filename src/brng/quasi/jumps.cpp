// Choosing a coordinate, and jumps. The point with index i is the sum of the direction numbers at the ones of its Gray code
// i ^ (i >> 1); from there to index j, those at the ones of the difference of both codes are added.
#include "brng/quasi/stream.h"

namespace orv::brng::quasi {

namespace {

void add_code(const Tables& t, int32_t count, uint32_t code) {
    for (; code != 0; code &= code - 1) add_numbers(t, count, __builtin_ctz(code));
}

}  // namespace

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

}  // namespace orv::brng::quasi
