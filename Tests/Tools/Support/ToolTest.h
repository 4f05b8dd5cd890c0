#pragma once

#include "Tools/Support/ToolProcess.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// A test that runs the built quorvex program in a folder of its own, which
// is removed afterwards.
class ToolTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // A path inside the test's folder.
    std::string path(const std::string& name) const;
    // The names of the files in the test's folder (hidden ones included).
    std::set<std::string> files() const;
    // The lines of a text file in the test's folder.
    std::vector<std::string> lines(const std::string& name) const;

    // Runs `quorvex ARGUMENTS` as given.
    static ToolResult run(const std::vector<std::string>& arguments,
                          const std::map<std::string, std::string>& environment = {},
                          bool errorIsTerminal = false);
    // Runs `quorvex ARGUMENTS --plugin <fake effect>`.
    static ToolResult runFake(std::vector<std::string> arguments,
                              const std::map<std::string, std::string>& environment = {},
                              bool errorIsTerminal = false);

    std::string mFolder;
};

// Prints a run's result when an assertion about it fails.
::testing::AssertionResult Succeeded(const ToolResult& result);

}  // namespace Halvane::Quorvex::Testing
