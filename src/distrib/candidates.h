// Rejection in blocks: candidates are made and tested by passes over arrays, and those that are kept go out in the order
// in which they were drawn.
#pragma once

#include "distrib/transforms.h"

namespace orv::distrib {

// What a pass writes in the place of a rejected candidate. Candidates themselves are not negative.
template <class T>
inline constexpr T rejected = -1;

// Moves the candidates that are not rejected to the front, without a branch for each. A NaN, which parameters out of their
// range may make, is kept: the draw ends.
template <class T>
int32_t keep(int32_t count, T* candidates) {
    int32_t kept = 0;
    for (int32_t i = 0; i < count; ++i) {
        const T candidate = candidates[i];
        candidates[kept] = candidate;
        kept += !(candidate < 0);
    }
    return kept;
}

// n numbers. A block has as many candidates as numbers are missing, at most `most`; make(count, candidates) draws and tests
// them. Blocks start with the call: what is drawn depends on how a request is cut.
template <class T, class Make>
int32_t draw_by_rejection(int32_t n, T* r, int32_t most, Make make) {
    int32_t status = StatusOk;
    for (int32_t done = 0; done < n;) {
        const int32_t count = n - done < most ? n - done : most;
        status = make(count, r + done);
        if (status < 0) return status;
        done += keep(count, r + done);
    }
    return status;
}

}  // namespace orv::distrib
