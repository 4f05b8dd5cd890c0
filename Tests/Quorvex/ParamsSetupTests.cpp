// The two parameters, compared field by field and byte by byte.
#include "Support/LoadedModuleTest.h"

#include <cstring>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;

class ParamsSetupTest : public LoadedModuleTest {};

uint32_t Bits(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

// What the effect must hand over: a record cleared to zero bytes with only
// the named fields set. The popup's text pointer is the host's copy.
PF_ParamDef ExpectedGlitchType(const char* names)
{
    PF_ParamDef def;
    std::memset(&def, 0, sizeof(def));
    def.uu.id = 1;
    def.param_type = PF_Param_POPUP;
    std::strcpy(def.name, "Glitch Type");
    def.u.pd.value = 1;
    def.u.pd.dephault = 1;
    def.u.pd.num_choices = 2;
    def.u.pd.u.namesptr = names;
    return def;
}

PF_ParamDef ExpectedSpeed()
{
    PF_ParamDef def;
    std::memset(&def, 0, sizeof(def));
    def.uu.id = 2;
    def.param_type = PF_Param_FLOAT_SLIDER;
    std::strcpy(def.name, "Speed");
    def.u.fs_d.value = 1.0;
    def.u.fs_d.dephault = 1.0f;
    def.u.fs_d.valid_min = 0.0f;
    def.u.fs_d.valid_max = 3.0f;
    def.u.fs_d.slider_min = 0.0f;
    def.u.fs_d.slider_max = 3.0f;
    def.u.fs_d.precision = PF_Precision_TENTHS;
    def.u.fs_d.curve_tolerance = 0.05f;
    return def;
}

TEST_F(ParamsSetupTest, AddsGlitchTypeThenSpeedWithEveryOtherByteZero)
{
    ASSERT_EQ(session.paramsSetup(), PF_Err_NONE);
    EXPECT_EQ(session.outData().num_params, 3);
    ASSERT_EQ(host.parameters().size(), 2u);

    const PF_ParamDef& glitch = host.parameter(1).definition();
    EXPECT_EQ(host.parameter(1).choices(), (std::vector<std::string>{"Block Glitch", "Bad TV"}));
    const PF_ParamDef expectedGlitch = ExpectedGlitchType(glitch.u.pd.u.namesptr);
    EXPECT_EQ(std::memcmp(&glitch, &expectedGlitch, sizeof(PF_ParamDef)), 0);

    const PF_ParamDef& speed = host.parameter(2).definition();
    EXPECT_EQ(Bits(speed.u.fs_d.curve_tolerance), 0x3D4CCCCDu);
    EXPECT_EQ(speed.u.fs_d.value, 1.0);
    const PF_ParamDef expectedSpeed = ExpectedSpeed();
    EXPECT_EQ(std::memcmp(&speed, &expectedSpeed, sizeof(PF_ParamDef)), 0);
}

TEST_F(ParamsSetupTest, AFailingFirstAddReturnsItsStatusAndAddsNoMore)
{
    host.failures().fail(HostCall::AddParam, PF_Err_INTERNAL_STRUCT_DAMAGED, 0, 1);
    EXPECT_EQ(session.paramsSetup(), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(session.outData().num_params, 3);
    EXPECT_TRUE(host.parameters().empty());
    EXPECT_EQ(host.failures().calls(HostCall::AddParam), 1);
}

TEST_F(ParamsSetupTest, AFailingSecondAddReturnsItsStatus)
{
    host.failures().fail(HostCall::AddParam, PF_Err_OUT_OF_MEMORY, 1, 1);
    EXPECT_EQ(session.paramsSetup(), PF_Err_OUT_OF_MEMORY);
    ASSERT_EQ(host.parameters().size(), 1u);
    EXPECT_EQ(host.parameter(1).name(), "Glitch Type");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
