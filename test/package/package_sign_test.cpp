#include <fstream>

#include "package/package_archive.hpp"
#include "package/package_findings.hpp"

namespace fs = std::filesystem;

namespace {

/// Archives that "maker" signs, who may, and "stranger", who may not.
class package_sign_test : public package_archive_test {
protected:
    package_sign_test() {
        makeKey("maker");
        makeKey("stranger");
        package.write("signers", "maker@example.com " + publicKey("maker"));
    }

    /// Runs a command line of a shell in the package.
    outcome_t runShell(const std::string& line) const {
        program_t call;
        call.path = "/bin/sh";
        call.arguments = {"sh", "-c", line};
        call.environment = script.environment;
        call.directory = package.root().string();
        return outcomeOf(call);
    }

    void makeKey(const std::string& name) const {
        ASSERT_EQ(0, runShell("ssh-keygen -q -t ed25519 -N '' -C '' -f " + name).status);
    }

    std::string publicKey(const std::string& name) const {
        return contentOf(package.root() / (name + ".pub"));
    }

    outcome_t createSigned(const std::string& key = "maker") const {
        return create({"--output=out/varn", "--sign", key});
    }

    void sign(const std::string& key, const std::string& signedFor = "varnmenu-package") const {
        ASSERT_EQ(0, runShell("ssh-keygen -q -Y sign -f " + key + " -n " + signedFor +
                              " <out/varn.tar >out/varn.tar.sig")
                         .status);
    }

    void expectSignedBy(const std::string& name, const std::vector<std::string>& words) const {
        EXPECT_EQ((outcome_t{0, "out/varn.tar: signed by " + name + "\n", ""}), verify(words));
        expectNothingLeft();
    }

    /// @param finding what is said of the signature
    void expectRefused(const std::string& finding,
                       const std::vector<std::string>& words = {"--signers=signers"}) const {
        const outcome_t outcome = verify(words);
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("out/varn.tar.sig: " + finding + "\n", outcome.output);
        expectNothingLeft();
    }
};

constexpr const char* notTheirs =
    "is no signature of maker@example.com for this archive; do not use the archive";
constexpr const char* nobodys = "is of nobody in ./signers; do not use the archive";

}  // namespace

TEST_F(package_sign_test, TakesTheSignatureOfWhoMaySign) {
    expectMade(createSigned());
    for (const auto& shell : shellsWithTar()) {
        script.shell = shell;
        expectSignedBy("maker@example.com", {"--signers", "signers"});
        expectSignedBy("maker@example.com", {"--signers=signers", "--signer=maker@example.com"});
    }
}

TEST_F(package_sign_test, SignsTheSameArchive) {
    expectMade(createSigned());
    const std::string archiveOfSigned = contentOf(archive());
    fs::remove_all(out());
    fs::create_directory(out());
    expectMade(create({"--output=out/varn"}));
    EXPECT_TRUE(archiveOfSigned == contentOf(archive()));
    EXPECT_FALSE(fs::exists(out() / "varn.tar.sig"));
}

TEST_F(package_sign_test, SignsWithTheKeyOfAnAgent) {
    const outcome_t outcome =
        runShell("ssh-agent sh -c 'ssh-add -q maker && rm maker && exec sh " PACKAGE_SCRIPT
                 " create --image=fw.bin --core=tool/varnflash --release=1 --sdr=2 --system=RX "
                 "--documents=. --output=out/varn --tool=tool/varnmenu --sign maker.pub'");
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    expectSignedBy("maker@example.com", {"--signers=signers"});
}

TEST_F(package_sign_test, KnowsTheOneThatIsAskedFor) {
    package.write("signers", "a@example.com,b@example.com " + publicKey("maker") +
                                 "c@example.com " + publicKey("stranger"));
    expectMade(createSigned());
    expectSignedBy("a@example.com", {"--signers=signers"});
    expectSignedBy("b@example.com", {"--signers=signers", "--signer=b@example.com"});
    expectRefused("is no signature of c@example.com for this archive; do not use the archive",
                  {"--signers=signers", "--signer=c@example.com"});
    expectRefused("is no signature of -x for this archive; do not use the archive",
                  {"--signers=signers", "--signer", "-x"});
}

TEST_F(package_sign_test, RefusesTheSignatureOfAnybodyElse) {
    expectMade(createSigned("stranger"));
    expectRefused(nobodys);
    expectRefused(notTheirs, {"--signers=signers", "--signer=maker@example.com"});
    sign("maker");
    expectSignedBy("maker@example.com", {"--signers=signers"});
    sign("stranger");
    expectRefused(nobodys);
}

TEST_F(package_sign_test, RefusesTheSignatureOfAnythingElse) {
    expectMade(createSigned());
    const std::string signature = contentOf(out() / "varn.tar.sig");
    const std::string bytes = contentOf(archive());
    std::string replaced = bytes;
    replaced[512] ^= 1;
    for (const std::string& other :
         {bytes + zeroBlocks(1), bytes.substr(0, bytes.size() - 512), replaced, std::string()}) {
        writeArchive(other);
        expectRefused(notTheirs);
    }
    writeArchive(bytes);
    sign("maker", "file");
    expectRefused(notTheirs);
    for (const std::string& other :
         {std::string(), std::string("no signature"), signature.substr(0, signature.size() / 2)}) {
        std::ofstream(out() / "varn.tar.sig") << other;
        expectRefused(nobodys);
    }
    fs::remove(out() / "varn.tar.sig");
    expectRefused("is missing; put it beside the archive");
}

TEST_F(package_sign_test, LooksIntoTheArchiveThatIsSigned) {
    writeArchive(tarOf({{.name = "/etc/passwd"}}) + zeroBlocks(2));
    sign("maker");
    EXPECT_EQ("/etc/passwd: is no plain name; rename it\n", verify({"--signers=signers"}).output);
}

TEST_F(package_sign_test, LeavesNothingWhenItCannotSign) {
    package.write("nokey", "no key\n");
    expectNothingMade(createSigned("nokey"), "create: cannot sign ./out/varn.tar with ./nokey\n");
    // Its private part is nowhere.
    fs::remove(package.root() / "stranger");
    expectNothingMade(createSigned("stranger.pub"),
                      "create: cannot sign ./out/varn.tar with ./stranger.pub\n");
    expectNothingMade(createSigned("nowhere"),
                      "create: ./nowhere is not a key\nvarnmenu-package: see varnmenu-package "
                      "--help\n",
                      2);
}

TEST_F(package_sign_test, LeavesNothingWhenItIsInterrupted) {
    replaceProgram("ssh-keygen", "echo half of it; kill -QUIT $PPID");
    expectNothingMade(createSigned(), "", 131);
}

TEST_F(package_sign_test, SaysThatTheSystemCannotSign) {
    expectMade(createSigned());
    removeProgram("ssh-keygen");
    const std::string missing = ": this system has no ssh-keygen; install the client of OpenSSH\n";
    EXPECT_EQ("varnmenu-package: verify" + missing, verify({"--signers=signers"}).errors);
    EXPECT_EQ("varnmenu-package: create" + missing,
              create({"--output=out/other", "--sign=maker"}).errors);
    EXPECT_FALSE(fs::exists(out() / "other"));
    EXPECT_EQ(unsignedLine, verify().output);
}

TEST(PackageManual, ExplainsEachFindingBesideAnArchive) {
    for (const std::string finding :
         {"is missing", "is not what", "is of nobody in", "is no signature of"}) {
        expectExplained(finding);
    }
}
