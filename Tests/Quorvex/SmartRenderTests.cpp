// Frames through the module's entry point, compared with the CPU model.
#include "RenderingModuleTest.h"

#include <cstring>
#include <thread>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;
using Host::World;

// Moments of a tick's middle, so that no rounding of iTime moves the tick.
double MidTick(int tick, double speed = 1.0)
{
    return (tick + 0.5) / 36.0 / speed;
}

using SmartRenderTest = RenderingModuleTest;

// World flags are not read: a host may leave them unset (not deep, not
// writeable) or set those of another depth, and its frames still come, in
// silence.
TEST_F(SmartRenderTest, BothGlitchesMatchTheModelAtEveryDepthWhateverTheWorldFlags)
{
    struct Case {
        GlitchType type;
        double seconds;
        double speed;
    };
    // Block Glitch holds a tick for a 36th of a second at speed 1 (tick 9 runs
    // from 0.25 s to 0.2778 s); standing still shows tick zero, not the input.
    const Case cases[] = {
        {GlitchType::Block, MidTick(4), 1.0},   {GlitchType::Block, MidTick(37, 2.5), 2.5},
        {GlitchType::Block, -MidTick(11), 1.0}, {GlitchType::Block, 0.276, 1.0},
        {GlitchType::Block, 3.7, 0.0},          {GlitchType::BadTV, 0.25, 1.0},
        {GlitchType::BadTV, 1.5, 0.5},          {GlitchType::BadTV, -0.75, 3.0},
        // The first frame of every clip, and a still one: rnd is 0.
        {GlitchType::BadTV, 0.0, 1.0},          {GlitchType::BadTV, 3.7, 0.0},
    };
    const PF_WorldFlags flagSets[] = {0, PF_WorldFlag_DEEP, ~PF_WorldFlags{0}};
    for (PF_PixelFormat format : kFormats) {
        auto input = makePicture(61, 47, format, 12);
        for (std::size_t i = 0; i < std::size(cases); ++i) {
            const Case& c = cases[i];
            World output(61, 47, format, 20);
            input->layer()->world_flags = output.layer()->world_flags = flagSets[i % std::size(flagSets)];
            const std::string what = describe(format, c.type, c.seconds, c.speed) + ", flags " +
                                     std::to_string(output.layer()->world_flags);
            PF_Err err = PF_Err_NONE;
            EXPECT_EQ(standardErrorOf([&] { err = render(*input, output, c.seconds, c.type, c.speed); }), "") << what;
            ASSERT_EQ(err, PF_Err_NONE) << what;
            expectMatchesModel(output, *input, c.seconds, c.type, c.speed, what);
            EXPECT_TRUE(output.paddingIntact()) << what;
        }
    }
}

// Colour under zero alpha must not come out; 16-bit white, the one value
// above 32767, comes back as it went in.
TEST_F(SmartRenderTest, TransparentInputStaysTransparentAndSixteenBitWhiteStaysWhite)
{
    for (PF_PixelFormat format : kFormats) {
        World input(32, 24, format);
        World output(32, 24, format);
        HostPixels::fill(input, [](A_long x, A_long, int channel) { return channel > 0 && x % 3 == 0 ? 0.25 : 0.0; });
        mark(output);
        for (GlitchType type : {GlitchType::BadTV, GlitchType::Block}) {
            ASSERT_EQ(render(input, output, 1.25, type, 1.0), PF_Err_NONE);
            EXPECT_EQ(HostPixels::bytes(output), std::vector<unsigned char>(HostPixels::bytes(output).size(), 0))
                << describe(format, type, 1.25, 1.0);
        }
    }
    World input(40, 30, PF_PixelFormat_ARGB64, 8);
    World output(40, 30, PF_PixelFormat_ARGB64, 8);
    HostPixels::fill(input, [](A_long, A_long, int) { return 1.0; });
    // Every sample of an even picture is the same, so the glitch leaves it.
    ASSERT_EQ(render(input, output, MidTick(6), GlitchType::Block, 1.0), PF_Err_NONE);
    EXPECT_EQ(HostPixels::bytes(output), HostPixels::bytes(input));
}

TEST_F(SmartRenderTest, TheFrameFollowsTheInputWhateverTheOutputSize)
{
    auto input = makePicture(50, 40, PF_PixelFormat_ARGB32);
    World same(50, 40, PF_PixelFormat_ARGB32);
    ASSERT_EQ(render(*input, same, MidTick(3), GlitchType::Block, 1.0), PF_Err_NONE);

    World smaller(30, 25, PF_PixelFormat_ARGB32, 4);
    ASSERT_EQ(render(*input, smaller, MidTick(3), GlitchType::Block, 1.0), PF_Err_NONE);
    for (int y = 0; y < 25; ++y) {
        ASSERT_EQ(std::memcmp(smaller.row(y), same.row(y), 30 * 4), 0) << "row " << y;
    }
    EXPECT_TRUE(smaller.paddingIntact());

    World larger(64, 48, PF_PixelFormat_ARGB32);
    mark(larger);
    ASSERT_EQ(render(*input, larger, MidTick(3), GlitchType::Block, 1.0), PF_Err_NONE);
    for (int y = 0; y < 48; ++y) {
        if (y < 40) {
            ASSERT_EQ(std::memcmp(larger.row(y), same.row(y), 50 * 4), 0) << "row " << y;
        }
        for (int x = y < 40 ? 50 : 0; x < 64; ++x) {
            ASSERT_EQ(larger.pixel8(x, y).alpha, 0x3C) << "outside the frame at " << x << ", " << y;
        }
    }
}

TEST_F(SmartRenderTest, FailedHostCallsEndTheFrameWithTheirStatusAndTouchNothing)
{
    auto input = makePicture(24, 20, PF_PixelFormat_ARGB32);
    World output(24, 20, PF_PixelFormat_ARGB32);
    mark(output);
    const std::vector<unsigned char> marked = HostPixels::bytes(output);

    host.failures().fail(HostCall::CheckoutLayerPixels, PF_Err_OUT_OF_MEMORY, 0, 1);
    EXPECT_EQ(render(*input, output, 0.5, GlitchType::Block, 1.0), PF_Err_OUT_OF_MEMORY);
    host.failures().fail(HostCall::CheckoutOutput, PF_Err_INTERNAL_STRUCT_DAMAGED, 0, 1);
    EXPECT_EQ(render(*input, output, 0.5, GlitchType::Block, 1.0), PF_Err_INTERNAL_STRUCT_DAMAGED);
    // A failed parameter read ends the frame rather than drawing stale values.
    host.failures().fail(HostCall::CheckoutParam, PF_Interrupt_CANCEL, 1, 1);
    EXPECT_EQ(render(*input, output, 0.5, GlitchType::Block, 1.0), PF_Interrupt_CANCEL);
    host.failures().failSuite(kPFWorldSuite, 2);
    EXPECT_EQ(render(*input, output, 0.5, GlitchType::Block, 1.0), PF_Err_BAD_CALLBACK_PARAM);
    host.failures().clear();
    EXPECT_EQ(HostPixels::bytes(output), marked);

    // Nothing of the failed frames is left over: the next one is right.
    ASSERT_EQ(render(*input, output, MidTick(5), GlitchType::Block, 1.0), PF_Err_NONE);
    expectMatchesModel(output, *input, MidTick(5), GlitchType::Block, 1.0, "after failed frames");
}

// Then set-down and a second set-up in the same process: what set-down
// destroyed is made again.
TEST_F(SmartRenderTest, FramesOnTwoHostThreadsAndAfterASecondSetupDraw)
{
    auto input = makePicture(40, 30, PF_PixelFormat_ARGB64);
    World first(40, 30, PF_PixelFormat_ARGB64);
    World second(40, 30, PF_PixelFormat_ARGB64);
    ASSERT_EQ(render(*input, first, MidTick(7), GlitchType::Block, 1.0), PF_Err_NONE);
    // Another host thread, with no GL context of its own current.
    PF_Err err = -1;
    std::thread other([&] {
        host.parameter(1).setValue(2.0);
        err = session.renderFrame(*input, second, Host::FrameTime::atSeconds(0.375, kTimeScale));
    });
    other.join();
    ASSERT_EQ(err, PF_Err_NONE);
    expectMatchesModel(first, *input, MidTick(7), GlitchType::Block, 1.0, "first thread");
    expectMatchesModel(second, *input, 0.375, GlitchType::BadTV, 1.0, "second thread");

    // The other thread's frame changed the size: this thread's targets follow.
    auto smaller = makePicture(28, 22, PF_PixelFormat_ARGB64);
    World third(28, 22, PF_PixelFormat_ARGB64);
    std::thread([&] { err = session.renderFrame(*smaller, third, Host::FrameTime::atSeconds(0.375, kTimeScale)); })
        .join();
    ASSERT_EQ(err, PF_Err_NONE);
    ASSERT_EQ(render(*smaller, third, MidTick(8), GlitchType::Block, 1.0), PF_Err_NONE);
    expectMatchesModel(third, *smaller, MidTick(8), GlitchType::Block, 1.0, "back on the first thread, resized");

    ASSERT_EQ(session.globalSetdown(), PF_Err_NONE);
    ASSERT_TRUE(hostIsCurrent());
    ASSERT_EQ(session.globalSetup(), PF_Err_NONE);
    ASSERT_EQ(session.paramsSetup(), PF_Err_NONE);
    // The frame's size and depth as before: nothing kept for them may have outlived set-down.
    ASSERT_EQ(render(*smaller, third, MidTick(2), GlitchType::Block, 1.0), PF_Err_NONE);
    expectMatchesModel(third, *smaller, MidTick(2), GlitchType::Block, 1.0, "after a second set-up");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
