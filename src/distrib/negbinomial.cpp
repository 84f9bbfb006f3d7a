// Negative binomial, failures before the a-th success, for any positive a: by inversion of its distribution function for
// modes below 100, by rejection above and for great means.
//
// The probabilities f(k) are log-concave for a of 1 and more: the tangents of ln f at two points left and right of the mode
// lie above it everywhere, and with the height of the mode between them they are a hat, whose area is least, 1.13 of that
// under f for a bell, where f is 1/e of its height.
// L. Devroye, "Non-Uniform Random Variate Generation", 1986, chapters VII.2 and X.4.
#include "distrib/rejection.h"
#include "services/export.h"

#include <math.h>

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

constexpr int32_t chunk_id = 4;
constexpr double least_mean_of_rejection = 10737418.24;
constexpr double least_mode_of_rejection = 100;

// With k = mode + d, A = mode + a - 1/2 and B = mode + 1/2, by Stirling's formula around halves:
//   ln f(k) / f(mode) = d ln(q A / B) + D(A, d) - D(B, d) + c(A + d) - c(A) - c(B + d) + c(B)
// with the deviances D(m, d) = (m + d) ln((m + d) / m) - d and the formula's corrections c.
struct LogRatio {
    double upper, lower, log_step;  // A, B and ln(q A / B)
};

double correction(double z) { return -z / (24 * z * z + 1.4); }

double log_ratio(const LogRatio& l, double d, double log_upper, double log_lower) {
    const double a = l.upper + d, b = l.lower + d;
    return d * l.log_step + a * log_upper - b * log_lower + correction(a) - correction(l.upper) - correction(b) +
           correction(l.lower);
}

double log_ratio(const LogRatio& l, double d) {
    return log_ratio(l, d, __kuzdLn((l.upper + d) / l.upper), __kuzdLn((l.lower + d) / l.lower));
}

struct ByRejection {
    LogRatio log_ratio;
    Hat hat;
    Steps steps;
    float curvature_left, curvature_right;
};

struct ByTable {
    double entries[163];
    double increment;
};

// The parameters decide on the path, so they are key enough for both.
struct Setup {
    double a, p;
    union {
        ByRejection rejection;
        ByTable table;
    };
};
static_assert(sizeof(Setup) == 1328);

// `fits` looks further into a setup of these parameters.
template <class Fits, class Make>
Setup* setup_for(Stream* stream, double a, double p, Fits fits, Make make) {
    const auto matches = [=](const Setup& s) { return s.a == a && s.p == p && fits(s); };
    return setup_in_chunk<Setup>(stream, chunk_id, sizeof(Setup), matches, [=](Setup& s) {
        make(s);
        s.a = a;
        s.p = p;
    });
}

// ---- Rejection -----------------------------------------------------------------------------------------------------

// The distance from the mode where ln f has fallen by 1 or just more, up to `farthest`; sign is the side.
double distance_of_fall(const LogRatio& l, double sign, double farthest) {
    double near = 0, far = 1;
    while (far < farthest && log_ratio(l, sign * far) > -1) far *= 2;
    if (far > farthest) far = farthest;
    while (far - near > 1) {
        const double middle = __kuzdFloor((near + far) / 2);
        (log_ratio(l, sign * middle) > -1 ? near : far) = middle;
    }
    return far;
}

float mode_of(double peak) {
    const __m128d whole = simd::round<_MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC>(simd::splat(peak));
    return static_cast<float>(peak > 0 ? simd::first_lane(whole) : 0);
}

// c with ln f(mode + d) / f(mode) >= -c d^2 from just past the steps to `end`, where the logarithm is -1 or below: as
// 1 - c d^2 <= e^(-c d^2), a height below 1 - c d^2 is below the ratio. The quotient -ln f / d^2 is a multiple of 1/d, of the
// size of the linear term, and the difference of the deviances over d^2, which is convex, (1/B - 1/A) / 2 at the mode. Next to
// the mode the logarithm itself is lost in rounding errors where A and B are great.
float curvature(const LogRatio& l, double sign, double end) {
    constexpr double begin = Steps::count + 1, rounding = 1 + 1e-3;
    if (!(end > begin)) return HUGE_VALF;
    const double linear = -sign * l.log_step, at_mode = (l.upper - l.lower) / (2 * l.upper * l.lower);
    const double at_end = -log_ratio(l, sign * end) / (end * end);
    return static_cast<float>(rounding * ((linear > 0 ? linear / begin : 0) + (at_mode > at_end ? at_mode : at_end)));
}

void set_rejection(ByRejection& b, double a, double p, double mode) {
    const double q = 1 - p;
    LogRatio& l = b.log_ratio;
    l.upper = mode + a - 0.5;
    l.lower = mode + 0.5;
    l.log_step = __kuzdLn(q * l.upper / l.lower);
    Hat& hat = b.hat;
    hat.mode = static_cast<float>(mode);
    hat.xm = hat.mode + 0.5f;
    const auto log_of_ratio = [=](double k) { return __kuzdLn((a + k - 1) * q / k); };

    constexpr double farthest = 1e12;
    const double right = mode + distance_of_fall(l, 1, farthest), fall = log_of_ratio(right + 1);
    hat.xr = static_cast<float>(right + 1 - log_ratio(l, right - mode) / fall);
    const double left = mode > 0 ? mode - distance_of_fall(l, -1, mode) : 0;
    const bool has_left = left >= 1;
    const double rise = has_left ? log_of_ratio(left) : 1;
    hat.xl = has_left ? static_cast<float>(left - log_ratio(l, left - mode) / rise) : 0.0f;
    set_tails(hat, static_cast<float>(rise), static_cast<float>(-fall));
    set_box(hat, has_left ? 1.0f : 0.0f, 1.0f);
    b.curvature_left = curvature(l, -1, mode - left);
    b.curvature_right = curvature(l, 1, right - mode);
    const auto ratio = [=](int32_t k) { return static_cast<float>((a + k - 1) * q / k); };
    set_steps(b.steps, static_cast<int32_t>(hat.mode), ratio, [=](int32_t k) { return 1 / ratio(k); });
}

struct Law {
    static constexpr int32_t batch = 1012;
    static constexpr int32_t most = INT32_MAX;
    const Steps& steps;
    const LogRatio& l;
    float curvature_left, curvature_right;
    double a, q;

    float ratio(int32_t k) const { return static_cast<float>((a + k - 1) * q / k); }
    __m128 near(__m128 distance) const {
        return simd::less_equal(distance, simd::splat(static_cast<float>(Steps::count)));
    }

    __m128 surely(__m128 d, __m128 v) const {
        const __m128 left = simd::less(d, _mm_setzero_ps());
        const __m128 c = simd::select(left, simd::splat(curvature_left), simd::splat(curvature_right));
        return simd::less_equal(v, simd::splat(1.0f) - c * (d * d));
    }

    struct Deviances {
        __m128d log_ratio, known;  // but for the corrections
    };
    Deviances deviances(__m128d d) const {
        const auto above = growth<double>(simd::splat(l.upper), d), below = growth<double>(simd::splat(l.lower), d);
        const __m128d farther = simd::greatest(simd::magnitude(above.v), simd::magnitude(below.v));
        return {d * simd::splat(l.log_step) + (above.deviance - below.deviance),
                simd::less_equal(farther, simd::splat(0.125))};
    }

    // The corrections are -1/(24 z) for what comes here.
    Verdict judge(__m128i, __m128 d, __m128 alv) const {
        const Deviances low = deviances(simd::widen_low(d)), high = deviances(simd::widen_high(d));
        const __m128 upper = simd::splat(static_cast<float>(l.upper)), lower = simd::splat(static_cast<float>(l.lower));
        const __m128 above = upper * (upper + d), below = lower * (lower + d);
        const __m128 corrections = simd::splat(1 / 24.0f) * d * ((below - above) / below) / above;
        const __m128 value = simd::narrow(low.log_ratio, high.log_ratio) + corrections;
        const __m128 known = simd::floats(simd::even_words(simd::bits_of(low.known), simd::bits_of(high.known)));
        return {simd::bit_and(known, simd::less_equal(alv, value)), simd::bit_and_not(known, simd::equal(alv, alv))};
    }

    void log_ratios(int32_t n, const int32_t* k, double* out) const {
        double logs[2 * 64];
        const double mode = l.lower - 0.5;
        for (int32_t i = 0; i < n; ++i) {
            const double d = k[i] - mode;
            logs[2 * i] = (l.upper + d) / l.upper;
            logs[2 * i + 1] = (l.lower + d) / l.lower;
        }
        run(reinterpret_cast<OneResult<double>>(orv_arq_kernel_dLn_ttab[1]), 2 * n, logs, logs);
        for (int32_t i = 0; i < n; ++i) out[i] = log_ratio(l, k[i] - mode, logs[2 * i], logs[2 * i + 1]);
    }
};

int32_t draw_by_rejection(Stream* stream, int32_t n, int32_t* r, double a, double p, double peak) {
    const float mode = mode_of(peak);
    return draw_by_setup(stream, chunk_id, [=](Setups setups) -> int32_t {
        const Setup* setup = setup_for(
            stream, a, p, [=](const Setup& s) { return s.rejection.hat.mode == mode; },
            [=](Setup& s) { set_rejection(s.rejection, a, p, mode); });
        if (!setup) return StatusNoMemory;
        const ByRejection& b = setup->rejection;
        return draw_under_hat(stream, n, r, b.hat,
                              Law{b.steps, b.log_ratio, b.curvature_left, b.curvature_right, a, 1 - p}, setups);
    });
}

// Below a = 1 the probabilities are not log-concave. With Y of a + 1 in place of a, each failure is kept with probability
// U^(1/a), one U for all of them: a gamma number of shape a is one of shape a + 1 times U^(1/a), and a negative binomial
// number is a Poisson number whose mean is a gamma number.
int32_t draw_thinned(Stream* stream, int32_t n, int32_t* r, double a, double p) {
    int32_t status = draw_by_rejection(stream, n, r, a + 1, p, a * (1 - p) / p);
    if (status < 0) return status;
    double u[block];
    for (int32_t done = 0; done < n;) {
        const int32_t count = n - done < block ? n - done : block;
        status = draw_uniforms(stream, count, u, 0.0, 1.0);
        if (status < 0) return status;
        run(reinterpret_cast<WithScalar<double>>(orv_arq_kernel_dPowx_ttab[1]), count, u, 1 / a, u);
        for (int32_t i = 0; i < count; ++i) {
            status = _kuziRngBinomial(0, stream, 1, r + done + i, r[done + i], u[i]);
            if (status < 0) return status;
        }
        done += count;
    }
    return status;
}

// ---- Table ---------------------------------------------------------------------------------------------------------

void set_table(ByTable& b, double a, double p, int32_t size) {
    double term = accurate_power(p, a), sum = term;
    b.entries[0] = term;
    for (int32_t k = 1; k < size; ++k) {
        term *= (a + k - 1) * (1 - p) / k;
        b.entries[k] = sum += term;
    }
    b.increment = term;
}

int32_t draw_from_table(Stream* stream, int32_t n, int32_t* r, double a, double p, double peak) {
    const int32_t start = peak > 0 ? static_cast<int32_t>(peak) : 0, size = start + 64;
    const Setup* setup = setup_for(
        stream, a, p, [](const Setup&) { return true; }, [=](Setup& s) { set_table(s.table, a, p, size); });
    if (!setup) return StatusNoMemory;
    const DistributionFunction f = {setup->table.entries, size, start, setup->table.increment, INT32_MAX};
    const double q = 1 - p;
    return draw_by_inversion<1024>(stream, n, r, f, [=](int32_t k) { return (a + k - 1) * q / k; });
}

}  // namespace

ORV_API int32_t _kuziRngNegbinomial(int32_t, Stream* stream, int32_t n, int32_t* r, double a, double p) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm_at_pole<float>);
    const double q = 1 - p, peak = (a - 1) * q / p;
    if (a * q / p >= least_mean_of_rejection || peak >= least_mode_of_rejection)
        return a < 1 ? draw_thinned(stream, n, r, a, p) : draw_by_rejection(stream, n, r, a, p, peak);
    ThreadState().set_callback(take_least_logarithm_at_pole<double>);
    return draw_from_table(stream, n, r, a, p, peak);
}
