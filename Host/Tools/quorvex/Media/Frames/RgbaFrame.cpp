#include "Media/Frames/RgbaFrame.h"

#include <algorithm>
#include <cmath>

namespace Halvane::Quorvex::Tools {

RgbaFrame::RgbaFrame(int width, int height, PixelDepth depth)
    : mWidth(width), mHeight(height), mDepth(depth)
{
    switch (depth) {
    case PixelDepth::Eight:
        mSamples8.assign(sampleCount(), 0);
        break;
    case PixelDepth::Sixteen:
        mSamples16.assign(sampleCount(), 0);
        break;
    case PixelDepth::Float:
        mSamplesFloat.assign(sampleCount(), 0.0f);
        break;
    }
}

std::size_t RgbaFrame::sampleCount() const
{
    return static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight) * kChannels;
}

std::size_t RgbaFrame::rowBytes() const
{
    return static_cast<std::size_t>(mWidth) * kChannels * ChannelSize(mDepth);
}

void* RgbaFrame::bytes()
{
    switch (mDepth) {
    case PixelDepth::Sixteen:
        return mSamples16.data();
    case PixelDepth::Float:
        return mSamplesFloat.data();
    default:
        return mSamples8.data();
    }
}

const void* RgbaFrame::bytes() const
{
    return const_cast<RgbaFrame*>(this)->bytes();
}

float RgbaFrame::normalised(std::size_t index) const
{
    switch (mDepth) {
    case PixelDepth::Sixteen:
        return static_cast<float>(mSamples16[index]) / 65535.0f;
    case PixelDepth::Float:
        return mSamplesFloat[index];
    default:
        return static_cast<float>(mSamples8[index]) / 255.0f;
    }
}

void RgbaFrame::setNormalised(std::size_t index, float value)
{
    // NaN compares false both ways and lands on 0.
    const float clamped = value > 0.0f ? std::min(value, 1.0f) : 0.0f;
    switch (mDepth) {
    case PixelDepth::Sixteen:
        mSamples16[index] = static_cast<std::uint16_t>(std::lround(clamped * 65535.0f));
        break;
    case PixelDepth::Float:
        mSamplesFloat[index] = value;
        break;
    default:
        mSamples8[index] = static_cast<std::uint8_t>(std::lround(clamped * 255.0f));
        break;
    }
}

RgbaFrame RgbaFrame::convertedTo(PixelDepth depth) const
{
    if (depth == mDepth) {
        return *this;
    }
    RgbaFrame result(mWidth, mHeight, depth);
    const std::size_t count = sampleCount();
    for (std::size_t i = 0; i < count; ++i) {
        result.setNormalised(i, normalised(i));
    }
    return result;
}

void RgbaFrame::premultiply()
{
    const std::size_t count = sampleCount();
    for (std::size_t pixel = 0; pixel < count; pixel += kChannels) {
        const float alpha = normalised(pixel + 3);
        for (std::size_t c = 0; c < 3; ++c) {
            setNormalised(pixel + c, normalised(pixel + c) * alpha);
        }
    }
}

void RgbaFrame::unpremultiply()
{
    const std::size_t count = sampleCount();
    for (std::size_t pixel = 0; pixel < count; pixel += kChannels) {
        const float alpha = normalised(pixel + 3);
        if (alpha == 0.0f || alpha == 1.0f) {
            continue;
        }
        for (std::size_t c = 0; c < 3; ++c) {
            setNormalised(pixel + c, normalised(pixel + c) / alpha);
        }
    }
}

}  // namespace Halvane::Quorvex::Tools
