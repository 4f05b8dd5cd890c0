// Suite access against the host runtime's basic suite, with failures armed.
#include "Helper/SuiteScoper.h"

#include "AEGPSuites.h"
#include "EffectSuites.h"
#include "Runtime/HostRuntime.h"
#include "SuiteLog.h"

#include <gtest/gtest.h>

#include <cstring>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostRuntime;
using Host::SuiteFailure;

class SuiteAccessTest : public ::testing::Test {
protected:
    void SetUp() override { std::strcpy(out_data.return_msg, "earlier message"); }

    void TearDown() override { EXPECT_EQ(host.suites().unbalancedReleases(), 0u); }

    bool showsError() const { return (out_data.out_flags & PF_OutFlag_DISPLAY_ERROR_MESSAGE) != 0; }

    HostRuntime host;
    PF_InData in_data = host.inData();
    PF_OutData out_data{};
};

TEST_F(SuiteAccessTest, ScopersReleaseInReverseOrderOfAcquisition)
{
    {
        SuiteScoper<PF_WorldSuite2> world(&in_data, kPFWorldSuite, 2);
        SuiteScoper<PF_HandleSuite1> handles(&in_data, kPFHandleSuite, 2, &out_data, "unused");
        EXPECT_NE(world.get(), nullptr);
        EXPECT_NE(handles->host_new_handle, nullptr);
        EXPECT_EQ(host.suites().outstanding(), 2u);
    }
    EXPECT_EQ(suiteLog(host.suites()), (std::vector<std::string>{"Acquired PF World Suite 2", "Acquired PF Handle Suite 2",
                                                   "Released PF Handle Suite 2", "Released PF World Suite 2"}));
    EXPECT_FALSE(showsError());
}

TEST_F(SuiteAccessTest, AFailedScoperThrows13AndShowsItsTextOnlyWithOutData)
{
    host.failures().failSuite(kPFWorldSuite, 2);

    EXPECT_THROW(SuiteScoper<PF_WorldSuite2>(&in_data, kPFWorldSuite, 2), int);
    EXPECT_FALSE(showsError());

    try {
        SuiteScoper<PF_WorldSuite2> scoper(&in_data, kPFWorldSuite, 2, &out_data, "no worlds today");
        FAIL() << "no throw";
    } catch (int thrown) {
        EXPECT_EQ(thrown, A_Err_MISSING_SUITE);
    }
    EXPECT_TRUE(showsError());
    EXPECT_STREQ(out_data.return_msg, "no worlds today");

    EXPECT_THROW(SuiteScoper<PF_WorldSuite2>(&in_data, kPFWorldSuite, 2, &out_data), int);
    EXPECT_STREQ(out_data.return_msg, "Not able to acquire AEFX Suite.");

    // The basic-suite form has no message to give.
    std::strcpy(out_data.return_msg, "untouched");
    EXPECT_THROW(SuiteScoper<PF_WorldSuite2>(host.basicSuite(), kPFWorldSuite, 2), int);
    EXPECT_STREQ(out_data.return_msg, "untouched");
    EXPECT_EQ(host.suites().outstanding(), 0u);
}

TEST_F(SuiteAccessTest, TheScoperTrustsTheStatusAndAcquireSuiteThePointer)
{
    host.failures().failSuite(kPFWorldSuite, 2, SuiteFailure::StatusWithSuite);
    EXPECT_THROW(SuiteScoper<PF_WorldSuite2>(&in_data, kPFWorldSuite, 2), int);
    // The host handed the table over anyway; this test is its owner now.
    ASSERT_EQ(host.suites().outstanding(kPFWorldSuite, 2), 1u);
    host.basicSuite()->ReleaseSuite(kPFWorldSuite, 2);

    void* suite = nullptr;
    EXPECT_EQ(AcquireSuite(&in_data, &out_data, kPFWorldSuite, 2, nullptr, &suite), PF_Err_NONE);
    EXPECT_NE(suite, nullptr);
    EXPECT_FALSE(showsError());
    EXPECT_EQ(ReleaseSuite(&in_data, &out_data, kPFWorldSuite, 2, nullptr), PF_Err_NONE);

    host.failures().failSuite(kPFHandleSuite, 2, SuiteFailure::NullWithoutStatus);
    suite = nullptr;
    EXPECT_EQ(AcquireSuite(&in_data, &out_data, kPFHandleSuite, 2, nullptr, &suite),
              PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_STREQ(out_data.return_msg, "Not able to acquire AEFX Suite-PF Handle Suite-2");
    // Status 0 with no table is a missing suite to the scoper too, whose
    // users call through the table.
    EXPECT_THROW(SuiteScoper<PF_HandleSuite1>(&in_data, kPFHandleSuite, 2), int);
    EXPECT_EQ(host.suites().outstanding(), 0u);
}

TEST_F(SuiteAccessTest, StatusFormsReportAMissingBasicSuite)
{
    in_data.pica_basicP = nullptr;
    void* suite = nullptr;
    struct Case {
        bool acquire;
        const char* given;
        const char* shown;
    };
    for (const Case& c : {Case{true, nullptr, "Not able to acquire AEFX Suite-PF ANSI Suite-1"},
                          Case{true, "custom", "custom"}, Case{false, nullptr, "Not able to release AEFX Suite."},
                          Case{false, "gone", "gone"}}) {
        out_data.out_flags = 0;
        EXPECT_EQ(c.acquire ? AcquireSuite(&in_data, &out_data, "PF ANSI Suite", 1, c.given, &suite)
                            : ReleaseSuite(&in_data, &out_data, "PF ANSI Suite", 1, c.given),
                  PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_TRUE(showsError());
        EXPECT_STREQ(out_data.return_msg, c.shown);
    }
    std::strcpy(out_data.return_msg, "before");
    EXPECT_EQ(ReleaseDrawbotSuites(&in_data, &out_data), PF_Err_NONE);
    EXPECT_STREQ(out_data.return_msg, "Not able to release AEFX Suite.");
}

TEST_F(SuiteAccessTest, DrawbotSuitesComeAndGoInTableOrder)
{
    DRAWBOT_Suites suites{};
    ASSERT_EQ(AcquireDrawbotSuites(&in_data, &out_data, &suites), PF_Err_NONE);
    EXPECT_NE(suites.drawbot_suiteP, nullptr);
    EXPECT_NE(suites.path_suiteP, nullptr);
    EXPECT_EQ(ReleaseDrawbotSuites(&in_data, &out_data), PF_Err_NONE);

    // Released in the same order, not reversed.
    const std::vector<std::string> drawbot = {"DRAWBOT Draw Suite 1", "DRAWBOT Supplier Suite 1",
                                              "DRAWBOT Surface Suite 2", "DRAWBOT Path Suite 1"};
    std::vector<std::string> expected;
    for (const char* event : {"Acquired ", "Released "}) {
        for (const std::string& suite : drawbot) {
            expected.push_back(event + suite);
        }
    }
    EXPECT_EQ(suiteLog(host.suites()), expected);
}

TEST_F(SuiteAccessTest, DrawbotAcquisitionStopsAtTheFirstFailure)
{
    host.failures().failSuite("DRAWBOT Surface Suite", 2);
    DRAWBOT_Suites suites{};
    EXPECT_EQ(AcquireDrawbotSuites(&in_data, &out_data, &suites), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_STREQ(out_data.return_msg, "Not able to acquire AEFX Suite-DRAWBOT Surface Suite-2");
    EXPECT_NE(suites.supplier_suiteP, nullptr);
    EXPECT_EQ(suites.surface_suiteP, nullptr);
    // The two acquired before the failure stay acquired.
    EXPECT_EQ(host.suites().outstanding(), 2u);
    host.basicSuite()->ReleaseSuite("DRAWBOT Draw Suite", 1);
    host.basicSuite()->ReleaseSuite("DRAWBOT Supplier Suite", 1);

    EXPECT_EQ(AcquireDrawbotSuites(&in_data, &out_data, nullptr), PF_Err_UNRECOGNIZED_PARAM_TYPE);
    EXPECT_STREQ(out_data.return_msg, "NULL suite pointer passed to AEFX_AcquireDrawbotSuites");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
