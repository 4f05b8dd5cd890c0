#pragma once

#include "Tools/Support/TestMedia.h"
#include "Tools/Support/ToolProcess.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// A test that runs the built quorvex program in a folder of its own, removed afterwards.
class ToolTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // In the test's folder: a path, the names of the files (hidden ones included; of `folder` if given), a file's
    // bytes, a picture.
    std::string path(const std::string& name) const { return mFolder + "/" + name; }
    std::set<std::string> files(const std::string& folder = {}) const;
    std::string contents(const std::string& name) const;
    PictureFile picture(const std::string& name) const { return TestMedia::readPicture(path(name)); }

    // The name `pattern` (printf's) gives `number`.
    static std::string numbered(const std::string& pattern, int number);
    // Writes 8-bit pictures `first` to `last` of a sequence; `sample` is given the picture's number first.
    void writeSequence(const std::string& pattern, int first, int last, int width, int height,
                       int channels, const std::function<double(int, int, int, int)>& sample) const;

    // Runs `quorvex ARGUMENTS` as given.
    static ToolResult run(const std::vector<std::string>& arguments,
                          const std::map<std::string, std::string>& environment = {});
    // Runs `quorvex ARGUMENTS --plugin <fake effect>`.
    static ToolResult runFake(std::vector<std::string> arguments,
                              const std::map<std::string, std::string>& environment = {});

    // Checks a run that must fail: its exit code, standard error of `lines` lines holding every one of `words`,
    // and the test's folder as it was `before` (temporary files included).
    void expectFailure(const ToolResult& result, int exitCode, const std::vector<std::string>& words,
                       const std::set<std::string>& before, int lines = 1) const;
    // Runs the program, with the fake effect unless `arguments` name a module, and checks it as above.
    void expectFailure(std::vector<std::string> arguments, int exitCode, const std::vector<std::string>& words,
                       const std::map<std::string, std::string>& environment = {}, int lines = 1) const;

    std::string mFolder;
};

// Prints a run's result when an assertion about it fails.
::testing::AssertionResult Succeeded(const ToolResult& result);

}  // namespace Halvane::Quorvex::Testing
