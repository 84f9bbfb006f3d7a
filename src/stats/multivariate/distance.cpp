// Squared Mahalanobis distances (x - m)' C^-1 (x - m): with C = U'U it is the square of U'^-1 (x - m), which a triangular
// product with the inverse factor gives for a block of observations at once.
#include "simd/lanes.h"
#include "stats/dense.h"
#include "stats/entry.h"
#include "stats/multivariate/components.h"

namespace orv::stats {
namespace {

using Pair = simd::Lanes<double>::V;

// Observations of a block, whose deviations stay in a second-level cache. Not a power of two, which would have the components
// share a few sets of it. The blocks' limits do not depend on the threads, so that results do not either.
constexpr int32_t block_length = 504;

// A block lies as its observations do: by rows with a component's deviations contiguous, else with an observation's.
template <class T>
struct Distances {
    const Data& data;
    const Components& chosen;
    const double* mean;     // of the chosen ones
    const double* inverse;  // of the factor, upper triangle by columns
    T* results;

    void rows(int32_t first, int32_t count, double* block) const {
        const int32_t q = chosen.count;
        for (int32_t a = 0; a < q; ++a) {
            const T* x = data.component<T>(chosen[a]).first + first;
            double* to = block + ptrdiff_t{a} * block_length;
            const Pair centre = simd::splat(mean[a]);
            int32_t i = 0;
            for (; i + 2 <= count; i += 2) simd::store(to + i, simd::load_doubles(x + i) - centre);
            if (i < count) to[i] = static_cast<double>(x[i]) - mean[a];
        }
        const double one = 1;
        Dense<double>::trmm("r", "u", "n", "n", &count, &q, &one, inverse, &q, block, &block_length);
        for (int32_t i = 0; i < count; i += 2) {
            const double* z = block + i;
            Pair even{}, odd{};
            int32_t a = 0;
            for (; a + 2 <= q; a += 2, z += 2 * block_length) {
                const Pair z0 = simd::load(z), z1 = simd::load(z + block_length);
                even += z0 * z0;
                odd += z1 * z1;
            }
            if (a < q) even += simd::load(z) * simd::load(z);
            double sums[2];
            simd::store(sums, even + odd);
            for (int32_t k = 0; k < 2 && i + k < count; ++k) results[first + i + k] = static_cast<T>(sums[k]);
        }
    }

    void columns(int32_t first, int32_t count, double* block) const {
        const int32_t q = chosen.count;
        for (int32_t i = 0; i < count; ++i) {
            const T* x = data.observation<T>(first + i).first;
            double* to = block + ptrdiff_t{i} * q;
            for (int32_t a = 0; a < q; ++a) to[a] = static_cast<double>(x[chosen[a]]) - mean[a];
        }
        const double one = 1;
        Dense<double>::trmm("l", "u", "t", "n", &q, &count, &one, inverse, &q, block, &q);
        for (int32_t i = 0; i < count; ++i) {
            const double* z = block + ptrdiff_t{i} * q;
            Pair sums{};
            int32_t a = 0;
            for (; a + 2 <= q; a += 2) sums += simd::load(z + a) * simd::load(z + a);
            double sum = simd::sum_of_lanes(sums);
            if (a < q) sum += z[a] * z[a];
            results[first + i] = static_cast<T>(sum);
        }
    }
};

template <class T>
int32_t distances(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_MAHALANOBIS)) return SSStatusOk;
    const Needed needed[] = {{task->mean, SSStatusMean},
                             {task->cov, SSStatusCov},
                             {task->covStorage, SSStatusStorage},
                             {task->outlierWeights, SSStatusOutlierWeights}};
    if (const int32_t status = first_missing(needed)) return status;

    const uint64_t p = static_cast<uint64_t>(data.p);
    const Scratch scratch(sizeof(double) * p * (p + 1) + sizeof(int32_t) * p);
    if (!scratch.block) return SSStatusAllocation;
    double* inverse = reinterpret_cast<double*>(scratch.block);
    double* mean = inverse + p * p;
    const Components chosen = taking_part(data, reinterpret_cast<int32_t*>(mean + p));
    const int32_t q = chosen.count;
    if (q == 0) return SSStatusOk;
    for (int32_t a = 0; a < q; ++a) mean[a] = static_cast<double>(static_cast<const T*>(task->mean)[chosen[a]]);
    gather(Matrix<const T>{static_cast<const T*>(task->cov), read_form(task, task->covStorage)}, data.p, chosen,
           inverse);
    if (!cholesky(q, inverse)) return SSStatusNotPositiveDefinite;
    int32_t info;
    Dense<double>::trtri("u", "n", &q, inverse, &q, &info);

    const int32_t blocks = (data.n + block_length - 1) / block_length;
    int32_t threads = thread_count(services, int64_t{q} * q * data.n, data.n);
    if (threads > blocks) threads = blocks;
    const uint64_t block_bytes = sizeof(double) * uint64_t{block_length} * q;
    const Scratch room(block_bytes * threads);
    if (!room.block) return SSStatusAllocation;
    const Distances<T> all{data, chosen, mean, inverse, static_cast<T*>(task->outlierWeights)};
    auto part = [&](int32_t index) {
        double* block = reinterpret_cast<double*>(room.block + block_bytes * index);
        const Share share = share_of(blocks, threads, index);
        for (int32_t b = share.first; b < share.last; ++b) {
            const int32_t first = b * block_length, left = data.n - first;
            const int32_t count = left < block_length ? left : block_length;
            if (data.by_rows)
                all.rows(first, count, block);
            else
                all.columns(first, count, block);
        }
        return int32_t{SSStatusOk};
    };
    return fan_out(services, threads, part);
}

}  // namespace
}  // namespace orv::stats

ORV_SS_ENTRY(MahDistance, distances)
