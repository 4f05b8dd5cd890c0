#include "Helper/SuiteScoper.h"

#include "EffectSuites.h"
#include "Runtime/HostRuntime.h"

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

TEST_F(SuiteAccessTest, AFailedScoperThrowsAndShowsItsTextOnlyWithOutData)
{
    host.failures().failSuite(kPFWorldSuite, 2);
    EXPECT_THROW(SuiteScoper<PF_WorldSuite2>(&in_data, kPFWorldSuite, 2), int);
    EXPECT_THROW(SuiteScoper<PF_WorldSuite2>(host.basicSuite(), kPFWorldSuite, 2), int);
    EXPECT_FALSE(showsError());
    EXPECT_STREQ(out_data.return_msg, "earlier message");

    EXPECT_THROW(SuiteScoper<PF_WorldSuite2>(&in_data, kPFWorldSuite, 2, &out_data, "no worlds today"), int);
    EXPECT_TRUE(showsError());
    EXPECT_STREQ(out_data.return_msg, "no worlds today");
    EXPECT_THROW(SuiteScoper<PF_WorldSuite2>(&in_data, kPFWorldSuite, 2, &out_data), int);
    EXPECT_STREQ(out_data.return_msg, "Not able to acquire AEFX Suite.");

    // Status 0 with no table is a missing suite to the scoper too, whose
    // users call through the table.
    host.failures().failSuite(kPFHandleSuite, 2, SuiteFailure::NullWithoutStatus);
    EXPECT_THROW(SuiteScoper<PF_HandleSuite1>(&in_data, kPFHandleSuite, 2), int);
    // An error status with a table is refused too; the table is this test's now.
    host.failures().clear();
    host.failures().failSuite(kPFWorldSuite, 2, SuiteFailure::StatusWithSuite);
    EXPECT_THROW(SuiteScoper<PF_WorldSuite2>(&in_data, kPFWorldSuite, 2), int);
    ASSERT_EQ(host.suites().outstanding(kPFWorldSuite, 2), 1u);
    host.basicSuite()->ReleaseSuite(kPFWorldSuite, 2);
}

// The status forms, which the effect does not use, through the drawbot suites built on them.
TEST_F(SuiteAccessTest, DrawbotSuitesComeAndGoAndAcquisitionStopsAtTheFirstFailureWithItsName)
{
    DRAWBOT_Suites suites{};
    ASSERT_EQ(AcquireDrawbotSuites(&in_data, &out_data, &suites), PF_Err_NONE);
    EXPECT_TRUE(suites.drawbot_suiteP && suites.path_suiteP);
    EXPECT_EQ(host.suites().outstanding(), 4u);
    EXPECT_EQ(ReleaseDrawbotSuites(&in_data, &out_data), PF_Err_NONE);
    EXPECT_EQ(host.suites().outstanding(), 0u);
    EXPECT_FALSE(showsError());

    // Status 0 without a table fails too: the pointer decides.
    host.failures().failSuite("DRAWBOT Surface Suite", 2, SuiteFailure::NullWithoutStatus);
    suites = {};
    EXPECT_EQ(AcquireDrawbotSuites(&in_data, &out_data, &suites), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_TRUE(showsError());
    EXPECT_STREQ(out_data.return_msg, "Not able to acquire AEFX Suite-DRAWBOT Surface Suite-2");
    EXPECT_NE(suites.supplier_suiteP, nullptr);
    EXPECT_EQ(suites.surface_suiteP, nullptr);
    // The two acquired before the failure stay acquired.
    EXPECT_EQ(host.suites().outstanding(), 2u);
    host.basicSuite()->ReleaseSuite("DRAWBOT Draw Suite", 1);
    host.basicSuite()->ReleaseSuite("DRAWBOT Supplier Suite", 1);
    void* suite = nullptr;
    ASSERT_EQ(AcquireSuite(&in_data, &out_data, kPFWorldSuite, 2, nullptr, &suite), PF_Err_NONE);
    EXPECT_EQ(ReleaseSuite(&in_data, &out_data, kPFWorldSuite, 2, nullptr), PF_Err_NONE);
    EXPECT_EQ(host.suites().outstanding(), 0u);

    in_data.pica_basicP = nullptr;
    EXPECT_EQ(AcquireSuite(&in_data, &out_data, "PF ANSI Suite", 1, "custom", &suite), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_STREQ(out_data.return_msg, "custom");
    EXPECT_EQ(ReleaseSuite(&in_data, &out_data, "PF ANSI Suite", 1, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_STREQ(out_data.return_msg, "Not able to release AEFX Suite.");
    EXPECT_EQ(AcquireDrawbotSuites(&in_data, &out_data, nullptr), PF_Err_UNRECOGNIZED_PARAM_TYPE);
    EXPECT_STREQ(out_data.return_msg, "NULL suite pointer passed to AEFX_AcquireDrawbotSuites");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
