// The two parameters as a host reads them, and what a refused add does.
#include "Support/LoadedModuleTest.h"

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;

using ParamsSetupTest = LoadedModuleTest;

TEST_F(ParamsSetupTest, AddsGlitchTypeThenSpeed)
{
    ASSERT_EQ(session.paramsSetup(), PF_Err_NONE);
    EXPECT_EQ(session.outData().num_params, 3);
    ASSERT_EQ(host.parameters().size(), 2u);

    const PF_ParamDef& glitch = host.parameter(1).definition();
    EXPECT_EQ(host.parameter(1).name(), "Glitch Type");
    EXPECT_EQ(glitch.param_type, PF_Param_POPUP);
    EXPECT_EQ(glitch.uu.id, 1);
    EXPECT_EQ(host.parameter(1).choices(), (std::vector<std::string>{"Block Glitch", "Bad TV"}));
    EXPECT_EQ(glitch.u.pd.num_choices, 2);
    EXPECT_EQ(glitch.u.pd.value, 1);
    EXPECT_EQ(glitch.u.pd.dephault, 1);

    const PF_ParamDef& speed = host.parameter(2).definition();
    const PF_FloatSliderDef& slider = speed.u.fs_d;
    EXPECT_EQ(host.parameter(2).name(), "Speed");
    EXPECT_EQ(speed.param_type, PF_Param_FLOAT_SLIDER);
    EXPECT_EQ(speed.uu.id, 2);
    EXPECT_EQ(slider.value, 1.0);
    EXPECT_EQ(slider.dephault, 1.0f);
    EXPECT_EQ(slider.valid_min, 0.0f);
    EXPECT_EQ(slider.slider_min, 0.0f);
    EXPECT_EQ(slider.valid_max, 3.0f);
    EXPECT_EQ(slider.slider_max, 3.0f);
    EXPECT_EQ(slider.precision, PF_Precision_TENTHS);
    EXPECT_EQ(slider.curve_tolerance, 0.05f);
    EXPECT_EQ(slider.display_flags | slider.fs_flags | speed.flags | speed.ui_flags, 0);
}

TEST_F(ParamsSetupTest, AFailingAddReturnsItsStatusAndAddsNoMore)
{
    host.failures().fail(HostCall::AddParam, PF_Err_INTERNAL_STRUCT_DAMAGED, 0, 1);
    EXPECT_EQ(session.paramsSetup(), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_TRUE(host.parameters().empty());
    EXPECT_EQ(host.failures().calls(HostCall::AddParam), 1);

    host.failures().fail(HostCall::AddParam, PF_Err_OUT_OF_MEMORY, 1, 1);
    EXPECT_EQ(session.paramsSetup(), PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(host.parameters().size(), 1u);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
