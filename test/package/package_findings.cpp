#include "package/package_findings.hpp"

#include <sys/stat.h>

namespace fs = std::filesystem;

defect_t with(const std::string& name, const std::string& text) {
    return [name, text](const package_folder& package) { package.write(name, text); };
}

defect_t without(const std::string& name) {
    return [name](const package_folder& package) { package.remove(name); };
}

defect_t withMode(const std::string& name, unsigned permissions) {
    return [name, permissions](const package_folder& package) {
        fs::permissions(package.root() / name, fs::perms(permissions));
    };
}

defect_t asFolder(const std::string& name) {
    return [name](const package_folder& package) {
        package.remove(name);
        fs::create_directory(package.root() / name);
    };
}

defect_t asLink(const std::string& name) {
    return [name](const package_folder& package) {
        fs::rename(package.root() / name, package.root() / "elsewhere");
        fs::create_symlink(package.root() / "elsewhere", package.root() / name);
    };
}

defect_t asFifo(const std::string& name) {
    return [name](const package_folder& package) {
        package.remove(name);
        mkfifo((package.root() / name).c_str(), 0644);
    };
}

void expectFindings(const package_script& script, const std::vector<row_t>& rows) {
    for (const row_t& row : rows) {
        const package_folder spoilt;
        addStandInTool(spoilt);
        row.spoil(spoilt);
        EXPECT_EQ((outcome_t{1, row.output, ""}), script.run({"check", "."}, spoilt.root()));
    }
}

void expectExplained(const std::string& finding) {
    static const std::string text = contentOf(PACKAGE_MANUAL);
    EXPECT_NE(std::string::npos, text.find(finding)) << finding;
}
