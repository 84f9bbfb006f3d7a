// A call of the basic pass after its checks.
#pragma once

#include "stats/basic/estimates.h"
#include "stats/matrices.h"

namespace orv::stats {

struct Request : Data {
    uint32_t asked;   // arrays whose bits the caller gave
    uint32_t arrays;  // those and all that they need: what is written
    uint64_t method;  // BasicFast, BasicOnePass, BasicUserMean, or 0 for the methods without data
    int32_t order;    // highest moment needed, 1 to 4
    double count;     // n as a weight
    Form cov_form, cor_form, cp_form;

    bool writes(int32_t array) const { return (arrays & bit(array)) != 0; }
    bool writes_any(uint32_t set) const { return (arrays & set) != 0; }
    bool matrices() const { return (asked & matrix_arrays) != 0; }

    template <class T>
    T* values(int32_t array) const {
        return static_cast<T*>(array_of(task, array));
    }
    template <class T>
    Matrix<T> matrix(int32_t array) const {
        return {values<T>(array), array == array_cov ? cov_form : array == array_cor ? cor_form : cp_form};
    }
};

// Fills `request` and returns 0, or returns the status of the first check that fails. A request without any estimate of the
// basic pass has nothing in `asked` and is not checked further.
int32_t check_request(SSTask* task, uint64_t estimates, uint64_t method, Request& request);

}  // namespace orv::stats
