// sLog2: the logarithm to base 2.
//
// "LA", "EP": after the reduction of log_s.h, log2 x = k + r P(r). "LA" takes 1.5 r out of r P(r), which is exact and close
// to it where |r| is 1/3, and its sum with k with the rounding error. "EP" has sLog10's polynomial by log2 10.
// "HA": dLog2's "EP" method, right to 2^-32, rounded to single.
//
// Powers of two are exact. Of the error of "LA" up to 0.8 ulp is the polynomial's own.
#include "vecmath/exp_log/log2.h"
#include "vecmath/exp_log/log_s.h"
#include "vecmath/exp_log/wide.h"

namespace {

using namespace orv;
using simd::Splat;

struct Log2LaBlock {
    Splat<float> c1_head{1.5f}, c1_tail{0x1.715476p+0f - 1.5f}, c2{-0x1.715456p-1f}, c3{0x1.ec6f8p-2f},
        c4{-0x1.7172d2p-2f}, c5{0x1.27ba0ep-2f}, c6{-0x1.e4f048p-3f}, c7{0x1.9acc16p-3f}, c8{-0x1.c71c28p-3f},
        c9{0x1.aa8024p-3f};
    Splat<float> unit{0x1p-23f};
    vecmath::LogReduction reduction{};
};
constexpr Log2LaBlock log2_la;

struct Log2La : vecmath::LogS<Log2La> {
    static constexpr const Log2LaBlock& K = log2_la;

    static __m128 log(__m128 x, __m128i k_shift) {
        __m128 k, r;
        K.reduction.reduce(x, k_shift, k, r);
        const __m128 p = K.c2 + r * (K.c3 + r * (K.c4 + r * (K.c5 + r * (K.c6 + r * (K.c7 + r * (K.c8 + r * K.c9))))));
        const __m128 whole = k * K.unit, leading = r * K.c1_head;
        const __m128 sum = whole + leading;
        const __m128 lost = (whole - sum) + leading;
        return sum + (r * (K.c1_tail + r * p) + lost);
    }
};

struct Log2EpBlock {
    Splat<float> c1{0x1.7155d8p+0f}, c2{-0x1.70cb14p-1f}, c3{0x1.e9f482p-2f}, c4{-0x1.96d0d8p-2f}, c5{0x1.55c036p-2f};
    Splat<float> unit{0x1p-23f};
    vecmath::LogReduction reduction{};
};
constexpr Log2EpBlock log2_ep;

struct Log2Ep : vecmath::LogS<Log2Ep> {
    static constexpr const Log2EpBlock& K = log2_ep;

    static __m128 log(__m128 x, __m128i k_shift) {
        __m128 k, r;
        K.reduction.reduce(x, k_shift, k, r);
        return r * (K.c1 + r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5)))) + k * K.unit;
    }
};

struct Log2Ha : frame::OneInput<float, 8, frame::Tail::masked> {
    static constexpr vecmath::LogReduction reduction{};

    static __m128 doubt(__m128 x) { return reduction.doubt(x); }
    static __m128 lanes(__m128 x) {
        return vecmath::in_double(x, [](__m128d d) { return vecmath::log_centres<vecmath::log2_ep>(d); });
    }
    static __m128 log(__m128 x, __m128i k_shift) {
        const __m128d shift = _mm_cvtepi32_pd(_mm_srai_epi32(k_shift, 23));
        return vecmath::in_double(x, [&](__m128d d) { return vecmath::log_centres<vecmath::log2_ep>(d) + shift; });
    }
    static int32_t scalar(const float* x, float* y) { return vecmath::scalar_log_s<Log2Ha>(x, y); }
};

}  // namespace

ORV_ONE_INPUT(sLog2, la, Log2La)
ORV_ONE_INPUT(sLog2, ha, Log2Ha)
ORV_ONE_INPUT(sLog2, ep, Log2Ep)
