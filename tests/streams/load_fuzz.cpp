// Coverage-guided fuzzing of the stream loader. Built with clang when ORV_FUZZ is on:
//   cmake -B build/fuzz -G Ninja -DORV_FUZZ=ON -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_FLAGS=-m32
//         -DCMAKE_CXX_FLAGS=-m32 -DORV_BENCH=OFF -DCMAKE_BUILD_TYPE=Release
//   cmake --build build/fuzz --target fuzz_load_stream
//   build/fuzz/bin/fuzz_load_stream -max_total_time=600 new_corpus tests/streams/corpus
#include "image_trial.h"

#include <cstdlib>
#include <string>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string name = "/dev/shm/orv-fuzz-" + std::to_string(getpid());
    if (orv::test::try_image(name.c_str(), data, size) == orv::test::Trial::broken) std::abort();
    return 0;
}
