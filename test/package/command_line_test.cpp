#include "package/command_line.hpp"

#include <getopt.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "harness/program.hpp"
#include "harness/test_surroundings.hpp"

namespace {

command_line_t parsed(std::vector<std::string> words) {
    words.insert(words.begin(), "varnmenu-package");
    optind = 0;  // getopt starts from the beginning
    return parseCommandLine(static_cast<int>(words.size()), nullTerminated(words).data());
}

std::string refused(const std::vector<std::string>& words) {
    return thrown<std::invalid_argument>([&] { parsed(words); });
}

const std::vector<std::string> create{"create",      "--image", "i",        "--core=c",
                                      "--release=1", "--sdr=2", "--system", "a b",
                                      "--documents", "d",       "--output", "o"};

}  // namespace

TEST(CommandLine, TakesOptionsInAnyFormAndPlace) {
    const command_line_t line = parsed({"unpack", "--into=x", "a.tar", "--signers", "s"});
    EXPECT_EQ("unpack", line.command);
    EXPECT_EQ("a.tar", line.operand);
    EXPECT_EQ("x", line.value("into"));
    EXPECT_EQ("s", line.value("signers"));
    EXPECT_EQ("", line.value("signer"));
    EXPECT_EQ("--into", parsed({"verify", "--", "--into"}).operand);
    EXPECT_EQ("2", parsed({"verify", "a", "--signers=1", "--signers=2"}).value("signers"));
    EXPECT_EQ("a b", parsed(create).value("system"));
}

TEST(CommandLine, KnowsHelpAndVersion) {
    EXPECT_EQ("help", parsed({"--help"}).command);
    EXPECT_EQ("version", parsed({"--version"}).command);
    EXPECT_EQ("help", parsed({"create", "--help"}).command);
}

TEST(CommandLine, SaysWhatIsWrong) {
    EXPECT_EQ("create, check, verify or unpack is missing", refused({}));
    EXPECT_EQ("unknown command a\\033", refused({"a\x1b"}));
    EXPECT_EQ("verify: takes one archive", refused({"verify"}));
    EXPECT_EQ("check: takes one directory or archive", refused({"check", "a", "b"}));
    EXPECT_EQ("unpack: takes one archive", refused({"unpack", "a", "b"}));
    EXPECT_EQ("verify: --signer needs a value", refused({"verify", "a", "--signer"}));
    EXPECT_EQ("verify: --signer needs a value", refused({"verify", "a", "--signer="}));
    EXPECT_EQ("verify: --signer needs --signers, too", refused({"verify", "a", "--signer=b"}));
    EXPECT_EQ("verify: unknown option --into", refused({"verify", "a", "--into", "b"}));
    EXPECT_EQ("check: unknown option --signers", refused({"check", "a", "--signers", "b"}));
    EXPECT_EQ("create: unknown option --\\033", refused({"create", "--\x1b"}));
    EXPECT_EQ("create: unknown option -x", refused({"create", "-x"}));
    EXPECT_EQ("create: a\\012 is not an option", refused({"create", "a\n"}));
}

TEST(CommandLine, RequiresWhatCreateNeeds) {
    for (const std::string option :
         {"--image", "--core", "--release", "--sdr", "--system", "--documents", "--output"}) {
        std::vector<std::string> words = create;
        const auto word = std::ranges::find_if(
            words, [&](const std::string& one) { return one.starts_with(option); });
        words.erase(word, word + (*word == option ? 2 : 1));
        EXPECT_EQ("create: " + option + " is missing", refused(words));
    }
}
