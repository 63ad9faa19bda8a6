// The input is a release file. One with no findings is one that the tool takes.

#include <cstdint>

#include "fuzz/require_same.hpp"
#include "package/release_rules.hpp"
#include "release/release_model.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    findings found;
    const auto image = checkReleaseText(text, found);
    if (found.empty()) {
        const release_outcome_t values = releaseExpected(text);
        requireSame(false, values == releaseRefused);
        requireSame(true, image == values.at(release_image));
    }
    return 0;
}
