#include "Tools/Support/ToolTest.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace Halvane::Quorvex::Testing {

void ToolTest::SetUp()
{
    char name[] = "/tmp/quorvex-tool-test-XXXXXX";
    ASSERT_NE(::mkdtemp(name), nullptr);
    mFolder = name;
}

void ToolTest::TearDown()
{
    std::error_code error;
    std::filesystem::remove_all(mFolder, error);
}

std::set<std::string> ToolTest::files(const std::string& folder) const
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? mFolder : folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

std::string ToolTest::contents(const std::string& name) const
{
    std::ifstream file(path(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string ToolTest::numbered(const std::string& pattern, int number)
{
    char name[256];
    std::snprintf(name, sizeof(name), pattern.c_str(), number);
    return name;
}

void ToolTest::writeSequence(const std::string& pattern, int first, int last, int width, int height,
                             int channels, const std::function<double(int, int, int, int)>& sample) const
{
    for (int number = first; number <= last; ++number) {
        TestMedia::writePicture(path(numbered(pattern, number)), width, height, channels, OIIO::TypeDesc::UINT8,
                                [&](int x, int y, int c) { return sample(number, x, y, c); });
    }
}

ToolResult ToolTest::run(const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment)
{
    return ToolProcess(QUORVEX_TOOL_PATH, arguments, environment, false).wait();
}

ToolResult ToolTest::runFake(std::vector<std::string> arguments,
                             const std::map<std::string, std::string>& environment)
{
    arguments.insert(arguments.end(), {"--plugin", QUORVEX_FAKE_EFFECT_PATH});
    return run(arguments, environment);
}

void ToolTest::expectFailure(const ToolResult& result, int exitCode, const std::vector<std::string>& words,
                             const std::set<std::string>& before, int lines) const
{
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
    for (const std::string& word : words) {
        EXPECT_NE(result.err.find(word), std::string::npos) << "no '" << word << "' in: " << result.err;
    }
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), lines) << result.err;
    EXPECT_EQ(files(), before) << "a failed run must leave nothing behind";
}

void ToolTest::expectFailure(std::vector<std::string> arguments, int exitCode, const std::vector<std::string>& words,
                             const std::map<std::string, std::string>& environment, int lines) const
{
    const std::set<std::string> before = files();
    if (std::find(arguments.begin(), arguments.end(), "--plugin") == arguments.end()) {
        arguments.insert(arguments.end(), {"--plugin", QUORVEX_FAKE_EFFECT_PATH});
    }
    expectFailure(run(arguments, environment), exitCode, words, before, lines);
}

::testing::AssertionResult Succeeded(const ToolResult& result)
{
    if (result.exitCode == 0) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "exit code " << result.exitCode << "\nstderr: "
                                         << result.err << "\nstdout: " << result.out;
}

}  // namespace Halvane::Quorvex::Testing
