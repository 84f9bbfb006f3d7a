// Writes src/frame/measured_costs.h: cycles per element of every present row whose cost figures are not fixed, brought to
// the scale of the fixed ones by the median ratio of the fixed figures to what their rows take here.
//
// usage: cost_table src/frame/measured_costs.h
#include "frame/kernel_tables.h"
#include "support/cycles.h"
#include "vecmath/lines.h"

#include <orv/vecmath.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace {

struct Row {
    char type;
    const char* function;
    const char* shape;
    bool fixed;
    float cost[3];
    const orv_arq_kernel* kernels;
};

#define COST(la, ha, ep) \
    true, { la, ha, ep }
#define MEASURED(row) \
    false, { 0, 0, 0 }
#define ROW(type, function, shape, sharing, ...) \
    {#type[0], #function, #shape, __VA_ARGS__, orv_arq_kernel_##type##function##_ttab},
const Row rows[] = {ORV_MATH_ROWS(ROW)};

constexpr int32_t n = 1000;

double cycles_of(orv_arq_kernel kernel, const Row& row) {
    using namespace orv::bench;
    const Line* line = find_line(row.type, row.function);
    const Range range = line ? line->range : Range{Spread::EVEN, 0.1, 0.9, 0.1, 0.9, 0};
    const bool single = row.type == 's' || row.type == 'c';
    const std::vector<float> as = arguments_s(range, 2 * n, false), bs = arguments_s(range, 2 * n, true);
    const std::vector<double> ad = arguments_d(range, 2 * n, false), bd = arguments_d(range, 2 * n, true);
    std::vector<double> y(2 * n + 200), z(2 * n + 400);  // complex elements are pairs
    Arrays arrays = {ad.data(), bd.data(), y.data() + 40, z.data() + 120, nullptr};
    if (single) arrays.a = as.data(), arrays.b = bs.data();
    const auto call = [&] { orv::bench::call(kernel, row.type, row.shape, false, n, arrays); };
    std::vector<uint64_t> samples(401);
    for (uint64_t& sample : samples) {
        const uint64_t start = orv::bench::ticks();
        for (int i = 0; i < 10; ++i) call();
        sample = orv::bench::ticks() - start;
    }
    std::nth_element(samples.begin(), samples.begin() + 200, samples.end());
    return static_cast<double>(samples[200]) / (10.0 * n);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: cost_table HEADER\n");
        return 2;
    }
    std::vector<double> ratios;
    for (const Row& row : rows) {
        if (!row.fixed) continue;
        for (int k = 0; k < 3; ++k) ratios.push_back(row.cost[k] / cycles_of(row.kernels[k], row));
    }
    const auto middle = ratios.begin() + static_cast<ptrdiff_t>(ratios.size() / 2);
    std::nth_element(ratios.begin(), middle, ratios.end());
    const double scale = *middle;
    std::printf("%d fixed figures, %.3f times the cycles here\n", static_cast<int>(ratios.size()), scale);

    std::string text =
        "// Written by the bench program cost_table; not edited by hand. Cycles per element on the scale of the fixed "
        "figures.\n#ifndef ORV_FRAME_MEASURED_COSTS_H\n#define ORV_FRAME_MEASURED_COSTS_H\n\n";
    for (const Row& row : rows) {
        if (row.fixed) continue;
        char line[160];
        float figures[3];
        for (int k = 0; k < 3; ++k) {
            figures[k] = static_cast<float>(scale * cycles_of(row.kernels[k], row));
            for (int other = 0; other < k; ++other)
                if (row.kernels[other] == row.kernels[k]) figures[k] = figures[other];
        }
        std::snprintf(line, sizeof line, "#define ORV_COST_%c%s %.3g, %.3g, %.3g\n", row.type, row.function,
                      static_cast<double>(figures[0]), static_cast<double>(figures[1]),
                      static_cast<double>(figures[2]));
        text += line;
    }
    text += "\n#endif\n";
    std::FILE* header = std::fopen(argv[1], "w");
    if (!header || std::fputs(text.c_str(), header) < 0 || std::fclose(header) != 0) {
        std::fprintf(stderr, "cost_table: %s cannot be written\n", argv[1]);
        return 1;
    }
    return 0;
}
