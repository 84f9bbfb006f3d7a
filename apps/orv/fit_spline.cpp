#include "fit_spline.h"

#include "failure.h"
#include "names.h"
#include "numbers.h"

#include <algorithm>

namespace orv::command {

namespace {

#define ORV_KERNELS(kind) orv_df_kernel_dDF##kind##Spline1D, orv_df_kernel_sDF##kind##Spline1D
const Spline splines[] = {
    {"linear", ORV_KERNELS(Linear), 2, ORV_DF_TYPE_DEFAULT, ORV_DF_FREE_END, 2},
    {"quadratic", ORV_KERNELS(Quadratic), 3, ORV_DF_TYPE_KNOTS, ORV_DF_FREE_END, 2},
    {"natural", ORV_KERNELS(NaturalCubic), 4, ORV_DF_TYPE_NATURAL, ORV_DF_FREE_END, 2},
    {"default", ORV_KERNELS(DefaultCubic), 4, ORV_DF_TYPE_DEFAULT, ORV_DF_FREE_END, 3},
    {"hermite", ORV_KERNELS(HermiteCubic), 4, ORV_DF_TYPE_HERMITE, ORV_DF_FREE_END, 3},
    {"bessel", ORV_KERNELS(BesselCubic), 4, ORV_DF_TYPE_BESSEL, ORV_DF_FREE_END, 4},
    {"akima", ORV_KERNELS(AkimaCubic), 4, ORV_DF_TYPE_AKIMA, ORV_DF_NO_CONDITION, 5},
    {"hyman", ORV_KERNELS(HymanCubic), 4, ORV_DF_TYPE_HYMAN, ORV_DF_FREE_END, 4},
};
#undef ORV_KERNELS

const struct {
    const char* name;
    int64_t code;
    bool takes_values;
} boundaries[] = {
    {"none", ORV_DF_NO_CONDITION, false},
    {"not-a-knot", ORV_DF_NOT_A_KNOT, false},
    {"free", ORV_DF_FREE_END, false},
    {"periodic", ORV_DF_PERIODIC, false},
    {"first", ORV_DF_FIRST_FIRST, true},
    {"first-second", ORV_DF_FIRST_SECOND, true},
    {"second-first", ORV_DF_SECOND_FIRST, true},
    {"second", ORV_DF_SECOND_SECOND, true},
};

template <class T>
constexpr bool is_double = sizeof(T) == sizeof(double);

// The entry of the element type.
#define ORV_ENTRY(name)                    \
    [] {                                   \
        if constexpr (is_double<T>)        \
            return &orv_df_kernel_d##name; \
        else                               \
            return &orv_df_kernel_s##name; \
    }()

void expect_success(int32_t status, const char* what) {
    if (status == ORV_DF_OK) return;
    const char* meaning = status == ORV_DF_NO_MEMORY                ? "no memory"
                          : status == ORV_DF_BAD_BREAK_COUNT        ? "too few rows for these ends"
                          : status == ORV_DF_NULL_BOUNDARY_DATA     ? "these ends need two values, as in first:0,0"
                          : status == ORV_DF_BAD_BOUNDARY_CONDITION ? "this spline does not take these ends"
                          : status == ORV_DF_NOT_PERIODIC ? "periodic ends, but the first and the last value differ"
                          : status == ORV_DF_SINGULAR     ? "the system of equations is singular"
                                                          : "not possible";
    fail(std::string(what) + ": " + meaning + ", status " + std::to_string(status));
}

// The code of the ends, and their values if they have any.
template <class T>
int64_t parse_boundary(const std::string& text, std::vector<T>& ends) {
    const size_t colon = text.find(':');
    const auto* boundary = std::find_if(std::begin(boundaries), std::end(boundaries),
                                        [&](const auto& known) { return text.substr(0, colon) == known.name; });
    if (boundary == std::end(boundaries)) {
        std::vector<std::string> known;
        for (const auto& end : boundaries) known.emplace_back(end.name);
        fail("--bc: " + no_such("kind of ends", text.substr(0, colon), known));
    }
    if (colon != std::string::npos) ends = parse_pair<T>(text.substr(colon + 1), "--bc");
    if (boundary->takes_values && ends.empty()) fail("--bc: " + text + " takes two values, as in " + text + ":0,0");
    return boundary->code;
}

}  // namespace

const Spline& find_spline(const std::string& name) {
    for (const Spline& spline : splines)
        if (name == spline.name) return spline;
    std::vector<std::string> known;
    for (const Spline& spline : splines) known.emplace_back(spline.name);
    fail("--spline: " + no_such("spline", name, known));
}

template <class T>
std::vector<T> parse_pair(const std::string& text, const std::string& option) {
    const size_t comma = text.find(',');
    std::vector<T> pair(2);
    if (comma == std::string::npos ||
        parse_number(std::string_view(text).substr(0, comma), pair[0]) != Parsed::number ||
        parse_number(std::string_view(text).substr(comma + 1), pair[1]) != Parsed::number)
        fail(option + ": " + text + " is not two numbers with a comma between them");
    return pair;
}

template <class T>
Fit<T>::Fit(const Data<T>& d, const FitRequest& request, const Spline& spline) : data(d) {
    const size_t rows = data.x.size();
    if (rows < spline.least_rows)
        fail(request.file + ": the " + spline.name + " spline takes at least " + std::to_string(spline.least_rows) +
             " rows");
    int64_t boundary = spline.boundary;
    if (!request.boundary.empty()) boundary = parse_boundary(request.boundary, ends);
    int64_t internal_type = 0;
    if (spline.type == ORV_DF_TYPE_KNOTS) {
        internal_type = ORV_DF_INTERNAL_KNOTS;
        for (size_t i = 0; i + 1 < rows; ++i) internal.push_back(data.x[i] + (data.x[i + 1] - data.x[i]) / 2);
    } else if (spline.type == ORV_DF_TYPE_HERMITE || spline.type == ORV_DF_TYPE_DEFAULT) {
        if (!data.internal.empty()) {
            internal_type = 1;
            internal.assign(data.internal.begin() + 1, data.internal.end() - 1);
        } else if (spline.order == 4) {
            fail(std::string("the ") + spline.name + " spline takes its interior " +
                 (spline.type == ORV_DF_TYPE_HERMITE ? "first" : "second") + " derivatives from --internal");
        }
    }
    coeffs.resize(rows * static_cast<size_t>(spline.order));
    expect_success(ORV_ENTRY(NewTask1D)(&task, static_cast<int64_t>(rows), data.x.data(), ORV_DF_BREAKS_NO_HINT, 1,
                                        data.y.data(), ORV_DF_ROWS, 0),
                   "task");
    expect_success(
        ORV_ENTRY(EditPPSpline1D)(task, spline.order, spline.type, boundary, ends.empty() ? nullptr : ends.data(),
                                  internal_type, internal_type == 0 ? nullptr : internal.data(), coeffs.data(), 0),
        "spline");
    int32_t status;
    if constexpr (is_double<T>)
        status = spline.construct_d(task, nullptr, nullptr, 0, orv_serv_services());
    else
        status = spline.construct_s(task, nullptr, nullptr, 0, orv_serv_services());
    expect_success(status, spline.name);
}

template <class T>
std::vector<T> Fit<T>::evaluate(const std::vector<T>& sites, int highest) const {
    const std::vector<int32_t> wanted(static_cast<size_t>(highest) + 1, 1);
    std::vector<T> results(sites.size() * wanted.size());
    expect_success(ORV_ENTRY(DFInterpolate1D)(task, ORV_DF_EVALUATE, 0, static_cast<int64_t>(sites.size()),
                                              sites.data(), ORV_DF_SITES_NO_HINT, highest + 1, wanted.data(), nullptr,
                                              results.data(), ORV_DF_ROWS, nullptr, nullptr, nullptr, nullptr, nullptr,
                                              nullptr, nullptr, nullptr, nullptr),
                   "evaluation");
    return results;
}

template <class T>
std::vector<T> Fit<T>::integrate(const std::vector<T>& from, const std::vector<T>& to) const {
    std::vector<T> results(from.size());
    expect_success(ORV_ENTRY(DFIntegrate1D)(task, 0, static_cast<int64_t>(from.size()), from.data(), 0, to.data(), 0,
                                            nullptr, results.data(), ORV_DF_ROWS, nullptr),
                   "integration");
    return results;
}

template std::vector<float> parse_pair(const std::string&, const std::string&);
template std::vector<double> parse_pair(const std::string&, const std::string&);
template struct Fit<float>;
template struct Fit<double>;

}  // namespace orv::command
