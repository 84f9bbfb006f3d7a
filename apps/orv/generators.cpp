#include "generators.h"

#include "failure.h"
#include "names.h"

#include <algorithm>
#include <charconv>

namespace orv::command {

namespace {

constexpr struct {
    const char* name;
    int32_t id;
} generators[] = {
    {"MCG31M1", BrngMCG31M1}, {"R250", BrngR250},   {"MRG32K3A", BrngMRG32K3A},   {"MCG59", BrngMCG59},
    {"WH", BrngWH},           {"Sobol", BrngSobol}, {"Niederr", BrngNiederr},     {"MT19937", BrngMT19937},
    {"MT2203", BrngMT2203},   {"TRNG", BrngTRNG},   {"SFMT19937", BrngSFMT19937}, {"PHILOX4X32X10", BrngPHILOX4X32X10},
    {"ARS5", BrngARS5},
};

constexpr struct {
    int32_t status;
    const char* text;
} meanings[] = {
    {StatusNoMemory, "not enough memory"},
    {BrngStatusBadId, "no such generator in this build"},
    {BrngStatusNoLeapfrog, "the generator has no leapfrog"},
    {BrngStatusNoSkipAhead, "the generator has no skip-ahead"},
    {BrngStatusQrngExhausted, "the quasi-random sequence is exhausted"},
    {BrngStatusNoFullWidth, "the generator does not have words of that width"},
    {StreamStatusCloseFailed, "cannot be closed"},
    {StreamStatusOpenFailed, "cannot be opened"},
    {StreamStatusWriteFailed, "cannot be written"},
    {StreamStatusReadFailed, "too short or damaged"},
    {StreamStatusBadFile, "not a saved stream of a known generator"},
    {TrngStatusNotSupported, "the processor has no RDRAND instruction"},
    {TrngStatusRetriesExhausted, "the processor has run out of random numbers"},
    {ArsStatusNotSupported, "the processor has no AES instructions"},
};

int32_t id_of(const std::string& text) {
    const size_t colon = text.find(':');
    const std::string name = text.substr(0, colon);
    const auto* found = std::find_if(std::begin(generators), std::end(generators),
                                     [&](const auto& generator) { return same_letters(generator.name, name); });
    if (found == std::end(generators)) {
        std::vector<std::string> known;
        for (const auto& generator : generators)
            if (__RegBrngsNew[(generator.id >> 20) - 1].initStream) known.emplace_back(generator.name);
        fail(no_such("generator", name, known));
    }
    if (colon == std::string::npos) return found->id;
    int32_t member = -1;
    const char *first = text.data() + colon + 1, *last = text.data() + text.size();
    const auto [stop, error] = std::from_chars(first, last, member);
    constexpr int32_t member_limit = 0x100000;
    if (error != std::errc() || stop != last || member < 0 || member >= member_limit)
        fail("'" + text.substr(colon + 1) + "' is not a member of " + name);
    return found->id + member;
}

}  // namespace

void require(int32_t status, const std::string& what) {
    if (status >= 0) return;
    for (const auto& meaning : meanings)
        if (meaning.status == status) fail(what + ": " + meaning.text);
    fail(what + ": status " + std::to_string(status));
}

StreamHandle make_stream(const std::string& name, const std::vector<uint32_t>& seed) {
    Stream* stream = nullptr;
    const int32_t status = __kuzNewStreamEx(&stream, id_of(name), static_cast<int32_t>(seed.size()), seed.data());
    StreamHandle handle(stream);
    require(status, name);
    return handle;
}

StreamHandle load_stream(const std::string& file) {
    Stream* stream = nullptr;
    require(__kuzLoadStreamF(&stream, file.c_str(), -1), file);
    StreamHandle handle(stream);
    const int32_t id = __kuzGetStreamStateBrng(stream);
    if (id == BrngIAbstract || id == BrngDAbstract || id == BrngSAbstract)
        fail(file + ": a stream over another process's memory");
    return handle;
}

const BrngProperties& generator_of(const Stream* stream) {
    int32_t row, member;
    return __kuzGetBrngBaseOffset(stream->brngId, &row, &member)[row];
}

}  // namespace orv::command
