#include "accuracy/hunt.h"

#include "accuracy/bounds.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>

namespace orv::accuracy {

namespace {

// A float type's numbers in rising order are integers in rising order.
template <class T>
using Int = std::conditional_t<sizeof(T) == 4, int32_t, int64_t>;

template <class T>
int64_t order(T x) {
    const auto bits = std::bit_cast<Int<T>>(x);
    return bits < 0 ? std::numeric_limits<Int<T>>::min() - bits : bits;
}
template <class T>
T number(int64_t i) {
    const auto bits = static_cast<Int<T>>(i);
    return std::bit_cast<T>(bits < 0 ? std::numeric_limits<Int<T>>::min() - bits : bits);
}

// The numbers from `low` to `high`, by their order.
struct Interval {
    int64_t low, high;
};

uint64_t width(const Interval& interval) {
    return static_cast<uint64_t>(interval.high) - static_cast<uint64_t>(interval.low);
}

// `by` numbers on from `from`, or the last finite one.
template <class T>
int64_t moved(int64_t from, int64_t by) {
    const int64_t largest = order(std::numeric_limits<T>::max());
    from = std::clamp(from, -largest, largest);
    if (by > 0) return from > largest - by ? largest : from + by;
    return from < -largest - by ? -largest : from + by;
}

template <class T>
void add_distances(std::vector<Interval>& list, double point) {
    for (const double signed_point : {point, -point}) {
        const int64_t at = order(static_cast<T>(signed_point));
        list.push_back({moved<T>(at, -2), moved<T>(at, 2)});
        for (int k = 1; k <= std::numeric_limits<T>::digits + 1; ++k) {
            const int64_t near = int64_t{1} << k, far = 2 * near - 1;
            list.push_back({moved<T>(at, near), moved<T>(at, far)});
            list.push_back({moved<T>(at, -far), moved<T>(at, -near)});
        }
    }
}

constexpr int cells_in_all = 8192;

// The strata of one component.
template <class T>
std::vector<Interval> strata_of(const Function& function, const std::vector<Range>& ranges) {
    using Limits = std::numeric_limits<T>;
    std::vector<Interval> list;
    for (int e = Limits::min_exponent - Limits::digits; e < Limits::max_exponent; ++e) {
        const int64_t low = order(std::ldexp(T{1}, e));
        const int64_t high = e + 1 < Limits::max_exponent ? order(std::ldexp(T{1}, e + 1)) - 1 : order(Limits::max());
        list.push_back({low, high});
        list.push_back({-high, -low});
    }
    for (const Range& range : ranges) {
        const int cells = cells_in_all / static_cast<int>(ranges.size());
        const double width = (range.high - range.low) / cells;
        for (int i = 0; i < cells; ++i)
            list.push_back({moved<T>(order(static_cast<T>(range.low + i * width)), 0),
                            moved<T>(order(static_cast<T>(range.low + (i + 1) * width)), 0)});
    }
    for (const double point : {0.0, 1.0}) add_distances<T>(list, point);
    for (const double point : function.points) add_distances<T>(list, point);
    return list;
}

template <class T>
struct Stratum {
    Interval sides[most_inputs];
    // The worst argument met, of those with a normal and those with a subnormal result.
    double worst[2] = {};
    T at[2][most_inputs] = {};
};

constexpr size_t combinations = 24'000;

template <class T>
std::vector<Stratum<T>> strata_of(const Kernel& kernel, std::mt19937_64& random) {
    const Function& function = *kernel.function;
    std::vector<Stratum<T>> list;
    const std::vector<Interval> first = strata_of<T>(function, function.ranges);
    if (kernel.inputs == 1) {
        for (const Interval& interval : first) list.push_back({{interval}});
    } else {
        const std::vector<Interval> second = function.second.empty() ? first : strata_of<T>(function, function.second);
        // A complex second argument is like the first, both parts of which are like one another.
        for (size_t i = 0; i < combinations; ++i) {
            Stratum<T> stratum{};
            for (int c = 0; c < kernel.inputs; ++c) {
                const std::vector<Interval>& choice = c % 2 ? second : first;
                stratum.sides[c] = choice[random() % choice.size()];
            }
            // Of like size: where arguments cancel, or neither outweighs the other.
            if (i % 4 == 0)
                for (int c = 1; c < kernel.inputs; ++c) {
                    const Interval& like = stratum.sides[0];
                    stratum.sides[c] = random() & 1 ? like : Interval{-like.high, -like.low};
                }
            list.push_back(stratum);
        }
    }
    if (function.hard) {
        std::vector<double> arguments;
        function.hard(arguments);
        for (size_t i = 0; i + kernel.inputs <= arguments.size(); i += kernel.inputs)
            for (const int64_t around : {0, 1}) {
                Stratum<T> stratum{};
                for (int c = 0; c < kernel.inputs; ++c) {
                    const int64_t at = order(static_cast<T>(arguments[i + c]));
                    stratum.sides[c] = {moved<T>(at, -around), moved<T>(at, around)};
                }
                list.push_back(stratum);
            }
    }
    return list;
}

template <class T>
T random_in(const Interval& interval, std::mt19937_64& random) {
    return number<T>(static_cast<int64_t>(static_cast<uint64_t>(interval.low) + random() % (width(interval) + 1)));
}

// Runs the kernel over arguments and keeps the worst of all, and of each stratum that an argument belongs to.
template <class T>
struct Hunter {
    const Kernel& kernel;
    const Judge judge;
    Worst worst;
    std::vector<T> x, y;

    explicit Hunter(const Kernel& hunted) : kernel(hunted), judge(hunted, measure_of(hunted)) {}

    // `per_stratum` arguments of each stratum lie in x, one stratum after the other.
    void run(std::vector<Stratum<T>>& strata, size_t per_stratum) {
        const size_t in = static_cast<size_t>(kernel.inputs), out = static_cast<size_t>(kernel.outputs);
        const size_t n = x.size() / in;
        y.resize(n * out);
        evaluate(kernel, x.data(), y.data(), n);
        for (size_t i = 0; i < n; ++i) {
            const T *point = &x[in * i], *result = &y[out * i];
            if (!judge.can(point)) continue;
            ++worst.count;
            Error errors[most_outputs];
            judge.fast(point, result, errors);
            Stratum<T>& stratum = strata[i / per_stratum];
            for (size_t k = 0; k < out; ++k) {
                const bool subnormal = errors[k].subnormal;
                if (!subnormal) worst.relative = std::max(worst.relative, errors[k].relative);
                if (!(errors[k].ulp > stratum.worst[subnormal])) continue;
                stratum.worst[subnormal] = errors[k].ulp;
                std::copy_n(point, in, stratum.at[subnormal]);
            }
            settle(point, result, errors);
        }
    }

    // Errors of doubles that come near the worst so far are taken anew against the exact value.
    void settle(const T* point, const T* result, Error* errors) {
        const auto close = [&](const Error& error) {
            const double bar = error.subnormal ? worst.subnormal_ulp : worst.ulp;
            return error.ulp > 0 && error.ulp > bar - Judge::fast_slack;
        };
        bool any = false;
        for (int k = 0; k < kernel.outputs; ++k) any |= close(errors[k]);
        if (!any) return;
        if (sizeof(T) == 8) judge.exact(point, result, errors);
        for (int k = 0; k < kernel.outputs; ++k) fold(worst, errors[k], point, kernel.inputs);
    }
};

// As many random arguments in every stratum, about `count` in all.
template <class T>
void sample(Hunter<T>& hunter, std::vector<Stratum<T>>& strata, double count, std::mt19937_64& random) {
    const size_t per_stratum = std::max<size_t>(1, static_cast<size_t>(count) / strata.size());
    hunter.x.clear();
    for (const Stratum<T>& stratum : strata)
        for (size_t i = 0; i < per_stratum; ++i)
            for (int c = 0; c < hunter.kernel.inputs; ++c) hunter.x.push_back(random_in<T>(stratum.sides[c], random));
    hunter.run(strata, per_stratum);
}

// Leaves the `keep` strata with the worst normal results, and then those with the worst subnormal ones.
template <class T>
void select(std::vector<Stratum<T>>& strata, size_t keep) {
    size_t chosen = 0;
    for (const int kind : {0, 1}) {
        const auto first = strata.begin() + static_cast<ptrdiff_t>(chosen);
        const auto end = strata.begin() + static_cast<ptrdiff_t>(std::min(strata.size(), chosen + keep));
        std::partial_sort(first, end, strata.end(),
                          [&](const auto& a, const auto& b) { return a.worst[kind] > b.worst[kind]; });
        const auto last = std::find_if(first, end, [&](const auto& a) { return a.worst[kind] == 0; });
        chosen = static_cast<size_t>(last - strata.begin());
    }
    strata.resize(std::max<size_t>(1, chosen));
}

// Each stratum narrowed to a sixteenth around its worst normal and its worst subnormal result.
template <class T>
std::vector<Stratum<T>> narrowed(const std::vector<Stratum<T>>& strata, int inputs) {
    std::vector<Stratum<T>> list;
    for (const Stratum<T>& stratum : strata)
        for (const int kind : {0, 1}) {
            if (stratum.worst[kind] == 0) continue;
            Stratum<T> narrow = stratum;
            for (int c = 0; c < inputs; ++c) {
                Interval& side = narrow.sides[c];
                const int64_t at = order(stratum.at[kind][c]), reach = static_cast<int64_t>(width(side) / 32) + 1;
                side = {std::max(side.low, moved<T>(at, -reach)), std::min(side.high, moved<T>(at, reach))};
            }
            narrow.worst[1 - kind] = 0;
            list.push_back(narrow);
        }
    return list.empty() ? strata : list;
}

// From the worst normal, or the worst subnormal result of each stratum, in steps that shrink to the last digit.
template <class T>
void climb(Hunter<T>& hunter, const std::vector<Stratum<T>>& strata, int kind, int shrink, std::mt19937_64& random) {
    constexpr size_t tries = 24;
    std::vector<Stratum<T>> climbers;
    for (const Stratum<T>& stratum : strata)
        if (stratum.worst[kind] > 0) climbers.push_back(stratum);
    if (climbers.empty()) return;
    for (int step = std::numeric_limits<T>::digits; step >= 0; step -= shrink) {
        hunter.x.clear();
        for (const Stratum<T>& climber : climbers)
            for (size_t i = 0; i < tries; ++i)
                for (int c = 0; c < hunter.kernel.inputs; ++c) {
                    // One component in two stays where it is.
                    const Interval& side = climber.sides[c];
                    const int64_t at = order(climber.at[kind][c]);
                    const int64_t reach = std::min(int64_t{1} << step, static_cast<int64_t>(width(side) / 4) + 1);
                    const bool moves = hunter.kernel.inputs == 1 || random() & 1;
                    hunter.x.push_back(moves ? random_in<T>({moved<T>(at, -reach), moved<T>(at, reach)}, random)
                                             : climber.at[kind][c]);
                }
        hunter.run(climbers, tries);
    }
}

template <class T>
Worst hunt_type(const Kernel& kernel, double effort, uint64_t seed) {
    const SilentErrors silent;
    std::mt19937_64 random(seed);
    Hunter<T> hunter(kernel);
    const double per_round = (kernel.function->fast ? 150'000 : 20'000) * effort;

    std::vector<Stratum<T>> strata = strata_of<T>(kernel, random);
    sample(hunter, strata, per_round, random);
    while (strata.size() > 64) {
        select(strata, std::max<size_t>(32, strata.size() / 8));
        sample(hunter, strata, per_round, random);
    }
    for (const int kind : {0, 1}) climb(hunter, strata, kind, effort < 1 ? 4 : 2, random);
    for (int zoom = 0; zoom < 3; ++zoom) {
        select(strata, 16);
        strata = narrowed(strata, kernel.inputs);
        sample(hunter, strata, per_round, random);
    }
    return hunter.worst;
}

template <class T>
Worst search_type(const Kernel& kernel, double low, double high, int64_t count, uint64_t seed) {
    const SilentErrors silent;
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> even(low, high);
    Hunter<T> hunter(kernel);
    std::vector<Stratum<T>> one(1);
    while (count > 0) {
        const int64_t batch = std::min<int64_t>(count, 4096);
        hunter.x.clear();
        for (int64_t i = 0; i < batch * kernel.inputs; ++i) hunter.x.push_back(static_cast<T>(even(random)));
        hunter.run(one, static_cast<size_t>(batch));
        count -= batch;
    }
    return hunter.worst;
}

}  // namespace

template <class T>
void fold(Worst& worst, const Error& error, const T* x, int inputs) {
    double& bar = error.subnormal ? worst.subnormal_ulp : worst.ulp;
    if (!error.subnormal) worst.relative = std::max(worst.relative, error.relative);
    if (!(error.ulp > bar)) return;
    bar = error.ulp;
    std::copy_n(x, inputs, error.subnormal ? worst.subnormal_at : worst.at);
}
template void fold(Worst&, const Error&, const float*, int);
template void fold(Worst&, const Error&, const double*, int);

Worst hunt(const Kernel& kernel, double effort, uint64_t seed) {
    return kernel.single() ? hunt_type<float>(kernel, effort, seed) : hunt_type<double>(kernel, effort, seed);
}

Worst search_between(const Kernel& kernel, double low, double high, int64_t count, uint64_t seed) {
    return kernel.single() ? search_type<float>(kernel, low, high, count, seed)
                           : search_type<double>(kernel, low, high, count, seed);
}

template <class T>
std::vector<T> typical_arguments(const Kernel& kernel, size_t most, uint64_t seed) {
    std::mt19937_64 random(seed);
    const std::vector<Stratum<T>> strata = strata_of<T>(kernel, random);
    std::vector<T> list;
    for (size_t i = 0; i < most; ++i) {
        const Stratum<T>& stratum = strata[random() % strata.size()];
        for (int c = 0; c < kernel.inputs; ++c) list.push_back(random_in<T>(stratum.sides[c], random));
    }
    return list;
}
template std::vector<float> typical_arguments(const Kernel&, size_t, uint64_t);
template std::vector<double> typical_arguments(const Kernel&, size_t, uint64_t);

}  // namespace orv::accuracy
