// The four exported entries of a generator, written once.
#pragma once

#include "services/export.h"

#include <orv/random.h>

namespace orv::brng {

// What initStream returns for a method that the generator does not have.
inline int32_t status_of_missing(int32_t method) {
    switch (method) {
        case InitMethodLeapfrog:
            return BrngStatusNoLeapfrog;
        case InitMethodSkipAhead:
            return BrngStatusNoSkipAhead;
        case InitMethodSkipAheadEx:
            return BrngStatusNoSkipAheadEx;
        default:
            return StatusBadMethod;
    }
}

}  // namespace orv::brng

// Defines the entries of generator `name` from its namespace orv::brng::space, which has
//   init_stream(method, stream, n, params), and
//   generate(stream, n, r, output) for the outputs that Outputs::numbers(a, b) and Outputs::words() make.
#define ORV_BRNG_DEFINE(name, space)                                                                             \
    ORV_API int32_t __kuzBRng##name##InitStream(int32_t method, Stream* stream, int32_t n, const void* params) { \
        return orv::brng::space::init_stream(method, stream, n, params);                                         \
    }                                                                                                            \
    ORV_API int32_t __kuzsBRng##name(Stream* stream, int32_t n, float* r, float a, float b) {                    \
        return orv::brng::space::generate(stream, n, r, orv::brng::space::Outputs::numbers(a, b));               \
    }                                                                                                            \
    ORV_API int32_t __kuzdBRng##name(Stream* stream, int32_t n, double* r, double a, double b) {                 \
        return orv::brng::space::generate(stream, n, r, orv::brng::space::Outputs::numbers(a, b));               \
    }                                                                                                            \
    ORV_API int32_t __kuziBRng##name(Stream* stream, int32_t n, void* r) {                                       \
        const auto output = orv::brng::space::Outputs::words();                                                  \
        return orv::brng::space::generate(stream, n, static_cast<decltype(output)::Element*>(r), output);        \
    }
