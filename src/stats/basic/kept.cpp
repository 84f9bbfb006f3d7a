// What one call leaves for the next.
//
// The block: p centres (8 bytes each, whatever their type), a label, the rows of sums, the matrix.
#include "stats/basic/kept.h"

#include "stats/basic/finish.h"
#include "stats/owned.h"

namespace orv::stats {
namespace {

struct Label {
    double w, w2;
    uint32_t arrays;       // the request's
    uint16_t method;       // the same
    uint8_t element_size;  // of the task's type
    uint8_t from_floats;
};

size_t centre_bytes(const Request& request) { return sizeof(double) * request.p; }

Label* label_of(const Request& request) {
    return reinterpret_cast<Label*>(static_cast<char*>(request.task->ownedBuffer) + centre_bytes(request));
}

}  // namespace

bool make_kept_room(const Request& request) {
    const uint64_t p = static_cast<uint64_t>(request.p);
    const uint64_t bytes = 8 * p + sizeof(Label) + 8 * power_row_count * p + (request.matrices() ? 8 * p * p : 0);
    return make_room(request.task, bytes);
}

Accumulation kept_place(const Request& request) {
    const Label* label = label_of(request);
    Cursor cursor{reinterpret_cast<char*>(label_of(request) + 1)};
    Accumulation kept{};
    kept.weights = {label->w, label->w2, label->from_floats != 0};
    kept.rows = cursor.take_rows(request.p);
    if (request.matrices()) kept.cross = cursor.take(0);
    return kept;
}

template <class T>
bool kept_holds(const Request& request, const Accumulation& kept, double* roots) {
    if (tenant_of(request.task) != Tenant::basic_pass || request.task->ownedCount != request.p) return false;
    const Label* label = label_of(request);
    return label->arrays == request.arrays && label->method == request.method && label->element_size == sizeof(T) &&
           results_stand<T>(request, kept, roots);
}

template <class T>
void keep(const Request& request, Weights weights) {
    SSTask* task = request.task;
    *label_of(request) = {weights.w, weights.w2,         request.arrays, static_cast<uint16_t>(request.method),
                          sizeof(T), weights.from_floats};
    const double* shift = kept_place(request).rows.shift;
    T* centres = static_cast<T*>(task->ownedBuffer);
    for (int32_t j = 0; j < request.p; ++j) centres[j] = static_cast<T>(shift[j]);
    task->ownedCount = request.p;
    set_tenant(task, Tenant::basic_pass);
}

template bool kept_holds<double>(const Request&, const Accumulation&, double*);
template bool kept_holds<float>(const Request&, const Accumulation&, double*);
template void keep<double>(const Request&, Weights);
template void keep<float>(const Request&, Weights);

}  // namespace orv::stats
