// Conj: the sign of the imaginary part turned, as a bit operation; the real part untouched. No flag is ever raised.
#include "frame/kernel_loops.h"

namespace {

using namespace orv;

template <class T>
struct Conj {
    using Element = T;
    using Result = T;
    using Frame = frame::GeneralFrame;
    static constexpr int block = 4 * simd::Lanes<T>::width;
    static constexpr frame::Tail tail = frame::Tail::by_element;
    using V = typename simd::Lanes<T>::V;
    static V lanes(V x) {
        using Scalar = typename simd::Lanes<T>::Scalar;
        V imaginary_signs;
        if constexpr (sizeof(Scalar) == 4)
            imaginary_signs = _mm_setr_ps(0.0f, -0.0f, 0.0f, -0.0f);
        else
            imaginary_signs = _mm_setr_pd(0.0, -0.0);
        return simd::bit_xor(x, imaginary_signs);
    }
};

}  // namespace

ORV_ONE_INPUT(cConj, la, Conj<orv_complex_s>)
ORV_ONE_INPUT(zConj, la, Conj<orv_complex_d>)
