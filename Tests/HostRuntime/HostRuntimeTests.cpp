// The substitute host: what effects and tests rely on it to do.
#include "Runtime/HostError.h"
#include "Runtime/HostRuntime.h"
#include "Runtime/PluginModule.h"
#include "Runtime/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

namespace Halvane::Quorvex::Testing {
namespace {

using namespace Host;
using ::testing::AllOf;
using ::testing::HasSubstr;

// What keyframed renders cannot show: a value before the first keyframe, and names the effect may free.
TEST(ParameterTrackTest, TheFirstKeyframeHoldsBeforeItAndPopupNamesAreCopied)
{
    PF_ParamDef sliderDef{};
    sliderDef.param_type = PF_Param_FLOAT_SLIDER;
    ParameterTrack slider(sliderDef);
    slider.setKeyframes({{4.0, 3.0}, {1.0, 0.5}});
    EXPECT_DOUBLE_EQ(slider.valueAt(-1.0), 0.5);

    PF_ParamDef popupDef{};
    popupDef.param_type = PF_Param_POPUP;
    std::string names = "One|Two|Three";
    popupDef.u.pd.u.namesptr = names.c_str();
    ParameterTrack popup(popupDef);
    names = "changed after the call";
    EXPECT_EQ(popup.choices(), (std::vector<std::string>{"One", "Two", "Three"}));
    EXPECT_STREQ(popup.recordAt(0.0).u.pd.u.namesptr, "One|Two|Three");
}

TEST(WorldTest, RowsArePaddedAndThePaddingIsWatched)
{
    World world(3, 2, PF_PixelFormat_ARGB64, 6);
    EXPECT_EQ(world.rowBytes(), 3 * 8 + 6);
    world.pixel16(2, 1) = PF_Pixel16{32768, 1, 2, 3};
    EXPECT_EQ(reinterpret_cast<PF_Pixel16*>(world.row(1))[2].alpha, 32768);
    EXPECT_TRUE(world.paddingIntact());
    world.row(0)[3 * 8] = 0;
    EXPECT_FALSE(world.paddingIntact());
    EXPECT_EQ(World::find(world.layer()), &world);
    EXPECT_THROW(World(-1, 2, PF_PixelFormat_ARGB32), HostError);
    EXPECT_THROW(World(2, 2, PF_PixelFormat_ARGB64, 3), HostError) << "misaligned rows";
}

TEST(PluginModuleTest, LoadFailuresNameTheFileAndTheReason)
{
    try {
        PluginModule module("/no/such/Effect.so");
        FAIL() << "loaded a missing file";
    } catch (const HostError& error) {
        EXPECT_THAT(error.what(), AllOf(HasSubstr("/no/such/Effect.so"), HasSubstr("No such file")));
    }
    try {
        PluginModule module("libm.so.6");
        FAIL() << "found an entry point in the maths library";
    } catch (const HostError& error) {
        EXPECT_THAT(error.what(), AllOf(HasSubstr("libm.so.6"), HasSubstr("EntryPointFunc")));
    }
}

class HostRuntimeTest : public ::testing::Test {
protected:
    HostRuntime host;
};

TEST_F(HostRuntimeTest, OnlyOneRuntimeIsActiveAndItsLedgerCountsSuitesAndHandles)
{
    EXPECT_THROW(HostRuntime second, HostError);
    EXPECT_EQ(HostRuntime::active(), &host);

    const void* suite = nullptr;
    EXPECT_EQ(host.basicSuite()->AcquireSuite("PF World Suite", 2, &suite), kSPNoError);
    EXPECT_EQ(host.basicSuite()->AcquireSuite("PF World Suite", 7, &suite), kSPSuiteNotFoundError);
    EXPECT_EQ(suite, nullptr);
    EXPECT_EQ(host.suites().outstanding(), 1u);
    host.basicSuite()->ReleaseSuite("PF World Suite", 2);
    host.basicSuite()->ReleaseSuite("PF World Suite", 2);
    EXPECT_EQ(host.suites().outstanding(), 0u);
    EXPECT_EQ(host.suites().unbalancedReleases(), 1u);
    // Events are logged only for a test that asks: a log nobody reads would
    // grow with every frame of a long render.
    EXPECT_TRUE(host.suites().log().empty());
    host.suites().startLog();
    host.basicSuite()->AcquireSuite("PF World Suite", 2, &suite);
    host.basicSuite()->ReleaseSuite("PF World Suite", 2);
    EXPECT_EQ(host.suites().log().size(), 2u);

    PF_UtilCallbacks* utils = host.utilCallbacks();
    PF_Handle handle = utils->host_new_handle(32);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(utils->host_lock_handle(handle), *handle);
    EXPECT_EQ(host.handles().lockedHandles(), 1u);
    utils->host_unlock_handle(handle);
    utils->host_dispose_handle(handle);
    utils->host_dispose_handle(handle);
    EXPECT_EQ(host.handles().openHandles(), 0u);
    EXPECT_EQ(host.handles().misuses(), 1u);

    host.failures().fail(HostCall::NewHandle, 1, 1, 1);
    PF_Handle first = utils->host_new_handle(8);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(utils->host_new_handle(8), nullptr);
    utils->host_dispose_handle(first);
}

TEST_F(HostRuntimeTest, LayerPixelsComeOnlyAfterAPreRenderCheckout)
{
    World input(10, 10, PF_PixelFormat_ARGB32);
    World output(10, 10, PF_PixelFormat_ARGB32);
    host.setFrameWorlds(&input, &output);
    PF_EffectWorld* pixels = nullptr;
    EXPECT_EQ(host.checkoutLayerPixels(0, &pixels), PF_Err_BAD_CALLBACK_PARAM);

    PF_RenderRequest request{};
    request.rect = PF_LRect{-4, 2, 6, 30};
    PF_CheckoutResult result{};
    ASSERT_EQ(host.checkoutLayer(0, 0, request, FrameTime{0, 1, 24}, result), PF_Err_NONE);
    EXPECT_EQ(result.result_rect.left, 0);
    EXPECT_EQ(result.result_rect.bottom, 10);
    EXPECT_EQ(host.checkoutLayerPixels(0, &pixels), PF_Err_NONE);
    EXPECT_EQ(pixels, input.layer());
    EXPECT_EQ(host.checkoutLayer(1, 0, request, FrameTime{0, 1, 24}, result), PF_Err_INVALID_INDEX);
    host.endFrame();
    EXPECT_EQ(host.openLayerCheckouts(), 0u);
}

// Large enough to be split into bands, one per thread.
TEST_F(HostRuntimeTest, IterateVisitsThePixelsBothWorldsHaveAndStopsAtAnError)
{
    World source(300, 300, PF_PixelFormat_ARGB128);
    World destination(280, 310, PF_PixelFormat_ARGB128);
    std::atomic<int> visits{0};
    auto count = [](void* refcon, A_long x, A_long y, PF_PixelFloat* in, PF_PixelFloat* out) -> PF_Err {
        if (!refcon) {  // no counter: fail half way
            return y == 150 ? PF_Err_INTERNAL_STRUCT_DAMAGED : PF_Err_NONE;
        }
        ++*static_cast<std::atomic<int>*>(refcon);
        out->red = in->red + static_cast<float>(x + 1000 * y);
        return PF_Err_NONE;
    };
    const PF_iterateFloatSuite1* suite = nullptr;
    ASSERT_EQ(host.basicSuite()->AcquireSuite("PF iterateFloat Suite", 1, reinterpret_cast<const void**>(&suite)),
              kSPNoError);
    PF_InData in_data = host.inData();
    ASSERT_EQ(suite->iterate(&in_data, 0, 300, source.layer(), nullptr, &visits, count, destination.layer()),
              PF_Err_NONE);
    EXPECT_EQ(visits.load(), 280 * 300);
    EXPECT_EQ(destination.pixelFloat(279, 299).red, 279.0f + 299000.0f);
    EXPECT_EQ(destination.pixelFloat(0, 300).red, 0.0f);
    EXPECT_EQ(suite->iterate(&in_data, 0, 300, source.layer(), nullptr, nullptr, count, destination.layer()),
              PF_Err_INTERNAL_STRUCT_DAMAGED);
    World eightBit(4, 4, PF_PixelFormat_ARGB32);
    EXPECT_EQ(suite->iterate(&in_data, 0, 4, eightBit.layer(), nullptr, nullptr, count, nullptr),
              PF_Err_BAD_CALLBACK_PARAM);
    host.basicSuite()->ReleaseSuite("PF iterateFloat Suite", 1);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
