#pragma once

#include <array>
#include <vector>

namespace Halvane::Quorvex {

// What Block Glitch draws from its randomness for a whole frame.
struct BlockGlitchValues {
    // The shader's 10 * AMT bands.
    static constexpr int kBands = 2;

    // floor(iTime * SPEED * 60): the pattern holds while the tick does.
    float tick = 0.0f;
    // Each band's lower edge (sliceY), its height (sliceH), its upper edge
    // fract(sliceY + sliceH), and how far it moves sideways (hOffset), in
    // texture coordinates. A band whose upper edge wraps below its lower one
    // shifts nothing.
    std::array<float, kBands> bandBottom{};
    std::array<float, kBands> bandHeight{};
    std::array<float, kBands> bandTop{};
    std::array<float, kBands> bandShift{};
    // The random number that picks the offset channel, the channel it picks
    // (0 red, 1 green, 2 blue) and that channel's offset.
    float channelRandom = 0.0f;
    int channel = 0;
    std::array<float, 2> channelOffset{};
};

// One row of Bad TV: whether it tears (1) or shifts with the gap rows (0),
// and its wave offset `of` in pixels (0 where it does not tear). Two floats,
// as the shader's row table holds them.
struct BadTVRow {
    float tears = 0.0f;
    float offset = 0.0f;
};

// What Bad TV draws from its randomness for a frame: `rnd`, and every row.
struct BadTVValues {
    float rnd = 0.0f;
    // Row r is at y = r + 0.5, counted from the bottom as GL sees the frame.
    std::vector<BadTVRow> rows;
};

// All the randomness of both glitches. The shaders draw it from
// fract(sin(x) * 43758.5453), which each GL driver and GPU evaluates to its
// own precision, and the factor turns a difference in the seventh digit into
// another number: evaluated here instead, once per frame, every driver draws
// the same glitch.
//
// The definition: each shader expression in IEEE-754 binary32, one operation
// at a time in the written order, with no fused multiply-add (the file is
// built with -ffp-contract=off); binary32 literals; sin of a binary32 argument
// evaluated in double and rounded to the nearest binary32; GLSL's
// fract(x) = x - floor(x), mod(x, y) = x - y * floor(x / y) and
// step(e, x) = x < e ? 0 : 1.
class GlitchFrameValues {
public:
    // The shaders' iTime: seconds of layer time, times Speed.
    static float shaderTime(float seconds, float speed);

    static BlockGlitchValues blockGlitch(float iTime);
    // `rows`: the frame's height in pixels.
    static BadTVValues badTV(float iTime, int rows);
};

}  // namespace Halvane::Quorvex
