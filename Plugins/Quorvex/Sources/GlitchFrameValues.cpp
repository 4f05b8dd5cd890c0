#include "GlitchFrameValues.h"

#include <cmath>

namespace Halvane::Quorvex {

namespace {

// The shaders' constants, as binary32.
constexpr float kHashScale = 43758.5453f;
constexpr float kAmount = 0.2f;       // Block Glitch's AMT
constexpr float kTickSpeed = 0.6f;    // Block Glitch's SPEED

float Fract(float x)
{
    return x - std::floor(x);
}

float Mod(float x, float y)
{
    const float quotient = x / y;
    const float whole = y * std::floor(quotient);
    return x - whole;
}

float Sin(float x)
{
    return static_cast<float>(std::sin(static_cast<double>(x)));
}

// fract(sin(dot(n, k)) * 43758.5453), the random function of both shaders.
float Hash(float nx, float ny, float kx, float ky)
{
    const float x = nx * kx;
    const float y = ny * ky;
    const float dot = x + y;
    const float scaled = Sin(dot) * kHashScale;
    return Fract(scaled);
}

// Block Glitch's random2d(vec2(tick, seed)).
float Random2d(float tick, float seed)
{
    return Hash(tick, seed, 12.9898f, 4.1414f);
}

// Block Glitch's randomRange: minValue + random2d(seed) * (maxValue - minValue).
float RandomRange(float tick, float seed, float minValue, float maxValue)
{
    const float span = maxValue - minValue;
    const float scaled = Random2d(tick, seed) * span;
    return minValue + scaled;
}

}  // namespace

float GlitchFrameValues::shaderTime(float seconds, float speed)
{
    return seconds * speed;
}

BlockGlitchValues GlitchFrameValues::blockGlitch(float iTime)
{
    BlockGlitchValues values;
    const float ticks = iTime * kTickSpeed;
    values.tick = std::floor(ticks * 60.0f);

    const float maxOffset = kAmount / 2.0f;
    for (int band = 0; band < BlockGlitchValues::kBands; ++band) {
        const auto i = static_cast<float>(band);
        values.bandBottom[band] = Random2d(values.tick, 2345.0f + i);
        values.bandHeight[band] = Random2d(values.tick, 9035.0f + i) * 0.25f;
        values.bandShift[band] = RandomRange(values.tick, 9625.0f + i, -maxOffset, maxOffset);
        values.bandTop[band] = Fract(values.bandBottom[band] + values.bandHeight[band]);
    }

    const float maxColOffset = kAmount / 6.0f;
    values.channelRandom = Random2d(values.tick, 9545.0f);
    values.channel = values.channelRandom < 0.33f ? 0 : values.channelRandom < 0.66f ? 1 : 2;
    values.channelOffset = {RandomRange(values.tick, 9545.0f, -maxColOffset, maxColOffset),
                            RandomRange(values.tick, 7205.0f, -maxColOffset, maxColOffset)};
    return values;
}

BadTVValues GlitchFrameValues::badTV(float iTime, int rows)
{
    BadTVValues values;
    values.rnd = Hash(iTime, iTime, 12.9898f, 78.233f) * 4.0f;
    const float rnd = values.rnd;
    const float threshold = rnd / 8.0f;
    values.rows.resize(rows > 0 ? static_cast<std::size_t>(rows) : 0);
    for (std::size_t r = 0; r < values.rows.size(); ++r) {
        const float y = static_cast<float>(r) + 0.5f;
        // mod(y, 0) is undefined: at rnd 0 (time 0, Speed 0) no row tears.
        if (rnd > 0.0f && Mod(y, rnd) > threshold) {
            const float periods = y / rnd;
            const float phase = periods * iTime;
            const float wave = Sin(phase) * rnd;
            values.rows[r] = {1.0f, wave * 2.0f};
        }
    }
    return values;
}

}  // namespace Halvane::Quorvex
