// The texts that users give quorvex's options: keyframe lists, frame ranges,
// frame rates, sequence patterns and depths. Any text either parses into a
// value that holds what its parser promises, or is refused with a ToolError
// that carries a message; nothing else may leave a parser.
#include "FuzzInput.h"

#include "Options/EffectSettings.h"
#include "Options/FrameRange.h"
#include "Options/FrameRate.h"
#include "Options/ImageSequencePattern.h"
#include "Options/NumberText.h"
#include "Options/PixelDepth.h"
#include "Options/ToolError.h"

#include <cmath>
#include <functional>

namespace Halvane::Quorvex::Testing {
namespace {

void ParseKeyframes(const std::string& text)
{
    const Tools::KeyframeList speed =
        Tools::KeyframeList::parse("--speed", text, [](const std::string& value) {
            double number = 0.0;
            if (!Tools::ParseDouble(value, number)) {
                throw Tools::ToolError::usage("--speed: \"" + value + "\" is not a number");
            }
            return number;
        });
    const auto& keyframes = speed.keyframes();
    Require(!keyframes.empty(), "a keyframe list parsed empty", text);
    for (std::size_t i = 0; i < keyframes.size(); ++i) {
        Require(std::isfinite(keyframes[i].seconds) && std::isfinite(keyframes[i].value),
                "a keyframe is not finite", text);
        Require(i == 0 || keyframes[i - 1].seconds < keyframes[i].seconds, "keyframes out of order", text);
    }
    Tools::EffectSettings::parse(text, "");
    Tools::EffectSettings::parse("", text);
}

void ParseRange(const std::string& text)
{
    const Tools::FrameRange range = Tools::FrameRange::parse(text);
    Require(range.first() >= 0 && range.first() <= range.last(), "a frame range is backwards", text);
    Require(range.count() >= 1, "a frame range counts no frame", text);
}

void ParseRate(const std::string& text)
{
    const Tools::FrameRate rate = Tools::FrameRate::parse("--rate", text);
    Require(rate.numerator() > 0 && rate.denominator() > 0, "a frame rate is not positive", text);
    Require(std::isfinite(rate.framesPerSecond()), "a frame rate is not finite", text);
    Require(Tools::FrameRate::parse("--rate", rate.text()).framesPerSecond() > 0.0,
            "a frame rate's own text does not parse", text);
}

void ParsePattern(const std::string& text, long number)
{
    if (Tools::ImageSequencePattern::isPattern(text)) {
        Require(!Tools::ImageSequencePattern(text).pathOf(number).empty(), "a sequence pattern names no file", text);
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace Halvane::Quorvex;
    using namespace Halvane::Quorvex::Testing;
    FuzzInput input(data, size);
    const unsigned parser = input.upTo(255) % 5;
    const long number = input.take<std::int32_t>();
    const std::string text = input.text();
    const std::function<void()> parsers[] = {[&] { ParseKeyframes(text); }, [&] { ParseRange(text); },
                                             [&] { ParseRate(text); }, [&] { ParsePattern(text, number); },
                                             [&] { Tools::ParseDepthOption(text); }};
    try {
        parsers[parser]();
    } catch (const Tools::ToolError& error) {
        Require(std::string(error.what()).size() > 0, "a refusal without a message", text);
    }
    return 0;
}
