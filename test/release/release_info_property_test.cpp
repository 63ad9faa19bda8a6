#include <gtest/gtest.h>

#include "harness/test_surroundings.hpp"
#include "release/release_file_maker.hpp"
#include "release/release_model.hpp"

namespace {

constexpr int fileCount = 12000;
constexpr int filesPerLongLine = 1000;

}  // namespace

TEST(ReleaseInfoProperty, MakesOfAnyFileWhatTheModelMakesOfIt) {
    const package_folder package;
    const inside_package inside(package);
    release_file_maker maker;
    int accepted = 0;
    for (int number = 1; number <= fileCount; ++number) {
        const bool isLong = number % filesPerLongLine == 0;
        const std::string text = isLong ? maker.fileWithLongLine() : maker.file();
        package.write("releasefile-information.txt", text);
        const release_outcome_t expected = releaseExpected(text);
        ASSERT_EQ(expected, releaseRead()) << "seed " << releaseFileSeed << ", file " << number
                                           << ": " << testing::PrintToString(text);
        accepted += expected == releaseRefused ? 0 : 1;
    }
    // Else the files would say little.
    EXPECT_GT(accepted, fileCount / 4);
    EXPECT_LT(accepted, fileCount * 3 / 4);
}
