// The frame values of both glitches against values computed apart from this
// code: a short Python script with the same definition, rounding every step
// to binary32 through struct packing and taking sin in double.
#include "GlitchFrameValues.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace Halvane::Quorvex::Testing {
namespace {

struct PinnedBlockGlitch {
    int seconds, speed;
    float tick;
    std::array<std::array<float, 4>, BlockGlitchValues::kBands> bands;  // bottom, height, top, shift
    float channelRandom;
    int channel;
    std::array<float, 2> channelOffset;
};

// The rows of a frame of 1,080 whose values are pinned.
constexpr int kPinnedRows[] = {0, 1, 2, 7, 100, 719, 1079};

struct PinnedBadTV {
    int seconds, speed;
    float rnd;
    const char* tears;  // of each pinned row, 1 or 0
    std::array<float, std::size(kPinnedRows)> offsets;
};

// Standing still (0 s, or Speed 0) is tick 0 and rnd 0 whenever it is.
PinnedBlockGlitch Still(int seconds, int speed)
{
    return {seconds, speed, 0.0f,
            {{{0.56640625f, 0.05078125f, 0.6171875f, 0.0753906295f}, {0.265625f, 0.134765625f, 0.400390625f, -0.0617187507f}}},
            0.3671875f, 1, {-0.00885416754f, -0.000472005457f}};
}

PinnedBadTV StillTV(int seconds, int speed)
{
    return {seconds, speed, 0.0f, "0000000", {0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f}};
}

// At 0, 1, 1,000 and 3,600 s and Speed 0, 1 and 3. Among them: a band whose
// top wraps below its bottom (1,000 s, Speed 1), every offset channel, rows
// that do not tear (1,000 s, Speed 3), and rnd 0.
const PinnedBlockGlitch kBlockGlitch[] = {
    Still(0, 0), Still(0, 1), Still(0, 3), Still(1, 0),
    {1, 1, 36.0f,
     {{{0.703125f, 0.0576171875f, 0.760742188f, 0.0946167037f}, {0.24609375f, 0.102539062f, 0.348632812f, 0.0554687455f}}},
     0.51953125f, 1, {0.00130208209f, 0.0229166672f}},
    {1, 3, 108.0f,
     {{{0.259765625f, 0.0966796875f, 0.356445312f, -0.0210937485f}, {0.310546875f, 0.0830078125f, 0.393554688f, -0.067187503f}}},
     0.45703125f, 1, {-0.00286458433f, -0.0166666675f}},
    Still(1000, 0),
    {1000, 1, 36000.0f,
     {{{0.97265625f, 0.181640625f, 0.154296875f, -0.00390625f}, {0.615234375f, 0.190429688f, 0.805664062f, -0.0492187515f}}},
     0.951171875f, 2, {0.0300781243f, 0.00481770933f}},
    {1000, 3, 108000.0f,
     {{{0.654296875f, 0.013671875f, 0.66796875f, -0.00859375298f}, {0.087890625f, 0.172363281f, 0.260253906f, -0.0910156295f}}},
     0.033203125f, 0, {-0.0311197937f, 0.0234375f}},
    Still(3600, 0),
    {3600, 1, 129600.0f,
     {{{0.247558594f, 0.23046875f, 0.478027344f, -0.0257812515f}, {0.5546875f, 0.169921875f, 0.724609375f, 0.0824218765f}}},
     0.546875f, 1, {0.00312500075f, -0.00260416605f}},
    {3600, 3, 388800.0f,
     {{{0.01171875f, 0.013671875f, 0.025390625f, 0.00859375298f}, {0.080078125f, 0.124023438f, 0.204101562f, -0.04296875f}}},
     0.74609375f, 2, {0.0164062493f, -0.00729166716f}},
};

const PinnedBadTV kBadTV[] = {
    StillTV(0, 0), StillTV(0, 1), StillTV(0, 3), StillTV(1, 0),
    {1, 1, 2.75f, "1111111",
     {0.994499505f, 2.85343719f, 4.33920002f, 2.2141211f, -5.02838182f, -4.253613f, 0.841705024f}},
    {1, 3, 0.2734375f, "1111111",
     {-0.391339213f, -0.372443169f, 0.40932253f, 0.310728699f, 0.038512595f, 0.421482384f, -0.0801433176f}},
    StillTV(1000, 0),
    {1000, 1, 2.96875f, "1111111",
     {-5.58590794f, 3.01831007f, 0.936891437f, 2.71639919f, -5.47509718f, 1.61023092f, 3.16599679f}},
    {1000, 3, 1.421875f, "1011101",
     {-1.67552567f, 0.0f, 0.0255016144f, 0.0723324195f, -2.36902261f, 0.0f, -0.285263062f}},
    StillTV(3600, 0),
    {3600, 1, 2.609375f, "1111111",
     {-5.06819344f, 3.91514969f, -1.87221968f, -4.65225887f, 1.54793465f, 2.98899937f, -0.717473209f}},
    {3600, 3, 2.12109375f, "1111111",
     {3.90000606f, -1.48486078f, -1.8535372f, -4.14519501f, 3.94518304f, 2.59567618f, -4.16028786f}},
};

float ShaderTime(int seconds, int speed)
{
    return GlitchFrameValues::shaderTime(static_cast<float>(seconds), static_cast<float>(speed));
}

std::string Moment(int seconds, int speed)
{
    return std::to_string(seconds) + " s, Speed " + std::to_string(speed);
}

TEST(GlitchFrameValuesTest, BlockGlitchValuesAreThoseOfTheDefinition)
{
    for (const PinnedBlockGlitch& pinned : kBlockGlitch) {
        const BlockGlitchValues values = GlitchFrameValues::blockGlitch(ShaderTime(pinned.seconds, pinned.speed));
        const std::string at = Moment(pinned.seconds, pinned.speed);
        EXPECT_EQ(values.tick, pinned.tick) << at;
        for (int band = 0; band < BlockGlitchValues::kBands; ++band) {
            EXPECT_EQ((std::array<float, 4>{values.bandBottom[band], values.bandHeight[band], values.bandTop[band],
                                            values.bandShift[band]}),
                      pinned.bands[band])
                << at << ", band " << band;
        }
        EXPECT_EQ(values.channelRandom, pinned.channelRandom) << at;
        EXPECT_EQ(values.channel, pinned.channel) << at;
        EXPECT_EQ(values.channelOffset, pinned.channelOffset) << at;
    }
}

TEST(GlitchFrameValuesTest, BadTVValuesAreThoseOfTheDefinition)
{
    constexpr int kRows = 1080;
    for (const PinnedBadTV& pinned : kBadTV) {
        const BadTVValues values = GlitchFrameValues::badTV(ShaderTime(pinned.seconds, pinned.speed), kRows);
        const std::string at = Moment(pinned.seconds, pinned.speed);
        EXPECT_EQ(values.rnd, pinned.rnd) << at;
        ASSERT_EQ(values.rows.size(), static_cast<std::size_t>(kRows)) << at;
        for (std::size_t i = 0; i < std::size(kPinnedRows); ++i) {
            const BadTVRow& actual = values.rows[static_cast<std::size_t>(kPinnedRows[i])];
            EXPECT_EQ(actual.tears, pinned.tears[i] == '1' ? 1.0f : 0.0f) << at << ", row " << kPinnedRows[i];
            EXPECT_EQ(actual.offset, pinned.offsets[i]) << at << ", row " << kPinnedRows[i];
        }
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
