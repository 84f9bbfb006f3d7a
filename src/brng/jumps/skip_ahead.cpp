// Jumps of generators whose step A is linear over GF(2): the state after n steps is g(A) times the state, where
// g = x^n mod the characteristic polynomial. The state is known here through the generator's operations alone.
#include "services/export.h"
#include "services/services.h"

#include <orv/random.h>

namespace {

constexpr int32_t work_alignment = 128;
constexpr int window_bits = 8;
constexpr int32_t window_states = 1 << (window_bits - 1);

void* allocate(size_t bytes) { return orv_serv_allocate(bytes, work_alignment); }

bool bit_of(const uint32_t* g, int32_t i) { return (g[i / 32] >> (i % 32) & 1) != 0; }

int32_t top_bit(const uint32_t* g, int32_t degree) {
    int32_t top = degree - 1;
    while (top >= 0 && !bit_of(g, top)) --top;
    return top;
}

Stream* state_at(void* states, int32_t state_bytes, int32_t index) {
    return reinterpret_cast<Stream*>(static_cast<uint8_t*>(states) +
                                     static_cast<size_t>(state_bytes) * static_cast<size_t>(index));
}

// Entry j is A^7 plus the sum of A^k over the bits k of j, times the stream's state. Along the reflected Gray code two
// neighbours differ in one bit, so an entry costs a copy, an addition and at most 6 steps.
void fill_window(const Stream* stream, void* entries, int32_t state_bytes, Stream* scratch, JumpAddState add,
                 JumpCopyState copy, JumpStepState step) {
    Stream* first = state_at(entries, state_bytes, 0);
    copy(first, stream);
    for (int k = 0; k < window_bits - 1; ++k) step(first);
    for (int32_t i = 1; i < window_states; ++i) {
        const int changed = __builtin_ctz(static_cast<unsigned>(i));
        const int32_t code = i ^ i >> 1;
        Stream* entry = state_at(entries, state_bytes, code);
        copy(entry, state_at(entries, state_bytes, code ^ 1 << changed));
        copy(scratch, stream);
        for (int k = 0; k < changed; ++k) step(scratch);
        add(entry, scratch);
    }
}

// The 7 bits of g below bit i as a number.
int32_t window_below(const uint32_t* g, int32_t i) {
    int32_t j = 0;
    for (int k = 1; k < window_bits; ++k) j = j << 1 | static_cast<int32_t>(bit_of(g, i - k));
    return j;
}

}  // namespace

ORV_API int32_t __kuz_SkipAheadHorner(Stream* stream, JumpZeroState zero, JumpAddState add, JumpCopyState copy,
                                      JumpStepState step, JumpFinishState finish, JumpPreSkip pre_skip, uint64_t nskip,
                                      int32_t words, int32_t degree, int32_t state_bytes, int32_t term_count,
                                      const int32_t* terms) {
    int32_t adjust = 0;
    if (nskip == 0 || pre_skip(stream, &nskip, &adjust) == 0) return StatusOk;
    uint32_t* g = static_cast<uint32_t*>(allocate(static_cast<size_t>(words) * 8));
    Stream* work = g ? static_cast<Stream*>(allocate(static_cast<size_t>(state_bytes))) : nullptr;
    int32_t status = StatusNoMemory;
    if (work) status = __kuzPolyRem(static_cast<int64_t>(nskip), degree, term_count, terms, words, g);
    if (status >= 0) {
        const int32_t top = top_bit(g, degree);
        if (top < 0) {
            zero(work);
        } else {
            copy(work, stream);
            for (int32_t i = top - 1; i >= 0; --i) {
                step(work);
                if (bit_of(g, i)) add(work, stream);
            }
        }
        finish(stream, work, adjust);
    }
    orv_serv_deallocate(work);
    orv_serv_deallocate(g);
    return status;
}

ORV_API int32_t __kuz_SkipAheadSWin(Stream* stream, JumpZeroState zero, JumpAddState add, JumpCopyState copy,
                                    JumpStepState step, JumpFinishState finish, JumpPreSkip pre_skip, uint64_t nskip,
                                    int32_t words, int32_t degree, int32_t state_bytes, int32_t term_count,
                                    const int32_t* terms) {
    int32_t adjust = 0;
    if (nskip == 0 || pre_skip(stream, &nskip, &adjust) == 0) return StatusOk;
    const size_t one_state = static_cast<size_t>(state_bytes);
    uint32_t* g = static_cast<uint32_t*>(allocate(static_cast<size_t>(words) * 8));
    Stream* work = g ? static_cast<Stream*>(allocate(one_state)) : nullptr;
    Stream* scratch = work ? static_cast<Stream*>(allocate(one_state)) : nullptr;
    void* entries = scratch ? allocate(one_state * window_states) : nullptr;
    int32_t status = StatusNoMemory;
    if (entries) status = __kuzPolyRem(static_cast<int64_t>(nskip), degree, term_count, terms, words, g);
    if (status >= 0) {
        fill_window(stream, entries, state_bytes, scratch, add, copy, step);
        zero(work);
        int32_t i = top_bit(g, degree);
        while (i >= window_bits - 1) {
            if (!bit_of(g, i)) {
                step(work);
                --i;
                continue;
            }
            for (int k = 0; k < window_bits; ++k) step(work);
            add(work, state_at(entries, state_bytes, window_below(g, i)));
            i -= window_bits;
        }
        for (; i >= 0; --i) {
            step(work);
            if (bit_of(g, i)) add(work, stream);
        }
        finish(stream, work, adjust);
    }
    orv_serv_deallocate(entries);
    orv_serv_deallocate(scratch);
    orv_serv_deallocate(work);
    orv_serv_deallocate(g);
    return status;
}
