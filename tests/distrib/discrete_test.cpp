// The discrete distributions: their probabilities, the setups they keep with the stream, and what they leave behind.
#include "distrib/discrete_laws.h"

#include "distrib/deviates.h"
#include "services/test_switches.h"
#include "support/control_state.h"

#include <orv/services.h>

#include <cerrno>

using namespace orv::test;

namespace {

struct Fit {
    DiscreteLaw law;
    int64_t spacing = 1;  // of the results: of floats above 2^24
    size_t most_cells = 2000;
    int32_t n = 1000000;
};

// Parameters on both sides of every threshold, and extreme ones.
std::vector<Fit> fits() {
    std::vector<Fit> all;
    for (const double lambda : {0.0, 1e-9, 0.01, 1.0, 5.0, 26.999, 27.0, 40.0, 99.9, 100.0, 101.5, 1234.5, 1e6})
        all.push_back({poisson(PoissonRejection, lambda)});
    all.push_back({poisson(PoissonRejection, 1e8), 8});
    // An approximation, wrong by 1e-4 at most: 10^5 numbers do not see that.
    for (const double lambda : {0.01, 0.999, 1.0, 1.99, 2.0, 3.5, 7.0, 15.9, 16.0, 40.0, 99.9, 100.0, 1000.0, 1e6})
        all.push_back({poisson(PoissonNormal, lambda), 1, 200, 100000});
    all.push_back({poisson(PoissonNormal, 1e8), 8, 200, 100000});
    const struct {
        int32_t n;
        double p;
    } trials[] = {{1, 0.3},   {10, 0.3},  {10, 0.5},     {10, 0.9},       {60, 0.5},         {59, 0.5},
                  {75, 0.4},  {76, 0.6},  {200, 0.4},    {200, 0.6},      {1000, 0.03},      {1000, 0.0299},
                  {100, 0.0}, {100, 1.0}, {100000, 0.5}, {100000, 0.999}, {INT32_MAX, 1e-9}, {INT32_MAX, 1e-7}};
    for (const auto& c : trials) all.push_back({binomial(c.n, c.p)});
    const struct {
        int32_t l, s, m;
    } lots[] = {{50, 20, 10},
                {50, 20, 40},
                {50, 30, 10},
                {50, 30, 40},
                {50, 50, 10},
                {50, 20, 0},
                {10000, 5000, 1000},
                {10000, 5000, 9000},
                {10000, 6000, 1000},
                {10000, 6000, 9000},
                {1000, 390, 100},
                {1000, 400, 101},
                {1000, 410, 100},
                {300, 150, 150},
                {1000000, 300000, 500000},
                {100000000, 1000000, 1000},
                {INT32_MAX, 1000000, 100000},
                {INT32_MAX, 100, INT32_MAX / 3},
                {INT32_MAX, INT32_MAX / 2, 10000}};
    for (const auto& c : lots) all.push_back({hypergeometric(c.l, c.s, c.m)});
    all.push_back({hypergeometric(INT32_MAX, INT32_MAX / 2, INT32_MAX / 3), 64});
    const struct {
        double a, p;
        int64_t spacing;
    } waits[] = {{1, 0.5, 1},     {5, 0.3, 1},    {0.3, 0.1, 1}, {100, 0.02, 1}, {2, 0.0099, 1},
                 {2, 0.0098, 1},  {1.5, 1e-3, 1}, {30, 0.2, 1},  {30, 0.22, 1},  {1e6, 0.9999, 1},
                 {1e6, 0.999, 1}, {1e4, 0.5, 1},  {3, 1e-5, 1},  {1e6, 0.05, 2}};
    for (const auto& c : waits) all.push_back({negbinomial(c.a, c.p), c.spacing});
    all.push_back({binomial(INT32_MAX, 0.4), 128});
    all.push_back({binomial(INT32_MAX, 0.99), 8});
    return all;
}

// At fixed seeds: a value above 4 is for one right sample in 30000.
TEST(Discrete, HaveTheirProbabilities) {
    for (const Fit& fit : fits()) {
        const Cells cells = cells_of(probabilities(fit.law), fit.most_cells, fit.spacing);
        OwnedStream stream(BrngSFMT19937, {20260});
        std::vector<int32_t> r(static_cast<size_t>(fit.n));
        ASSERT_EQ(fit.law.draw(stream, fit.n, r.data()), StatusOk) << fit.law.name;
        std::vector<int64_t> counts(cells.p.size());
        for (const int32_t k : r) {
            ASSERT_TRUE(k >= fit.law.low && k <= fit.law.high) << fit.law.name << ": " << k;
            ++counts[cell_of(cells, k)];
        }
        EXPECT_LT(chi_square(counts, cells), 4) << fit.law.name;
    }
}

// Great means of few successes spread too far to sum: closed forms of the distribution function, the last one that of the
// gamma distribution, to which p = 4e-8 comes near.
TEST(Discrete, NegbinomialOfGreatMeans) {
    const struct {
        double a, p;
        std::function<double(double)> cdf;
    } cases[] = {{1, 5e-8, [](double k) { return -std::expm1((k + 1) * std::log1p(-5e-8)); }},
                 {2, 1e-7, [](double k) { return 1 - (1 + (k + 1) * 1e-7) * std::exp((k + 1) * std::log1p(-1e-7)); }},
                 {0.5, 4e-8, [](double k) { return std::erf(std::sqrt((k + 0.25) * 4e-8)); }}};
    for (const auto& c : cases) {
        OwnedStream stream(BrngSFMT19937, {20260});
        std::vector<int32_t> r(100000);
        ASSERT_EQ(_kuziRngNegbinomial(0, stream, 100000, r.data(), c.a, c.p), StatusOk);
        EXPECT_LT(kolmogorov(r, c.cdf), 2.23) << c.a;
    }
}

// One law for each path of each distribution.
std::vector<DiscreteLaw> paths() {
    return {poisson(PoissonRejection, 5),
            poisson(PoissonRejection, 40),
            poisson(PoissonRejection, 4000),
            poisson(PoissonNormal, 0.5),
            poisson(PoissonNormal, 5),
            poisson(PoissonNormal, 500),
            binomial(10, 0.3),
            binomial(200, 0.6),
            binomial(100000, 0.25)};
}

int32_t callers_callback(ArqErrorContext*) {
    ADD_FAILURE() << "the caller's callback was called";
    return 0;
}

// A generator that fails at any of its calls gives its status, and the caller's state stands on every way out.
TEST(Discrete, FailingGeneratorsAndTheCallersState) {
    const uint32_t before = _arqSetMode(ORV_MODE_LA | ORV_MODE_ERRMODE_ERRNO | ORV_MODE_TRAP_DIVBYZERO);
    const orv_arq_callback no_callback = _arqSetErrorCallBack(callers_callback);
    const uint32_t mode = _arqGetMode();
    for (const DiscreteLaw& law : paths())
        for (const int32_t failing : {-1, 0, 1}) {
            OwnedStream stream(ConstantGenerator::id(0.4, failing), {});
            std::vector<int32_t> r(5000);
            errno = 0;
            set_x87_control(0x0360);
            _mm_setcsr(0x1F80 & ~0x0200u);  // division by zero unmasked
            const int32_t status = law.draw(stream, 5000, r.data());
            const uint16_t x87 = x87_control();
            const unsigned mxcsr = _mm_getcsr();
            set_x87_control(usual_x87);
            _mm_setcsr(usual_mxcsr);
            const bool fails = failing == 0 || (failing == 1 && ConstantGenerator::calls > 1);
            EXPECT_EQ(status, fails ? BrngStatusQrngExhausted + 0 : StatusOk + 0) << law.name;
            EXPECT_EQ(x87, 0x0360) << law.name;
            EXPECT_EQ(mxcsr & 0xFFC0, 0x1F80u & ~0x0200u) << law.name;
            EXPECT_EQ(_arqGetMode(), mode) << law.name;
            EXPECT_EQ(_arqGetErrorCallBack(), callers_callback) << law.name;
            EXPECT_EQ(errno, 0) << law.name;
        }
    _arqSetErrorCallBack(no_callback);
    _arqSetMode(before);
}

// All exceptions unmasked by the caller: these mask them in all they compute.
TEST(Discrete, RunWithExceptionsMasked) {
    for (const DiscreteLaw& law :
         {poisson(PoissonRejection, 5.3), poisson(PoissonRejection, 40.3), poisson(PoissonNormal, 40.3),
          hypergeometric(50, 20, 10), hypergeometric(10000, 5000, 1000), negbinomial(5, 0.3), negbinomial(100, 0.02)}) {
        OwnedStream stream(BrngMCG59, {5});
        int32_t r[100];
        _mm_setcsr(0);
        const int32_t status = law.draw(stream, 100, r);
        const unsigned mxcsr = _mm_getcsr();
        _mm_setcsr(usual_mxcsr);
        EXPECT_TRUE(status == StatusOk && (mxcsr & 0xFFC0) == 0) << law.name;
    }
}

TEST(Discrete, NothingIsDrawnForNothing) {
    for (const DiscreteLaw& law : paths())
        for (const int32_t n : {0, -7}) {
            OwnedStream stream(BrngMCG59, {5}), twin(BrngMCG59, {5});
            int32_t r = 77;
            EXPECT_EQ(law.draw(stream, n, &r), StatusOk) << law.name;
            EXPECT_EQ(r, 77) << law.name;
            EXPECT_EQ(draw(stream, 2), draw(twin, 2)) << law.name;
        }
}

// Numbers by inversion are those of an independent sum, for short requests and long ones, which search differently; and up
// to the ends of the uniforms.
TEST(Discrete, TablesInvertTheDistributionFunction) {
    for (const DiscreteLaw& law : {poisson(PoissonRejection, 5), poisson(PoissonRejection, 26.9), binomial(10, 0.3),
                                   binomial(500, 0.05), poisson(PoissonRejection, 0.3)}) {
        const Probabilities exact = probabilities(law);
        ASSERT_EQ(exact.first, 0);
        for (const int32_t n : {1, 50, 3000}) {
            OwnedStream stream(BrngMRG32K3A, {5}), twin(BrngMRG32K3A, {5});
            std::vector<int32_t> r(static_cast<size_t>(n));
            ASSERT_EQ(law.draw(stream, n, r.data()), StatusOk);
            for (int32_t i = 0; i < n; ++i) {
                const double u = uniforms(twin, 1, 0.0, 1.0)[0];
                size_t k = 0;
                long double sum = exact.p[0];
                while (sum <= static_cast<long double>(u)) sum += exact.p[++k];
                ASSERT_EQ(r[static_cast<size_t>(i)], static_cast<int32_t>(k)) << law.name << " " << u;
            }
        }
        for (const int32_t n : {3, 1000}) {
            std::vector<int32_t> r(static_cast<size_t>(n));
            for (const double u : {0.0, 1.0, 1 - 0x1p-53}) {
                OwnedStream stream(ConstantGenerator::id(u), {});
                ASSERT_EQ(law.draw(stream, n, r.data()), StatusOk);
                const int32_t k = r[0];
                EXPECT_TRUE(u == 0 ? k == 0 : k > law.mode && k <= std::min<int64_t>(law.high, 99)) << law.name << k;
                for (const int32_t x : r) ASSERT_EQ(x, k) << law.name;
            }
        }
    }
}

// Far out in the tail of the greatest lots, whose logarithms of factorials are wrong by 1e-5, too.
TEST(Discrete, TablesAreRightInTheTail) {
    for (const DiscreteLaw& law :
         {hypergeometric(INT32_MAX, 1000000, 80000), hypergeometric(INT32_MAX, INT32_MAX / 2, 77),
          hypergeometric(50, 20, 10), negbinomial(5, 0.3), binomial(500, 0.05)}) {
        const Probabilities exact = probabilities(law);
        long double above = 0;
        size_t k = exact.p.size();
        while (above < 1e-7L) above += exact.p[--k];
        OwnedStream stream(ConstantGenerator::id(static_cast<double>(1 - above + exact.p[k] / 2)), {});
        int32_t r = -1;
        ASSERT_EQ(law.draw(stream, 1, &r), StatusOk);
        EXPECT_EQ(r, exact.first + static_cast<int64_t>(k)) << law.name;
    }
    // A uniform of 1 gives nothing impossible.
    for (const DiscreteLaw& law :
         {poisson(PoissonRejection, 0), binomial(100, 0), binomial(100, 1), negbinomial(5, 1)}) {
        OwnedStream stream(ConstantGenerator::id(1), {});
        int32_t r = -1;
        ASSERT_EQ(law.draw(stream, 1, &r), StatusOk);
        EXPECT_EQ(r, law.name.starts_with("Binomial 100 1.0") ? 100 : 0) << law.name;
    }
}

// ---- Setups ----------------------------------------------------------------------------------------------------------

struct Kept {
    DiscreteLaw law, other;  // with other parameters on the same path
    int32_t chunk, size;
    size_t inside;  // a byte of the setup
};
std::vector<Kept> kept() {
    return {{poisson(PoissonRejection, 5), poisson(PoissonRejection, 5.5), 3, 696, 360},
            {poisson(PoissonRejection, 40), poisson(PoissonRejection, 41), 3, 696, 240},
            {binomial(10, 0.3), binomial(10, 0.7), 5, 544, 240},
            {binomial(200, 0.4), binomial(201, 0.4), 5, 544, 240},
            {hypergeometric(50, 20, 10), hypergeometric(51, 20, 10), 6, 136, 60},
            {hypergeometric(10000, 5000, 1000), hypergeometric(10000, 5000, 1001), 6, 600, 240},
            {negbinomial(5, 0.3), negbinomial(5.5, 0.3), 4, 1328, 240},
            {negbinomial(100, 0.02), negbinomial(101, 0.02), 4, 1328, 240}};
}

std::vector<int32_t> numbers(const DiscreteLaw& law, Stream* stream, int32_t n) {
    std::vector<int32_t> r(static_cast<size_t>(n));
    EXPECT_EQ(law.draw(stream, n, r.data()), StatusOk) << law.name;
    return r;
}

std::vector<char> data_of(Stream* stream, const Kept& k) {
    const char* data = static_cast<const char*>(__kuzSearchChunk(stream, k.chunk));
    return data ? std::vector<char>(data, data + k.size) : std::vector<char>();
}

// A call for the same parameters leaves the setup as it is: a byte that the test changed stays changed, until parameters
// have been others meanwhile.
TEST(Discrete, SetupsAreMadeOnce) {
    for (const Kept& k : kept()) {
        OwnedStream stream(BrngMCG59, {5});
        numbers(k.law, stream, 10);
        char& byte = static_cast<char*>(__kuzSearchChunk(stream, k.chunk))[k.inside];
        const char made = byte, changed = static_cast<char>(made ^ 1);
        byte = changed;
        const std::vector<char> before = data_of(stream, k);
        numbers(k.law, stream, 10);
        EXPECT_EQ(data_of(stream, k), before) << k.law.name;
        numbers(k.other, stream, 10);
        numbers(k.law, stream, 10);
        EXPECT_EQ(byte, made) << k.law.name;
        EXPECT_EQ(__kuzGetNumChunks(stream), 1) << k.law.name;
    }
}

// Both paths of Binomial have one chunk and round their keys differently: (1000, 0.03) has a mean of 30, and 0.03 as a
// float one below.
TEST(Discrete, PathsOfBinomialDoNotTakeEachOthersSetups) {
    const double rounded = static_cast<double>(0.03f);
    ASSERT_TRUE(1000 * 0.03 >= 30 && 1000 * rounded < 30);
    OwnedStream stream(BrngMCG59, {5}), fresh(BrngMCG59, {5});
    numbers(binomial(1000, 0.03), stream, 1);
    numbers(binomial(1000, 0.03), fresh, 1);
    __kuzDeleteChunks(fresh);
    EXPECT_EQ(numbers(binomial(1000, rounded), stream, 500), numbers(binomial(1000, rounded), fresh, 500));
}

// A chunk of another size, as a damaged image may hold, is never read.
TEST(Discrete, ChunksOfAnotherSizeAreReplaced) {
    for (const Kept& k : kept()) {
        OwnedStream stream(BrngMCG59, {5}), twin(BrngMCG59, {5});
        void* data = orv_serv_allocate(8, 128);
        std::memset(data, 0, 8);
        ASSERT_EQ(__kuzAddChunk(stream, k.chunk, nullptr, data, 8), StatusOk);
        EXPECT_EQ(numbers(k.law, stream, 300), numbers(k.law, twin, 300)) << k.law.name;
        EXPECT_EQ(__kuzGetNumChunks(stream), 1) << k.law.name;
    }
}

// Any word of a setup may be anything in a damaged image: no loop goes on without an end.
TEST(Discrete, DamagedSetupsEndTheirDraws) {
    std::vector<Kept> all = kept();
    all.push_back({binomial(INT32_MAX, 0.4), binomial(7, 0.4), 5, 544, 240});
    for (const Kept& k : all) {
        OwnedStream stream(BrngMCG59, {5});
        numbers(k.law, stream, 1);
        for (int32_t at = 0; at < k.size; at += 4)
            for (const float word : {0.0f, -1.0f, 0x1p-149f, std::numeric_limits<float>::max(),
                                     std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
                char* data = static_cast<char*>(__kuzSearchChunk(stream, k.chunk));
                ASSERT_NE(data, nullptr);
                const std::vector<char> made(data, data + k.size);
                std::memcpy(data + at, &word, sizeof word);
                numbers(k.law, stream, 300);
                data = static_cast<char*>(__kuzSearchChunk(stream, k.chunk));
                std::memcpy(data, made.data(), made.size());
            }
    }
}

TEST(Discrete, WithoutMemoryNothingIsLost) {
    for (const Kept& k : kept())
        for (const int32_t nth : {1, 2}) {
            OwnedStream stream(BrngMCG59, {5}), twin(BrngMCG59, {5});
            const int64_t before = orv_serv_live_blocks();
            int32_t r[5];
            orv_serv_fail_allocation(nth);
            EXPECT_EQ(k.law.draw(stream, 5, r), StatusNoMemory) << k.law.name << " " << nth;
            orv_serv_fail_allocation(0);
            EXPECT_EQ(orv_serv_live_blocks(), before) << k.law.name;
            EXPECT_EQ(numbers(k.law, stream, 5), numbers(k.law, twin, 5)) << k.law.name;
        }
}

}  // namespace
