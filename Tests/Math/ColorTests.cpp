#include "Math/BitCompare.h"

#include "Math/Color.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace Halvane::Quorvex {
namespace {

// A channel as the parser forms it: the field divided in float, then widened.
double fromField(unsigned field, float fieldMax)
{
    return Testing::widened(static_cast<float>(field) / fieldMax);
}

::testing::AssertionResult channelsAre(Color const& color, double r, double g, double b, double a)
{
    auto const& c = color.channels;
    return Testing::sameComponents({r, g, b, a}, {c[0], c[1], c[2], c[3]}, "rgba");
}

TEST(ColorEquality, AnyNegativeChannelIsNilOtherwisePerChannelWithTheBoundaryIncluded)
{
    EXPECT_FALSE(Color().isNil());
    EXPECT_FALSE(Color(0, 0, 0, 0).isNil());
    EXPECT_TRUE(Color(1, 1, 1, -1e-300).isNil());
    EXPECT_TRUE((Color(0.2, 0.5, 0.5, 1) - Color(0.5, 0.5, 0.5, 0.5)).isNil());

    // Two nil colours are equal whatever they hold; one nil colour compares per channel.
    EXPECT_TRUE(Color(-1, 0, 0, 0) == Color(0, -2, 0, 0));
    EXPECT_TRUE(Color(-1e-13, 0, 0, 0) == Color(0, 0, 0, 0));
    EXPECT_FALSE(Color(-1, 0, 0, 0) == Color(0, 0, 0, 0));
    EXPECT_TRUE(Color(0, 0, 0, 1e-12) == Color(0, 0, 0, 0));
    EXPECT_TRUE(Color(0, 0, 0, std::nextafter(1e-12, 1.0)) != Color(0, 0, 0, 0));
    EXPECT_FALSE(Color(0, NAN, 0, 0).equal(Color(0, NAN, 0, 0)));
}

TEST(ColorLerp, ClampsTAndRoundsTheFirstWeightToFloat)
{
    Color const from(0.2, 0.4, 0.6, 0.8);
    Color const to(1.0, -1.0, 0.5, 0.0);
    EXPECT_TRUE(channelsAre(Color::lerp(from, to, -3.0), 0.2, 0.4, 0.6, 0.8));
    EXPECT_TRUE(channelsAre(Color::lerp(from, to, 7.0), 1.0, -1.0, 0.5, 0.0));
    EXPECT_TRUE(channelsAre(Color::lerp(from, to, 1.5), 1.0, -1.0, 0.5, 0.0));

    double const nine = Testing::widened(0.9f); // not 0.9
    EXPECT_TRUE(channelsAre(Color::lerp(Color(1, 1, 1, 1), Color(0, 0, 0, 0), 0.1), nine, nine, nine, nine));
}

TEST(ColorFromText, EveryFormReadsAlphaFirstAndAnyOtherTextGivesWhite)
{
    EXPECT_TRUE(channelsAre(Color(std::string("#F00")), 1, 0, 0, 1));
    EXPECT_TRUE(channelsAre(Color(std::string("#8F00")), 1, 0, 0, fromField(8, 15.0f)));
    EXPECT_TRUE(channelsAre(Color(std::string("#FF0000")), 1, 0, 0, 1));
    // The float quotient widened, not 128/255 in double.
    EXPECT_TRUE(channelsAre(Color(std::string("#80FF0000")), 1, 0, 0, 0x1.0101020000000p-1));
    EXPECT_TRUE(channelsAre(Color(std::string("#1abc")), fromField(10, 15.0f), fromField(11, 15.0f),
                            fromField(12, 15.0f), fromField(1, 15.0f)));

    for (char const* text : {"", "FF0000", " #FF0000", "F#F00", "#12345", "#1234567", "#123456789", "#FF",
                             "#-1"}) {
        EXPECT_TRUE(channelsAre(Color(std::string(text)), 1, 1, 1, 1)) << '"' << text << '"';
    }
}

TEST(ColorFromText, DigitsAreConvertedBeforeTheLengthIsChecked)
{
    EXPECT_THROW(Color{std::string("#")}, std::invalid_argument);
    EXPECT_THROW(Color{std::string("#GGG")}, std::invalid_argument);
    EXPECT_THROW(Color{std::string("#GGGGG")}, std::invalid_argument); // length 5 alone would give white
    EXPECT_THROW(Color{std::string("# ")}, std::invalid_argument);
    EXPECT_THROW(Color{std::string("#11112222333344445")}, std::out_of_range);

    // Length 3, of which only "12" converts.
    EXPECT_TRUE(channelsAre(Color(std::string("#12G")), 0, fromField(1, 15.0f), fromField(2, 15.0f), 1));
    // The conversion skips leading blanks and accepts a 0x prefix.
    EXPECT_TRUE(channelsAre(Color(std::string("# F00")), 1, 0, 0, 0));
    EXPECT_TRUE(channelsAre(Color(std::string("#0xFF")), 0, fromField(15, 15.0f), fromField(15, 15.0f), 0));
}

TEST(ColorPacked, TopByteIsAlphaAndHexFieldsAreTruncatedWithoutLeadingZeros)
{
    EXPECT_TRUE(channelsAre(Color(0xFF336699u), 0.20000000298023224, fromField(0x66, 255.0f),
                            fromField(0x99, 255.0f), 1));
    EXPECT_TRUE(channelsAre(Color(0x00FFFFFFu), 1, 1, 1, 0));

    EXPECT_EQ("#FFFFFF", Color(1, 1, 1, 1).toHexString());
    EXPECT_EQ("#000", Color(0, 0, 0, 1).toHexString());
    EXPECT_EQ("#7FFFFFFF", Color(1, 1, 1, 0.5).toHexString());
    EXPECT_EQ("#AAA", Color(0.04, 0.04, 0.04, 1).toHexString());
    EXPECT_EQ("#ABC", Color(0xFF0A0B0Cu).toHexString());
    EXPECT_EQ("#0FF00", Color(0xFF0000u).toHexString());
    // Outside 0..1 the fields grow; a negative one prints as 32-bit unsigned.
    EXPECT_EQ("#1FE00", Color(2, 0, 0, 1).toHexString());
    EXPECT_EQ("#1FEFFFFFF", Color(1, 1, 1, 2).toHexString());
    EXPECT_EQ("#FFFFFF01FFFFFF01FFFFFF01FFFFFF01", Color(-1, -1, -1, -1).toHexString());
    EXPECT_EQ("#7FFFFFFF00", Color(1e300, 0, 0, 1).toHexString());
}

} // namespace
} // namespace Halvane::Quorvex
