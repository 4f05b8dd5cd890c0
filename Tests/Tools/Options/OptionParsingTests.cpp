// Option values as typed: what each option takes, and a usage error naming the option and the culprit
// for what it does not.
#include "Options/EffectSettings.h"
#include "Options/FrameRange.h"
#include "Options/FrameRate.h"
#include "Options/ImageSequencePattern.h"
#include "Options/PixelDepth.h"
#include "Options/ToolError.h"

#include "Runtime/HostRuntime.h"
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
    EXPECT_EQ(ImageSequencePattern("in%%.%d.png").pathOf(1), "in%.1.png");

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

using PatternFolderTest = ToolTest;

TEST_F(PatternFolderTest, ASequenceIsTheFilesThePatternSpells)
{
    for (const char* name :
         {"f.0002.png", "f.0010.png", "f.7.png", "f.0003.png.bak", "g.0001.png", "f.12345.png"}) {
        std::ofstream(path(name)) << "x";
    }
    EXPECT_EQ(ImageSequencePattern(path("f.%04d.png")).existingNumbers(), (std::vector<long>{2, 10, 12345}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
