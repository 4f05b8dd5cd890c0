// What the module asks of a host's worlds before a frame: only what guards
// memory. Flags a host leaves unset, and a pixel format the host cannot say,
// never cost a frame.
#include "RenderingModuleTest.h"

#include "EffectSuites.h"

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;
using Host::World;

using HostWorldCheckTest = RenderingModuleTest;

TEST_F(HostWorldCheckTest, FlagsAreNotReadAtAnyDepth)
{
    // No flags at all (not deep, not writeable), and flags of the other depth.
    const PF_WorldFlags flagSets[] = {0, PF_WorldFlag_DEEP, ~PF_WorldFlags{0}};
    for (PF_PixelFormat format : {PF_PixelFormat_ARGB32, PF_PixelFormat_ARGB64, PF_PixelFormat_ARGB128}) {
        auto input = makePicture(33, 21, format, 8);
        for (PF_WorldFlags flags : flagSets) {
            World output(33, 21, format, 8);
            input->layer()->world_flags = flags;
            output.layer()->world_flags = flags;
            const std::string what = "format " + std::to_string(format) + ", flags " + std::to_string(flags);
            PF_Err err = PF_Err_NONE;
            const std::string said = standardErrorOf([&] { err = render(*input, output, 0.5, GlitchType::BadTV, 1.0); });
            ASSERT_EQ(err, PF_Err_NONE) << what << ": " << said;
            EXPECT_EQ(said, "") << what;
            expectMatchesModel(output, *input, 0.5, GlitchType::BadTV, 1.0, what);
        }
    }
}

// A host that cannot say a world's format gets the frame at 8 bits, as for
// a host whose deep worlds answer get_pixel_data8: the memory of a 16-bit
// picture, its rows twice as long as 8 bits need and flagged deep. The
// frame reads and writes only the first half of each row.
TEST_F(HostWorldCheckTest, AFailedFormatQueryRunsTheFrameAtEightBits)
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
}

// Only the output's query fails: the frame runs at the input's depth, and the
// output is checked for the memory of that depth.
TEST_F(HostWorldCheckTest, AFailedOutputQueryKeepsTheInputsDepthAndItsMemoryCheck)
{
    auto input = makePicture(26, 14, PF_PixelFormat_ARGB64, 4);
    World output(26, 14, PF_PixelFormat_ARGB64, 4);
    host.failures().fail(HostCall::GetPixelFormat, PF_Err_OUT_OF_MEMORY, 1, 1);
    ASSERT_EQ(render(*input, output, 0.75, GlitchType::BadTV, 2.0), PF_Err_NONE);
    expectMatchesModel(output, *input, 0.75, GlitchType::BadTV, 2.0, "failed output query");

    // An output too short for 16-bit rows is refused whatever its query says.
    World shortRows(26, 14, PF_PixelFormat_ARGB32);
    mark(shortRows);
    const std::vector<unsigned char> marked = HostPixels::bytes(shortRows);
    host.failures().fail(HostCall::GetPixelFormat, PF_Err_OUT_OF_MEMORY, 1, 1);
    PF_Err err = PF_Err_NONE;
    const std::string said =
        standardErrorOf([&] { err = render(*input, shortRows, 0.75, GlitchType::BadTV, 2.0); });
    EXPECT_EQ(err, PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_NE(said.find("output world cannot be used: its rows are 104 bytes apart"), std::string::npos) << said;
    EXPECT_EQ(HostPixels::bytes(shortRows), marked);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
