#include "accuracy/sweep.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>

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

// One list a function.
template <class Takes>
std::vector<std::vector<const Kernel*>> by_function(Takes takes) {
    std::vector<std::vector<const Kernel*>> list;
    for (const Kernel& kernel : kernels()) {
        if (kernel.type != 's' || !takes(kernel)) continue;
        if (list.empty() || list.back()[0]->function != kernel.function) list.emplace_back();
        list.back().push_back(&kernel);
    }
    return list;
}

// ---- Pairs ------------------------------------------------------------------------------------------------------------

constexpr float inf = std::numeric_limits<float>::infinity(), smallest = 0x1p-149f, normal = 0x1p-126f;
constexpr float largest = std::numeric_limits<float>::max();
constexpr float specials[] = {0,
                              smallest,
                              0x1.fffffcp-127f,
                              normal,
                              0x1.000002p-126f,
                              0x1p-64f,
                              0x1.fffffep-2f,
                              0.5f,
                              0x1.fffffep-1f,
                              1,
                              1.5f,
                              0x1.000002p+0f,
                              2,
                              2.5f,
                              3,
                              0x1.921fb6p+1f,
                              0x1p+23f,
                              0x1.fffffep+23f,
                              1e7f,
                              0x1p+24f,
                              0x1p+64f,
                              1e38f,
                              0x1p+127f,
                              largest,
                              inf,
                              NAN};

struct PairSource {
    const Function& function;
    std::mt19937_64 random;

    uint32_t below(uint32_t n) { return static_cast<uint32_t>(random() % n); }
    float sign() { return random() & 1 ? -1.0f : 1.0f; }
    float any() { return std::bit_cast<float>(static_cast<uint32_t>(random())); }
    float special() { return sign() * specials[below(std::size(specials))]; }
    float subnormal() { return sign() * std::bit_cast<float>(below(1 << 23) >> below(23)); }
    // An integer of up to 13 digits, scaled: powers, products and sums of such numbers are often ties.
    float few_digits(int scale) {
        return sign() *
               std::ldexp(static_cast<float>(below(2u << below(13))), static_cast<int>(below(2 * scale)) - scale);
    }
    float ordinary(const std::vector<Range>& ranges) {
        const Range& range = ranges[below(static_cast<uint32_t>(ranges.size()))];
        return static_cast<float>(range.low + (range.high - range.low) * static_cast<double>(random()) * 0x1p-64);
    }
    float near(float x) { return std::bit_cast<float>(std::bit_cast<uint32_t>(x) + below(9) - 4) * sign(); }

    void next(int kind, float& a, float& b) {
        a = any(), b = any();
        switch (kind % 9) {
            case 0:
                return;
            case 1:
            case 2:
                a = ordinary(function.ranges);
                b = ordinary(function.second.empty() ? function.ranges : function.second);
                return;
            case 3: {
                constexpr uint32_t fraction = 0x807FFFFF;
                const auto bits = [](float x) { return std::bit_cast<uint32_t>(x); };
                b = std::bit_cast<float>((bits(b) & fraction) | (bits(a) & ~fraction));
                return;
            }
            case 4:
                b = near(a);
                return;
            case 5:
                a = special(), b = special();
                if (random() & 1) (random() & 1 ? a : b) = any();
                return;
            case 6:
                a = few_digits(8), b = few_digits(8);
                return;
            case 7:  // next to a quotient halfway between integers, or between floats
                a = near(static_cast<float>(b * (static_cast<double>(below(2u << below(25))) + 0.5)));
                return;
            case 8:
                a = subnormal();
                if (random() & 1) b = subnormal();
                if (random() & 1) std::swap(a, b);
                return;
        }
    }
};

}  // namespace

std::vector<std::vector<const Kernel*>> sweepable() {
    return by_function([](const Kernel& kernel) { return kernel.inputs == 1 && reference_of(kernel); });
}

std::vector<std::vector<const Kernel*>> sweepable_by_pairs() {
    return by_function([](const Kernel& kernel) { return kernel.shape == Shape::TWO && kernel.function->fast; });
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

std::vector<Worst> sweep_pairs(const std::vector<const Kernel*>& of_function, double count, uint64_t seed) {
    const SilentErrors silent;
    const ExtendedPrecision extended;
    const Function& function = *of_function[0]->function;
    PairSource source{function, std::mt19937_64(seed)};
    constexpr size_t chunk = 1 << 12;
    std::vector<float> x(2 * chunk), y(chunk);
    std::vector<long double> exact(chunk);
    std::vector<Worst> worst(of_function.size());
    for (double done = 0; done < count; done += chunk) {
        for (size_t i = 0; i < chunk; ++i) {
            source.next(static_cast<int>(i), x[2 * i], x[2 * i + 1]);
            const long double wide[2] = {x[2 * i], x[2 * i + 1]};
            function.fast(&exact[i], wide);
        }
        for (size_t k = 0; k < of_function.size(); ++k) {
            evaluate(*of_function[k], x.data(), y.data(), chunk);
            for (size_t i = 0; i < chunk; ++i) {
                const bool number = !std::isnan(y[i]) && !std::isnan(exact[i]);
                if (number && std::signbit(y[i]) != std::signbit(exact[i]))
                    fold(worst[k], {inf, inf, false}, &x[2 * i], 2);
                else if (!within(worst[k], static_cast<double>(exact[i]), y[i]))
                    fold(worst[k], error_of<float>(exact[i], y[i]), &x[2 * i], 2);
            }
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
