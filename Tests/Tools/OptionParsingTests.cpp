// The option values users type: keyframe lists, glitch names, speeds checked
// against the effect's range, depths, rates, frame ranges and patterns.
#include "EffectSettings.h"
#include "FrameRange.h"
#include "FrameRate.h"
#include "ImageSequencePattern.h"
#include "KeyframeList.h"
#include "NumberText.h"
#include "PixelDepth.h"
#include "ToolError.h"

#include "Runtime/HostRuntime.h"
#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::HasSubstr;
using Tools::ToolError;

// The message of the usage error `parse` throws.
template <typename Parse>
std::string UsageMessage(Parse parse)
{
    try {
        parse();
    } catch (const ToolError& error) {
        EXPECT_EQ(error.exitCode(), ToolError::kUsageExitCode) << error.what();
        return error.what();
    }
    ADD_FAILURE() << "no error";
    return std::string();
}

double Number(const std::string& text)
{
    double value = 0.0;
    if (!Tools::ParseDouble(text, value)) {
        throw ToolError::usage("'" + text + "' is not a number");
    }
    return value;
}

TEST(KeyframeListTest, OneValueOrKeyframesInOrderOfTime)
{
    const auto single = Tools::KeyframeList::parse("--speed", " 1.5 ", Number);
    ASSERT_EQ(single.keyframes().size(), 1u);
    EXPECT_TRUE(single.isConstant());
    EXPECT_EQ(single.keyframes()[0].value, 1.5);

    const auto list = Tools::KeyframeList::parse("--speed", "4:3, 0:0.5 ,-1.5:2", Number);
    ASSERT_EQ(list.keyframes().size(), 3u);
    EXPECT_EQ(list.keyframes()[0].seconds, -1.5);
    EXPECT_EQ(list.keyframes()[1].seconds, 0.0);
    EXPECT_EQ(list.keyframes()[1].value, 0.5);
    EXPECT_EQ(list.keyframes()[2].seconds, 4.0);
    EXPECT_EQ(Tools::KeyframeList::parse("--speed", "2:1", Number).keyframes()[0].seconds, 2.0);
}

TEST(KeyframeListTest, MalformedListsNameTheOptionAndTheCulprit)
{
    const auto message = [](const std::string& text) {
        return UsageMessage([&] { Tools::KeyframeList::parse("--speed", text, Number); });
    };
    EXPECT_THAT(message(""), HasSubstr("--speed: no value"));
    EXPECT_THAT(message("0:1,"), HasSubstr("empty"));
    EXPECT_THAT(message("0:1,,2:2"), HasSubstr("empty"));
    EXPECT_THAT(message("0:1;2:3"), HasSubstr("'1;2:3' is not a number"));
    EXPECT_THAT(message("0:1,5"), HasSubstr("entry '5' is not SECONDS:VALUE"));
    EXPECT_THAT(message("soon:1"), HasSubstr("'soon' is not a time"));
    EXPECT_THAT(message("1:"), HasSubstr("at 1 s has no value"));
    EXPECT_THAT(message("1:2,1.0:3"), HasSubstr("two keyframes at 1 s"));
    EXPECT_THAT(message("-1e308:1,1e308:2"), HasSubstr("too far apart"));
}

TEST(EffectSettingsTest, GlitchNamesInAnySpellingAndSpeedsOnlyAsNumbers)
{
    EXPECT_EQ(Tools::EffectSettings::glitchTypeOf("block"), 1);
    EXPECT_EQ(Tools::EffectSettings::glitchTypeOf("Block Glitch"), 1);
    EXPECT_EQ(Tools::EffectSettings::glitchTypeOf("badtv"), 2);
    EXPECT_EQ(Tools::EffectSettings::glitchTypeOf("Bad-TV"), 2);
    EXPECT_THAT(UsageMessage([] { Tools::EffectSettings::glitchTypeOf("tv"); }), HasSubstr("'tv'"));
    EXPECT_THAT(UsageMessage([] { Tools::EffectSettings::parse("0:block,1:noise", ""); }),
                HasSubstr("'noise'"));
    EXPECT_THAT(UsageMessage([] { Tools::EffectSettings::parse("", "0:1,2:fast"); }),
                HasSubstr("--speed: 'fast' is not a number"));
}

class EffectSettingsApplyTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        PF_ParamDef popup{};
        popup.param_type = PF_Param_POPUP;
        std::strcpy(popup.name, "Glitch Type");
        popup.u.pd.value = 1;
        popup.u.pd.num_choices = 2;
        popup.u.pd.u.namesptr = "Block Glitch|Bad TV";
        ASSERT_EQ(host.addParam(-1, popup), PF_Err_NONE);
        PF_ParamDef slider{};
        slider.param_type = PF_Param_FLOAT_SLIDER;
        std::strcpy(slider.name, "Speed");
        slider.u.fs_d.valid_min = 0.0f;
        slider.u.fs_d.valid_max = 3.0f;
        slider.u.fs_d.value = 1.0;
        ASSERT_EQ(host.addParam(-1, slider), PF_Err_NONE);
    }

    Host::HostRuntime host;
};

TEST_F(EffectSettingsApplyTest, SpeedsOutsideTheEffectsRangeAreRefused)
{
    EXPECT_THAT(UsageMessage([&] { Tools::EffectSettings::parse("", "3.01").applyTo(host); }),
                HasSubstr("3.01 is outside the valid range of Speed, 0 to 3"));
    EXPECT_THAT(UsageMessage([&] { Tools::EffectSettings::parse("", "0:1,1:-1").applyTo(host); }),
                HasSubstr("-1 is outside"));
    Tools::EffectSettings::parse("", "0:0,1:3").applyTo(host);

    host.clearParameters();
    try {
        Tools::EffectSettings::parse("", "1").applyTo(host);
        ADD_FAILURE() << "a module without Speed was accepted";
    } catch (const ToolError& error) {
        EXPECT_EQ(error.exitCode(), ToolError::kRuntimeExitCode);
        EXPECT_THAT(error.what(), HasSubstr("'Speed'"));
    }
}

TEST(SimpleOptionTest, DepthsRatesAndRanges)
{
    EXPECT_FALSE(Tools::ParseDepthOption("auto"));
    EXPECT_EQ(Tools::ParseDepthOption("16"), Tools::PixelDepth::Sixteen);
    EXPECT_EQ(Tools::ParseDepthOption("32"), Tools::PixelDepth::Float);
    EXPECT_THAT(UsageMessage([] { Tools::ParseDepthOption("10"); }), HasSubstr("--depth: '10'"));

    const auto rate = [](const std::string& text) {
        const Tools::FrameRate parsed = Tools::FrameRate::parse("--fps", text);
        return std::make_pair(parsed.numerator(), parsed.denominator());
    };
    EXPECT_EQ(rate("24"), std::make_pair(24L, 1L));
    EXPECT_EQ(rate("29.97"), std::make_pair(30000L, 1001L));
    EXPECT_EQ(rate("23.976"), std::make_pair(24000L, 1001L));
    EXPECT_EQ(rate("12.5"), std::make_pair(25L, 2L));
    EXPECT_EQ(rate("60000/2002"), std::make_pair(30000L, 1001L));
    for (const char* bad : {"0", "-24", "fast", "24/0", "1/x"}) {
        EXPECT_THAT(UsageMessage([&] { rate(bad); }),
                    HasSubstr(std::string("--fps: '") + bad + "'"));
    }

    const Tools::FrameRange range = Tools::FrameRange::parse("7:9");
    EXPECT_EQ(range.first(), 7);
    EXPECT_EQ(range.count(), 3u);
    EXPECT_EQ(Tools::FrameRange::parse("0:9223372036854775807").count(), std::size_t{1} << 63);
    for (const char* bad : {"9:7", "7", "a:b", "-1:3"}) {
        EXPECT_THAT(UsageMessage([&] { Tools::FrameRange::parse(bad); }), HasSubstr("--frames"));
    }
}

class ImageSequencePatternTest : public ToolTest {};

TEST_F(ImageSequencePatternTest, PlaceholdersNumbersAndTheFilesThatMatch)
{
    EXPECT_TRUE(Tools::ImageSequencePattern::isPattern("shots/frame.%04d.png"));
    EXPECT_TRUE(Tools::ImageSequencePattern::isPattern("frame.###.exr"));
    EXPECT_TRUE(Tools::ImageSequencePattern::isPattern("f%d.tif"));
    EXPECT_FALSE(Tools::ImageSequencePattern::isPattern("100%.png"));
    EXPECT_FALSE(Tools::ImageSequencePattern::isPattern("take%02d/frame.png"))
        << "only the file name counts";
    EXPECT_THAT(UsageMessage([] { Tools::ImageSequencePattern("a%02d.%04d.png"); }),
                HasSubstr("has 2"));

    for (const char* absurd : {"f%020d.png", "f%814385413d.png", "f%84111111111111111111d.png"}) {
        EXPECT_THAT(UsageMessage([&] { Tools::ImageSequencePattern{absurd}; }), HasSubstr("more than 9 digits"));
    }
    EXPECT_EQ(Tools::ImageSequencePattern("shots/frame.%04d.png").pathOf(7),
              "shots/frame.0007.png");
    EXPECT_EQ(Tools::ImageSequencePattern("frame.##.png").pathOf(123), "frame.123.png");
    EXPECT_EQ(Tools::ImageSequencePattern("f%d.tif").pathOf(42), "f42.tif");

    for (const char* name :
         {"f.0002.png", "f.0010.png", "f.7.png", "f.0003.png.bak", "g.0001.png", "f.12345.png"}) {
        std::ofstream(path(name)) << "x";
    }
    EXPECT_EQ(Tools::ImageSequencePattern(path("f.%04d.png")).existingNumbers(),
              (std::vector<long>{2, 10, 12345}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
