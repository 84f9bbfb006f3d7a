// Cycles per element of every row of the library at n of 1000: the three accuracies, dense and with increments of 2, and the
// same function of other libraries. Names are row/accuracy, row/library function and row/accuracy/arguments.
#include "support/cycles.h"
#include "vecmath/lines.h"

#include <orv/vecmath_entries.h>

#include <cstdio>
#include <memory>
#include <string>

namespace {

using namespace orv::bench;

constexpr int32_t n = 1000;
constexpr const char* accuracies[] = {"LA", "HA", "EP"};

struct Row {
    char type;
    const char* function;
    const char* shape;
    const orv_arq_kernel *dense, *strided;  // strided is null for moves
};

#define MATH_ROW(type, function, shape) \
    {#type[0], #function, #shape, orv_arq_kernel_##type##function##_ttab, orv_arq_kernel_##type##function##I_ttab},
#define MOVE_ROW(type, function, shape) {#type[0], #function, #shape, orv_arq_kernel_##type##function##_ttab, nullptr},
const Row rows[] = {ORV_VECMATH_ROWS(MATH_ROW) ORV_VECMATH_MOVE_ROWS(MOVE_ROW)};

// The arrays of one measurement. They start at different places of a page: a load that follows a store to the same place of
// another page waits for it on most processors.
struct Storage {
    std::vector<double> a, b, y, z;
    std::vector<float> as, bs;
    std::vector<int32_t> list;

    Storage(char type, const Range& range) : y(4 * n + 64), z(4 * n + 96) {
        // Complex elements are two numbers, and increments are 2.
        if (type == 's' || type == 'c') {
            as = arguments_s(range, 4 * n, false);
            bs = arguments_s(range, 4 * n, true);
        } else {
            a = arguments_d(range, 4 * n, false);
            b = arguments_d(range, 4 * n, true);
        }
        // Positions, and a mask with every second element: each move reads or writes n at most.
        for (int32_t i = 0; i < n; ++i) list.push_back(i & 1);
    }

    Arrays arrays() {
        return {as.empty() ? static_cast<const void*>(a.data()) : as.data(),
                bs.empty() ? static_cast<const void*>(b.data()) : bs.data(), y.data() + 24, z.data() + 56, list.data()};
    }
};

template <class Call>
void add(const std::string& name, const char* family, char type, const Range& range, double ulp, Call call) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        Storage storage(type, range);
        const Arrays arrays = storage.arrays();
        measure(state, n, 1, [&] { call(arrays); });
        if (ulp >= 0) state.counters["ulp"] = ulp;
        state.SetLabel(family);
    });
}

// The kernels of a row, each once where accuracies share it.
void add_kernels(const Row& row, bool strided, const Line& line) {
    const orv_arq_kernel* const kernels = strided ? row.strided : row.dense;
    for (int i = 0; i < 3; ++i) {
        const orv_arq_kernel kernel = kernels[i];
        std::string name = row.type + std::string(row.function) + (strided ? "I/" : "/");
        for (int twin = 0; twin < 3; ++twin)
            if (kernels[twin] == kernel) name += (twin == i ? "" : "+") + std::string(accuracies[twin]);
        if (std::find(kernels, kernels + i, kernel) != kernels + i) continue;
        if (line.label) name += "/" + std::string(line.label);
        add(name, line.family, row.type, line.range, -1,
            [=](const Arrays& v) { call(kernel, row.type, row.shape, strided, n, v); });
    }
}

void add_peers(const Row& row, const Line& line, const std::vector<Peer>& peers) {
    for (const Peer& peer : peers) {
        std::string name = row.type + std::string(row.function) + "/" + peer.library + " " + peer.function;
        if (line.label) name += "/" + std::string(line.label);
        add(name, line.family, row.type, line.range, peer.ulp, [call = peer.call](const Arrays& v) { call(n, v); });
    }
}

const bool registered = [] {
    for (const Row& row : rows) {
        static const Line missing = {
            "Not in the table of arguments", "", nullptr, {Spread::EVEN, 0.1, 0.9, 0.1, 0.9, 0}, {}};
        const Line* line = find_line(row.type, row.function);
        if (!line) std::fprintf(stderr, "%c%s has no line in functions.inc\n", row.type, row.function);
        if (!line) line = &missing;
        add_kernels(row, false, *line);
        add_peers(row, *line, line->peers);
        if (row.strided) add_kernels(row, true, *line);
        for (const Line& beside : lines_of(row.type)) {
            if (!beside.label || beside.function != std::string_view(row.function)) continue;
            add_kernels(row, false, beside);
            add_peers(row, beside, line->peers);
        }
    }
    return true;
}();

}  // namespace
