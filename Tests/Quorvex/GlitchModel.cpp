#include "GlitchModel.h"

#include <algorithm>
#include <cmath>

namespace Halvane::Quorvex::Testing {

namespace {

using Vec4 = std::array<float, 4>;

// Rows closer than this to a band's edge (in texture coordinates) are not
// vouched for.
constexpr float kBoundaryMargin = 1e-4f;

Vec4 Scale(Vec4 c, float factor)
{
    for (float& channel : c) {
        channel *= factor;
    }
    return c;
}

float Quantise(float value, float steps)
{
    return std::nearbyint(std::clamp(value, 0.0f, 1.0f) * steps);
}

}  // namespace

GlitchModel::GlitchModel(int width, int height, PF_PixelFormat format,
                         std::vector<std::array<float, 4>> pixels)
    : mWidth(width),
      mHeight(height),
      mFormat(format),
      mMultiplier(format == PF_PixelFormat_ARGB64 ? 65535.0f / 32768.0f : 1.0f),
      mTargetSteps(format == PF_PixelFormat_ARGB32 ? 255.0f : 65535.0f),
      mTexture(std::move(pixels))
{
    // GL normalises integer channels by their type's full range: a 16-bit
    // host white of 32768 arrives as 32768/65535.
    const float normaliser = format == PF_PixelFormat_ARGB32   ? 255.0f
                             : format == PF_PixelFormat_ARGB64 ? 65535.0f
                                                               : 1.0f;
    for (Vec4& texel : mTexture) {
        for (float& channel : texel) {
            channel /= normaliser;
        }
    }
}

Vec4 GlitchModel::texel(int x, int y) const
{
    x = std::clamp(x, 0, mWidth - 1);
    y = std::clamp(y, 0, mHeight - 1);
    return mTexture[static_cast<std::size_t>(y) * static_cast<std::size_t>(mWidth) +
                    static_cast<std::size_t>(x)];
}

Vec4 GlitchModel::sample(float u, float v) const
{
    const float fx = u * static_cast<float>(mWidth) - 0.5f;
    const float fy = v * static_cast<float>(mHeight) - 0.5f;
    const float x0 = std::floor(fx);
    const float y0 = std::floor(fy);
    const float ax = fx - x0;
    const float ay = fy - y0;
    const int ix = static_cast<int>(x0);
    const int iy = static_cast<int>(y0);
    const Vec4 a = texel(ix, iy);
    const Vec4 b = texel(ix + 1, iy);
    const Vec4 c = texel(ix, iy + 1);
    const Vec4 d = texel(ix + 1, iy + 1);
    Vec4 result{};
    for (int i = 0; i < 4; ++i) {
        const float top = a[i] + (b[i] - a[i]) * ax;
        const float bottom = c[i] + (d[i] - c[i]) * ax;
        result[i] = top + (bottom - top) * ay;
    }
    // The host's A, R, G, B rotated to true RGBA.
    return {result[1], result[2], result[3], result[0]};
}

ModelPixel GlitchModel::finish(Vec4 rgba, bool certain) const
{
    // The effect's last two steps: the multiplier, then premultiplication.
    const Vec4 scaled = Scale(rgba, mMultiplier);
    const Vec4 stored = {scaled[3] * scaled[0], scaled[3] * scaled[1], scaled[3] * scaled[2], scaled[3]};
    Vec4 target{};
    for (int i = 0; i < 4; ++i) {
        target[i] = Quantise(stored[i], mTargetSteps) / mTargetSteps;
    }
    // The screen pass: straight alpha, back in the host's order, unscaled.
    Vec4 screen{};
    if (target[3] != 0.0f) {
        screen = {target[3], target[0] / target[3], target[1] / target[3], target[2] / target[3]};
        for (float& channel : screen) {
            channel /= mMultiplier;
        }
    }
    ModelPixel pixel;
    pixel.certain = certain;
    for (int i = 0; i < 4; ++i) {
        const float steps = Quantise(screen[i], mTargetSteps);
        pixel.argb[i] = mFormat == PF_PixelFormat_ARGB128 ? steps / mTargetSteps : steps;
    }
    return pixel;
}

std::vector<ModelPixel> GlitchModel::blockGlitch(const BlockGlitchValues& values) const
{
    std::vector<ModelPixel> frame;
    frame.reserve(mTexture.size());
    for (int py = 0; py < mHeight; ++py) {
        for (int px = 0; px < mWidth; ++px) {
            const float u = (static_cast<float>(px) + 0.5f) / static_cast<float>(mWidth);
            const float v = (static_cast<float>(py) + 0.5f) / static_cast<float>(mHeight);
            bool certain = true;
            Vec4 colour = sample(u, v);
            for (int i = 0; i < BlockGlitchValues::kBands; ++i) {
                const float bottom = values.bandBottom[i];
                const float top = values.bandTop[i];
                if (std::fabs(v - bottom) < kBoundaryMargin || std::fabs(v - top) < kBoundaryMargin) {
                    certain = false;
                }
                // step(bottom, v) - step(top, v) == 1: inside a band that does not wrap.
                if (v >= bottom && v < top) {
                    colour = sample(u + values.bandShift[i], v);
                }
            }
            const Vec4 shifted = sample(u + values.channelOffset[0], v + values.channelOffset[1]);
            colour[values.channel] = shifted[values.channel];
            frame.push_back(finish(colour, certain));
        }
    }
    return frame;
}

std::vector<ModelPixel> GlitchModel::badTV(const BadTVValues& values) const
{
    const float rnd = values.rnd;
    const float width = static_cast<float>(mWidth);
    const float height = static_cast<float>(mHeight);
    std::vector<ModelPixel> frame;
    frame.reserve(mTexture.size());
    for (int py = 0; py < mHeight; ++py) {
        // Tearing rows shift by their wave, the gap rows by rnd itself.
        const BadTVRow& row = values.rows.at(static_cast<std::size_t>(py));
        const bool tears = rnd > 0.0f && row.tears > 0.5f;
        const float of = row.offset;
        for (int px = 0; px < mWidth; ++px) {
            const float x = (static_cast<float>(px) + 0.5f) / width * width;
            const float y = (static_cast<float>(py) + 0.5f) / height * height;
            const float u2 = (tears ? x + of : x - rnd * 4.0f) / width;
            const float v2 = (tears ? y + of / 2.0f : y + rnd / 2.0f) / height;
            const float tear = tears ? of * rnd * 0.005f : rnd * 0.05f;
            Vec4 colour = sample(u2, v2);
            colour[0] *= sample(u2 + tear, v2)[0];
            colour[1] *= sample(u2, v2)[1];
            colour[2] *= sample(u2 - tear, v2)[2];
            frame.push_back(finish(Scale(colour, 1.5f), true));
        }
    }
    return frame;
}

}  // namespace Halvane::Quorvex::Testing
