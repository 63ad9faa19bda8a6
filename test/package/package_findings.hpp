#pragma once

#include <functional>
#include <string>
#include <vector>

#include "package/package_test.hpp"

using defect_t = std::function<void(const package_folder&)>;

/// A defect of a package, and what is said about it.
struct row_t {
    std::string inManual;  ///< how the manual page names the finding
    defect_t spoil;
    std::string output;
};

defect_t with(const std::string& name, const std::string& text);
defect_t without(const std::string& name);
defect_t withMode(const std::string& name, unsigned permissions);
defect_t asFolder(const std::string& name);
defect_t asLink(const std::string& name);
defect_t asFifo(const std::string& name);

/// Checks a package for each defect that has nothing else wrong with it.
void expectFindings(const package_script& script, const std::vector<row_t>& rows);

/// The manual page explains this.
void expectExplained(const std::string& finding);
