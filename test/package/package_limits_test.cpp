#include "package/package_test.hpp"

namespace {

/// What is good or not is a matter of what the tool does once its menu is there.
class package_limits_test : public package_test {
protected:
    void nameImage(const std::string& name) const {
        package.write(name, "image\n");
        package.write("releasefile-information.txt",
                      "VARN_RELEASE=2.41\nSDR_RELEASE=3.07\nSYSTEM=RX\nIMAGE_NAME=" + name + "\n");
    }
};

constexpr int emergencyFlash = 4;

}  // namespace

TEST_F(package_limits_test, TakesAnImageNameThatIsShortEnoughForEachOperation) {
    const std::string longest(222, 'i');
    nameImage(longest);
    EXPECT_EQ(0, check().status);
    startMenu();
    choose(emergencyFlash);
    session->press("\n");
    awaitMenu("4");
    EXPECT_EQ("./varnflash ../" + longest + " /emerg /logDebug", package.commandLines().back());
}

TEST_F(package_limits_test, RefusesAnImageNameThatIsTooLongForAnOperation) {
    nameImage(std::string(223, 'i'));
    EXPECT_EQ(1, check().status);
    startMenu();
    choose(emergencyFlash);
    session->awaitScreen("[WARN] Command cannot be executed properly");
}

// What is missed is what the user of the menu would miss.
TEST_F(package_limits_test, MissesTheDocumentsThatTheMenusMiss) {
    for (const char* document :
         {"readme.txt", "eula_en.txt", "ThirdPartyLicenseReadmeFlashtools.txt",
          "ThirdPartyLicenseReadme_MORV_API.txt", "ThirdPartyLicenseReadmeFirmware.txt",
          "CopyrightsCentOS", "CopyrightsDebian"}) {
        package.remove(document);
    }
    const std::string warning = "[WARN] Text file is not present ../";
    std::string missed;
    const auto tryDocument = [&](int number) {
        choose(number);
        session->awaitScreen(warning);
        const std::string text = session->screen().text();
        const std::size_t start = text.rfind(warning) + warning.size();
        missed +=
            text.substr(start, text.find('\n', start) - start) + ": is missing; put it there\n";
        session->press("\n");
        awaitMenu(std::to_string(number));
    };
    startMenu();
    tryDocument(5);
    choose(6);
    session->awaitScreen("#LEGAL");
    for (const int number : {1, 2, 3, 4, 5}) {
        tryDocument(number);
    }
    EXPECT_EQ(missed, check().output);
}
