#include "Tools/Support/ToolTest.h"

#include <cstdlib>
#include <filesystem>

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

std::string ToolTest::path(const std::string& name) const
{
    return mFolder + "/" + name;
}

std::set<std::string> ToolTest::files() const
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(mFolder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

ToolResult ToolTest::runFake(std::vector<std::string> arguments,
                             const std::map<std::string, std::string>& environment,
                             bool errorIsTerminal) const
{
    arguments.push_back("--plugin");
    arguments.push_back(QUORVEX_FAKE_EFFECT_PATH);
    ToolProcess::Options options;
    options.environment = environment;
    options.errorIsTerminal = errorIsTerminal;
    return ToolProcess::run(arguments, options);
}

ToolResult ToolTest::run(const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment) const
{
    ToolProcess::Options options;
    options.environment = environment;
    return ToolProcess::run(arguments, options);
}

::testing::AssertionResult Succeeded(const ToolResult& result)
{
    if (result.exitCode == 0) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "exit code " << result.exitCode << "\nstderr: " << result.err
           << "\nstdout: " << result.out;
}

}  // namespace Halvane::Quorvex::Testing
