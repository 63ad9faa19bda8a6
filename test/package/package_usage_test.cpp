#include "package/package_test.hpp"

namespace fs = std::filesystem;

namespace {

class package_usage_test : public package_test {
protected:
    void expectUsageError(const std::vector<std::string>& words, const std::string& message) {
        const std::string errors =
            "varnmenu-package: " + message + "\nvarnmenu-package: see varnmenu-package --help\n";
        EXPECT_EQ((outcome_t{2, "", errors}), run(words));
    }

    void expectHelp(const std::vector<std::string>& words) {
        const outcome_t outcome = run(words);
        EXPECT_EQ(0, outcome.status);
        EXPECT_TRUE(outcome.output.starts_with("usage: varnmenu-package create OPTION..."));
        EXPECT_EQ("", outcome.errors);
    }
};

}  // namespace

TEST_F(package_usage_test, SaysHowItIsUsed) {
    expectHelp({"--help"});
    expectHelp({"check", "--help"});
    expectHelp({"create", "--help"});
    expectHelp({"verify", "--help"});
    expectHelp({"create", "--image", "fw.bin", "--help"});
}

TEST_F(package_usage_test, HasTheVersionOfTheTool) {
    EXPECT_EQ((outcome_t{0, "varnmenu-package " PROJECT_VERSION "\n", ""}), run({"--version"}));
}

TEST_F(package_usage_test, NeedsACommandThatItKnows) {
    expectUsageError({}, "create, check or verify is missing");
    expectUsageError({"--"}, "create, check or verify is missing");
    expectUsageError({"inspect", "."}, "unknown command inspect");
    expectUsageError({"--bogus"}, "unknown command --bogus");
}

TEST_F(package_usage_test, ChecksOneDirectoryOrArchive) {
    expectUsageError({"check"}, "check: takes one directory or archive");
    expectUsageError({"check", ".", "."}, "check: takes one directory or archive");
    expectUsageError({"check", "--", ".", "."}, "check: takes one directory or archive");
    expectUsageError({"check", "--deep", "."}, "check: unknown option --deep");
    expectUsageError({"check", "-v"}, "check: unknown option -v");
    expectUsageError({"check", "nowhere"}, "check: nowhere does not exist");
    expectUsageError({"check", "/dev/null"},
                     "check: /dev/null is neither a directory nor an archive");
    expectUsageError({"check", ""}, "check: an empty name is no package");
    expectUsageError({"check", ".", "--signers=x"}, "check: unknown option --signers");
}

TEST_F(package_usage_test, VerifiesOneArchive) {
    expectUsageError({"verify"}, "verify: takes one archive");
    expectUsageError({"verify", "a", "b"}, "verify: takes one archive");
    expectUsageError({"verify", "a", "--", "--signers"}, "verify: takes one archive");
    expectUsageError({"verify", "--deep", "a"}, "verify: unknown option --deep");
    expectUsageError({"verify", "nowhere"}, "verify: nowhere does not exist");
    expectUsageError({"verify", "."}, "verify: . is not an archive");
    expectUsageError({"verify", "fw.bin", "--signers"}, "verify: --signers needs a value");
    expectUsageError({"verify", "fw.bin", "--signer="}, "verify: --signer needs a value");
    expectUsageError({"verify", "fw.bin", "--signer=a"}, "verify: --signer needs --signers, too");
    expectUsageError({"verify", "fw.bin", "--signers=x"}, "verify: ./x is not a file");
}

TEST_F(package_usage_test, NeedsWhatItLooksIntoProgramsWith) {
    removeProgram("od");
    EXPECT_EQ(
        (outcome_t{1, "", "varnmenu-package: check: this system has no od; install coreutils\n"}),
        check());
}

TEST_F(package_usage_test, EndsOptionsWithTwoDashes) {
    EXPECT_EQ(0, run({"--", "check", "--", "."}).status);
    expectUsageError({"create", "--", "--image"}, "create: --image is not an option");
}

TEST_F(package_usage_test, CreatesWithOptionsThatItKnows) {
    expectUsageError({"create", "--bogus"}, "create: unknown option --bogus");
    expectUsageError({"create", "--bogus=1"}, "create: unknown option --bogus");
    expectUsageError({"create", "-i", "fw.bin"}, "create: unknown option -i");
    expectUsageError({"create", "fw.bin"}, "create: fw.bin is not an option");
}

TEST_F(package_usage_test, CreatesWithAValueForEachOption) {
    for (const std::string option : {"--image", "--core", "--release", "--sdr", "--system",
                                     "--documents", "--output", "--tool", "--sign"}) {
        expectUsageError({"create", option}, "create: " + option + " needs a value");
        expectUsageError({"create", option, ""}, "create: " + option + " needs a value");
        expectUsageError({"create", option + "="}, "create: " + option + " needs a value");
    }
}

TEST_F(package_usage_test, CreatesWithAllThatAPackageNeeds) {
    std::vector<std::string> words{"create"};
    for (const std::string option :
         {"--image", "--core", "--release", "--sdr", "--system", "--documents", "--output"}) {
        expectUsageError(words, "create: " + option + " is missing");
        words.push_back(option + "=x");
    }
}

TEST_F(package_usage_test, CreatesWithValuesOfOneLine) {
    const std::vector<std::string> words{"create",         "--image=fw.bin", "--core=x",
                                         "--release=2.41", "--sdr=3.07",     "--system=RX",
                                         "--documents=.",  "--output=made"};
    for (const std::string option : {"--release", "--sdr", "--system"}) {
        auto spoilt = words;
        spoilt.push_back(option + "=a\nb");
        expectUsageError(spoilt, "create: the value of " + option + " holds a line feed");
    }
    EXPECT_FALSE(fs::exists(package.root() / "made"));
}

TEST_F(package_usage_test, CreatesAtATimeThatIsANumber) {
    script.environment["SOURCE_DATE_EPOCH"] = "yesterday";
    expectUsageError({"create", "--image=x", "--core=x", "--release=x", "--sdr=x", "--system=x",
                      "--documents=x", "--output=x"},
                     "create: SOURCE_DATE_EPOCH is no number of seconds");
}

TEST_F(package_usage_test, SaysWhichPackageItMayNotEnter) {
    fs::create_directory(package.root() / "closed");
    fs::permissions(package.root() / "closed", fs::perms(0));
    runScriptAsNobody();
    const outcome_t outcome = run({"check", "closed"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_NE(std::string::npos, outcome.errors.find("./closed: cannot be entered"))
        << outcome.errors;
}
