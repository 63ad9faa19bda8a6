#include "package/package_findings.hpp"

namespace fs = std::filesystem;

namespace {

const std::string releaseFile = "releasefile-information.txt";

defect_t withRelease(const std::string& text) {
    return [text](const package_folder& package) { package.write(releaseFile, text); };
}

/// Proper release information but for the system.
defect_t withSystem(const std::string& value) {
    return withRelease("VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=" + value +
                       "\nIMAGE_NAME=fw.bin\n");
}

defect_t withImage(const std::string& name) {
    return withRelease("VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=RX\nIMAGE_NAME=" + name + "\n");
}

std::vector<row_t> releaseFileRows() {
    const std::string file = releaseFile + ": ";
    const std::string proper = properReleaseInformation();
    const std::string nul(1, '\0');
    return {
        {"is missing", without(releaseFile), file + "is missing; put it there\n"},
        {"is not a regular file", asFolder(releaseFile),
         file + "is not a regular file; put the file itself there\n"},
        {"is not a regular file", asFifo(releaseFile),
         file + "is not a regular file; put the file itself there\n"},
        {"is a symbolic link", asLink(releaseFile),
         file + "is a symbolic link; put the file itself there\n"},
        {"is empty", withRelease(""), file + "is empty; put the right file there\n"},
        {"is larger than", withRelease(proper + std::string(65536, '\n')),
         file + "is larger than 65536 bytes; put the right file there\n"},
        {"holds a NUL byte", withRelease(proper + nul),
         file + "holds a NUL byte; write it as plain ASCII text\n"},
    };
}

std::vector<row_t> keyRows() {
    const std::string file = releaseFile + ": ";
    const std::string proper = properReleaseInformation();
    return {
        {"is missing", withRelease("VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nIMAGE_NAME=fw.bin\n"),
         file + "SYSTEM is missing; add a line that begins with SYSTEM=\n"},
        {"begins with a byte order mark", withRelease("\xef\xbb\xbf" + proper),
         file + "begins with a byte order mark; write it as plain ASCII text: the tool would not "
                "see VARN_RELEASE\n"},
        {"is missing",
         withRelease("VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=RX\n IMAGE_NAME=fw.bin\n"),
         file + "IMAGE_NAME is missing; add a line that begins with IMAGE_NAME=\n"},
        {"times", withRelease(proper + "SYSTEM=TX\nSYSTEM=CX"),
         file + "SYSTEM is given 3 times; keep one of the lines\n"},
        {"times", withRelease(proper + "IMAGE_NAME=no.bin"),
         file + "IMAGE_NAME is given 2 times; keep one of the lines\n"},
    };
}

std::vector<row_t> valueRows() {
    const std::string file = releaseFile + ": ";
    const std::string proper = properReleaseInformation();
    return {
        {"is empty", withSystem(""), file + "SYSTEM is empty; write its value after the \"=\"\n"},
        {"is empty", withSystem("\"\""),
         file + "SYSTEM is empty; write its value after the \"=\"\n"},
        {"is empty", withImage(""),
         file + "IMAGE_NAME is empty; write its value after the \"=\"\n"},
        {"holds a quote", withSystem("RX \"2540\" M7"),
         file + "SYSTEM holds a quote; remove it: the tool would drop it\n"},
        {"holds a carriage return", withSystem("\"RX\"\r"),
         file + "SYSTEM holds a carriage return; end the lines as UNIX does\n"},
        {"printable ASCII", withSystem("RX\x1b[2J"),
         file + "SYSTEM holds a character other than printable ASCII; remove it\n"},
        {"printable ASCII", withSystem("R\xc3\x9cX"),
         file + "SYSTEM holds a character other than printable ASCII; remove it\n"},
        {"printable ASCII", withSystem("R\x81X"),
         file + "SYSTEM holds a character other than printable ASCII; remove it\n"},
        {"$<", withSystem("RX$<9>"),
         file + "SYSTEM holds \"$<\"; remove it: it might not be shown\n"},
        {"begins another line", withSystem("IMAGE"),
         file + "the value of SYSTEM begins another line; change the value, or put its line below "
                "the other one\n"},
        {"begins another line", withRelease(proper + "RX 2540 and other systems"),
         file + "the value of SYSTEM begins another line; change the value, or put its line below "
                "the other one\n"},
        {"begins another line",
         withRelease("VARN_RELEASE=\"*\"\n" + proper.substr(18) + "* a remark"),
         file + "the value of VARN_RELEASE begins another line; change the value, or put its line "
                "below the other one\n"},
    };
}

std::vector<row_t> imageRows() {
    const std::string file = releaseFile + ": ";
    return {
        {"is missing", without("fw.bin"), "fw.bin: is missing; put it there\n"},
        {"is missing", withImage("-e"), "-e: is missing; put it there\n"},
        {"is missing", withImage("!"), "!: is missing; put it there\n"},
        {"is not a regular file", asFolder("fw.bin"),
         "fw.bin: is not a regular file; put the file itself there\n"},
        {"is not a regular file", withImage(".."),
         "..: is not a regular file; put the file itself there\n"},
        {"is a symbolic link", asLink("fw.bin"),
         "fw.bin: is a symbolic link; put the file itself there\n"},
        {"is empty", with("fw.bin", ""), "fw.bin: is empty; put the right file there\n"},
        {"begins or ends with a blank", withImage("fw.bin "),
         file + "IMAGE_NAME begins or ends with a blank; remove it\n"},
        {"begins or ends with a blank", withImage(" fw.bin"),
         file + "IMAGE_NAME begins or ends with a blank; remove it\n"},
        {"holds a blank", withImage("fw bin"),
         file + "IMAGE_NAME holds a blank; rename the image: the core program would be given two "
                "names\n"},
        {"holds a slash", withImage("/fw.bin"),
         file + "IMAGE_NAME holds a slash; put the image beside this file, and write its bare "
                "name\n"},
        {"holds a slash", withImage("tool/../fw.bin"),
         file + "IMAGE_NAME holds a slash; put the image beside this file, and write its bare "
                "name\n"},
        {"names another file", withImage("readme.txt"),
         file + "IMAGE_NAME names another file of the package; write the name of the image\n"},
        {"is too long", withImage(std::string(223, 'i')),
         file + "IMAGE_NAME is too long; shorten it by 1: the tool could not run the core "
                "program\n"},
    };
}

std::vector<row_t> fileRows() {
    const std::string notAProgram =
        ": is no program; put an ELF program or a script with \"#!\" there\n";
    return {
        {"is missing", without("tool/varnflash"), "tool/varnflash: is missing; put it there\n"},
        {"is missing", without("tool/varnmenu"), "tool/varnmenu: is missing; put it there\n"},
        {"is missing", without("tool"),
         "tool/varnmenu: is missing; put it there\ntool/varnflash: is missing; put it there\n"},
        {"is not a regular file", asFolder("tool/varnflash"),
         "tool/varnflash: is not a regular file; put the file itself there\n"},
        {"has no execute permission", withMode("tool/varnflash", 0644),
         "tool/varnflash: has no execute permission; chmod a+x it\n"},
        {"has no execute permission", withMode("tool/varnmenu", 0644),
         "tool/varnmenu: has no execute permission; chmod a+x it\n"},
        {"is no program", with("tool/varnflash", "echo flashed\n"), "tool/varnflash" + notAProgram},
        {"is no program", with("tool/varnmenu", "#"), "tool/varnmenu" + notAProgram},
        {"can be written by everybody", withMode("tool/varnflash", 0757),
         "tool/varnflash: can be written by everybody; chmod o-w it\n"},
        {"can be written by everybody", withMode("fw.bin", 0666),
         "fw.bin: can be written by everybody; chmod o-w it\n"},
        {"can be written by everybody", withMode(".", 0777),
         ".: can be written by everybody; chmod o-w it\n"},
        {"can be written by everybody", withMode("tool", 01777),
         "tool: can be written by everybody; chmod o-w it\n"},
        {"can be written by everybody",
         [](const package_folder& package) {
             fs::create_directory(package.root() / "odd\x1b[2Jname");
             fs::permissions(package.root() / "odd\x1b[2Jname", fs::perms(0777));
         },
         "odd?[2Jname: can be written by everybody; chmod o-w it\n"},
        {"is missing", without("eula_en.txt"), "eula_en.txt: is missing; put it there\n"},
        {"is not a regular file", asFolder("readme.txt"),
         "readme.txt: is not a regular file; put the file itself there\n"},
        {"is empty", with("CopyrightsCentOS", ""),
         "CopyrightsCentOS: is empty; put the right file there\n"},
    };
}

std::vector<row_t> allRows() {
    std::vector<row_t> all;
    for (const auto& rows : {releaseFileRows(), keyRows(), valueRows(), imageRows(), fileRows()}) {
        all.insert(all.end(), rows.begin(), rows.end());
    }
    return all;
}

class package_check_test : public package_test,
                           public testing::WithParamInterface<std::vector<std::string>> {
protected:
    package_check_test() { script.shell = GetParam(); }

    void expectGood() const { EXPECT_EQ((outcome_t{0, "", ""}), check()); }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Shell, package_check_test, testing::ValuesIn(shells()), shellName);

TEST_P(package_check_test, FindsNothingWrongWithAProperPackage) { expectGood(); }

TEST_P(package_check_test, SaysEachFindingAndItsCure) { expectFindings(script, allRows()); }

TEST_P(package_check_test, SaysAllFindingsAtOnce) {
    package.write(releaseFile, "VARN_RELEASE=\"a\"b\r\nIMAGE_NAME=no.bin");
    package.remove("readme.txt");
    const std::string findings =
        "releasefile-information.txt: VARN_RELEASE holds a carriage return; end the lines as UNIX "
        "does\n"
        "releasefile-information.txt: VARN_RELEASE holds a quote; remove it: the tool would drop "
        "it\n"
        "releasefile-information.txt: SDR_RELEASE is missing; add a line that begins with "
        "SDR_RELEASE=\n"
        "releasefile-information.txt: SYSTEM is missing; add a line that begins with SYSTEM=\n"
        "no.bin: is missing; put it there\n"
        "readme.txt: is missing; put it there\n";
    EXPECT_EQ((outcome_t{1, findings, ""}), check());
}

TEST_P(package_check_test, TakesValuesInQuotesRemarksAndAnyOrder) {
    package.write(
        releaseFile,
        "2.41 is what this package holds\n\nIMAGE_NAME=\"fw.bin\"\nSYSTEM=RX; 100% \\ $(x) *\n"
        "IMAGE_NAME \nSDR_RELEASE=\"3.07\"\nVARN_RELEASE=2.41");
    expectGood();
}

TEST_P(package_check_test, TakesAPackageWithoutTheDocumentThatNoMenuOffers) {
    package.remove("CopyrightsDebian");
    expectGood();
}

TEST_P(package_check_test, FindsThePackageUnderAnyName) {
    for (const std::string name : {"-", "-x", "a b", "*", "two\nlines", "tail\n", "--help"}) {
        fs::create_directory_symlink(package.root(), package.root() / name);
        EXPECT_EQ((outcome_t{0, "", ""}), run({"check", "--", name}));
    }
}

TEST_P(package_check_test, SaysWhatItMayNotRead) {
    fs::permissions(package.root() / releaseFile, fs::perms(0));
    runScriptAsNobody();
    EXPECT_EQ(releaseFile + ": cannot be read; chmod a+r it, or check as root\n", check().output);
}

TEST_P(package_check_test, SaysWhichFolderItMayNotEnter) {
    fs::permissions(package.tool(), fs::perms(0700));
    runScriptAsNobody();
    EXPECT_EQ("tool: cannot be entered; chmod a+rx it, or check as root\n", check().output);
}

TEST(PackageManual, ExplainsEachFinding) {
    for (const row_t& row : allRows()) {
        expectExplained(row.inManual);
    }
    expectExplained("cannot be read");
    expectExplained("cannot be entered");
}
