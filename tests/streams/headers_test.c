/* The public headers from C99. */
#include <orv/random.h>
#include <orv/streams.h>

int32_t orv_test_header_from_c(void);
int32_t orv_test_header_from_c(void) {
    Stream* stream;
    const uint32_t seed = 1;
    double r[3];
    int32_t status = __kuzNewStreamEx(&stream, BrngMCG59, 1, &seed);
    if (status < 0) return status;
    status = _kuzdRngUniform(UniformStandard, stream, 3, r, 0.0, 1.0);
    __kuzDeleteStream(&stream);
    return status == StatusOk && sizeof(Stream) == 16 && offsetof(Stream, chunks) == 8 && sizeof(Chunk) == 32 ? 0 : -1;
}
