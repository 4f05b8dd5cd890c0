// Frames through the module's entry point, compared with the CPU model.
#include "RenderingModuleTest.h"

#include <cstring>
#include <thread>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;
using Host::World;

const PF_PixelFormat kFormats[] = {PF_PixelFormat_ARGB32, PF_PixelFormat_ARGB64,
                                   PF_PixelFormat_ARGB128};

std::string DepthName(PF_PixelFormat format)
{
    return format == PF_PixelFormat_ARGB32 ? "8-bit" : format == PF_PixelFormat_ARGB64 ? "16-bit" : "float";
}

bool SamePixels(World& a, World& b)
{
    for (int y = 0; y < a.height(); ++y) {
        if (std::memcmp(a.row(y), b.row(y), static_cast<std::size_t>(a.width()) * a.pixelSize()) != 0) {
            return false;
        }
    }
    return true;
}

class SmartRenderTest : public RenderingModuleTest {};

// Moments of a tick's middle, so that no rounding of iTime moves the tick.
double MidTick(int tick, double speed = 1.0)
{
    return (tick + 0.5) / 36.0 / speed;
}

TEST_F(SmartRenderTest, BothGlitchesMatchTheModelAtEveryDepth)
{
    struct Case {
        GlitchType type;
        double seconds;
        double speed;
    };
    const Case cases[] = {
        {GlitchType::Block, MidTick(4), 1.0},      {GlitchType::Block, MidTick(37, 2.5), 2.5},
        {GlitchType::Block, -MidTick(11), 1.0},    {GlitchType::BadTV, 0.25, 1.0},
        {GlitchType::BadTV, 1.5, 0.5},             {GlitchType::BadTV, -0.75, 3.0},
        // The first frame of every clip, and a still one: rnd is 0.
        {GlitchType::BadTV, 0.0, 1.0},             {GlitchType::BadTV, 3.7, 0.0},
    };
    for (PF_PixelFormat format : kFormats) {
        auto input = makePicture(61, 47, format, 12);
        for (const Case& c : cases) {
            World output(61, 47, format, 20);
            const std::string what = DepthName(format) + (c.type == GlitchType::Block ? " Block Glitch" : " Bad TV") +
                                     " at " + std::to_string(c.seconds) + " s, speed " + std::to_string(c.speed);
            ASSERT_EQ(render(*input, output, c.seconds, c.type, c.speed), PF_Err_NONE) << what;
            expectMatchesModel(output, model(*input, c.seconds, c.type, c.speed), tolerance(format), what);
            EXPECT_TRUE(output.paddingIntact()) << what;
        }
    }
}

TEST_F(SmartRenderTest, BlockGlitchMovesOnlyAtTicksBadTVAtEveryChangeOfTime)
{
    auto input = makePicture(48, 40, PF_PixelFormat_ARGB32);
    auto frameAt = [&](double seconds, GlitchType type, double speed) {
        auto output = std::make_unique<World>(48, 40, PF_PixelFormat_ARGB32);
        EXPECT_EQ(render(*input, *output, seconds, type, speed), PF_Err_NONE);
        return output;
    };
    // Tick 9 runs from 0.25 s to 0.2778 s at speed 1.
    const auto late = frameAt(0.276, GlitchType::Block, 1.0);
    EXPECT_TRUE(SamePixels(*frameAt(0.252, GlitchType::Block, 1.0), *late));
    EXPECT_FALSE(SamePixels(*late, *frameAt(0.282, GlitchType::Block, 1.0)));
    EXPECT_FALSE(SamePixels(*frameAt(0.5, GlitchType::BadTV, 1.0), *frameAt(0.501, GlitchType::BadTV, 1.0)));

    // Standing still shows tick zero, not the plain input.
    const auto stopped = frameAt(3.7, GlitchType::Block, 0.0);
    EXPECT_TRUE(SamePixels(*stopped, *frameAt(0.0, GlitchType::Block, 2.0)));
    EXPECT_FALSE(SamePixels(*stopped, *input));
}

TEST_F(SmartRenderTest, TransparentInputStaysTransparent)
{
    for (PF_PixelFormat format : kFormats) {
        World input(32, 24, format);
        World output(32, 24, format);
        for (int y = 0; y < 24; ++y) {
            std::memset(input.row(y), 0, 32 * input.pixelSize());
            // Colour under zero alpha must not come out.
            for (int x = 0; x < 32; x += 3) {
                std::memset(input.row(y) + x * input.pixelSize() + input.pixelSize() / 4, 0x40,
                            input.pixelSize() / 4);
            }
        }
        mark(output);
        for (GlitchType type : {GlitchType::BadTV, GlitchType::Block}) {
            ASSERT_EQ(render(input, output, 1.25, type, 1.0), PF_Err_NONE);
            for (int y = 0; y < 24; ++y) {
                for (std::size_t i = 0; i < 32 * output.pixelSize(); ++i) {
                    ASSERT_EQ(output.row(y)[i], 0) << DepthName(format) << " row " << y;
                }
            }
        }
    }
}

TEST_F(SmartRenderTest, SixteenBitWhiteComesBackWhite)
{
    World input(40, 30, PF_PixelFormat_ARGB64, 8);
    World output(40, 30, PF_PixelFormat_ARGB64, 8);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            input.pixel16(x, y) = PF_Pixel16{32768, 32768, 32768, 32768};
        }
    }
    // Every sample of an even picture is the same, so the glitch leaves it.
    ASSERT_EQ(render(input, output, MidTick(6), GlitchType::Block, 1.0), PF_Err_NONE);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            const PF_Pixel16 pixel = output.pixel16(x, y);
            ASSERT_EQ(pixel.alpha, 32768);
            ASSERT_EQ(pixel.red, 32768);
            ASSERT_EQ(pixel.green, 32768);
            ASSERT_EQ(pixel.blue, 32768);
        }
    }
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
        const bool frameRow = y < 40;
        if (frameRow) {
            ASSERT_EQ(std::memcmp(larger.row(y), same.row(y), 50 * 4), 0) << "row " << y;
        }
        for (int x = frameRow ? 50 : 0; x < 64; ++x) {
            ASSERT_EQ(larger.pixel8(x, y).alpha, 0x3C) << "outside the frame at " << x << ", " << y;
        }
    }
}

TEST_F(SmartRenderTest, FailuresAndUnknownFormatsEndTheFrameWithAStatusAndTouchNothing)
{
    auto input = makePicture(24, 20, PF_PixelFormat_ARGB32);
    World output(24, 20, PF_PixelFormat_ARGB32);
    mark(output);

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
    EXPECT_TRUE(isMarked(output));
    World oddInput(16, 16, 0x20202020);
    World oddOutput(16, 16, 0x20202020);
    mark(oddOutput);
    EXPECT_EQ(render(oddInput, oddOutput, 0.5, GlitchType::BadTV, 1.0), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_TRUE(isMarked(oddOutput));

    // Nothing of the failed frames is left over: the next one is right.
    ASSERT_EQ(render(*input, output, MidTick(5), GlitchType::Block, 1.0), PF_Err_NONE);
    expectMatchesModel(output, model(*input, MidTick(5), GlitchType::Block, 1.0),
                       tolerance(PF_PixelFormat_ARGB32), "after failed frames");
}

TEST_F(SmartRenderTest, FramesOnTwoHostThreadsBothDraw)
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
    expectMatchesModel(first, model(*input, MidTick(7), GlitchType::Block, 1.0),
                       tolerance(PF_PixelFormat_ARGB64), "first thread");
    expectMatchesModel(second, model(*input, 0.375, GlitchType::BadTV, 1.0),
                       tolerance(PF_PixelFormat_ARGB64), "second thread");

    // The other thread's frame changed the size: this thread's targets follow.
    auto smaller = makePicture(28, 22, PF_PixelFormat_ARGB64);
    World third(28, 22, PF_PixelFormat_ARGB64);
    std::thread([&] { err = session.renderFrame(*smaller, third, Host::FrameTime::atSeconds(0.375, kTimeScale)); })
        .join();
    ASSERT_EQ(err, PF_Err_NONE);
    ASSERT_EQ(render(*smaller, third, MidTick(8), GlitchType::Block, 1.0), PF_Err_NONE);
    expectMatchesModel(third, model(*smaller, MidTick(8), GlitchType::Block, 1.0),
                       tolerance(PF_PixelFormat_ARGB64), "back on the first thread at another size");
}

TEST_F(SmartRenderTest, ASecondSetupInOneProcessRendersAgain)
{
    auto input = makePicture(32, 32, PF_PixelFormat_ARGB128);
    World output(32, 32, PF_PixelFormat_ARGB128);
    ASSERT_EQ(render(*input, output, 0.8, GlitchType::BadTV, 1.0), PF_Err_NONE);
    ASSERT_EQ(session.globalSetdown(), PF_Err_NONE);
    ASSERT_TRUE(hostIsCurrent());
    ASSERT_EQ(session.globalSetup(), PF_Err_NONE);
    ASSERT_EQ(session.paramsSetup(), PF_Err_NONE);
    World again(32, 32, PF_PixelFormat_ARGB128);
    ASSERT_EQ(render(*input, again, MidTick(2), GlitchType::Block, 1.0), PF_Err_NONE);
    expectMatchesModel(again, model(*input, MidTick(2), GlitchType::Block, 1.0),
                       tolerance(PF_PixelFormat_ARGB128), "after a second set-up");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
