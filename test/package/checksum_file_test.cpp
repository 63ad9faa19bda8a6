#include "package/checksum_file.hpp"

#include <gtest/gtest.h>

#include "package/sample_package.hpp"
#include "package/sha256.hpp"

namespace {

const std::string digits = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

std::string foundInText(const std::string& text) {
    return foundBy([&](findings& found) {
        checkChecksum("out/v.tar.sha256", text, "out/v.tar", digits, found);
    });
}

}  // namespace

TEST(Sha256, IsThatOfTheStandard) {
    sha256 hash;
    EXPECT_EQ("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855", hash.digits());
    hash.take("a");
    hash.take("bc");
    EXPECT_EQ(digits, hash.digits());
}

TEST(ChecksumFile, IsTheOneLineOfSha256sum) {
    EXPECT_EQ("", foundInText(digits + "  v.tar\n"));
    EXPECT_EQ("", foundInText(digits + " *v.tar\n"));
}

TEST(ChecksumFile, SaysJustWhatIsWrong) {
    std::string capitals = digits;
    capitals.replace(0, 2, "BA");
    const std::string start = "out/v.tar.sha256: ";
    const std::string again = "; write it with sha256sum\n";
    const std::string other = start +
                              "is not for v.tar alone; write it with sha256sum in the folder of "
                              "the archive\n";
    EXPECT_EQ(start + "is in upper case" + again, foundInText(capitals + "  v.tar\n"));
    EXPECT_EQ(start + "is in the style of BSD" + again,
              foundInText("SHA256 (v.tar) = " + digits + "\n"));
    EXPECT_EQ(start + "has lines that end in CR LF; end them as UNIX does\n",
              foundInText(digits + "  v.tar\r\n"));
    EXPECT_EQ(start + "holds no SHA-256 checksum" + again, foundInText(""));
    EXPECT_EQ(start + "holds no SHA-256 checksum" + again, foundInText(digits.substr(1)));
    EXPECT_EQ(start + "holds no SHA-256 checksum" + again,
              foundInText("x" + digits.substr(1) + "  v.tar\n"));
    for (const std::string rest : {"", "\n", "  other.tar\n", "  out/v.tar\n", "  v.tar",
                                   " v.tar\n", "0  v.tar\n", "  v.tar\n\n"}) {
        EXPECT_EQ(other, foundInText(digits + rest));
    }
    EXPECT_EQ("out/v.tar: does not match the checksum in out/v.tar.sha256; fetch both again\n",
              foundInText("00" + digits.substr(2) + "  v.tar\n"));
}
