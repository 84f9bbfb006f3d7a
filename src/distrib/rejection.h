// Rejection in batches, for discrete distributions under a hat of up to four regions over the mode: a triangle that lies
// below the probabilities, two parallelograms on it, and exponential tails on the left and on the right.
//
// A batch of pairs of uniforms is sorted by regions, each region is evaluated in one vector pass, and each candidate that is
// accepted goes to the place of its pair, so results have the order of the uniforms.
// V. Kachitvichyanukul, B. W. Schmeiser, "Binomial random variate generation", Communications of the ACM 31, 1988.
#pragma once

#include "distrib/discrete.h"

namespace orv::distrib {

// The hat in units of the mode's probability; u scaled by p4 is at most p1 in the triangle, p2 in the parallelograms, p3 in
// the left tail.
struct Hat {
    float mode;
    float p1, p2, p3, p4;
    float share1, share2, share3;  // p1 / p4 and so on; share1 is negative where there is no triangle
    float xm, xl, xr;              // the middle, and where the tails begin
    float lambda_left, lambda_right, inverse_left, inverse_right;
    float c, inverse_c, inverse_p1;  // height of the parallelograms; without a triangle 1, 1 and 0
};

inline void set_tails(Hat& hat, float left, float right) {
    hat.lambda_left = left;
    hat.lambda_right = right;
    hat.inverse_left = 1 / left;
    hat.inverse_right = 1 / right;
}

inline void set_shares(Hat& hat) {
    hat.share1 = hat.p1 / hat.p4;
    hat.share2 = hat.p2 / hat.p4;
    hat.share3 = hat.p3 / hat.p4;
}

// Where there is no triangle, the place of the parallelograms is taken by a box of height 1 from xl to xr.
inline void set_box(Hat& hat, float left_height, float right_height) {
    hat.p1 = 0;
    hat.p2 = hat.xr - hat.xl;
    hat.p3 = hat.p2 + left_height * hat.inverse_left;
    hat.p4 = hat.p3 + right_height * hat.inverse_right;
    set_shares(hat);
    hat.share1 = -1;
    hat.c = hat.inverse_c = 1;
    hat.inverse_p1 = 0;
}

// f(mode - 1 - i) / f(mode) and f(mode + 1 + i) / f(mode).
struct Steps {
    static constexpr int32_t count = 32;
    float down[count], up[count];
};

// up(k) is f(k) / f(k - 1), down(k) is f(k - 1) / f(k), which is asked for k of 1 and more alone: no candidate is below 0.
template <class Up, class Down>
void set_steps(Steps& steps, int32_t mode, Up up, Down down) {
    float above = 1, below = 1;
    for (int32_t i = 0; i < Steps::count; ++i) {
        steps.up[i] = above *= up(mode + 1 + i);
        steps.down[i] = below *= mode > i ? down(mode - i) : 0;
    }
}

// ln((m + d) / m) and the deviance (m + d) ln((m + d) / m) - d, from v = d / (2m + d), as the logarithm is 2 atanh v. The
// relative error is 5e-9 at |v| = 1/4 and 1e-12 at 1/8, and rounding.
template <class V>
struct Growth {
    V v, log, deviance;
};
template <class Scalar, class V>
Growth<V> growth(V m, V d) {
    const auto k = [](double x) { return simd::splat(static_cast<Scalar>(x)); };
    const V end = m + d, v = d / (m + end), v2 = v * v;
    const V s = v2 * (k(1.0 / 3) + v2 * (k(1.0 / 5) + v2 * (k(1.0 / 7) + v2 * (k(1.0 / 9) + v2 * k(1.0 / 11)))));
    const V twice = v + v;
    return {v, twice + twice * s, d * v + end * twice * s};
}

// What is known of a candidate's logarithm against that of the probability ratio: which lanes are accepted, which need the
// ratio itself; the others are rejected.
struct Verdict {
    __m128 accepted, undecided;
};
inline Verdict between(__m128 alv, __m128 lower, __m128 upper) {
    const __m128 accepted = simd::less(alv, lower);
    return {accepted, simd::bit_and_not(accepted, simd::less_equal(alv, upper))};
}

template <class First, int32_t most>
struct Entries {
    First first[most + 4];
    float v[most + 4];
    int32_t place[most + 4];
    int32_t n;

    void add(unsigned chosen, __m128i a, __m128 b, __m128i c) {
        simd::store(reinterpret_cast<int32_t*>(first) + n, simd::pack_chosen_32(chosen, a));
        simd::store(reinterpret_cast<int32_t*>(v) + n, simd::pack_chosen_32(chosen, simd::bits_of(b)));
        simd::store(place + n, simd::pack_chosen_32(chosen, c));
        n += simd::count_bits(chosen);
    }
    // The last group of four may reach past the end: what it finds there raises nothing and has a place that is not used.
    void seal() {
        for (int32_t i = n; i < n + 4; ++i) {
            first[i] = First(0);
            v[i] = 1;
            place[i] = most;
        }
    }
    // The bits of the entries of the group from i on.
    unsigned group(int32_t i) const { return n - i < 4 ? (1u << (n - i)) - 1 : 15u; }
};

// Law gives: batch, the most candidates of a batch; steps; most, the end of the support; near(|d|), where steps are used;
// surely(d, v), if it has that, which heights v of the others are below the ratio without a logarithm;
// ratio(k) = f(k) / f(k - 1); judge(k, d, ln v) by bounds of ln f(mode + d) / f(mode); log_ratios(n, k, out), that itself.
template <class Law>
struct Batch {
    static constexpr int32_t size = Law::batch;
    static constexpr int32_t piece = 64;
    const Hat& hat;
    const Law& law;
    const int32_t mode;
    float heights[2 * Steps::count + 1];  // f(mode + d) / f(mode) at d + 32
    float pairs[2 * size + 8];
    int32_t result[size + 4];
    Entries<float, size> box, left, right;
    Entries<int32_t, size> near, far, undecided;

    Batch(const Hat& h, const Law& l) : hat(h), law(l), mode(static_cast<int32_t>(h.mode)) {
        for (int32_t i = 0; i < Steps::count; i += 4) {
            const __m128i down = simd::bits_of(simd::load(law.steps.down + i));
            simd::store(heights + Steps::count - 4 - i, simd::floats(simd::shuffle_32<3, 2, 1, 0>(down)));
            simd::store(heights + Steps::count + 1 + i, simd::load(law.steps.up + i));
        }
        heights[Steps::count] = 1;
    }

    void sort(int32_t count) {
        box.n = left.n = right.n = near.n = far.n = undecided.n = 0;
        const __m128 p1 = simd::splat(hat.p1), p4 = simd::splat(hat.p4), xm = simd::splat(hat.xm);
        const __m128 share1 = simd::splat(hat.share1), share2 = simd::splat(hat.share2);
        const __m128 share3 = simd::splat(hat.share3);
        const __m128i none = simd::splat_32(-1);
        for (int32_t i = 2 * count; i < 2 * count + 8; ++i) pairs[i] = 0;
        __m128i place = _mm_setr_epi32(0, 1, 2, 3);
        for (int32_t i = 0; i < count; i += 4, place = simd::add_32(place, simd::splat_32(4))) {
            const __m128 low = simd::load(pairs + 2 * i), high = simd::load(pairs + 2 * i + 4);
            const __m128 u = simd::even_lanes(low, high), v = simd::odd_lanes(low, high), scaled = u * p4;
            const __m128 in1 = simd::less_equal(u, share1);
            const unsigned to1 = simd::lane_bits(in1), to2 = simd::lane_bits(simd::less_equal(u, share2));
            const unsigned to3 = simd::lane_bits(simd::less_equal(u, share3));
            const __m128i k = simd::truncate(xm - p1 * v + scaled);
            simd::store(result + i, simd::select(simd::bits_of(in1), k, none));
            const __m128i bits = simd::bits_of(scaled);
            box.add(to2 & ~to1, bits, v, place);
            left.add(to3 & ~to2 & ~to1, bits, v, place);
            right.add(15u & ~to3 & ~to2 & ~to1, bits, v, place);
        }
    }

    void settle(__m128i place, __m128i given) {
        result[simd::word<0>(place)] = simd::word<0>(given);
        result[simd::word<1>(place)] = simd::word<1>(given);
        result[simd::word<2>(place)] = simd::word<2>(given);
        result[simd::word<3>(place)] = simd::word<3>(given);
    }

    // A candidate inside the support goes on to be tested. x is brought into the range of integers first.
    void survive(unsigned chosen, __m128 x, __m128 v, __m128i place) {
        constexpr float end = 2147483520.0f;
        const __m128 bounded = simd::least(simd::greatest(x, simd::splat(-1.0f)), simd::splat(end));
        const __m128i k = simd::truncate(bounded);
        const __m128i outside = simd::bit_or(simd::bits_of(bounded), simd::greater_32(k, simd::splat_32(law.most)));
        chosen &= ~simd::lane_bits(simd::floats(outside));
        const __m128 d = simd::to_floats(simd::subtract_32(k, simd::splat_32(mode)));
        const unsigned by_steps = simd::lane_bits(law.near(simd::magnitude(d)));
        if constexpr (requires { law.surely(d, v); }) {
            const __m128 inside = law.surely(d, v);
            const unsigned at_once = chosen & ~by_steps & simd::lane_bits(inside);
            settle(place, simd::select(simd::bits_of(inside), k, simd::splat_32(-1)));
            chosen &= ~at_once;
        }
        near.add(chosen & by_steps, k, v, place);
        far.add(chosen & ~by_steps, k, v, place);
    }

    void evaluate_box() {
        const __m128 begin = simd::splat(hat.xl), p1 = simd::splat(hat.p1), c = simd::splat(hat.c);
        const __m128 inverse_c = simd::splat(hat.inverse_c), inverse_p1 = simd::splat(hat.inverse_p1);
        const __m128 xm = simd::splat(hat.xm), one = simd::splat(1.0f);
        const __m128 base = simd::splat(hat.inverse_p1 > 0 ? 1.0f : 0.0f);
        box.seal();
        for (int32_t i = 0; i < box.n; i += 4) {
            const __m128 x = begin + (simd::load(box.first + i) - p1) * inverse_c;
            const __m128 v = simd::load(box.v + i) * c + base - simd::magnitude(xm - x) * inverse_p1;
            const unsigned below = simd::lane_bits(simd::less_equal(v, one));
            survive(box.group(i) & below, x, v, simd::load(box.place + i));
        }
    }

    // sign is -1 on the left, 1 on the right.
    void evaluate_tail(Entries<float, size>& tail, float sign, float from, float area_before, float lambda,
                       float inverse) {
        if (tail.n == 0) return;
        tail.seal();
        float logs[size + 4];
        run(logarithm<float>(), (tail.n + 3) & ~3, tail.v, logs);
        const __m128 begin = simd::splat(from), slope = simd::splat(-sign * inverse);
        const __m128 before = simd::splat(area_before), rate = simd::splat(lambda);
        for (int32_t i = 0; i < tail.n; i += 4) {
            const __m128 x = begin + simd::load(logs + i) * slope;
            const __m128 v = simd::load(tail.v + i) * (simd::load(tail.first + i) - before) * rate;
            survive(tail.group(i), x, v, simd::load(tail.place + i));
        }
    }

    // Heights fall from one that is at most 1, so the recurrence ends where they vanish, however far k is, whatever v is.
    bool below_recurrence(int32_t k, float v) const {
        constexpr int32_t last = Steps::count;
        float height = k > mode ? law.steps.up[last - 1] : law.steps.down[last - 1];
        if (!(height <= 1)) return false;
        constexpr float least = 1.17549435e-38f;  // products with ratios near 1 stay among the denormal numbers
        const auto goes_on = [&] { return v <= height && height > least; };
        for (int32_t j = mode + last + 1; j <= k && goes_on(); ++j) height *= law.ratio(j);
        for (int32_t j = mode - last; j > k && goes_on(); --j) height /= law.ratio(j);
        return v <= height;
    }

    void judge_near() {
        for (int32_t i = 0; i < near.n; ++i) {
            const int32_t k = near.first[i], d = k - mode + Steps::count;
            const float v = near.v[i];
            const bool accepted =
                static_cast<uint32_t>(d) <= 2u * Steps::count ? v <= heights[d] : below_recurrence(k, v);
            result[near.place[i]] = accepted ? k : -1;
        }
    }

    void judge_far() {
        if (far.n == 0) return;
        far.seal();
        // A height that rounding made 0 or less is accepted as any small one.
        const __m128 least = simd::splat(1.17549435e-38f);
        map(
            far.n, far.v, [=](__m128 v) { return simd::greatest(v, least); }, far.v);
        run(logarithm<float>(), far.n, far.v, far.v);
        const __m128i centre = simd::splat_32(mode), none = simd::splat_32(-1);
        for (int32_t i = 0; i < far.n; i += 4) {
            const __m128i k = simd::load(far.first + i), place = simd::load(far.place + i);
            const __m128 alv = simd::load(far.v + i);
            const Verdict verdict = law.judge(k, simd::to_floats(simd::subtract_32(k, centre)), alv);
            const unsigned group = far.group(i);
            undecided.add(group & simd::lane_bits(verdict.undecided), k, alv, place);
            settle(place, simd::select(simd::bits_of(verdict.accepted), k, none));
        }
        double log_ratio[piece];
        for (int32_t i = 0; i < undecided.n; i += piece) {
            const int32_t count = undecided.n - i < piece ? undecided.n - i : piece;
            law.log_ratios(count, undecided.first + i, log_ratio);
            for (int32_t j = 0; j < count; ++j)
                if (undecided.v[i + j] <= log_ratio[j]) result[undecided.place[i + j]] = undecided.first[i + j];
        }
    }

    // Moves the results that stand to r, in the order of their pairs, and counts them.
    int32_t collect(int32_t count, int32_t* r) const {
        int32_t given = 0, i = 0;
        for (; i + 4 <= count; i += 4) {
            const __m128i k = simd::load(result + i);
            const unsigned chosen = 15u & ~simd::lane_bits(simd::floats(k));
            simd::store(r + given, simd::pack_chosen_32(chosen, k));
            given += simd::count_bits(chosen);
        }
        for (; i < count; ++i)
            if (result[i] >= 0) r[given++] = result[i];
        return given;
    }
};

// What a setup that a damaged image brought along may do is keep no candidate. All the hats that are made here keep half of
// theirs and more; one that has kept less than a sixteenth of some hundreds is none of them.
enum class Setups { any, made_here };
inline constexpr int32_t unsound_setup = INT32_MIN;

// n numbers under the hat. Each batch has as many pairs as results are wanted, but no more than the law's batch. The result is
// `unsound_setup` where the hat keeps too few candidates for one that is made here.
template <class Law>
int32_t draw_under_hat(Stream* stream, int32_t n, int32_t* r, const Hat& hat, const Law& law, Setups setups) {
    constexpr int64_t patience = 256, least_kept = 16;
    Batch<Law> batch(hat, law);
    int32_t status = StatusOk;
    int64_t tried = 0;
    for (int32_t done = 0; done < n;) {
        if (setups == Setups::any && tried > patience + least_kept * done) return unsound_setup;
        const int32_t count = n - done < Law::batch ? n - done : Law::batch;
        status = draw_uniforms(stream, 2 * count, batch.pairs, 0.0f, 1.0f);
        if (status < 0) return status;
        batch.sort(count);
        batch.evaluate_box();
        batch.evaluate_tail(batch.left, -1, hat.xl, hat.p2, hat.lambda_left, hat.inverse_left);
        batch.evaluate_tail(batch.right, 1, hat.xr, hat.p3, hat.lambda_right, hat.inverse_right);
        batch.judge_near();
        batch.judge_far();
        done += batch.collect(count, r + done);
        tried += count;
    }
    return status;
}

// draw(setups) with the setup that the stream's chunk holds, and with a new one where that proves unsound.
template <class Draw>
int32_t draw_by_setup(Stream* stream, int32_t chunk_id, Draw draw) {
    const int32_t status = draw(Setups::any);
    if (status != unsound_setup) return status;
    streams::remove_chunks(stream, chunk_id);
    return draw(Setups::made_here);
}

}  // namespace orv::distrib
