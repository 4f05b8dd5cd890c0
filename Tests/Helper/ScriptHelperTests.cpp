// Scripts run through the host runtime's utility suite, and the trimming of
// their results.
#include "Helper/ScriptHelper.h"

#include "AEGPSuites.h"
#include "Runtime/HostRuntime.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;
using Host::HostRuntime;
using Host::SuiteFailure;
using Event = Host::SuiteRegistry::Event;
using ScriptHelper::RunSriptAndGetStringResult;
using ScriptHelper::TrimStringWhiteSpaces;

struct Logged {
    Event event;
    std::string name;
    A_long version;
    bool operator==(const Host::SuiteRegistry::LogEntry& entry) const
    {
        return event == entry.event && name == entry.name && version == entry.version;
    }
};

class ScriptHelperTest : public ::testing::Test {
protected:
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

    void expectLog(const std::vector<Logged>& expected)
    {
        const auto log = host.suites().log();
        ASSERT_EQ(log.size(), expected.size());
        for (std::size_t i = 0; i < log.size(); ++i) {
            EXPECT_TRUE(expected[i] == log[i]) << "entry " << i << ": " << log[i].name;
        }
    }

    std::string run(const char* script = "app.project.numItems")
    {
        return RunSriptAndGetStringResult(host.basicSuite(), script);
    }

    HostRuntime host;
    std::vector<std::string> scripts;
};

TEST_F(ScriptHelperTest, ReturnsTheResultTextAsGivenAndReleasesTheSuitesInReverse)
{
    answer({A_Err_NONE, std::string(" 42 \n"), std::string("ignored")});
    EXPECT_EQ(run("app.project.numItems"), " 42 \n");
    EXPECT_EQ(scripts, std::vector<std::string>{"app.project.numItems"});
    expectLog({{Event::Acquired, kAEGPUtilitySuite, 11},
               {Event::Acquired, kAEGPMemorySuite, 1},
               {Event::Released, kAEGPMemorySuite, 1},
               {Event::Released, kAEGPUtilitySuite, 11}});
}

TEST_F(ScriptHelperTest, ScriptErrorsOnlyShowAsAMissingResult)
{
    // The status is not examined: what text there is comes back.
    answer({A_Err_GENERIC, std::string("partial"), std::string("SyntaxError")});
    EXPECT_EQ(run(), "partial");

    answer({A_Err_NONE, std::string(), std::nullopt});
    EXPECT_EQ(run(), "");

    answer({A_Err_GENERIC, std::nullopt, std::string("ReferenceError")});
    EXPECT_EQ(run(), "") << "a null result handle";

    host.setScriptHandler(nullptr);
    EXPECT_EQ(run(), "") << "a host without scripting";

    host.failures().fail(HostCall::ExecuteScript, A_Err_GENERIC, 0, 1);
    EXPECT_EQ(run(), "");

    answer({A_Err_NONE, std::string("locked out"), std::string("and this")});
    host.failures().fail(HostCall::LockMemHandle, A_Err_PARAMETER, 0, 1);
    EXPECT_EQ(run(), "") << "the result could not be locked";
}

TEST_F(ScriptHelperTest, AMissingSuiteThrowsAfterReleasingWhatWasTaken)
{
    answer({A_Err_NONE, std::string("never"), std::nullopt});
    host.failures().failSuite(kAEGPMemorySuite, 1);
    try {
        run();
        FAIL() << "no throw";
    } catch (int thrown) {
        EXPECT_EQ(thrown, A_Err_MISSING_SUITE);
    }
    expectLog({{Event::Acquired, kAEGPUtilitySuite, 11},
               {Event::Refused, kAEGPMemorySuite, 1},
               {Event::Released, kAEGPUtilitySuite, 11}});

    // Status 0 without a table is no suite either.
    host.failures().clear();
    host.suites().clearLog();
    host.failures().failSuite(kAEGPMemorySuite, 1, SuiteFailure::NullWithoutStatus);
    EXPECT_THROW(run(), int);
    expectLog({{Event::Acquired, kAEGPUtilitySuite, 11},
               {Event::Refused, kAEGPMemorySuite, 1},
               {Event::Released, kAEGPUtilitySuite, 11}});

    host.failures().clear();
    host.suites().clearLog();
    host.failures().failSuite(kAEGPUtilitySuite, 11);
    EXPECT_THROW(run(), int);
    expectLog({{Event::Refused, kAEGPUtilitySuite, 11}});
    EXPECT_TRUE(scripts.empty());
}

TEST(TrimStringWhiteSpacesTest, DropsOuterWhiteSpaceOnly)
{
    EXPECT_EQ(TrimStringWhiteSpaces(""), "");
    EXPECT_EQ(TrimStringWhiteSpaces(" \t\n\v\f\r"), "");
    EXPECT_EQ(TrimStringWhiteSpaces("\t a  b\nc \r\n"), "a  b\nc");
    EXPECT_EQ(TrimStringWhiteSpaces("x"), "x");
    // In the C locale, bytes above 0x7f are not white space (here a UTF-8
    // no-break space).
    EXPECT_EQ(TrimStringWhiteSpaces("\xc2\xa0x\xc2\xa0"), "\xc2\xa0x\xc2\xa0");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
