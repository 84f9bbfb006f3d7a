#include "stats/robust/sample.h"

#include "stats/robust/order.h"

namespace orv::stats {
namespace {

// In units of its component's spread; a square of it is still a number, and so is a sum of many.
constexpr double furthest = 1e100;

template <class T>
bool is_number(const Data& data, int32_t i) {
    const Strided<T> x = data.observation<T>(i);
    for (int32_t j = 0; j < data.p; ++j)
        if (data.takes_part(j) && !(x[j] - x[j] == 0)) return false;
    return true;
}

}  // namespace

uint64_t sample_bytes(const Data& data) {
    const uint64_t p = static_cast<uint64_t>(data.p), n = static_cast<uint64_t>(data.n);
    return room_for(p * n) + 2 * room_for(p) + room_for(p, sizeof(int32_t)) + room_for(n, sizeof(int32_t));
}

template <class T>
int32_t take_sample(const Data& data, const orv_services* services, Scratch& room, Sample& sample) {
    int32_t* component = room.take<int32_t>(data.p);
    int32_t* observation = room.take<int32_t>(data.n);
    int32_t q = 0, n = 0;
    for (int32_t j = 0; j < data.p; ++j)
        if (data.takes_part(j)) component[q++] = j;
    for (int32_t i = 0; i < data.n; ++i)
        if (is_number<T>(data, i)) observation[n++] = i;
    double* origin = room.take(q);
    double* unit = room.take(q);
    double* z = room.take(uint64_t(q) * n);
    sample = {q, n, data.n - n, z, origin, unit, component, observation, services};
    if (q == 0) return SSStatusOk;

    int32_t threads = thread_count(services, int64_t{q} * n * 16, n);
    if (threads > q) threads = q;
    const Scratch spare(room_for(n) * threads);
    if (!spare.block) return SSStatusAllocation;
    auto part = [&](int32_t index) {
        double* values = reinterpret_cast<double*>(spare.block + room_for(n) * index);
        const Share mine = share_of(q, threads, index);
        for (int32_t j = mine.first; j < mine.last; ++j) {
            const Strided<T> x = data.component<T>(component[j]);
            for (int32_t i = 0; i < n; ++i) values[i] = x[observation[i]];
            origin[j] = median(values, n);
            unit[j] = median_deviation(values, n, origin[j]);
            if (!(unit[j] > 0)) unit[j] = mean_of(values, n);
            if (!(unit[j] > 0)) return int32_t{SSStatusNotPositiveDefinite};
            for (int32_t i = 0; i < n; ++i) z[ptrdiff_t{i} * q + j] = (x[observation[i]] - origin[j]) / unit[j];
        }
        return int32_t{SSStatusOk};
    };
    if (const int32_t status = fan_out(services, threads, part)) return status;

    int32_t kept = 0;
    for (int32_t i = 0; i < n; ++i) {
        bool near = true;
        for (int32_t j = 0; j < q; ++j) near &= __builtin_fabs(z[ptrdiff_t{i} * q + j]) < furthest;
        if (!near) continue;
        if (kept < i)
            for (int32_t j = 0; j < q; ++j) z[ptrdiff_t{kept} * q + j] = z[ptrdiff_t{i} * q + j];
        observation[kept++] = observation[i];
    }
    sample.n = kept;
    sample.others = data.n - kept;
    return SSStatusOk;
}

template int32_t take_sample<float>(const Data&, const orv_services*, Scratch&, Sample&);
template int32_t take_sample<double>(const Data&, const orv_services*, Scratch&, Sample&);

}  // namespace orv::stats
