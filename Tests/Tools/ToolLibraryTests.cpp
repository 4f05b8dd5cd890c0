// The program's library apart from a render: option values, output kinds, pixels between files and host
// worlds, frame times, and the temporary files of the output side.
#include "AtomicOutputFile.h"
#include "EffectSettings.h"
#include "FrameConverter.h"
#include "FrameRange.h"
#include "FrameRate.h"
#include "FrameTimeline.h"
#include "ImageSequencePattern.h"
#include "OutputFolder.h"
#include "PixelDepth.h"
#include "RgbaFrame.h"
#include "SinkFactory.h"
#include "TemporaryFileRegistry.h"
#include "ToolError.h"
#include "VideoEncoderChoice.h"

#include "Runtime/HostRuntime.h"
#include "Runtime/World.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <fstream>
#include <functional>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::HasSubstr;
using namespace Tools;

std::pair<long, long> Rate(const std::string& text)
{
    const FrameRate parsed = FrameRate::parse("--fps", text);
    return {parsed.numerator(), parsed.denominator()};
}

TEST(OptionParsingTest, MalformedValuesAreUsageErrorsNamingTheOptionAndTheCulprit)
{
    const auto keyframes = [](const char* text) { return [=] { EffectSettings::parse("", text); }; };
    const auto rate = [](const char* text) { return [=] { Rate(text); }; };
    const auto range = [](const char* text) { return [=] { FrameRange::parse(text); }; };
    const auto pattern = [](const char* text) { return [=] { ImageSequencePattern{text}; }; };
    const std::pair<std::function<void()>, std::string> cases[] = {
        {keyframes(" "), "--speed: no value"},
        {keyframes("0:1,"), "empty"},
        {keyframes("0:1,,2:2"), "empty"},
        {keyframes("0:1;2:3"), "--speed: '1;2:3' is not a number"},
        {keyframes("0:1,5"), "entry '5' is not SECONDS:VALUE"},
        {keyframes("soon:1"), "'soon' is not a time"},
        {keyframes("1:"), "at 1 s has no value"},
        {keyframes("1:2,0:1,1.0:3"), "two keyframes at 1 s"},
        {keyframes("-1e308:1,1e308:2"), "too far apart"},
        {[] { EffectSettings::parse("0:block,1:noise", ""); }, "'noise'"},
        {[] { ParseDepthOption("10"); }, "--depth: '10'"},
        {rate("0"), "--fps: '0'"},
        {rate("-24"), "--fps: '-24'"},
        {rate("fast"), "--fps: 'fast'"},
        {rate("24/0"), "--fps: '24/0'"},
        {rate("1/x"), "--fps: '1/x'"},
        {range("9:7"), "--frames"},
        {range("7"), "--frames"},
        {range("a:b"), "--frames"},
        {range("-1:3"), "--frames"},
        {pattern("a%02d.%04d.png"), "has 2"},
        {pattern("f%020d.png"), "more than 9 digits"},
        {pattern("f%814385413d.png"), "more than 9 digits"},
        {pattern("f%84111111111111111111d.png"), "more than 9 digits"},
    };
    for (const auto& [parse, words] : cases) {
        try {
            parse();
            ADD_FAILURE() << "no error for " << words;
        } catch (const ToolError& error) {
            EXPECT_EQ(error.exitCode(), ToolError::kUsageExitCode) << error.what();
            EXPECT_THAT(error.what(), HasSubstr(words));
        }
    }
}

TEST(OptionParsingTest, GlitchNamesRatesRangesAndPatterns)
{
    for (const auto& [name, type] : {std::pair{"block", 1}, {"Block Glitch", 1}, {"Bad-TV", 2}}) {
        EXPECT_EQ(EffectSettings::glitchTypeOf(name), type) << name;
    }
    EXPECT_EQ(Rate("23.976"), std::make_pair(24000L, 1001L));
    EXPECT_EQ(Rate("12.5"), std::make_pair(25L, 2L));
    EXPECT_EQ(Rate("60000/2002"), std::make_pair(30000L, 1001L));
    EXPECT_EQ(FrameRange::parse("0:9223372036854775807").count(), std::size_t{1} << 63);

    for (const auto& [name, pattern] : {std::pair{"frame.###.exr", true}, {"f%d.tif", true},
                                        {"100%.png", false}, {"take%02d/frame.png", false},
                                        {"100%%d.png", false}, {"100%%%d.png", true}}) {
        EXPECT_EQ(ImageSequencePattern::isPattern(name), pattern) << name;
    }
    EXPECT_EQ(ImageSequencePattern("shots/frame.%04d.png").pathOf(7), "shots/frame.0007.png");
    EXPECT_EQ(ImageSequencePattern("frame.##.png").pathOf(123), "frame.123.png");

    // A module without Speed cannot take a speed: the module's fault, not the user's.
    Host::HostRuntime host;
    try {
        EffectSettings::parse("", "1").applyTo(host);
        ADD_FAILURE() << "a module without Speed was accepted";
    } catch (const ToolError& error) {
        EXPECT_EQ(error.exitCode(), ToolError::kRuntimeExitCode);
        EXPECT_THAT(error.what(), HasSubstr("'Speed'"));
    }
}

TEST(OutputChoiceTest, ExtensionsChooseTheKindTheCodecAndItsClock)
{
    // The common cases are rendered in VideoRenderTests.
    EXPECT_EQ(SinkFactory::classify("a.EXR", false), SinkFactory::Kind::Still);
    EXPECT_THROW(SinkFactory::classify("noextension", false), ToolError);
    EXPECT_THROW(SinkFactory::classify("f.%04d.xyz", true), ToolError);

    auto mp4 = VideoEncoderChoice::choose("a.mp4", "");
    mp4.fitTo(63, 48, PixelDepth::Eight, false);
    EXPECT_EQ(mp4.pixelFormat(), AV_PIX_FMT_YUV444P) << "4:2:0 cannot hold an odd width";
    EXPECT_FALSE(mp4.note().empty());
    auto mkv = VideoEncoderChoice::choose("a.mkv", "");
    mkv.fitTo(64, 48, PixelDepth::Sixteen, true);
    EXPECT_EQ(mkv.pixelFormat(), AV_PIX_FMT_GBRAP16LE);
    EXPECT_STREQ(VideoEncoderChoice::choose("a.mkv", "h264").codec()->name, "libx264")
        << "a codec's name stands for its encoder";
    EXPECT_THROW(VideoEncoderChoice::choose("a.mp4", "ffv1"), ToolError) << "MP4 cannot hold FFV1";

    // Encoders that state their rate as the clock count one tick a frame at a rate they take.
    const auto clock = [](const char* target, const char* codec, long numerator, long denominator) {
        const VideoEncoderChoice::Clock chosen =
            VideoEncoderChoice::choose(target, codec).clockFor(FrameRate(numerator, denominator), {1, 12000});
        return std::vector<int>{chosen.rate.num, chosen.rate.den, chosen.timeBase.num, chosen.timeBase.den};
    };
    // MPEG-1's standard rates start at 23.976; MPEG-2 reaches 12 and 1000/1001 multiples of its own.
    EXPECT_EQ(clock("a.mpg", "", 12, 1), (std::vector<int>{24000, 1001, 1001, 24000}));
    EXPECT_EQ(clock("a.ts", "", 12, 1), (std::vector<int>{12, 1, 1, 12}));
    EXPECT_EQ(clock("a.ts", "", 30000, 1001), (std::vector<int>{30000, 1001, 1001, 30000}));
    EXPECT_EQ(clock("a.ts", "", 1000, 1), (std::vector<int>{240, 1, 1, 240})) << "the fastest MPEG-2 takes";
    EXPECT_EQ(clock("a.ogv", "", 12, 1), (std::vector<int>{12, 1, 1, 12}));
    EXPECT_EQ(clock("a.y4m", "", 25, 1), (std::vector<int>{25, 1, 1, 25}));
    EXPECT_EQ(clock("a.mp4", "", 12, 1), (std::vector<int>{12, 1, 1, 12000})) << "others keep the fine clock";
}

TEST(FrameConverterTest, SixteenBitValuesSurviveTheTripFloatsPassUnclampedAndDeeperPicturesClampAndRound)
{
    for (unsigned host = 0; host <= 32768; ++host) {
        const auto value = static_cast<A_u_short>(host);
        ASSERT_EQ(FrameConverter::fileToHost16(FrameConverter::hostToFile16(value)), value) << host;
    }
    EXPECT_EQ(FrameConverter::hostToFile16(40000), 65535) << "above white is white";
    for (unsigned file = 0; file <= 65535; ++file) {
        const long back = FrameConverter::hostToFile16(
            FrameConverter::fileToHost16(static_cast<std::uint16_t>(file)));
        ASSERT_LE(std::labs(back - static_cast<long>(file)), 1) << file;
    }

    // Floats pass unclamped; deeper pictures clamp and round.
    RgbaFrame floating(1, 1, PixelDepth::Float);
    const float samplesFloat[] = {-0.5f, 0.5f, 2.0f, 0.75f};
    std::copy(std::begin(samplesFloat), std::end(samplesFloat), floating.samplesFloat());
    Host::World worldFloat(1, 1, PF_PixelFormat_ARGB128);
    FrameConverter::toWorld(floating, worldFloat);
    EXPECT_EQ(worldFloat.pixelFloat(0, 0).red, -0.5f) << "float values pass unclamped";
    EXPECT_EQ(worldFloat.pixelFloat(0, 0).blue, 2.0f);
    const RgbaFrame deep = floating.convertedTo(PixelDepth::Sixteen);
    EXPECT_EQ(std::vector<int>(deep.samples16(), deep.samples16() + 3), std::vector<int>({0, 32768, 65535}))
        << "clamped, and half of 65535 rounded up";
    EXPECT_EQ(deep.convertedTo(PixelDepth::Eight).samples8()[1], 128);
}

TEST(FrameTimelineTest, ClipsCountInTheirRatesUnitsAndStillsOnAFineScale)
{
    const auto ntsc = FrameTimeline::forClip(FrameRate(30000, 1001), 0.5);
    const Host::FrameTime tenth = ntsc.timeOf(10);
    EXPECT_EQ(tenth.value, 15000 + 10 * 1001);
    EXPECT_EQ(tenth.step, 1001);
    EXPECT_EQ(tenth.scale, 30000u);
    EXPECT_THROW(FrameTimeline::forStill(1e6), ToolError);
    EXPECT_THROW(FrameTimeline::forClip(FrameRate(24, 1), 1e9), ToolError);
    EXPECT_THROW(ntsc.timeOf(3000000), ToolError) << "3 million frames of 1001 units pass 2^31";
}

using FolderTest = ToolTest;

TEST_F(FolderTest, ASequenceIsTheFilesThePatternSpells)
{
    for (const char* name :
         {"f.0002.png", "f.0010.png", "f.7.png", "f.0003.png.bak", "g.0001.png", "f.12345.png"}) {
        std::ofstream(path(name)) << "x";
    }
    EXPECT_EQ(ImageSequencePattern(path("f.%04d.png")).existingNumbers(), (std::vector<long>{2, 10, 12345}));
}

TEST_F(FolderTest, TheRegistryRemovesWhatASecondInterruptLeaves)
{
    // A second interrupt cannot wait for the outputs' own clean-up; the folders made for them go too.
    AtomicOutputFile first(path("a.mp4"));
    OutputFolder made(path("made/deeper"));
    AtomicOutputFile second(path("made/deeper/b.mp4"));
    ASSERT_EQ(files().size(), 2u) << "reserved at once";
    TemporaryFileRegistry::removeAll();
    EXPECT_TRUE(files().empty());
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
