// The substitute host: what effects and tests rely on it to do; and the Seed
// as every host applies it: Seed 0 is the host's time to the last unit, a
// frei0r value finds its seed, one moment stated at two scales moves to the
// same numbers, and a moved time never outgrows the 32-bit count.
#include "Runtime/HostError.h"
#include "Runtime/HostRuntime.h"
#include "Runtime/PluginModule.h"
#include "Runtime/World.h"
#include "Runtime/TimeSeed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <tuple>

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
    const auto loadError = [](const char* file) -> std::string {
        try {
            PluginModule module(file);
        } catch (const HostError& error) {
            return error.what();
        }
        return "loaded";
    };
    EXPECT_THAT(loadError("/no/such/Effect.so"), AllOf(HasSubstr("/no/such/Effect.so"), HasSubstr("No such file")));
    EXPECT_THAT(loadError("libm.so.6"), AllOf(HasSubstr("libm.so.6"), HasSubstr("EntryPointFunc")));
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

constexpr A_long kLargestTime = std::numeric_limits<A_long>::max();

// A time's value, step and scale, to compare.
std::tuple<A_long, A_long, A_u_long> Parts(const FrameTime& time)
{
    return {time.value, time.step, time.scale};
}

TEST(TimeSeedTest, SeedZeroLeavesEveryTimeAsTheHostStatedIt)
{
    // Fractions not in lowest terms, negative times, the largest count.
    for (const FrameTime& time : {FrameTime{120, 40, 1000}, FrameTime{0, 1001, 30000},
                                  FrameTime{-7, 1, 2}, FrameTime{kLargestTime, 1, 1},
                                  FrameTime{5, 1, 0}}) {
        const auto shifted = TimeSeed().shift(time);
        ASSERT_TRUE(shifted);
        EXPECT_EQ(Parts(*shifted), Parts(time));
        EXPECT_EQ(Parts(*TimeSeed::fromUnitValue(0.0004).shift(time)), Parts(time));
    }
}

TEST(TimeSeedTest, HostValuesFindTheirSeedAndNumbersOutsideTheRangeAreRefused)
{
    for (int number = 0; number <= TimeSeed::kLargest; ++number) {
        ASSERT_EQ(TimeSeed::fromUnitValue(TimeSeed::unitValue(number)).number(), number);
    }
    // The halfway rounds up; values beyond 0 to 1 are clamped, and one that is not a number is Seed 0.
    EXPECT_EQ(std::vector<int>({TimeSeed::fromUnitValue(0.5).number(), TimeSeed::fromUnitValue(-0.5).number(),
                                TimeSeed::fromUnitValue(7.0).number(), TimeSeed::fromUnitValue(std::nan("")).number()}),
              std::vector<int>({500, 0, TimeSeed::kLargest, 0}));
    EXPECT_THROW(TimeSeed(-1), std::out_of_range);
    EXPECT_THROW(TimeSeed(TimeSeed::kLargest + 1), std::out_of_range);
}

TEST(TimeSeedTest, OneMomentAtTwoScalesMovesToTheSameNumbersWholeStepsLater)
{
    // Frame 3 of 25 fps as MLT states it (3/25 s) and as a Matroska clip
    // does (120/1000 s, frames 40 apart).
    const TimeSeed seed(417);
    const auto fromSeconds = seed.shift(FrameTime{3, 1, 25});
    const auto fromMilliseconds = seed.shift(FrameTime{120, 40, 1000});
    ASSERT_TRUE(fromSeconds && fromMilliseconds);
    EXPECT_EQ(Parts(*fromSeconds), Parts(FrameTime{3 + 417 * TimeSeed::kSecondsPerStep * 25, 1, 25}));
    EXPECT_EQ(Parts(*fromMilliseconds), Parts(*fromSeconds));

    const auto nextSeed = TimeSeed(418).shift(FrameTime{3, 1, 25});
    EXPECT_DOUBLE_EQ(nextSeed->seconds() - fromSeconds->seconds(), TimeSeed::kSecondsPerStep);
    EXPECT_DOUBLE_EQ(TimeSeed(1).shift(FrameTime{-50, 1, 25})->seconds(), TimeSeed::kSecondsPerStep - 2);
}

TEST(TimeSeedTest, AMovedTimeBeyondThirtyTwoBitsKeepsTheMomentAtAScaleThatHoldsIt)
{
    // The first frame after 0 of 59.94 fps at the largest seed: 60000ths of
    // a second no longer fit 32 bits. Stated at two scales, one moment still.
    const TimeSeed seed(TimeSeed::kLargest);
    const auto moved = seed.shift(FrameTime{1001, 1001, 60000});
    const auto movedFine = seed.shift(FrameTime{2002, 2002, 120000});
    ASSERT_TRUE(moved && movedFine);
    EXPECT_EQ(Parts(*movedFine), Parts(*moved));
    const double expected = 1001.0 / 60000.0 + seed.offsetSeconds();
    EXPECT_NEAR(moved->seconds(), expected, 0.5 / moved->scale);
    EXPECT_GT(moved->scale, 30000u);  // still finer than the frames
    EXPECT_EQ(moved->step, std::lround(1001.0 / 60000.0 * moved->scale));

    // The next frame is still another binary32 time.
    const auto next = seed.shift(FrameTime{2002, 1001, 60000});
    EXPECT_GT(static_cast<float>(next->value) / static_cast<float>(next->scale),
              static_cast<float>(moved->value) / static_cast<float>(moved->scale));

    // Where not even whole seconds fit, there is no time to give.
    EXPECT_FALSE(TimeSeed(1).shift(FrameTime{kLargestTime - 10, 1, 1}));
    EXPECT_TRUE(TimeSeed(1).shift(FrameTime{kLargestTime - TimeSeed::kSecondsPerStep, 1, 1}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
