// libFuzzer's side of a target.
#include "fuzz_one.h"

// NOLINTNEXTLINE(readability-identifier-naming): the name is the fuzzer's
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    return fuzzOne(data, size);
}
