#include "Helper/ScriptHelper.h"

#include "AEGPSuites.h"
#include "Runtime/HostRuntime.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;
using Host::HostRuntime;
using Host::SuiteFailure;
using Lines = std::vector<std::string>;
using ScriptHelper::RunSriptAndGetStringResult;
using ScriptHelper::TrimStringWhiteSpaces;

// The host's log of suites, an entry a line: "Acquired PF World Suite 2".
Lines suiteLog(const Host::SuiteRegistry& suites)
{
    const char* const events[] = {"Acquired ", "Released ", "Refused "};  // in the order of Event
    Lines lines;
    for (const auto& entry : suites.log()) {
        lines.push_back(events[static_cast<int>(entry.event)] + entry.name + " " + std::to_string(entry.version));
    }
    return lines;
}

class ScriptHelperTest : public ::testing::Test {
protected:
    void SetUp() override { host.suites().startLog(); }

    void TearDown() override
    {
        EXPECT_EQ(host.suites().outstanding(), 0u);
        EXPECT_EQ(host.suites().unbalancedReleases(), 0u);
        EXPECT_EQ(host.handles().openHandles(), 0u) << "a script's text was not freed";
        EXPECT_EQ(host.handles().misuses(), 0u);
    }

    void answer(HostRuntime::ScriptAnswer scripted)
    {
        host.setScriptHandler([this, scripted](const std::string& script) {
            scripts.push_back(script);
            return scripted;
        });
    }

    std::string run() { return RunSriptAndGetStringResult(host.basicSuite(), "app.project.numItems"); }

    HostRuntime host;
    Lines scripts;
};

TEST_F(ScriptHelperTest, ReturnsWhatTextThereIsAsGivenAndReleasesTheSuitesInReverse)
{
    answer({A_Err_NONE, std::string(" 42 \n"), std::string("ignored")});
    EXPECT_EQ(run(), " 42 \n");
    EXPECT_EQ(scripts, Lines{"app.project.numItems"});
    EXPECT_EQ(suiteLog(host.suites()),
              (Lines{"Acquired " kAEGPUtilitySuite " 11", "Acquired " kAEGPMemorySuite " 1",
                     "Released " kAEGPMemorySuite " 1", "Released " kAEGPUtilitySuite " 11"}));

    // The status is not examined: script errors only show as a missing result.
    answer({A_Err_GENERIC, std::string("partial"), std::string("SyntaxError")});
    EXPECT_EQ(run(), "partial");

    answer({A_Err_GENERIC, std::nullopt, std::string("ReferenceError")});
    EXPECT_EQ(run(), "") << "a null result handle";

    answer({A_Err_NONE, std::string("locked out"), std::string("and this")});
    host.failures().fail(HostCall::LockMemHandle, A_Err_PARAMETER, 0, 1);
    EXPECT_EQ(run(), "") << "the result could not be locked";
}

TEST_F(ScriptHelperTest, AMissingSuiteThrowsAfterReleasingWhatWasTakenAndTrimmingDropsOuterWhiteSpaceOnly)
{
    answer({A_Err_NONE, std::string("never"), std::nullopt});
    // Status 0 without a table is no suite either.
    host.failures().failSuite(kAEGPMemorySuite, 1, SuiteFailure::NullWithoutStatus);
    EXPECT_THAT([&] { run(); }, ::testing::Throws<int>(A_Err_MISSING_SUITE));
    EXPECT_EQ(suiteLog(host.suites()), (Lines{"Acquired " kAEGPUtilitySuite " 11", "Refused " kAEGPMemorySuite " 1",
                                             "Released " kAEGPUtilitySuite " 11"}));
    EXPECT_TRUE(scripts.empty());

    EXPECT_EQ(TrimStringWhiteSpaces(" \t\n\v\f\r"), "");
    EXPECT_EQ(TrimStringWhiteSpaces("\t a  b\nc \r\n"), "a  b\nc");
    // In the C locale, bytes above 0x7f are not white space (here a UTF-8 no-break space).
    EXPECT_EQ(TrimStringWhiteSpaces("\xc2\xa0x\xc2\xa0"), "\xc2\xa0x\xc2\xa0");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
