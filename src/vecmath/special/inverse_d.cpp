// dErfInv, dErfcInv, dCdfNormInv.
//
// The vector path serves q from 2^-10 on, the central 99.9%; "EP", by a method of its own, from 2^-53 on. dErfInv's next to zero,
// where results are subnormal or nearly so, is served one by one.
#include "frame/kernel_loops.h"
#include "vecmath/special/inverse.h"

namespace {

using namespace orv;
using simd::SplatBits;
using vecmath::Inverse;

struct Ends {
    SplatBits<uint32_t> magnitude{0x7FFFFFFF};
    SplatBits<uint32_t> first, last;  // high words
};
constexpr uint32_t exponent(int e) { return uint32_t(1023 + e) << 20; }
// Of the least q that the cubics serve.
constexpr auto least_short =
    static_cast<uint32_t>(std::bit_cast<uint64_t>(vecmath::short_inverse_block.cubics.least) >> 32);
template <Inverse Which, bool Short>
constexpr Ends ends =
    Which == Inverse::erf ? Ends{.first = exponent(-960), .last = exponent(0) - (Short ? 2 : 0x801)}
    : Which == Inverse::erfc
        ? Ends{.first = Short ? least_short : exponent(-10), .last = exponent(1) - (Short ? 1 : 0x401)}
        : Ends{.first = Short ? least_short - (1 << 20) : exponent(-11), .last = exponent(0) - (Short ? 1 : 0x401)};

template <Inverse Which, bool Short>
struct InverseD : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        constexpr const Ends& K = ends<Which, Short>;
        __m128i bits = simd::bits_of(x);
        if constexpr (Which == Inverse::erf) bits = _mm_and_si128(bits, K.magnitude);
        return simd::doubles(_mm_or_si128(_mm_cmpgt_epi32(K.first, bits), _mm_cmpgt_epi32(bits, K.last)));
    }
    static __m128d lanes(__m128d x) {
        if constexpr (Short) return vecmath::short_inverse_lanes<Which>(x);
        return vecmath::inverse_lanes<Which, 4, true>(x);
    }
    static int32_t scalar(const double* x, double* y) { return vecmath::inverse_scalar<Which>(*x, y); }
};

template <Inverse Which>
using Accurate = InverseD<Which, false>;
template <Inverse Which>
using Short = InverseD<Which, true>;

}  // namespace

ORV_ONE_INPUT(dErfInv, la, Accurate<Inverse::erf>)
ORV_ONE_INPUT(dErfInv, ha, Accurate<Inverse::erf>)
ORV_ONE_INPUT(dErfInv, ep, Short<Inverse::erf>)
ORV_ONE_INPUT(dErfcInv, la, Accurate<Inverse::erfc>)
ORV_ONE_INPUT(dErfcInv, ha, Accurate<Inverse::erfc>)
ORV_ONE_INPUT(dErfcInv, ep, Short<Inverse::erfc>)
ORV_ONE_INPUT(dCdfNormInv, la, Accurate<Inverse::normal>)
ORV_ONE_INPUT(dCdfNormInv, ha, Accurate<Inverse::normal>)
ORV_ONE_INPUT(dCdfNormInv, ep, Short<Inverse::normal>)
