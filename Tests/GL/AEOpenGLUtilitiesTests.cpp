// Pixel transfer where the frames through the module do not reach: failures, and read-backs into other sizes.
#include "RenderContextTest.h"

#include <gmock/gmock.h>

#include <cstring>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;
using Host::World;
using ::testing::Throws;

class UtilitiesTest : public RenderContextTest {
protected:
    // Uploads the world as pixels of `format` (its own if 0); every caller expects a throw.
    void upload(World& input, int format = 0)
    {
        PF_InData inData = mHost.inData();
        unsigned long pixelSize = 0;
        GLenum type = GL_NONE;
        float multiplier = 0.0f;
        AEOpenGLUtilities::UploadTexture(format ? format : input.format(), input.layer(), nullptr, &inData, pixelSize,
                                         type, multiplier, false);
    }

    // Reads a 2 by 2 frame of opaque (A, R, G, B) = (1, 0.5, 0.25, 0) back
    // into `output`, as pixels of `format` (8-bit ones if it is unknown).
    void download(World& output, PF_PixelFormat format)
    {
        const bool isFloat = format == PF_PixelFormat_ARGB128;
        const bool is16 = format == PF_PixelFormat_ARGB64;
        World input(2, 2, output.format());
        PF_InData inData = mHost.inData();
        AEOpenGLUtilities::DownloadTexture(2, 2, input.layer(), output.layer(), &inData, format,
                                           isFloat ? 16 : is16 ? 8 : 4,
                                           isFloat ? GL_FLOAT : is16 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_BYTE);
    }

    void expectNothingHeld()
    {
        EXPECT_EQ(mHost.suites().outstanding(), 0u);
        EXPECT_EQ(mHost.handles().openHandles(), 0u);
        EXPECT_EQ(mHost.handles().lockedHandles(), 0u);
        EXPECT_EQ(mHost.handles().misuses(), 0u);
    }
};

// The module refuses unknown formats first; here each direction refuses one too, before anything is taken.
TEST_F(UtilitiesTest, UnknownFormatsAreRefusedWithALineBeforeAnythingIsTaken)
{
    const PF_PixelFormat unknown = 0x34333231;  // "1234"
    World world(2, 2, unknown, 4);
    std::memset(world.row(0), 0x3C, 8);
    const std::vector<unsigned char> before = HostPixels::bytes(world);
    const auto objects = liveObjects();
    mHost.suites().startLog();

    const std::string said = standardErrorOf([&] {
        EXPECT_THAT([&] { upload(world, unknown); }, Throws<int>(PF_Err_BAD_CALLBACK_PARAM));
        EXPECT_THAT([&] { download(world, unknown); }, Throws<int>(PF_Err_BAD_CALLBACK_PARAM));
    });

    EXPECT_EQ(occurrences(said, "Quorvex: pixel format 0x34333231 is not one of"), 2u);
    EXPECT_EQ(occurrences(said, "\n"), 2u) << said;
    EXPECT_EQ(liveObjects(), objects);
    EXPECT_EQ(HostPixels::bytes(world), before);
    EXPECT_TRUE(mHost.suites().log().empty());
    expectNothingHeld();
}

struct HostFailure {
    const char* what;
    PF_PixelFormat format;
    bool upload;
    HostCall call;
    A_long status;
    int thrown;
    // Row padding of the world; rows a whole number of pixels apart are read
    // back straight into it, other ones through the host's staging handle.
    A_long padding = 8;
};

class HostFailureTest : public UtilitiesTest, public ::testing::WithParamInterface<HostFailure> {};

TEST_P(HostFailureTest, ThrowsTheHostsNumberGivesEverythingBackAndWritesNothing)
{
    const HostFailure failure = GetParam();
    World world(3, 2, failure.format, failure.padding);
    // Distinct values in every channel and row, from 0 to white.
    HostPixels::fill(world,
                     [](A_long x, A_long y, int channel) { return ((x * 7 + y * 13 + channel * 3) % 17) / 16.0; });
    const std::vector<unsigned char> before = HostPixels::bytes(world);
    if (!failure.upload) {
        frame().prepare(2, 2, false, AEOpenGLUtilities::RenderTargetFormat(failure.format));
        frame().beginDrawing();
        glClearColor(1.0f, 0.5f, 0.25f, 0.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    mHost.failures().fail(failure.call, failure.status);
    const auto objects = liveObjects();

    EXPECT_THAT([&] { failure.upload ? upload(world) : download(world, failure.format); },
                Throws<int>(failure.thrown));
    EXPECT_GT(mHost.failures().calls(failure.call), 0);
    EXPECT_EQ(liveObjects(), objects) << "the failure left GL objects behind";
    EXPECT_EQ(integer(GL_UNPACK_ROW_LENGTH), 0);
    EXPECT_EQ(HostPixels::bytes(world), before);
    expectNothingHeld();
}

INSTANTIATE_TEST_SUITE_P(
    Failures, HostFailureTest,
    ::testing::Values(
        HostFailure{"UploadIterate", PF_PixelFormat_ARGB128, true, HostCall::Iterate, 42, 42},
        HostFailure{"UploadPixelData8", PF_PixelFormat_ARGB32, true, HostCall::GetPixelData, 43, 43},
        HostFailure{"DownloadIterate", PF_PixelFormat_ARGB128, false, HostCall::Iterate, 45, 45},
        HostFailure{"DownloadPixelData", PF_PixelFormat_ARGB64, false, HostCall::GetPixelData, 46, 46},
        HostFailure{"DownloadHandle", PF_PixelFormat_ARGB32, false, HostCall::NewHandle, 1, PF_Err_OUT_OF_MEMORY, 2}),
    [](const auto& test) { return std::string(test.param.what); });

// The frame a download reads may be smaller than the input the host
// iterates over: the pixel functions leave alone what lies beyond it.
TEST_F(UtilitiesTest, TheFloatPixelFunctionsStayInsideTheirBuffer)
{
    World world(2, 2, PF_PixelFormat_ARGB128);
    std::vector<PF_PixelFloat> buffer(4, PF_PixelFloat{0.5f, 0.5f, 0.5f, 0.5f});
    AEOpenGLUtilities::FloatCopyContext context{buffer.data(), world.layer()};
    PF_PixelFloat in{1.0f, 2.0f, 3.0f, 4.0f};
    PF_PixelFloat out{9.0f, 9.0f, 9.0f, 9.0f};

    EXPECT_EQ(AEOpenGLUtilities::CopyPixelFloatIn(&context, 1, 1, &in, &out), 0);
    EXPECT_EQ(std::memcmp(&buffer[3], &in, sizeof in), 0);
    for (const auto& [x, y] : {std::pair{2, 0}, std::pair{0, 2}, std::pair{-1, 0}}) {
        EXPECT_EQ(AEOpenGLUtilities::CopyPixelFloatIn(&context, x, y, &in, &out), 0);
        EXPECT_EQ(AEOpenGLUtilities::CopyPixelFloatOut(&context, x, y, nullptr, &out), 0);
        EXPECT_EQ(out.alpha, 9.0f) << x << "," << y;
    }
    EXPECT_EQ(AEOpenGLUtilities::CopyPixelFloatOut(&context, 1, 1, nullptr, &out), 0);
    EXPECT_EQ(out.blue, 4.0f);
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
