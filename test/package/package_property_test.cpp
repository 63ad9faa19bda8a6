#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "flash/flashtools.hpp"
#include "harness/test_surroundings.hpp"
#include "package/package_findings.hpp"

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t seed = 20261121;
constexpr int packageCount = 200;
constexpr int packagesPerRefusal = 4;  // one of so many refusals is seen by the program, too
constexpr int createdCount = 60;

using texts_t = std::vector<std::string>;

/// Makes packages up in one folder: proper ones, and such with a few oddities.
class package_maker {
public:
    explicit package_maker(const package_folder& folder) : package(folder) {
        fs::copy_file(programUnderTest(), tool(), fs::copy_options::overwrite_existing);
    }

    /// Puts another package into the folder.
    void make() {
        repair();
        values.clear();
        isProper = true;
        package.write("releasefile-information.txt", releaseText());
        if (oneIn(3)) {
            spoilFiles();
        }
    }

    /// @return true when nothing odd was done to the package in the folder
    bool mustBeGood() const { return isProper; }

    const texts_t& shell() { return pick(shells()); }

    std::string value() {
        static const texts_t proper{"2.41", "3.07", "RX 2540", "M7 (64 bit)", "9", "\\n", "100%"};
        static const texts_t odd{
            "",   "\"", "\"\"",    "\r",   "\t",    "$<5>", "\x1b", "\xc3\xa4", "S",
            "SD", "V",  "SYSTEM=", "VARN", "IMAGE", " ",    "\x01", "*"};
        std::string text = pick(proper);
        if (oneIn(7)) {
            isProper = false;
            text = oneIn(2) ? pick(odd) : text + pick(odd);
        }
        return text;
    }

private:
    bool oneIn(unsigned count) { return random() % count == 0; }
    template <typename item_t>
    const item_t& pick(const std::vector<item_t>& list) {
        return list[random() % list.size()];
    }

    fs::path tool() const { return package.tool() / "varnmenu"; }

    std::string releaseText() {
        texts_t keys{"VARN_RELEASE=", "SDR_RELEASE=", "SYSTEM=", "IMAGE_NAME="};
        std::shuffle(keys.begin(), keys.end(), random);
        std::string text;
        for (const std::string& key : keys) {
            text += oneIn(12) ? otherLine(key) + "\n" : "";
            text += oneIn(40) ? missing() : key + inQuotes(valueFor(key)) + lineEnd();
        }
        text += oneIn(12) ? otherLine(pick(keys)) : "";
        if (oneIn(3)) {
            text.resize(text.find_last_not_of('\n') + 1);
        }
        return text;
    }

    std::string missing() {
        isProper = false;
        return "";
    }

    std::string lineEnd() {
        const bool isForeign = oneIn(30);
        isProper = isProper && !isForeign;
        return isForeign ? "\r\n" : "\n";
    }

    std::string inQuotes(const std::string& text) { return oneIn(3) ? '"' + text + '"' : text; }

    std::string valueFor(const std::string& key) {
        values.push_back(key == "IMAGE_NAME=" ? imageName() : value());
        return values.back();
    }

    /// Most names have an image.
    std::string imageName() {
        static const texts_t odd{"no.bin",     "a b", "/fw.bin", "./fw.bin",      "tool",
                                 "readme.txt", "..",  "",        "tool/../fw.bin"};
        if (!oneIn(5)) {
            const std::string name = oneIn(2) ? "fw.bin" : std::string(random() % 222 + 1, 'i');
            package.write(image = name, "image\n");
            return name;
        }
        isProper = false;
        return oneIn(4) ? std::string(223, 'i') : pick(odd);
    }

    /// A line that gives no value, or a second one, or is taken for one.
    std::string otherLine(const std::string& key) {
        isProper = false;
        const std::string repeated = values.empty() ? "none" : pick(values);
        return pick(texts_t{"# a remark", "", " " + key + "blank", key + "other", repeated,
                            repeated + "repeated", key.substr(0, key.size() - 1), nul});
    }

    void spoilFiles() {
        const std::vector<defect_t> defects{without("tool/varnflash"),
                                            asFolder("tool/varnflash"),
                                            withMode("tool/varnflash", 0644),
                                            with("tool/varnflash", pick(texts_t{"", "#", "exit 0\n",
                                                                                "\x7f"
                                                                                "EL"})),
                                            withMode("tool/varnmenu", 0600),
                                            without("readme.txt"),
                                            asFolder(image),
                                            with(image, ""),
                                            without(image)};
        isProper = false;
        pick(defects)(package);
    }

    void repair() {
        package.remove("tool/varnflash");
        fs::copy_file(package.programs() / "cat", package.tool() / "varnflash");
        fs::permissions(tool(), fs::perms(0755));
        package.write("readme.txt", "text\n");
        package.remove(image);
        image = "fw.bin";
        package.remove(image);
    }

    const std::string nul = std::string(1, '\0');
    const package_folder& package;
    std::mt19937 random{seed};
    texts_t values;
    std::string image = "fw.bin";
    bool isProper = true;
};

/// @return why the tool's classes refuse the package, or nothing
std::string refusal() {
    const std::string reason = thrown<std::invalid_argument>([] { flashtools(true, {}); });
    return reason == "nothing thrown" ? "" : reason;
}

class package_property_test : public package_test {
protected:
    /// Starts the tool of the package that is there.
    /// @return true when its menu comes up
    bool menuComesUp() {
        program.path = (package.tool() / "varnmenu").string();
        start(40, 400);
        const auto& screen = session->screen();
        session->await(
            [&] {
                return screen.contains("Reboot Varn") || screen.contains("[CRIT]") ||
                       session->hasEnded();
            },
            "the menu or the end");
        return screen.contains("Reboot Varn");
    }
};

std::string described(int number, const package_folder& package, const outcome_t& outcome) {
    return "package " + std::to_string(number) + " of seed " + std::to_string(seed) + "\n" +
           testing::PrintToString(contentOf(package.root() / "releasefile-information.txt")) +
           "\n" + outcome.output + outcome.errors;
}

}  // namespace

// A package that the script finds nothing wrong with starts. Every other one starts, too, or does
// not; but one that nothing odd was done to has to be good, or the script could refuse all.
TEST_F(package_property_test, CallsGoodOnlyWhatStarts) {
    const inside_package inside(package);
    package_maker maker(package);
    int good = 0;
    int refusedByTool = 0;
    for (int number = 1; number <= packageCount; ++number) {
        maker.make();
        script.shell = maker.shell();
        const outcome_t outcome = check();
        SCOPED_TRACE(described(number, package, outcome));
        ASSERT_EQ("", outcome.errors);
        ASSERT_EQ(outcome.output.find("; ") == std::string::npos ? 0 : 1, outcome.status);
        if (maker.mustBeGood()) {
            ASSERT_EQ(0, outcome.status);
        }
        const std::string reason = refusal();
        refusedByTool += reason.empty() ? 0 : 1;
        if (outcome.status == 0) {
            ASSERT_EQ("", reason);
            ASSERT_TRUE(menuComesUp()) << session->screen().text();
            ++good;
        } else if (!reason.empty() && number % packagesPerRefusal == 0) {
            ASSERT_FALSE(menuComesUp());
        }
    }
    // Else the packages would say little.
    EXPECT_GT(good, packageCount / 5);
    EXPECT_GT(refusedByTool, packageCount / 10);
}

// What is made starts with the values that were given; what is not made leaves nothing.
TEST_F(package_property_test, CreatesWhatIsReadBack) {
    package_maker maker(package);
    package.write("fw.bin", "image\n");
    const inside_package inside(package);
    fs::create_directory(package.root() / "out");
    int made = 0;
    for (int number = 1; number <= createdCount; ++number) {
        const texts_t values{maker.value(), maker.value(), maker.value()};
        SCOPED_TRACE(testing::PrintToString(values));
        const outcome_t outcome =
            run({"create", "--image=fw.bin", "--core=tool/varnflash", "--documents=.",
                 "--tool=/bin/true", "--output=out/made", "--release=" + values[0],
                 "--sdr=" + values[1], "--system=" + values[2]});
        ASSERT_EQ(outcome.status != 0, fs::is_empty(package.root() / "out")) << outcome.errors;
        if (outcome.status == 0) {
            ++made;
            fs::current_path(package.root() / "out/made/tool");
            const release_info info;
            EXPECT_EQ(values, (texts_t{info.getInfo(release_firmware), info.getInfo(release_sdr),
                                       info.getInfo(release_system)}));
            fs::current_path(package.root());
            fs::remove_all(package.root() / "out");
            fs::create_directory(package.root() / "out");
        }
    }
    EXPECT_GT(made, createdCount / 5);
    EXPECT_LT(made, createdCount);
}
