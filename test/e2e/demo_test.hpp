#pragma once

#include <cstdlib>

#include "harness/tool_test.hpp"

/// The package that script/demo shows, assembled in its own folder.
class demo_test : public tool_test {
protected:
    /// @param state of its simulated controller, as demo/assemble takes it
    void assemble(const std::string& state = "step=0", const std::string& name = "server") const {
        const std::string command = DEMO_FOLDER "/assemble " + programUnderTest() + " " +
                                    (package.root() / name).string() + " " + state;
        ASSERT_EQ(0, std::system(command.c_str()));
    }

    std::filesystem::path folder() const { return package.root() / "server"; }

    bool stateHolds(const std::string& line) const {
        return contentOf(folder() / "tool/varnflash.state").find(line + "\n") != std::string::npos;
    }
};
