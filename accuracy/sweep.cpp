#include "accuracy/sweep.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace orv::accuracy {

namespace {

const Kernel* reference_of(const Kernel& kernel) {
    for (const Kernel& other : kernels())
        if (other.type == 'd' && other.function == kernel.function && other.serves(ha)) return &other;
    return nullptr;
}

// In doubles throughout, for normal `exact`: its exponent field gives the ulp. False where it does not settle the matter.
bool within(const Worst& worst, double exact, float y) {
    const double size = std::fabs(exact);
    if (!(size < 0x1p+127 && size >= 0x1p-126 && std::fabs(y) >= 0x1p-126f)) return exact == y;
    const double difference = std::fabs(y - exact);
    const double binade = std::bit_cast<double>(std::bit_cast<uint64_t>(size) & uint64_t{0x7FF} << 52);
    return difference <= worst.ulp * (binade * 0x1p-23) && difference <= worst.relative * size;
}

}  // namespace

std::vector<std::vector<const Kernel*>> sweepable() {
    std::vector<std::vector<const Kernel*>> list;
    for (const Kernel& kernel : kernels()) {
        if (kernel.type != 's' || kernel.inputs != 1 || !reference_of(kernel)) continue;
        if (list.empty() || list.back()[0]->function != kernel.function) list.emplace_back();
        list.back().push_back(&kernel);
    }
    return list;
}

std::vector<Worst> sweep_piece(const std::vector<const Kernel*>& of_function, int piece) {
    const SilentErrors silent;
    const ExtendedPrecision extended;
    const Kernel& reference = *reference_of(*of_function[0]);
    const size_t out = static_cast<size_t>(reference.outputs);
    constexpr uint32_t chunk = 1 << 12;
    constexpr uint32_t floats = static_cast<uint32_t>((uint64_t{1} << 32) / pieces);
    std::vector<float> x(chunk), y(chunk * out);
    std::vector<double> wide(chunk), exact(chunk * out);
    std::vector<Worst> worst(of_function.size());
    const uint32_t first = floats * static_cast<uint32_t>(piece);
    for (uint32_t done = 0; done < floats; done += chunk) {
        for (uint32_t i = 0; i < chunk; ++i) wide[i] = x[i] = std::bit_cast<float>(first + done + i);
        evaluate(reference, wide.data(), exact.data(), chunk);
        for (size_t k = 0; k < of_function.size(); ++k) {
            evaluate(*of_function[k], x.data(), y.data(), chunk);
            for (size_t i = 0; i < y.size(); ++i)
                if (!within(worst[k], exact[i], y[i])) fold(worst[k], error_of<float>(exact[i], y[i]), &x[i / out], 1);
            worst[k].count += chunk;
        }
    }
    return worst;
}

void join(Worst& worst, const Worst& other) {
    if (other.ulp > worst.ulp) worst.ulp = other.ulp, std::copy_n(other.at, most_inputs, worst.at);
    if (other.subnormal_ulp > worst.subnormal_ulp) {
        worst.subnormal_ulp = other.subnormal_ulp;
        std::copy_n(other.subnormal_at, most_inputs, worst.subnormal_at);
    }
    worst.relative = std::max(worst.relative, other.relative);
    worst.count += other.count;
}

}  // namespace orv::accuracy
