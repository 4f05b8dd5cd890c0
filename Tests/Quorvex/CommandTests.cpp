// The effect's identity and the commands it answers, through the built module.
#include "Support/LoadedModuleTest.h"

#include "AEGPSuites.h"
#include "EffectSuites.h"

#include <EGL/egl.h>

#include <cstring>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;

using CommandTest = LoadedModuleTest;

TEST_F(CommandTest, CommandsOutsideTheTableAndABareSetdownReturnZeroAndTouchNothing)
{
    host.suites().startLog();
    PF_OutData untouched;
    std::memset(&untouched, 0x5A, sizeof(untouched));
    const PF_Cmd commands[] = {PF_Cmd_GLOBAL_SETDOWN, PF_Cmd_UNUSED_0, PF_Cmd_SEQUENCE_SETUP, PF_Cmd_SEQUENCE_SETDOWN,
                               PF_Cmd_FRAME_SETUP, PF_Cmd_RENDER, PF_Cmd_FRAME_SETDOWN, PF_Cmd_EVENT,
                               PF_Cmd_USER_CHANGED_PARAM, PF_Cmd_COMPLETELY_GENERAL, PF_Cmd_ARBITRARY_CALLBACK,
                               PF_Cmd_NUM_CMDS, 1000, -1};
    // Records filled with a pattern show any byte the effect writes.
    for (PF_Cmd cmd : commands) {
        PF_OutData out_data = untouched;
        PF_InData in_data = host.inData();
        EXPECT_EQ(module.call(cmd, &in_data, &out_data, nullptr, nullptr, nullptr), PF_Err_NONE) << "command " << cmd;
        EXPECT_EQ(std::memcmp(&out_data, &untouched, sizeof(out_data)), 0) << "command " << cmd;
    }
    EXPECT_TRUE(host.suites().log().empty());
}

TEST_F(CommandTest, AboutNeedsNoSetupAndAMissingSuiteAnswers516WithoutAMessage)
{
    std::string text;
    host.suites().startLog();
    ASSERT_EQ(session.about(text), PF_Err_NONE);
    EXPECT_EQ(text, "Quorvex v1.0\rQuorvex");
    // Only the ANSI suite, acquired and released.
    const auto log = host.suites().log();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0].name + std::to_string(log[0].version), std::string(kPFANSISuite) + "1");

    host.failures().failSuite(kPFANSISuite, 1);
    EXPECT_EQ(session.about(text), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(session.outData().out_flags & PF_OutFlag_DISPLAY_ERROR_MESSAGE, 0);
    // Set-up has declared itself before the suite fails, and gets no further.
    host.failures().failSuite(kAEGPUtilitySuite, 13);
    EXPECT_EQ(session.globalSetup(), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(session.outData().my_version, 0x80001u);
    EXPECT_EQ(host.failures().calls(HostCall::RegisterWithAEGP), 0);
    EXPECT_TRUE(session.errorMessage().empty());
    EXPECT_EQ(session.globalSetdown(), PF_Err_NONE);
}

TEST_F(CommandTest, SetupDeclaresItselfAndRegistersEvenIfRefusedAndSetdownDisposesHandles)
{
    PF_OutData out_data;
    std::memset(&out_data, 0, sizeof(out_data));
    out_data.out_flags = PF_OutFlag_PIX_INDEPENDENT;  // ORed into, kept
    out_data.out_flags2 = PF_OutFlag2_I_AM_THREADSAFE;  // assigned over
    PF_InData in_data = host.inData();
    ::testing::internal::CaptureStderr();
    ASSERT_EQ(module.call(PF_Cmd_GLOBAL_SETUP, &in_data, &out_data, nullptr, nullptr, nullptr), PF_Err_NONE);
    EXPECT_EQ(out_data.my_version, PF_VERSION(1, 0, 0, PF_Stage_DEVELOP, 1));
    EXPECT_EQ(out_data.out_flags, 0x2008002 | PF_OutFlag_PIX_INDEPENDENT);
    EXPECT_EQ(out_data.out_flags2, 0x1400);
    EXPECT_EQ(host.pluginName(), "Quorvex");
    EXPECT_NE(host.pluginId(), 0);
    // Set-down disposes the handles it is given and leaves the global data to the host.
    in_data.global_data = out_data.global_data = host.handles().newHandle(16);
    in_data.sequence_data = out_data.sequence_data = host.handles().newHandle(16);
    ASSERT_EQ(module.call(PF_Cmd_GLOBAL_SETDOWN, &in_data, &out_data, nullptr, nullptr, nullptr), PF_Err_NONE);
    EXPECT_EQ(host.handles().openHandles(), 0u);
    EXPECT_EQ(out_data.sequence_data, nullptr);
    EXPECT_EQ(out_data.global_data, in_data.global_data);

    host.failures().fail(HostCall::RegisterWithAEGP, A_Err_GENERIC);
    EXPECT_EQ(session.globalSetup(), PF_Err_NONE);
    EXPECT_EQ(host.failures().calls(HostCall::RegisterWithAEGP), 2);
    EXPECT_EQ(session.globalSetdown(), PF_Err_NONE);
    // This host has no context: set-down leaves none current, not the effect's dead one.
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

// The two parameters as a host reads them, and what a refused add does.
TEST_F(CommandTest, ParamsSetupAddsGlitchTypeThenSpeedAndStopsAtAFailingAdd)
{
    ASSERT_EQ(session.paramsSetup(), PF_Err_NONE);
    EXPECT_EQ(session.outData().num_params, 3);
    ASSERT_EQ(host.parameters().size(), 2u);
    // Saved projects find a parameter by its id.
    const PF_ParamDef& glitch = host.parameter(1).definition();
    EXPECT_EQ(host.parameter(1).name(), "Glitch Type");
    EXPECT_EQ(host.parameter(1).choices(), (std::vector<std::string>{"Block Glitch", "Bad TV"}));
    EXPECT_EQ(std::vector<int>({glitch.param_type, glitch.uu.id, glitch.u.pd.value, glitch.u.pd.dephault}),
              std::vector<int>({PF_Param_POPUP, 1, 1, 1}));
    const PF_ParamDef& speed = host.parameter(2).definition();
    const PF_FloatSliderDef& slider = speed.u.fs_d;
    EXPECT_EQ(host.parameter(2).name(), "Speed");
    const int flags = static_cast<int>(slider.display_flags | slider.fs_flags | speed.flags | speed.ui_flags);
    EXPECT_EQ(std::vector<int>({speed.param_type, speed.uu.id, slider.precision, flags}),
              std::vector<int>({PF_Param_FLOAT_SLIDER, 2, PF_Precision_TENTHS, 0}));
    EXPECT_EQ(std::vector<double>({slider.value, slider.dephault, slider.valid_min, slider.slider_min,
                                   slider.valid_max, slider.slider_max, slider.curve_tolerance}),
              std::vector<double>({1.0, 1.0, 0.0, 0.0, 3.0, 3.0, 0.05f}));

    host.failures().fail(HostCall::AddParam, PF_Err_OUT_OF_MEMORY, 1, 1);
    EXPECT_EQ(session.paramsSetup(), PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(host.parameters().size(), 1u) << "an add after the failing one";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
