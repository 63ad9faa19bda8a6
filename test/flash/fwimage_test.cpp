#include "flash/fwimage.hpp"

#include <gtest/gtest.h>

#include "harness/test_surroundings.hpp"

namespace {

struct open_fwimage : fwimage {
    using fwimage::imagePath;
};

class fwimage_test : public testing::Test {
protected:
    void givenImage(const std::string& name) {
        package.write("releasefile-information.txt",
                      "VARN_RELEASE=1\nSDR_RELEASE=2\nSYSTEM=SV\nIMAGE_NAME=" + name + "\n");
    }

    static std::string failure() {
        return thrown<std::invalid_argument>([] { fwimage(); });
    }

    package_folder package;
    inside_package inside{package};
};

}  // namespace

TEST_F(fwimage_test, FindsTheImageInTheParentDirectory) {
    EXPECT_EQ("../fw.bin", open_fwimage().imagePath);
}

TEST_F(fwimage_test, NamesTheMissingFileWithoutItsDirectory) {
    package.remove("fw.bin");
    EXPECT_EQ("Firmware file not found: fw.bin", failure());
    givenImage("sub/other.bin");
    EXPECT_EQ("Firmware file not found: other.bin", failure());
    givenImage("sub/");
    EXPECT_EQ("Firmware file not found: ", failure());
}

TEST_F(fwimage_test, TakesADirectoryForAnImage) {
    givenImage("tool");
    EXPECT_EQ("../tool", open_fwimage().imagePath);
}
