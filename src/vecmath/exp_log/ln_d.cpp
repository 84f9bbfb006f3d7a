// dLn: the natural logarithm.
//
// "LA" and "HA": the method of 513 rows of log_d.h with L = 1.
//
// "EP": m selects one of 257 centres c of 8 fraction bits; r = (m - c)(1/c) and the polynomial ends with r^2. ln 2 and the
// table are rounded to a common grid, so that they cancel exactly below 1.
//
// The vector path serves positive normal arguments. Subnormals are scaled by 2^52 first.
//
// Worst errors measured: "LA" and "HA" 0.55 ulp, "EP" 2^-19.6 relative, which is what ending with r^2 costs next to 1;
// away from 1 its absolute error stays below 2^-28.
#include "vecmath/exp_log/log_d.h"

namespace {

using namespace orv;
using simd::bits_of;
using simd::doubles;
using simd::Splat;
using simd::SplatBits;

constexpr double ln_of_2_52 = 0x1.205966f2b4f12p+5;

constexpr vecmath::Log513Block ln_ha{
    .name = "vdLn",
    .log2_high = 0x1.62e42fefa38p-1,
    .log2_low = 0x1.ef35793c7673p-45,
    .leading = 1.0,
    .q0 = 0.0,
    .q1 = -0x1.ffffffffffca9p-2,
    .q2 = 0x1.555555555512ap-2,
    .q3 = -0x1.00000d588d052p-2,
    .q4 = 0x1.9999b39037e04p-3,
    .log_of_2_52 = ln_of_2_52,
    .rows = {
#include "vecmath/tables/ln_513.inc"
    },
};

struct LnHa : frame::OneInput<double, 4, frame::Tail::by_element, frame::Rejected::whole_block> {
    static constexpr const char* name = ln_ha.name;

    static __m128d doubt(__m128d x) { return ln_ha.normal.doubt(x); }
    static __m128d lanes(__m128d x) { return vecmath::log_513<ln_ha>(x); }
    static int32_t scalar(const double* x, double* y) { return vecmath::scalar_log_d<LnHa>(x, y, ln_of_2_52); }
};

// ---- "EP" ------------------------------------------------------------------------------------------------------------

struct Ln257 {
    char name[8];
    Splat<double> ln2;
    Splat<double> c2;
    vecmath::NormalTest normal{};
    // The leading 9 bits of the fraction, rounded to 8: the row, as its offset in bytes.
    SplatBits<uint64_t> leading{0x1FF0}, half_row{0x10}, row{0x3FE0};
    SplatBits<uint64_t> fraction{vecmath::fraction_bits}, exponent_0{vecmath::bits_of_one};
    SplatBits<uint32_t> marker{0x3FF};  // below the leading bits: turns ties upwards, as the row's rounding does
    Splat<double> centre_grid{0x1p+44};
    SplatBits<uint64_t> carrier{vecmath::bits_of_2_52};
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

    static int32_t scalar(const double* x, double* y) { return vecmath::scalar_log_d<LnEp>(x, y, ln_of_2_52); }
};

}  // namespace

ORV_ONE_INPUT(dLn, la, LnHa)
ORV_ONE_INPUT(dLn, ep, LnEp)
