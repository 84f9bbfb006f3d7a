// Hypergeometric: by inversion of its distribution function for modes near the end of the support, by rejection otherwise.
// Drawn is the number of the rarer kind in the smaller of the sample and the rest.
// V. Kachitvichyanukul, B. W. Schmeiser, "Computer generation of hypergeometric random variates", Journal of Statistical
// Computation and Simulation 22, 1985.
#include "distrib/rejection.h"
#include "services/export.h"

using namespace orv::distrib;
namespace simd = orv::simd;

namespace {

constexpr int32_t chunk_id = 6;
constexpr int32_t least_mode_of_rejection = 40;

// x marked ones (the rarer kind) and y others, of which z are drawn; z is at most half of all.
struct Urn {
    int32_t x, y, z;
    int32_t mode, most;  // the support begins at 0, as z is at most y
};

Urn urn_of(int32_t l, int32_t s, int32_t m) {
    const int32_t rest = l - m, x = m < rest ? m : rest, z = 2 * int64_t{s} < l ? s : l - s;
    const float mode = (static_cast<float>(x) + 1) * (static_cast<float>(z) + 1) / (static_cast<float>(l) + 2);
    return {x, l - x, z, static_cast<int32_t>(mode), x < z ? x : z};
}

// f(k) / f(k - 1).
template <class T>
T ratio(const Urn& urn, int32_t k) {
    const T marked = static_cast<T>(urn.x - k + 1) * static_cast<T>(urn.z - k + 1);
    return marked / (static_cast<T>(k) * static_cast<T>(int64_t{urn.y} - urn.z + k));
}

struct Key {
    double l, m, s;

    bool operator==(const Key& k) const { return l == k.l && m == k.m && s == k.s; }
};

// ---- Logarithms of factorials --------------------------------------------------------------------------------------

// The logarithms of k + 1 that ln k! is made of, for four arguments a number.
struct Factorials {
    static constexpr int32_t terms = 4, most = 64 * terms;
    static constexpr int32_t small = 16;
    double value[most];

    // Of n arguments: from the products for small ones, else by Stirling's formula. The four constants of a ratio of two and
    // two factorials cancel, and so they are left out where `value` is taken four by four; small ones are lowered likewise.
    Factorials(int32_t n, const double* k) {
        for (int32_t i = 0; i < n; ++i) {
            double product = 1;
            for (int32_t j = 2; k[i] < small && j <= k[i]; ++j) product *= j;
            value[i] = k[i] < small ? product : k[i] + 1;
        }
        run(reinterpret_cast<OneResult<double>>(orv_arq_kernel_dLn_ttab[1]), n, value, value);
        constexpr double half_log_turn = 0.9189385332046727;
        for (int32_t i = 0; i < n; ++i) {
            const double z = k[i] + 1, w = 1 / z;
            if (k[i] >= small)
                value[i] = (k[i] + 0.5) * value[i] - z + half_log_turn + w * (1 / 12.0 - w * w * (1 / 360.0));
        }
    }
};

// ln of the factorials below the fraction of f(k) = x! y! z! (l - z)! / (l! k! (x - k)! (z - k)! (y - z + k)!).
void log_products(const Urn& urn, int32_t n, const int32_t* k, double* out) {
    double arguments[Factorials::most];
    for (int32_t i = 0; i < n; ++i) {
        const double j = k[i];
        double* a = arguments + Factorials::terms * i;
        a[0] = j;
        a[1] = urn.x - j;
        a[2] = urn.z - j;
        a[3] = double(urn.y) - urn.z + j;
    }
    const Factorials f(Factorials::terms * n, arguments);
    for (int32_t i = 0; i < n; ++i) {
        const double* v = f.value + Factorials::terms * i;
        out[i] = (v[0] + v[1]) + (v[2] + v[3]);
    }
}

double log_product(const Urn& urn, int32_t k) {
    double result;
    log_products(urn, 1, &k, &result);
    return result;
}

// ---- Rejection -----------------------------------------------------------------------------------------------------

struct ByRejection {
    Key key;
    Hat hat;
    Steps steps;
    double at_mode;  // log_product of the mode
    char unused[600 - sizeof(Key) - sizeof(Hat) - sizeof(Steps) - sizeof(double)];
};
static_assert(sizeof(ByRejection) == 600);

// f(k) / f(mode), rounded to a float by the kernel that gives it.
float height(const Urn& urn, double at_mode, float k) {
    float x = static_cast<float>(at_mode - log_product(urn, static_cast<int32_t>(k)));
    run(reinterpret_cast<OneResult<float>>(orv_arq_kernel_sExp_ttab[1]), 1, &x, &x);
    return x;
}

void set_rejection(ByRejection& b, const Urn& urn, float l) {
    const float x = static_cast<float>(urn.x), z = static_cast<float>(urn.z);
    const float w = (l - x) * x * z * (l - z) / (l - 1);
    const float deviation = static_cast<float>(__kuzdSqrt(w) / static_cast<double>(l));
    const float d = static_cast<float>(static_cast<int32_t>(1.5f * deviation)) + 0.5f;
    Hat& hat = b.hat;
    hat.mode = static_cast<float>(urn.mode);
    hat.xm = hat.mode + 0.5f;
    hat.xl = hat.xm - d;
    hat.xr = hat.xm + d;
    b.at_mode = log_product(urn, static_cast<int32_t>(hat.mode));
    // The tails fall as the probabilities do where they begin.
    const int32_t left = static_cast<int32_t>(hat.xl), right = static_cast<int32_t>(hat.xr) - 1;
    const double at_left = ratio<double>(urn, left), at_right = ratio<double>(urn, right + 1);
    set_tails(hat, static_cast<float>(__kuzdLn(at_left)), static_cast<float>(-__kuzdLn(at_right)));
    set_box(hat, height(urn, b.at_mode, hat.xl), height(urn, b.at_mode, hat.xr - 1));
    set_steps(
        b.steps, static_cast<int32_t>(hat.mode), [&](int32_t k) { return k <= urn.most ? ratio<float>(urn, k) : 0; },
        [&](int32_t k) { return 1 / ratio<float>(urn, k); });
}

struct Law {
    static constexpr int32_t batch = 512;
    static constexpr float least_mode_of_squeeze = 100;
    // Up to here the rounding errors of the bounds are well below their tolerances.
    static constexpr float widest_of_squeeze = 3000;
    const Steps& steps;
    const Urn& urn;
    int32_t most;
    double at_mode;
    float farthest_step, farthest_squeeze;

    float ratio(int32_t k) const { return ::ratio<float>(urn, k); }
    __m128 near(__m128 distance) const { return simd::less_equal(distance, simd::splat(farthest_step)); }

    // Bounds of the logarithm of f(k) / f(mode) by the third and the fourth term of the series of ln (1 + r), for the four
    // quotients r that neighbouring factorials have.
    Verdict judge(__m128i k, __m128 d, __m128 alv) const {
        const auto at = [](float x) { return simd::splat(x); };
        const __m128 y = simd::to_floats(k), m = y - d, one = at(1), half = at(0.5f), third = at(1 / 3.0f);
        const __m128 n1 = at(static_cast<float>(urn.x)), draws = at(static_cast<float>(urn.z));
        const __m128 others = at(static_cast<float>(urn.y) - static_cast<float>(urn.z));
        const __m128 y1 = y + one, yn = n1 - y + one, yk = draws - y + one, nk = others + y1;
        const __m128 xm = m + half, xn = n1 - m + half, xk = draws - m + half, nm = others + xm;
        const __m128 g = (yn * yk) / (y1 * nk) - one;
        const __m128 gu = g * (one + g * (g * third - half));
        const __m128 divisor = simd::select(simd::less(g, _mm_setzero_ps()), one + g, one);
        const __m128 gl = gu - at(0.25f) * (g * g) * (g * g) / divisor;
        __m128 sum = y * gu - m * gl, error = _mm_setzero_ps();
        const auto add = [&](__m128 weight, __m128 q) {
            const __m128 fourth = weight * (q * q) * (q * q);
            sum = sum + weight * q * (one + q * (q * third - half));
            error = error + simd::select(simd::less(q, _mm_setzero_ps()), fourth / (one + q), fourth);
        };
        add(xm, -d / y1);
        add(xn, d / yn);
        add(xk, d / yk);
        add(nm, -d / nk);
        const __m128 upper = sum + at(0.0034f);
        const __m128 lower = upper - at(0.25f) * error + (y + m) * (gl - gu) - at(0.0078f);
        const __m128 trusted = simd::less_equal(simd::magnitude(d), at(farthest_squeeze));
        const Verdict squeezed = between(alv, lower, upper);
        return {simd::bit_and(trusted, squeezed.accepted),
                simd::select(trusted, squeezed.undecided, simd::equal(alv, alv))};
    }

    void log_ratios(int32_t n, const int32_t* k, double* out) const {
        log_products(urn, n, k, out);
        for (int32_t i = 0; i < n; ++i) out[i] = at_mode - out[i];
    }
};

int32_t draw_rejecting(Stream* stream, int32_t n, int32_t* r, const Urn& urn, const Key& key, Setups setups) {
    const float mode = static_cast<float>(urn.mode);
    const ByRejection* b = setup_in_chunk<ByRejection>(
        stream, chunk_id, sizeof(ByRejection), [&](const ByRejection& s) { return s.key == key && s.hat.mode == mode; },
        [&](ByRejection& s) {
            set_rejection(s, urn, static_cast<float>(key.l));
            s.key = key;
        });
    if (!b) return StatusNoMemory;
    const float by_steps = mode < Law::least_mode_of_squeeze ? 2147483648.0f : float(Steps::count);
    const Law law = {b->steps, urn, urn.most, b->at_mode, by_steps, Law::widest_of_squeeze};
    return draw_under_hat(stream, n, r, b->hat, law, setups);
}

// ---- Table ---------------------------------------------------------------------------------------------------------

struct ByTable {
    Key key;
    double size, increment, unused;
    double entries[1];
};
static_assert(offsetof(ByTable, entries) == 48);

// The terms end where they no longer count, and are taken as shares of their sum.
void set_table(ByTable& b, const Urn& urn) {
    constexpr double least = 2.220446049250313e-16;
    double arguments[4] = {urn.x + 0.0, urn.y + 0.0, urn.z + 0.0, double(urn.x) + urn.y - urn.z};
    const Factorials above(4, arguments);
    double whole[1] = {double(urn.x) + urn.y};
    const Factorials below(1, whole);
    const double numerator = (above.value[0] + above.value[1]) + (above.value[2] + above.value[3]) - below.value[0];
    double sum = 0;
    int32_t size = 0;
    for (; size <= urn.most; ++size) {
        const double term = accurate_exponential(numerator - log_product(urn, size));
        if (size > urn.mode && term < least) break;
        b.increment = term;
        b.entries[size] = sum += term;
    }
    b.size = size;
    // Logarithms of great factorials are wrong by so much that the sum misses 1 by 1e-5: what is missing would all fall
    // where the table ends.
    for (int32_t k = 0; k < size; ++k) b.entries[k] /= sum;
    b.increment /= sum;
}

int32_t draw_from_table(Stream* stream, int32_t n, int32_t* r, const Urn& urn, const Key& key) {
    const int64_t bytes = 48 + 8 * (int64_t{urn.most} + 1);
    const ByTable* b = setup_in_chunk<ByTable>(
        stream, chunk_id, static_cast<int32_t>(bytes), [&](const ByTable& s) { return s.key == key; },
        [&](ByTable& s) {
            set_table(s, urn);
            s.key = key;
        });
    if (!b) return StatusNoMemory;
    const bool whole = b->size > urn.mode && b->size <= urn.most + 1.0;
    const int32_t size = whole ? static_cast<int32_t>(b->size) : urn.most + 1;
    const DistributionFunction f = {b->entries, size, urn.mode, b->increment, urn.most};
    return draw_by_inversion<1024>(stream, n, r, f, [&](int32_t k) { return ratio<double>(urn, k); });
}

int32_t draw_in_frame(Stream* stream, int32_t n, int32_t* r, const Urn& urn, const Key& key) {
    if (urn.most <= 0) {
        for (int32_t i = 0; i < n; ++i) r[i] = 0;
        return StatusOk;
    }
    if (urn.mode < least_mode_of_rejection) {
        ThreadState().set_callback(take_least_logarithm_at_pole<double>);
        return draw_from_table(stream, n, r, urn, key);
    }
    return draw_by_setup(stream, chunk_id,
                         [&](Setups setups) { return draw_rejecting(stream, n, r, urn, key, setups); });
}

}  // namespace

ORV_API int32_t _kuziRngHypergeometric(int32_t, Stream* stream, int32_t n, int32_t* r, int32_t l, int32_t s,
                                       int32_t m) {
    if (n <= 0) return StatusOk;
    const ErrorFrame frame(take_least_logarithm_at_pole<float>);
    const Urn urn = urn_of(l, s, m);
    const int32_t status = draw_in_frame(stream, n, r, urn, {double(l), double(m), double(s)});
    if (status < 0) return status;
    // Back from the rarer kind and the smaller part: to the marked ones in the sample.
    const bool small_sample = 2 * int64_t{s} <= l, few_marked = l - m >= m;
    if (small_sample && few_marked) return status;
    const int32_t shift = small_sample ? s : few_marked ? m : s - (l - m);
    const bool rises = !small_sample && !few_marked;
    for (int32_t i = 0; i < n; ++i) r[i] = rises ? shift + r[i] : shift - r[i];
    return status;
}
