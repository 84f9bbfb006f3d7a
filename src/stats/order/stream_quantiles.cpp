// Quantiles of a stream: blocks of observations go through the same task, and each call reads the quantiles of all so far.
#include "stats/entry.h"
#include "stats/order/summary.h"

namespace orv::stats {
namespace {

// What hangs on the task: a summary of each component.
struct Stream {
    double epsilon;
    int32_t p;
    int32_t element_bytes;

    template <class T>
    Summary<T>* summaries() {
        return reinterpret_cast<Summary<T>*>(this + 1);
    }
};

template <class T>
void free_summaries(Stream* stream) {
    for (int32_t j = 0; j < stream->p; ++j) {
        orv_serv_deallocate(stream->summaries<T>()[j].batch);
        orv_serv_deallocate(stream->summaries<T>()[j].lists);
    }
}

void free_stream(SSTask* task) {
    Stream* stream = static_cast<Stream*>(task->streamSummary);
    if (!stream) return;
    if (stream->element_bytes == sizeof(double))
        free_summaries<double>(stream);
    else
        free_summaries<float>(stream);
    orv_serv_deallocate(stream);
    task->streamSummary = nullptr;
}

// The task's stream if it goes on, else one that is empty. Null without memory.
template <class T>
Stream* stream_of(SSTask* task, int32_t p, double epsilon) {
    Stream* stream = static_cast<Stream*>(task->streamSummary);
    if (stream && stream->p == p && stream->epsilon == epsilon && stream->element_bytes == sizeof(T)) return stream;
    const uint64_t bytes = sizeof(Stream) + sizeof(Summary<T>) * uint64_t(p);
    void* block = bytes >> 31 ? nullptr : orv_serv_allocate(static_cast<size_t>(bytes), 128);
    if (!block) return nullptr;
    memset(block, 0, static_cast<size_t>(bytes));
    free_stream(task);
    stream = static_cast<Stream*>(block);
    stream->epsilon = epsilon;
    stream->p = p;
    stream->element_bytes = sizeof(T);
    const Phase phase = first_phase(epsilon);
    for (int32_t j = 0; j < p; ++j) stream->summaries<T>()[j].phase = phase;
    task->streamSummary = stream;
    task->cleanup = __kuzSQuantilesFreeBuffers;
    task->cleanupCount = 1;
    return stream;
}

template <class T>
int32_t stream_quantiles(SSTask* task, uint64_t estimates, uint64_t method, const orv_services* services) {
    Data data;
    if (const int32_t status = check_entry(task, estimates, method, ORV_SS_METHOD_FAST, data)) return status;
    if (!(estimates & ORV_SS_STREAM_QUANTILES)) return SSStatusOk;
    const Needed needed[] = {{task->streamParamCount, SSStatusStreamParamCount},
                             {task->streamParams, SSStatusStreamParams},
                             {task->streamOrderCount, SSStatusStreamOrderCount},
                             {task->streamOrders, SSStatusStreamOrders},
                             {task->streamQuantiles, SSStatusStreamQuantiles}};
    if (const int32_t status = first_missing(needed)) return status;
    int32_t params, count;
    if (const int32_t status = read_count(task, task->streamParamCount, SSStatusStreamParamCount, params))
        return status;
    const double epsilon = static_cast<double>(static_cast<const T*>(task->streamParams)[0]);
    if (!(epsilon > 0 && epsilon < 1)) return SSStatusStreamParams;
    if (const int32_t status = read_count(task, task->streamOrderCount, SSStatusStreamOrderCount, count)) return status;
    const T* orders = static_cast<const T*>(task->streamOrders);
    for (int32_t k = 0; k < count; ++k)
        if (!(orders[k] >= 0 && orders[k] <= 1)) return SSStatusStreamOrders;

    Stream* stream = stream_of<T>(task, data.p, epsilon);
    if (!stream) return SSStatusAllocation;
    Summary<T>* summaries = stream->summaries<T>();
    int32_t batch = 0, buffer = 0;
    for (int32_t j = 0; j < data.p; ++j) {
        if (!data.takes_part(j)) continue;
        const Outlook ahead = look_ahead(summaries[j], epsilon, data.n);
        if (!make_room(summaries[j], ahead)) return SSStatusAllocation;
        batch = std::max(batch, ahead.batch);
        buffer = std::max(buffer, ahead.top < 0 ? 0 : ahead.phase.buffer);
    }
    T* results = static_cast<T*>(task->streamQuantiles);
    return for_components(data, services, Room<T>::bytes(batch, buffer), [&](int32_t j, char* memory) {
        take_up(summaries[j], epsilon, data.component<T>(j), data.n, Room<T>::at(memory, batch, buffer));
        for (int32_t k = 0; k < count; ++k)
            results[ptrdiff_t{j} * count + k] = read_quantile(summaries[j], static_cast<double>(orders[k]));
        return int32_t{SSStatusOk};
    });
}

}  // namespace
}  // namespace orv::stats

ORV_API void __kuzSQuantilesFreeBuffers(SSTask* task) { orv::stats::free_stream(task); }

ORV_SS_ENTRY(StreamQuantiles, stream_quantiles)
