#include "package/signature.hpp"

#include <gtest/gtest.h>

#include "harness/test_surroundings.hpp"
#include "package/interruption.hpp"
#include "package/program_test.hpp"

namespace fs = std::filesystem;

namespace {

/// A sound archive that "maker" has signed, who may; there is a "stranger", too.
class signature_test : public program_test {
protected:
    signature_test() {
        shell("for name in maker stranger; do ssh-keygen -q -t ed25519 -N '' -C '' -f $name; done");
        writeSoundArchive();
        sign("maker");
        list("maker@example.com");
    }

    void sign(const std::string& key, const std::string& purpose = "varnmenu-package") const {
        EXPECT_EQ(0, shell("ssh-keygen -q -Y sign -f " + key + " -n " + purpose +
                           " <varn.tar >varn.tar.sig")
                         .status);
    }

    std::string publicKey(const std::string& name) const {
        return contentOf(scratch.path() / (name + ".pub"));
    }

    /// Lists the maker's key for this beginning of a line, after the lines that are given.
    void list(const std::string& names, const std::string& lines = "") const {
        scratch.write("signers", lines + names + " " + publicKey("maker"));
    }

    outcome_t verify(const std::string& signer = "") const {
        std::vector<std::string> words{"verify", "varn.tar", "--signers=signers"};
        if (!signer.empty()) {
            words.push_back("--signer=" + signer);
        }
        return run(words);
    }

    void expectSaid(const std::string& who, const std::string& signer = "") const {
        EXPECT_EQ((outcome_t{0, goodVerdict("varn.tar", who), ""}), verify(signer));
    }

    void expectRefused(const std::string& finding, const std::string& signer = "") const {
        const outcome_t outcome = verify(signer);
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("varn.tar.sig: " + finding + "; do not use the archive\n", outcome.output);
    }
};

const std::string ofNobody = "is no signature of anybody listed for this archive";

}  // namespace

TEST_F(signature_test, IsThatOfAListedSigner) {
    expectSaid("signed by maker@example.com");
    expectSaid("signed by maker@example.com", "maker@example.com");
    EXPECT_EQ((outcome_t{0, goodVerdict("varn.tar", "signed by maker@example.com") + "varn\n", ""}),
              run({"unpack", "varn.tar", "--signers", "signers"}));
}

TEST_F(signature_test, IsMadeByCreate) {
    EXPECT_EQ(0, shell("rm varn.*").status);
    EXPECT_EQ((outcome_t{0, "", ""}), create({"--sign", "maker"}));
    EXPECT_EQ(
        "maker maker.pub package signers stranger stranger.pub varn varn.tar varn.tar.sha256 "
        "varn.tar.sig ",
        scratch.names());
    expectSaid("signed by maker@example.com");
}

TEST_F(signature_test, IsRefusedFromAnybodyElse) {
    sign("stranger");
    expectRefused("was made with a key that signers does not list");
    sign("maker", "file");
    expectRefused(ofNobody);
    sign("maker");
    expectRefused("is no signature of other@example.com for this archive", "other@example.com");
    samples_t samples = soundPackage();
    sampleOf(samples, "readme.txt").content = "Text\n";
    scratch.write("varn.tar", archiveOf(samples));
    EXPECT_EQ("varn.tar: does not match the checksum in varn.tar.sha256; fetch both again\n",
              verify().output);
    writeArchive(archiveOf(samples));
    expectRefused(ofNobody);
    scratch.write("varn.tar.sig", "no signature");
    expectRefused("was made with a key that signers does not list");
    fs::remove(scratch.path() / "varn.tar.sig");
    EXPECT_EQ((outcome_t{1, "varn.tar.sig: is missing; put it beside the archive\n", ""}),
              verify());
}

TEST_F(signature_test, IsTriedForEachLineThatListsTheKey) {
    const std::string key = " " + publicKey("maker");
    list("maker@b", "# a remark\n\n  git@a,git@b namespaces=\"git\"" + key);
    expectSaid("signed by maker@b");
    list("git@a namespaces=\"git\"", "\"maker@b\"" + key);
    expectSaid("signed by maker@b");
    list("maker@b", "maker@a" + key);
    expectSaid("signed by maker@a");
    list("maker@b namespaces=\"git\"", "maker@b namespaces=\"file\"" + key);
    expectRefused(ofNobody);
}

TEST_F(signature_test, SaysThatAPatternIsOne) {
    const std::string key = " " + publicKey("maker");
    list("*@x,!bad@x");
    expectSaid("signed with a key listed for *@x");
    expectSaid("signed with a key listed for *@x", "good@x");
    expectRefused("is no signature of bad@x for this archive", "bad@x");
    list("*@x", "*@y" + key);
    expectSaid("signed with a key listed for *@x", "good@x");
    list("*@x", "*@y namespaces=\"git\"" + key);
    expectSaid("signed with a key listed for *@x");
    list("maker@x", "maker@?" + key);
    expectSaid("signed by maker@x");
    list("!bad@x");
    expectRefused(ofNobody);
    list("[a]*@x");
    expectSaid("signed with a key listed for [a]b@x", "[a]b@x");
}

TEST_F(signature_test, ShowsTheWordsOfSshKeygenInPrintableAscii) {
    scratch.write("signers", "\x1b[2J\n");
    const outcome_t outcome = verify();
    EXPECT_EQ(1, outcome.status);
    EXPECT_NE("", outcome.errors);
    EXPECT_TRUE(outcome.errors.starts_with("ssh-keygen: ")) << outcome;
    EXPECT_EQ(std::string::npos, outcome.errors.find('\x1b'));
}

TEST_F(signature_test, SaysWhatToInstall) {
    environment["PATH"] = "/none";
    EXPECT_EQ((outcome_t{1, "",
                         "varnmenu-package: this system has no ssh-keygen; install the client of "
                         "OpenSSH\n"}),
              verify());
    scratch.write("ssh-keygen", "");
    environment["PATH"] = scratch.path().string();
    EXPECT_EQ((outcome_t{1, "", "varnmenu-package: cannot run ssh-keygen: Permission denied\n"}),
              verify());
}

TEST_F(signature_test, NeedsAListOfSigners) {
    fs::remove(scratch.path() / "signers");
    EXPECT_EQ(
        (outcome_t{1, "", "varnmenu-package: cannot open signers: No such file or directory\n"}),
        verify());
    scratch.write("signers", std::string(1024 * 1024 + 1, '\n'));
    EXPECT_EQ((outcome_t{1, "", "varnmenu-package: signers is larger than a list of signers\n"}),
              verify());
}

TEST(ChildProgram, GetsAllBytesHoweverSlowlyItTakesThem) {
    child_program program({"sh", "-c", "sleep 0.1; cat; echo x >&2; cat /proc/self/fd/3"}, "file",
                          child_program::errors_t::kept);
    const std::string bytes(700'000, 'b');
    program.take(bytes);
    EXPECT_EQ(0, program.end());
    EXPECT_EQ(bytes + "file", program.output());
    EXPECT_EQ("x\n", program.errors());
}

TEST(ChildProgram, MayLeaveBytesUnread) {
    child_program program({"sh", "-c", "exit 3"}, "", child_program::errors_t::kept);
    program.take(std::string(2'000'000, 'b'));
    EXPECT_EQ(3, program.end());
    child_program killed({"sh", "-c", "kill -9 $$"}, "", child_program::errors_t::kept);
    EXPECT_EQ(137, killed.end());
}

TEST(ChildProgram, IsEndedWithItsOwner) {
    const auto begin = std::chrono::steady_clock::now();
    { const child_program program({"sleep", "1000"}, "", child_program::errors_t::kept); }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(100));
}

TEST(ChildProgram, StartsWithNoSignalBlocked) {
    const interruption held;
    child_program program({"grep", "SigBlk", "/proc/self/status"}, "",
                          child_program::errors_t::kept);
    EXPECT_EQ(0, program.end());
    EXPECT_EQ("SigBlk:\t0000000000000000\n", program.output());
}

TEST(ChildProgram, HasToBeThere) {
    EXPECT_EQ("cannot run /none/x\\033: No such file or directory", thrown<std::runtime_error>([] {
                  child_program({"/none/x\x1b"}, "", child_program::errors_t::shown);
              }));
}
