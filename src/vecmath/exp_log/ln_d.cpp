// dLn: the natural logarithm.
//
// x = 2^k m. "LA" and "HA": m in [1, 2) selects a row of 513 by its leading bits, with rcp close to 1/m, of so few bits
// that the product with the upper half of m is exact. Then ln x = k ln 2 - ln rcp + ln(1 + r), r = m rcp - 1, |r| < 2^-9,
// and ln(1 + r) = r + r^2 q(r). From m = 1.499 on k is one higher and the row one for m/2, so that neither next to 1
// nor anywhere else large terms cancel. ln 2 and -ln rcp are split so that k ln2_high + log_high + u is exact, u being the
// exact leading part of r. Next to 1, where table and k are zero, the rest v of r joins u in one exact sum.
//
// "EP": m selects one of 257 centres c of 8 fraction bits; r = (m - c)(1/c) and the polynomial ends with r^2. ln 2 and the
// table are rounded to a common grid, so that they cancel exactly below 1.
//
// The vector path serves positive normal arguments. Subnormals are scaled by 2^52 first.
//
// Worst errors measured: "LA" and "HA" 0.55 ulp, "EP" 2^-19.6 relative, which is what ending with r^2 costs next to 1;
// away from 1 its absolute error stays below 2^-28.
#include "frame/kernel_loops.h"
#include "simd/constants.h"
#include "vecmath/exp_log/special.h"

namespace {

using namespace orv;
using simd::bits_of;
using simd::doubles;
using simd::Splat;
using simd::SplatBits;
using vecmath::high_word;

constexpr uint64_t fraction_bits = 0x000FFFFFFFFFFFFF;
constexpr uint64_t bits_of_one = uint64_t{0x3FF} << 52;
constexpr uint64_t bits_of_2_52 = uint64_t{0x433} << 52;
constexpr uint64_t high(uint32_t word) { return uint64_t{word} << 32; }

// In doubt is all but the positive normal numbers, by the high word, which is moved to the bottom of the signed range.
struct NormalTest {
    SplatBits<uint32_t> bottom{0x80100000};
    SplatBits<uint32_t> last{0xFFDFFFFF};

    __m128d doubt(__m128d x) const { return doubles(_mm_cmpgt_epi32(_mm_sub_epi32(bits_of(x), bottom), last)); }
};

// The scalar path of both accuracies. The vector path serves an element that is no longer special.
template <class Kernel>
int32_t scalar_ln(const double* at, double* y) {
    constexpr double ln_of_2_52 = 0x1.205966f2b4f12p+5;
    const double x = *at;
    const double infinity = std::numeric_limits<double>::infinity();
    if (x < 0) {
        *y = vecmath::invalid<double>();
        return frame::status_domain;
    }
    if (x == 0) {
        *y = vecmath::minus_infinity_at_pole<double>();
        return frame::status_singularity;
    }
    if (!(x < infinity)) {
        *y = x * 1.0;
        return frame::status_ok;
    }
    const bool subnormal = x < std::numeric_limits<double>::min();
    const double result = _mm_cvtsd_f64(Kernel::lanes(simd::splat(subnormal ? x * 0x1p+52 : x)));
    *y = subnormal ? result - ln_of_2_52 : result;
    return frame::status_ok;
}

// ---- "LA" and "HA" ---------------------------------------------------------------------------------------------------

struct Ln513 {
    char name[8];
    Splat<double> ln2_high, ln2_low;
    Splat<double> c2, c3, c4, c5;  // of r^2 to r^5
    Splat<double> one{1.0};
    NormalTest normal{};
    // The leading 10 bits of the fraction, rounded to 9: the row, at 32 bytes a row once it is shifted.
    SplatBits<uint64_t> leading{high(0xFFC00)}, half_row{high(0x400)}, row{high(0x1FF800)};
    SplatBits<uint64_t> fraction{fraction_bits}, upper_fraction{fraction_bits & high(0xFFFFFFFF)}, exponent_0{bits_of_one};
    // Turns the high word into k + 1024 in its exponent field; then 2^52 + 1024 as the number that carries that.
    SplatBits<uint64_t> to_exponent{high(0x40000000 - 0x3FE7FC00)}, carrier{bits_of_2_52};
    Splat<double> carrier_value{0x1p+52 + 1024};
    alignas(16) double rows[513][4] = {  // rcp, rcp again, -ln rcp (or its half's) high and low
#include "vecmath/tables/ln_513.inc"
    };
};

constexpr Ln513 ln_ha{
    .name = "vdLn",
    .ln2_high = 0x1.62e42fefa38p-1,
    .ln2_low = 0x1.ef35793c7673p-45,
    .c2 = -0x1.ffffffffffca9p-2,
    .c3 = 0x1.555555555512ap-2,
    .c4 = -0x1.00000d588d052p-2,
    .c5 = 0x1.9999b39037e04p-3,
};

struct LnHa : frame::OneInput<double, 4, frame::Tail::by_element, frame::Rejected::whole_block> {
    static constexpr const Ln513& K = ln_ha;
    static constexpr const char* name = K.name;

    static __m128d doubt(__m128d x) { return K.normal.doubt(x); }

    static __m128d lanes(__m128d x) {
        const __m128i bits = bits_of(x);
        const __m128i leading = _mm_add_epi64(_mm_and_si128(bits, K.leading), K.half_row);
        const simd::Offsets2 at = simd::offsets_of(_mm_srli_epi64(_mm_and_si128(leading, K.row), 38));
        const double* row0 = simd::behind(K.rows[0], at.at0);
        const double* row1 = simd::behind(K.rows[0], at.at1);
        const __m128d rcp = simd::gather(row0, row1);
        const __m128d logs0 = _mm_load_pd(row0 + 2), logs1 = _mm_load_pd(row1 + 2);
        const __m128d log_high = _mm_unpacklo_pd(logs0, logs1), log_low = _mm_unpackhi_pd(logs0, logs1);

        const __m128i exponent = _mm_srli_epi64(_mm_add_epi64(bits, K.to_exponent), 52);
        const __m128d k = doubles(_mm_or_si128(exponent, K.carrier)) - K.carrier_value;
        const __m128d m = doubles(_mm_or_si128(_mm_and_si128(bits, K.fraction), K.exponent_0));
        const __m128d m_high = doubles(_mm_or_si128(_mm_and_si128(bits, K.upper_fraction), K.exponent_0));

        const __m128d u = m_high * rcp - K.one;
        const __m128d v = (m - m_high) * rcp;
        const __m128d r = u + v;
        const __m128d c = k * K.ln2_low + log_low;
        const __m128d is_next_to_one = simd::equal(c, _mm_setzero_pd());
        const __m128d b = ((k * K.ln2_high + log_high) + u) + simd::bit_and(is_next_to_one, v);
        const __m128d q = r * (K.c2 + r * (K.c3 + r * (K.c4 + r * K.c5)));
        return ((r * q + c) + simd::bit_and_not(is_next_to_one, v)) + b;
    }

    static int32_t scalar(const double* x, double* y) { return scalar_ln<LnHa>(x, y); }
};

// ---- "EP" ------------------------------------------------------------------------------------------------------------

struct Ln257 {
    char name[8];
    Splat<double> ln2;
    Splat<double> c2;
    NormalTest normal{};
    // The leading 9 bits of the fraction, rounded to 8: the row, as its offset in bytes.
    SplatBits<uint64_t> leading{0x1FF0}, half_row{0x10}, row{0x3FE0};
    SplatBits<uint64_t> fraction{fraction_bits}, exponent_0{bits_of_one};
    SplatBits<uint32_t> marker{0x3FF};  // below the leading bits: turns ties upwards, as the row's rounding does
    Splat<double> centre_grid{0x1p+44};
    SplatBits<uint64_t> carrier{bits_of_2_52};
    Splat<double> carrier_value{0x1p+52 + 1023};
    alignas(16) double rows[257][4] = {  // ln c high and low, 1/c and the rest of it
#include "vecmath/tables/ln_257.inc"
    };
};

constexpr Ln257 ln_ep{.name = "vdLn", .ln2 = 0x1.62e42fefa4p-1, .c2 = -0x1.fffffffffcaaep-2};

struct LnEp : frame::OneInput<double, 4, frame::Tail::by_element> {
    static constexpr const Ln257& K = ln_ep;
    static constexpr const char* name = K.name;

    static __m128d doubt(__m128d x) { return K.normal.doubt(x); }

    static __m128d lanes(__m128d x) {
        const __m128i bits = bits_of(x);
        const __m128i leading = _mm_add_epi64(_mm_and_si128(_mm_srli_epi64(bits, 32 + 7), K.leading), K.half_row);
        const simd::Offsets2 at = simd::offsets_of(_mm_and_si128(leading, K.row));
        const double* row0 = simd::behind(K.rows[0], at.at0);
        const double* row1 = simd::behind(K.rows[0], at.at1);
        const __m128d log = simd::gather(row0, row1);
        const __m128d rcp = simd::gather(row0 + 2, row1 + 2);

        const __m128i m = _mm_or_si128(_mm_and_si128(bits, K.fraction), K.exponent_0);
        const __m128d centre = (doubles(_mm_or_si128(m, K.marker)) + K.centre_grid) - K.centre_grid;
        const __m128d r = (doubles(m) - centre) * rcp;
        const __m128d k = doubles(_mm_or_si128(_mm_srli_epi64(bits, 52), K.carrier)) - K.carrier_value;
        return (r + r * r * K.c2) + (k * K.ln2 + log);
    }

    static int32_t scalar(const double* x, double* y) { return scalar_ln<LnEp>(x, y); }
};

}  // namespace

ORV_ONE_INPUT(dLn, la, LnHa)
ORV_ONE_INPUT(dLn, ep, LnEp)
