// Worlds or values the frame cannot use: it ends with 516 and one line that says what is wrong, before any
// pixel memory is touched, and the next good frame is right. Only what guards memory is asked of a world: a
// pixel format the host cannot say never costs a frame.
#include "RenderingModuleTest.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <vector>
#include <limits>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;
using Host::World;

class HostileHostTest : public RenderingModuleTest {
protected:
    // With the records changed by `tamper` for this frame only: 516, one line on standard error that holds
    // `said`, and the output's pixels untouched.
    void expectRefused(World& input, World& output, const std::function<void(PF_EffectWorld&, PF_EffectWorld&)>& tamper,
                       const std::string& said, double speed = 1.0)
    {
        SCOPED_TRACE(said);
        mark(output);
        const std::vector<unsigned char> marked = HostPixels::bytes(output);
        const PF_EffectWorld inputRecord = *input.layer();
        const PF_EffectWorld outputRecord = *output.layer();
        tamper(*input.layer(), *output.layer());
        PF_Err err = PF_Err_NONE;
        const std::string error = standardErrorOf([&] { err = render(input, output, 0.5, GlitchType::BadTV, speed); });
        *input.layer() = inputRecord;
        *output.layer() = outputRecord;
        EXPECT_EQ(err, PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_THAT(error, ::testing::HasSubstr(said));
        EXPECT_EQ(occurrences(error, "\n"), 1u) << error;
        EXPECT_EQ(HostPixels::bytes(output), marked);
    }
};

TEST_F(HostileHostTest, UnusableWorldsAndSpeedsEndTheFrameWithALine)
{
    auto input = makePicture(20, 12, PF_PixelFormat_ARGB64, 8);
    World output(20, 12, PF_PixelFormat_ARGB64, 8);
    using Tamper = std::function<void(PF_EffectWorld&, PF_EffectWorld&)>;
    const std::pair<Tamper, std::string> cases[] = {
        {[](PF_EffectWorld& in, PF_EffectWorld&) { in.rowbytes = -in.rowbytes; }, "input world cannot be used: its rows are -168 bytes apart"},
        {[](PF_EffectWorld& in, PF_EffectWorld&) { in.rowbytes = 20 * 4; }, "fewer than the 160 bytes of 20 pixels of \"ae16\""},
        {[](PF_EffectWorld&, PF_EffectWorld& out) { out.rowbytes = 152; }, "output world cannot be used: its rows are 152 bytes apart"},
        {[](PF_EffectWorld& in, PF_EffectWorld&) { in.data = nullptr; }, "no pixel memory for its 20x12 pixels"},
        {[](PF_EffectWorld& in, PF_EffectWorld&) { in.width = -20; }, "its size -20x12 is negative"},
        {[](PF_EffectWorld&, PF_EffectWorld& out) { out.height = -1; }, "output world cannot be used: its size 20x-1"},
        {[](PF_EffectWorld& in, PF_EffectWorld&) { in.data = reinterpret_cast<PF_PixelPtr>(reinterpret_cast<char*>(in.data) + 1); }, "not aligned to the 2-byte channels"},
    };
    for (const auto& [tamper, said] : cases) {
        expectRefused(*input, output, tamper, said);
    }

    const auto none = [](PF_EffectWorld&, PF_EffectWorld&) {};
    World eightBitOutput(20, 12, PF_PixelFormat_ARGB32);
    expectRefused(*input, eightBitOutput, none, "pixel format \"argb\" differs from the input's \"ae16\"");
    // Where only the output's format query fails, it is checked for the memory of the input's depth.
    expectRefused(*input, eightBitOutput,
                  [this](PF_EffectWorld&, PF_EffectWorld&) {
                      host.failures().fail(HostCall::GetPixelFormat, PF_Err_OUT_OF_MEMORY, 1, 1);
                  },
                  "output world cannot be used: its rows are 80 bytes apart");
    World oddInput(20, 12, 0x20202020);
    World oddOutput(20, 12, 0x20202020);
    expectRefused(oddInput, oddOutput, none, "input world cannot be used: pixel format 0x20202020 is not one of");
    expectRefused(*input, output, none, "Speed nan is not a finite number", std::nan(""));
    expectRefused(*input, output, none, "Speed inf is not a finite number", std::numeric_limits<double>::infinity());
    expectRefused(*input, output, none, "beyond single precision", 1e300);

    // Nothing of the refused frames is left over.
    ASSERT_EQ(render(*input, output, 0.5, GlitchType::BadTV, 1.0), PF_Err_NONE);
    expectMatchesModel(output, *input, 0.5, GlitchType::BadTV, 1.0, "after refused frames");
}

// A host that cannot say a world's format gets the frame at 8 bits, as for
// a host whose deep worlds answer get_pixel_data8: the memory of a 16-bit
// picture, its rows twice as long as 8 bits need and flagged deep. The
// frame reads and writes only the first half of each row. Where only the
// output's query fails, the frame runs at the input's depth.
TEST_F(HostileHostTest, AFailedFormatQueryRunsTheFrameAtEightBitsOrAtTheInputsDepth)
{
    constexpr int kWidth = 29;
    constexpr int kHeight = 17;
    constexpr int kSixteenBitRow = kWidth * 8 + 8;
    auto input = makePicture(kWidth, kHeight, PF_PixelFormat_ARGB32, kSixteenBitRow - kWidth * 4);
    World output(kWidth, kHeight, PF_PixelFormat_ARGB32, kSixteenBitRow - kWidth * 4);
    input->layer()->world_flags = PF_WorldFlag_DEEP;
    output.layer()->world_flags = PF_WorldFlag_DEEP | PF_WorldFlag_WRITEABLE;
    host.failures().fail(HostCall::GetPixelFormat, PF_Err_BAD_CALLBACK_PARAM);
    PF_Err err = PF_Err_NONE;
    const std::string said = standardErrorOf([&] { err = render(*input, output, 1.5, GlitchType::Block, 1.0); });
    host.failures().clear();
    ASSERT_EQ(err, PF_Err_NONE) << said;
    EXPECT_EQ(said, "");
    expectMatchesModel(output, *input, 1.5, GlitchType::Block, 1.0, "failed format queries");
    EXPECT_TRUE(output.paddingIntact()) << "the frame wrote beyond 8-bit rows";

    auto deep = makePicture(26, 14, PF_PixelFormat_ARGB64, 4);
    World deepOutput(26, 14, PF_PixelFormat_ARGB64, 4);
    host.failures().fail(HostCall::GetPixelFormat, PF_Err_OUT_OF_MEMORY, 1, 1);
    ASSERT_EQ(render(*deep, deepOutput, 0.75, GlitchType::BadTV, 2.0), PF_Err_NONE);
    expectMatchesModel(deepOutput, *deep, 0.75, GlitchType::BadTV, 2.0, "failed output query");
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
