// A call of the basic pass after its checks: everything that the task's pointers lead to, read once.
#pragma once

#include "stats/estimates.h"

namespace orv::stats {

enum class Form : int32_t { packed_upper, full, packed_lower };

struct Request {
    SSTask* task;
    uint32_t asked;   // arrays whose bits the caller gave
    uint32_t arrays;  // those and all that they need: what is written
    uint64_t method;  // BasicFast, BasicOnePass, BasicUserMean, or 0 for the methods without data
    int32_t order;    // highest moment needed, 1 to 4
    bool by_rows;
    bool has_gaps;  // some component does not take part
    int32_t p, n;
    double count;  // n as a weight
    Form cov_form, cor_form, cp_form;

    bool writes(int32_t array) const { return (arrays & bit(array)) != 0; }
    bool matrices() const { return (asked & matrix_arrays) != 0; }
    bool takes_part(int32_t component) const {
        return !task->indices || read_integer(task->indices, task->wideInts, component) != 0;
    }
};

// Fills `request` and returns 0, or returns the status of the first check that fails.
int32_t check_request(SSTask* task, uint64_t estimates, uint64_t method, Request& request);

}  // namespace orv::stats
