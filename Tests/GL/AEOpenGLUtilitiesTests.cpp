// Pixel transfer between host worlds and GL: what an upload puts in the
// texture at each depth, padded rows included, what a read-back writes into
// worlds of other sizes, and what every failure throws and gives back.
#include "RenderContextTest.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::FloatNear;
using ::testing::Pointwise;

using Host::HostCall;
using Host::World;

// Distinct values in every channel and row, from 0 to white.
double Pattern(A_long x, A_long y, int channel)
{
    return static_cast<double>((x * 7 + y * 13 + channel * 3) % 17) / 16.0;
}

class UtilitiesTest : public RenderContextTest {
protected:
    // Runs `work`, which should throw an int, and gives the int (0 if none).
    static int thrownBy(const std::function<void()>& work)
    {
        try {
            work();
        } catch (int error) {
            return error;
        }
        return 0;
    }

    GLuint upload(World& input, unsigned long& pixelSize, GLenum& type, float& multiplier)
    {
        PF_InData inData = mHost.inData();
        return AEOpenGLUtilities::UploadTexture(input.format(), input.layer(), nullptr, &inData, pixelSize, type,
                                                multiplier, false);
    }

    // Reads a 2 by 2 frame of opaque (A, R, G, B) = (1, 0.5, 0.25, 0) back
    // into `output`.
    void download(World& output, PF_PixelFormat format)
    {
        const unsigned long sizes[] = {4, 8, 16};
        const GLenum types[] = {GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT, GL_FLOAT};
        const int depth = format == PF_PixelFormat_ARGB32 ? 0 : format == PF_PixelFormat_ARGB64 ? 1 : 2;
        World input(2, 2, format);
        PF_InData inData = mHost.inData();
        AEOpenGLUtilities::DownloadTexture(2, 2, input.layer(), output.layer(), &inData, format, sizes[depth],
                                           types[depth]);
    }

    // A complete 2 by 2 framebuffer holding the frame that download() reads.
    void bindFrame(PF_PixelFormat format)
    {
        frame().prepare(2, 2, false, AEOpenGLUtilities::RenderTargetFormat(format));
        frame().beginDrawing();
        glClearColor(1.0f, 0.5f, 0.25f, 0.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    void expectNothingHeld()
    {
        EXPECT_EQ(mHost.suites().outstanding(), 0u);
        EXPECT_EQ(mHost.handles().openHandles(), 0u);
        EXPECT_EQ(mHost.handles().lockedHandles(), 0u);
        EXPECT_EQ(mHost.handles().misuses(), 0u);
    }
};

struct Layout {
    PF_PixelFormat format;
    A_long padding;
};

class UploadTest : public UtilitiesTest, public ::testing::WithParamInterface<Layout> {};

TEST_P(UploadTest, TheTextureHoldsTheWorldRowForRowInTheHostsChannelOrder)
{
    const Layout layout = GetParam();
    World input(5, 3, layout.format, layout.padding);
    const bool isFloat = layout.format == PF_PixelFormat_ARGB128;
    HostPixels::fill(input, [&](A_long x, A_long y, int channel) {
        return isFloat && x == 1 ? 2.5 + y : Pattern(x, y, channel);
    });

    unsigned long pixelSize = 0;
    GLenum type = GL_NONE;
    float multiplier = 0.0f;
    const GLuint texture = upload(input, pixelSize, type, multiplier);

    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0);
    EXPECT_EQ(integer(GL_UNPACK_ROW_LENGTH), 0);
    EXPECT_EQ(pixelSize, input.pixelSize());
    const std::vector<float> texels = textureContents(texture);
    glDeleteTextures(1, &texture);
    // GL normalises a channel by its type's maximum, not by the host's white.
    const double scale = HostPixels::white(layout.format) /
                         (layout.format == PF_PixelFormat_ARGB32 ? 255.0
                          : layout.format == PF_PixelFormat_ARGB64 ? 65535.0 : 1.0);
    std::vector<float> expected;
    for (A_long y = 0; y < input.height(); ++y) {
        for (A_long x = 0; x < input.width(); ++x) {
            for (int channel = 0; channel < 4; ++channel) {
                expected.push_back(static_cast<float>(HostPixels::get(input, x, y, channel) * scale));
            }
        }
    }
    EXPECT_THAT(texels, Pointwise(FloatNear(1e-6f), expected));
    switch (layout.format) {
    case PF_PixelFormat_ARGB32:
        EXPECT_EQ(type, GL_UNSIGNED_BYTE);
        EXPECT_EQ(multiplier, 1.0f);
        break;
    case PF_PixelFormat_ARGB64: {
        EXPECT_EQ(type, GL_UNSIGNED_SHORT);
        std::uint32_t bits = 0;
        std::memcpy(&bits, &multiplier, sizeof bits);
        EXPECT_EQ(bits, 0x3FFFFF00u);
        break;
    }
    default:
        EXPECT_EQ(type, GL_FLOAT);
        EXPECT_EQ(multiplier, 1.0f);
        break;
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, UploadTest,
                         ::testing::Values(Layout{PF_PixelFormat_ARGB32, 12}, Layout{PF_PixelFormat_ARGB32, 3},
                                           Layout{PF_PixelFormat_ARGB64, 24}, Layout{PF_PixelFormat_ARGB64, 6},
                                           Layout{PF_PixelFormat_ARGB128, 32}, Layout{PF_PixelFormat_ARGB128, 0}));

TEST_F(UtilitiesTest, AnUnknownFormatIsRefusedByBothDirectionsBeforeAnythingIsTaken)
{
    const PF_PixelFormat unknown = 0x34333231;  // "1234"
    World world(2, 2, unknown, 4);
    std::memset(world.row(0), 0x3C, 8);
    const std::vector<unsigned char> before = HostPixels::bytes(world);
    PF_InData inData = mHost.inData();
    GLCallLog log;
    unsigned long pixelSize = 0;
    GLenum type = GL_NONE;
    float multiplier = 0.0f;

    const std::string said = standardErrorOf([&] {
        EXPECT_EQ(thrownBy([&] {
                      AEOpenGLUtilities::UploadTexture(unknown, world.layer(), world.layer(), &inData, pixelSize,
                                                       type, multiplier, false);
                  }),
                  PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_EQ(thrownBy([&] {
                      AEOpenGLUtilities::DownloadTexture(2, 2, world.layer(), world.layer(), &inData, unknown, 4,
                                                         GL_UNSIGNED_BYTE);
                  }),
                  PF_Err_BAD_CALLBACK_PARAM);
    });

    EXPECT_EQ(occurrences(said, "Quorvex: pixel format 0x34333231 is not one of"), 2u);
    EXPECT_EQ(log.count("glGenTextures"), 0u);
    EXPECT_EQ(log.count("glReadPixels"), 0u);
    EXPECT_EQ(HostPixels::bytes(world), before);
    EXPECT_TRUE(world.paddingIntact());
    EXPECT_TRUE(mHost.suites().log().empty());
    expectNothingHeld();
}

TEST_F(UtilitiesTest, AFrameBeyondTheLargestTextureIsRefusedWithOneLine)
{
    const A_long wide = integer(GL_MAX_TEXTURE_SIZE) + 1;
    World input(wide, 1, PF_PixelFormat_ARGB32);
    GLCallLog log;
    unsigned long pixelSize = 0;
    GLenum type = GL_NONE;
    float multiplier = 0.0f;

    const std::string said = standardErrorOf([&] {
        EXPECT_EQ(thrownBy([&] { upload(input, pixelSize, type, multiplier); }), PF_Err_BAD_CALLBACK_PARAM);
    });

    EXPECT_EQ(said, "Quorvex: a frame of " + std::to_string(wide) + "x1 pixels exceeds this OpenGL's largest texture (" +
                        std::to_string(wide - 1) + ")\n");
    EXPECT_EQ(log.count("glGenTextures"), 0u);
}

struct HostFailure {
    const char* what;
    PF_PixelFormat format;
    bool upload;
    HostCall call;
    A_long status;
    int thrown;
};

class HostFailureTest : public UtilitiesTest, public ::testing::WithParamInterface<HostFailure> {};

TEST_P(HostFailureTest, ThrowsTheHostsNumberGivesEverythingBackAndWritesNothing)
{
    const HostFailure failure = GetParam();
    World world(3, 2, failure.format, 8);
    HostPixels::fill(world, Pattern);
    const std::vector<unsigned char> before = HostPixels::bytes(world);
    if (!failure.upload) {
        bindFrame(failure.format);
    }
    mHost.failures().fail(failure.call, failure.status);
    GLCallLog log;

    const int thrown = thrownBy([&] {
        if (failure.upload) {
            unsigned long pixelSize = 0;
            GLenum type = GL_NONE;
            float multiplier = 0.0f;
            upload(world, pixelSize, type, multiplier);
        } else {
            download(world, failure.format);
        }
    });

    EXPECT_EQ(thrown, failure.thrown);
    EXPECT_GT(mHost.failures().calls(failure.call), 0);
    EXPECT_EQ(log.count("glGenTextures"), 0u) << "a texture was made before the host's pixels were in hand";
    EXPECT_EQ(integer(GL_UNPACK_ROW_LENGTH), 0);
    EXPECT_EQ(HostPixels::bytes(world), before);
    EXPECT_TRUE(world.paddingIntact());
    expectNothingHeld();
}

INSTANTIATE_TEST_SUITE_P(
    Failures, HostFailureTest,
    ::testing::Values(
        HostFailure{"UploadIterate", PF_PixelFormat_ARGB128, true, HostCall::Iterate, 42, 42},
        HostFailure{"UploadPixelData8", PF_PixelFormat_ARGB32, true, HostCall::GetPixelData, 43, 43},
        HostFailure{"UploadPixelData16", PF_PixelFormat_ARGB64, true, HostCall::GetPixelData, 44, 44},
        HostFailure{"DownloadIterate", PF_PixelFormat_ARGB128, false, HostCall::Iterate, 45, 45},
        HostFailure{"DownloadPixelData", PF_PixelFormat_ARGB64, false, HostCall::GetPixelData, 46, 46},
        HostFailure{"DownloadHandle", PF_PixelFormat_ARGB32, false, HostCall::NewHandle, 1, PF_Err_OUT_OF_MEMORY}),
    [](const auto& test) { return std::string(test.param.what); });

class ReadBackTest : public UtilitiesTest, public ::testing::WithParamInterface<PF_PixelFormat> {};

TEST_P(ReadBackTest, AnOutputOfAnotherSizeGetsOnlyThePixelsBothHave)
{
    const PF_PixelFormat format = GetParam();
    bindFrame(format);
    // The frame's target stores (1, 0.5, 0.25, 0) in steps of 1/255 or
    // 1/65535; the host counts 8-bit steps from 255, 16-bit ones from 32768.
    const double steps = format == PF_PixelFormat_ARGB32 ? 255.0 : 65535.0;
    const double hostSteps = format == PF_PixelFormat_ARGB64 ? 32768.0 : steps;
    std::vector<double> framePixel;
    for (const double value : {1.0, 0.5, 0.25, 0.0}) {
        framePixel.push_back(std::round(value * steps) / hostSteps);
    }
    for (const auto& [width, height] : {std::pair{4, 3}, std::pair{1, 1}, std::pair{3, 0}}) {
        SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
        World output(width, height, format, 16);
        HostPixels::fill(output, [](A_long, A_long, int) { return 0.125; });
        const double marker = height > 0 ? HostPixels::get(output, 0, 0, 0) : 0.0;

        download(output, format);

        for (A_long y = 0; y < height; ++y) {
            for (A_long x = 0; x < width; ++x) {
                for (int channel = 0; channel < 4; ++channel) {
                    const double expected = x < 2 && y < 2 ? framePixel[channel] : marker;
                    EXPECT_NEAR(HostPixels::get(output, x, y, channel), expected, 1e-6)
                        << "at " << x << "," << y << " channel " << channel;
                }
            }
        }
        EXPECT_TRUE(output.paddingIntact());
        expectNothingHeld();
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, ReadBackTest,
                         ::testing::Values(PF_PixelFormat_ARGB32, PF_PixelFormat_ARGB64, PF_PixelFormat_ARGB128));

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
