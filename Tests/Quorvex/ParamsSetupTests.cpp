// The two parameters as a host reads them, and what a refused add does.
#include "Support/LoadedModuleTest.h"

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;

using ParamsSetupTest = LoadedModuleTest;

TEST_F(ParamsSetupTest, AddsGlitchTypeThenSpeedAndStopsAtAFailingAdd)
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
