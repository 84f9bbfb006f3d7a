// dErfInv, dErfcInv, dCdfNormInv.
//
// The vector path serves q from 2^-10 on: the central 99.9%. dErfInv's next to zero, where results are subnormal or nearly so,
// is served one by one.
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
constexpr Ends erf_ends{.first = exponent(-960), .last = exponent(0) - 0x801};
constexpr Ends erfc_ends{.first = exponent(-10), .last = exponent(1) - 0x401};
constexpr Ends normal_ends{.first = exponent(-11), .last = exponent(0) - 0x401};

template <Inverse Which, int Pairs, bool OneRounding>
struct InverseD : frame::OneInput<double, 4, frame::Tail::masked> {
    static __m128d doubt(__m128d x) {
        constexpr const Ends& K = Which == Inverse::erf ? erf_ends : Which == Inverse::erfc ? erfc_ends : normal_ends;
        __m128i bits = simd::bits_of(x);
        if constexpr (Which == Inverse::erf) bits = _mm_and_si128(bits, K.magnitude);
        return simd::doubles(_mm_or_si128(_mm_cmpgt_epi32(K.first, bits), _mm_cmpgt_epi32(bits, K.last)));
    }
    static __m128d lanes(__m128d x) { return vecmath::inverse_lanes<Which, Pairs, OneRounding>(x); }
    static int32_t scalar(const double* x, double* y) { return vecmath::inverse_scalar<Which>(*x, y); }
};

template <Inverse Which>
using Accurate = InverseD<Which, 4, true>;
template <Inverse Which>
using Short = InverseD<Which, 2, false>;

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
