#include "package/ustar_header.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

#include "harness/test_surroundings.hpp"

namespace {

std::string encoded(const member_t& member, const ustar_spelling_t& spelling = {}) {
    const ustar_header_t header = encodeHeader(member, spelling);
    return {header.data(), header.size()};
}

const member_t file{"varn/fw.bin", false, 0644, 1234567, 1'700'000'000};

}  // namespace

TEST(UstarHeader, IsTheOneThatPosixDescribes) {
    const std::string header = encoded(file);
    const std::string nul(1, '\0');
    EXPECT_EQ("varn/fw.bin" + std::string(89, '\0'), header.substr(0, 100));
    EXPECT_EQ("0000644" + nul + "0000000" + nul + "0000000" + nul, header.substr(100, 24));
    EXPECT_EQ("00004553207" + nul + "14524770400" + nul, header.substr(124, 24));
    EXPECT_EQ("011343" + nul + " ", header.substr(148, 8));
    EXPECT_EQ("0" + std::string(100, '\0'), header.substr(156, 101));
    EXPECT_EQ("ustar" + nul + "00" + std::string(64, '\0'), header.substr(257, 72));
    EXPECT_EQ("0000000" + nul + "0000000" + nul, header.substr(329, 16));
    EXPECT_EQ(std::string(167, '\0'), header.substr(345));
}

TEST(UstarHeader, IsReadAsItWasWritten) {
    const std::string longName = std::string(90, 'a') + "/" + std::string(60, 'b');
    for (const member_t& member :
         {file, member_t{"varn", true, 0755, 0, 0}, member_t{longName, false, 0600, 0, 1},
          member_t{std::string(155, 'a') + "/" + std::string(100, 'b'), false, 0, 0, 0},
          member_t{std::string(155, 'a') + "/" + std::string(99, 'b'), true, 0, 0, 0},
          member_t{std::string(100, 'b'), false, 0, 077777777777, 077777777777}}) {
        for (const bool namesRoot : {false, true}) {
            for (const bool numbersDevice : {false, true}) {
                EXPECT_EQ(member, decodeHeader(encoded(member, {namesRoot, numbersDevice})));
            }
        }
    }
}

TEST(UstarHeader, TakesNoMoreThanFits) {
    EXPECT_FALSE(fitsHeader({std::string(101, 'a'), false, 0, 0, 0}));
    EXPECT_FALSE(fitsHeader({std::string(100, 'a'), true, 0, 0, 0}));
    EXPECT_FALSE(fitsHeader({std::string(156, 'a') + "/b", false, 0, 0, 0}));
    EXPECT_FALSE(fitsHeader({"a/" + std::string(101, 'b'), false, 0, 0, 0}));
    EXPECT_EQ("too long a name for the header of an archive", thrown<std::invalid_argument>([] {
                  encodeHeader({std::string(101, 'a'), false, 0, 0, 0});
              }));
    EXPECT_EQ("too large for the header of an archive", thrown<std::invalid_argument>([] {
                  encodeHeader({"a", false, 0, 0100000000000, 0});
              }));
}

// Whatever byte of a header is changed, it is no header any more, or says something else that it
// says in the one right way.
TEST(UstarHeader, HasNoOtherSpelling) {
    const std::string header = encoded(file);
    int others = 0;
    for (std::size_t offset = 0; offset < header.size(); ++offset) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = header;
            changed[offset] = static_cast<char>(byte);
            const auto member = decodeHeader(changed);
            const bool isSame = changed == header;
            EXPECT_EQ(isSame, member.has_value()) << offset << " " << byte;  // the checksum
            others += member ? 0 : 1;
        }
    }
    EXPECT_EQ(512 * 255, others);
}

TEST(UstarHeader, TellsDamagedFromForeign) {
    std::string damaged = encoded(file);
    damaged[0] = 'w';
    EXPECT_TRUE(isDamagedHeader(damaged));
    EXPECT_TRUE(isDamagedHeader(std::string(512, 'x')));
    EXPECT_FALSE(isDamagedHeader(encoded(file)));
    EXPECT_FALSE(namesOtherOwner(damaged.replace(257, 5, "other")));
}
