// The input is a release file.

#include <cstdint>

#include "fuzz/fuzz_package.hpp"
#include "fuzz/require_same.hpp"
#include "release/release_model.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz_package package;
    const std::string text(data, data + size);
    package.write("releasefile-information.txt", text);
    requireSame(releaseExpected(text), releaseRead());
    return 0;
}
