// TRNG: words of the processor's hardware source. A double takes 64 bits, two words that are drawn together; a float takes
// 32, of which two are drawn together.
#include "brng/entries.h"
#include "brng/outputs.h"
#include "platform/platform.h"
#include "streams/state_checks.h"

#include <stddef.h>

namespace orv::brng::trng {

namespace {

constexpr uint32_t usual_retries = 10;

struct State {
    Stream header;
    uint32_t reserved;
    uint32_t retries;  // further attempts when no word is ready
};
static_assert(sizeof(State) == 24);

// Draws `count` words together, 1 or 2; a failure of either draws both again.
bool draw(const State& state, uint32_t* words, int count) {
    uint32_t failures = 0;
    while (!platform::hardware_word(&words[0]) || (count > 1 && !platform::hardware_word(&words[1])))
        if (failures++ == state.retries) return false;
    return true;
}

// store(r, words, count) of the words drawn for `count` elements, at most `at_once`, of `words_each` words.
template <int words_each, int at_once, class Element, class Store>
int32_t generate(Stream* stream, int32_t n, Element* r, Store store) {
    if (!__kuzCPUisRDRAND()) return TrngStatusNotSupported;
    const State& state = *reinterpret_cast<const State*>(stream);
    for (int32_t i = 0; i < n; i += at_once) {
        const int32_t count = n - i < at_once ? n - i : at_once;
        uint32_t words[words_each * at_once];
        if (!draw(state, words, words_each * count)) return TrngStatusRetriesExhausted;
        for (int32_t k = 0; k < count; ++k) store(r + i + k, words + words_each * k);
    }
    return StatusOk;
}

int32_t init_stream(int32_t method, Stream* stream, int32_t n, const uint32_t* words) {
    if (method != InitMethodSeed) return status_of_missing(method);
    State& state = *reinterpret_cast<State*>(stream);
    state.reserved = 0;
    state.retries = n >= 2 && words[1] != 0 ? words[1] : usual_retries;
    return StatusOk;
}

}  // namespace

}  // namespace orv::brng::trng

using namespace orv::brng;

ORV_API int32_t __kuzBRngTRNGInitStream(int32_t method, Stream* stream, int32_t n, const void* params) {
    return trng::init_stream(method, stream, n, static_cast<const uint32_t*>(params));
}

ORV_API int32_t __kuzsBRngTRNG(Stream* stream, int32_t n, float* r, float a, float b) {
    const float scale = static_cast<float>((static_cast<double>(b) - a) * 0x1p-32);
    return trng::generate<1, 2>(stream, n, r, [=](float* to, const uint32_t* word) {
        *to = static_cast<float>(static_cast<double>(*word)) * scale + a;
    });
}

ORV_API int32_t __kuzdBRngTRNG(Stream* stream, int32_t n, double* r, double a, double b) {
    const double scale = (b - a) * 0x1p-64;
    return trng::generate<2, 1>(stream, n, r, [=](double* to, const uint32_t* word) {
        const double whole = static_cast<double>(word[1]) * 0x1p32 + static_cast<double>(word[0]);
        *to = whole * scale + a;
    });
}

ORV_API int32_t __kuziBRngTRNG(Stream* stream, int32_t n, void* r) {
    return trng::generate<1, 2>(stream, n, static_cast<uint32_t*>(r),
                                [](uint32_t* to, const uint32_t* word) { *to = *word; });
}
