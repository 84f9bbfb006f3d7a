// The basic pass: checks, what came before, parts for the threads, workers, merge, finish.
#include "platform/export.h"
#include "stats/basic/finish.h"
#include "stats/basic/from_arrays.h"
#include "stats/basic/from_sums.h"
#include "stats/basic/kept.h"
#include "stats/basic/merge.h"
#include "stats/basic/workers.h"
#include "stats/owned.h"
#include "stats/threads.h"

#include <string.h>

namespace orv::stats {
namespace {

// Small problems do not go to the heap.
constexpr size_t stack_bytes = 8 << 10;

// Each thread's (W, W2) has 32 bytes to itself.
constexpr size_t weight_stride = 32;

// The result arrays that come from sums about 0.
constexpr uint32_t raw_arrays = bit(array_raw2) | bit(array_raw3) | bit(array_raw4) | bit(array_sum) |
                                bit(array_raw_sum2) | bit(array_raw_sum3) | bit(array_raw_sum4);

// ---- The parts -----------------------------------------------------------------------------------------------------

template <class T>
Worker<T> worker_of(const Request& request) {
    const int32_t order = request.order - 1;
    const int32_t weighted = request.task->w ? 1 : 0;
    // With one component the two forms are the same, and the one by rows is quicker.
    const int32_t columns = request.by_rows || request.p == 1 ? 0 : 1;
    const int32_t index =
        request.method == BasicOnePass
            ? one_pass_workers + 2 * order + (request.matrices() ? 1 : 0) + 8 * weighted + 16 * columns
            : (request.method == BasicFast ? fast_workers : user_mean_workers) + order + 4 * weighted + 8 * columns;
    return Workers<T>::table[index];
}

// Matrices take all components between the first and the last that take part; moments alone go run by run.
template <class T>
int32_t run_part(const Request& request, Part<T>& part) {
    const Worker<T> worker = worker_of<T>(request);
    const auto run = [&](int32_t from, int32_t to) {
        part.component_first = from;
        part.component_last = to;
        part.weights[0] = part.weights[1] = 0;
        return worker(part);
    };
    int32_t first = 0, last = request.p;
    if (request.has_gaps) {
        while (first < last && !request.takes_part(first)) ++first;
        while (last > first && !request.takes_part(last - 1)) --last;
    }
    if (!request.has_gaps || part.cross || first == last) return run(first, last);
    int32_t status = SSStatusOk;
    for (int32_t from = first, to; from < last && status == SSStatusOk; from = to) {
        for (to = from; to < last && request.takes_part(to);) ++to;
        status = run(from, to);
        while (to < last && !request.takes_part(to)) ++to;
    }
    return status;
}

template <class T>
Accumulation result_of(const Part<T>& part) {
    return {{part.weights[0], part.weights[1], false}, part.rows, part.cross};
}

// ---- A call's memory -----------------------------------------------------------------------------------------------

// A call under way.
template <class T>
struct Call {
    const Request& request;
    Accumulation total;  // what came before and, after the merge, everything
    Part<T>* parts;
    int32_t threads;
    double* spare;  // p
};

// One block, cut up: the parts' records, their weights, rows, matrices and scratch; a spare row; and, unless the task keeps
// it, the accumulation.
struct Layout {
    size_t rows_bytes, matrix_bytes, scratch_bytes;
    uint64_t total;
};

template <class T>
Layout plan(const Request& request, int32_t threads) {
    const uint64_t p = static_cast<uint64_t>(request.p), parts = static_cast<uint64_t>(threads);
    const int32_t most = request.n / threads + request.n % threads;
    const uint64_t rows = 8 * power_row_count * p, matrix = request.matrices() ? 8 * p * p : 0;
    uint64_t scratch = 0;
    if (request.matrices())
        scratch = cross_scratch_bytes<T>(request.method, request.p, most, request.task->w != nullptr) + 15;
    Layout layout{};
    layout.total = (sizeof(Part<T>) + 16 + weight_stride + rows + matrix + scratch) * parts + 8 * p;
    if (!keeps(request)) layout.total += rows + matrix;
    layout.rows_bytes = static_cast<size_t>(rows);
    layout.matrix_bytes = static_cast<size_t>(matrix);
    layout.scratch_bytes = static_cast<size_t>(scratch & ~uint64_t{15});
    return layout;
}

// The accumulation goes on from what the task keeps, or from the arrays, or starts afresh about the caller's mean.
template <class T>
void begin(Call<T>& call, const Layout& layout) {
    const Request& request = call.request;
    const SSTask* task = request.task;
    const T* said = static_cast<const T*>(task->accumWeight);
    const bool continues = said && said[0] != 0;
    if (continues && kept_holds<T>(request, call.total, call.spare)) return;

    Accumulation& total = call.total;
    memset(total.rows.shift, 0, layout.rows_bytes);
    if (total.cross) memset(total.cross, 0, layout.matrix_bytes);
    total.weights = {0, 0, false};
    if (continues) {
        total.weights = {static_cast<double>(said[0]), static_cast<double>(said[1]), sizeof(T) == sizeof(float)};
        continue_from_arrays<T>(request, total, call.spare);
    } else if (request.method == BasicUserMean && task->mean) {
        for (int32_t j = 0; j < request.p; ++j)
            total.rows.shift[j] = static_cast<double>(static_cast<const T*>(task->mean)[j]);
    }
}

// A part has accumulators of its own; on a fresh start the first one's matrix is the joint one.
template <class T>
void set_up_part(const Call<T>& call, const Layout& layout, int32_t index, Cursor& cursor) {
    const Request& request = call.request;
    const SSTask* task = request.task;
    Part<T>& part = call.parts[index];
    part = {};
    const Share share = share_of(request.n, call.threads, index);
    part.first = share.first;
    part.last = share.last;
    part.n = request.n;
    part.p = request.p;
    part.x = static_cast<const T*>(task->x);
    part.w = static_cast<const T*>(task->w);
    part.weights = cursor.take(weight_stride);
    part.rows = cursor.take_rows(request.p);
    memset(part.rows.shift, 0, layout.rows_bytes);
    if (request.method == BasicUserMean) memcpy(part.rows.shift, call.total.rows.shift, sizeof(double) * request.p);
    if (request.method != BasicUserMean || !request.writes_any(raw_arrays)) part.rows.raw[0] = nullptr;
    if (request.matrices()) {
        part.scratch = cursor.take(layout.scratch_bytes);
        part.cross = index == 0 && call.total.weights.w == 0 ? call.total.cross : cursor.take(layout.matrix_bytes);
        if (part.cross != call.total.cross) memset(part.cross, 0, layout.matrix_bytes);
    }
    part.rank_1 = Blas<T>::rank_1(call.threads > 1);
    part.rank_k = Blas<T>::rank_k(call.threads > 1);
}

// ---- After the merge -----------------------------------------------------------------------------------------------

// A component's totals about 0 by definition, added to those of earlier calls. Where a NaN, an infinity or an overflow has got
// into the sums about a running mean, the differences of infinities have hidden what the totals are.
template <class T>
void add_plain_totals(const Call<T>& call, int32_t j, double* totals) {
    const Strided<T> x = call.request.template component<T>(j);
    for (int32_t t = 0; t < call.threads; ++t) {
        const Part<T>& part = call.parts[t];
        if (part.weights[0] == 0) continue;
        for (int32_t i = part.first; i < part.last; ++i) {
            const double value = static_cast<double>(x[i]);
            double term = (part.w ? static_cast<double>(part.w[i]) : 1) * value;
            for (int32_t k = 0; k < 4; ++k, term *= value) totals[k] += term;
        }
    }
}

// About a running mean the totals about 0 are what the shift brings them to.
template <class T>
void settle_raw(const Call<T>& call) {
    const Request& request = call.request;
    const PowerRows& rows = call.total.rows;
    for (int32_t j = 0; j < request.p; ++j) {
        if (!request.takes_part(j)) continue;
        Powers moved = rows.at(j);
        move_shift(moved, call.total.weights.w, -moved.shift, request.order);
        double raw[] = {moved.a1, moved.a2, moved.a3, moved.a4};
        bool sound = true;
        for (int32_t k = 0; k < request.order; ++k) sound = sound && is_finite(raw[k]);
        double plain[] = {rows.raw[0][j], rows.raw[1][j], rows.raw[2][j], rows.raw[3][j]};
        if (!sound) add_plain_totals(call, j, plain);
        for (int32_t k = 0; k < 4; ++k) rows.raw[k][j] = is_finite(raw[k]) ? raw[k] : plain[k];
    }
}

template <class T>
void finish(Call<T>& call) {
    const Request& request = call.request;
    SSTask* task = request.task;
    for (int32_t t = 0; t < call.threads; ++t) merge(request, call.total, result_of(call.parts[t]), call.spare);
    const Weights weights = call.total.weights;
    if (T* said = static_cast<T*>(task->accumWeight)) {
        said[0] = static_cast<T>(weights.w);
        said[1] = static_cast<T>(weights.w2);
    }
    if (keeps(request)) keep<T>(request, weights);
    if (weights.w == 0) {
        set_tenant(task, Tenant::none);
        return zero_moments<T>(request);
    }
    if (request.method == BasicOnePass) settle_raw(call);
    write_results<T>(request, call.total, call.spare);
}

template <class T>
int32_t run(Call<T>& call, const Layout& layout, char* memory, const orv_services* services) {
    Cursor cursor{memory};
    call.parts = reinterpret_cast<Part<T>*>(cursor.take((sizeof(Part<T>) * call.threads + 15) & ~size_t{15}));
    call.spare = cursor.take(sizeof(double) * call.request.p);
    if (keeps(call.request)) {
        call.total = kept_place(call.request);
    } else {
        call.total.rows = cursor.take_rows(call.request.p);
        if (call.request.matrices()) call.total.cross = cursor.take(layout.matrix_bytes);
    }
    begin(call, layout);
    if (keeps(call.request)) set_tenant(call.request.task, Tenant::none);  // until the block is whole again
    for (int32_t t = 0; t < call.threads; ++t) set_up_part(call, layout, t, cursor);
    auto part = [&call](int32_t index) { return run_part(call.request, call.parts[index]); };
    const int32_t status = fan_out(services, call.threads, part);
    if (status == SSStatusOk) finish(call);
    return status;
}

template <class T>
int32_t basic(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Request request;
    const int32_t status = check_request(task, estimates, method, request);
    if (status != SSStatusOk || request.asked == 0) return status;
    if (request.method == 0) return finish_from_sums<T>(request);

    const int64_t p = request.p, n = request.n;
    const int32_t threads = thread_count(services, request.matrices() ? p * p * n : p * n, n);
    const Layout layout = plan<T>(request, threads);
    if (layout.total >> 31) return SSStatusAllocation;
    alignas(16) char small[stack_bytes];
    char* memory = small;
    if (layout.total > sizeof small)
        memory = static_cast<char*>(orv_serv_allocate(static_cast<size_t>(layout.total), 128));
    if (!memory) return SSStatusAllocation;
    Call<T> call{request, {}, nullptr, threads, nullptr};
    const bool room = !keeps(request) || make_kept_room(request);
    const int32_t ran = room ? run(call, layout, memory, services) : int32_t{SSStatusAllocation};
    if (memory != small) orv_serv_deallocate(memory);
    return ran;
}

}  // namespace
}  // namespace orv::stats

ORV_API int32_t _kuzdSSBasic(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    return orv::stats::basic<double>(task, estimates, method, services);
}

ORV_API int32_t _kuzsSSBasic(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    return orv::stats::basic<float>(task, estimates, method, services);
}
