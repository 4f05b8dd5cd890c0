#pragma once

#include "Options/PixelDepth.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Halvane::Quorvex::Tools {

// One picture as files hold it: red, green, blue, alpha interleaved, rows
// packed top to bottom, in the file's own range (0..255, 0..65535, or float
// with 1.0 as white). Alpha is straight: colours are not multiplied by it.
class RgbaFrame {
public:
    static constexpr int kChannels = 4;

    RgbaFrame() = default;
    // A frame of transparent black.
    RgbaFrame(int width, int height, PixelDepth depth);

    int width() const { return mWidth; }
    int height() const { return mHeight; }
    PixelDepth depth() const { return mDepth; }
    std::size_t sampleCount() const;
    std::size_t rowBytes() const;

    // The samples at the frame's depth; only the one that matches depth()
    // holds any.
    std::uint8_t* samples8() { return mSamples8.data(); }
    const std::uint8_t* samples8() const { return mSamples8.data(); }
    std::uint16_t* samples16() { return mSamples16.data(); }
    const std::uint16_t* samples16() const { return mSamples16.data(); }
    float* samplesFloat() { return mSamplesFloat.data(); }
    const float* samplesFloat() const { return mSamplesFloat.data(); }
    // The first byte of the samples, whatever the depth.
    void* bytes();
    const void* bytes() const;

    // A sample as a fraction of white, and back (rounded and clamped for the
    // integer depths).
    float normalised(std::size_t index) const;
    void setNormalised(std::size_t index, float value);

    // The same picture at another depth, rounded to the nearest value.
    RgbaFrame convertedTo(PixelDepth depth) const;

    // Between straight alpha and colours multiplied by alpha, as some
    // formats (OpenEXR) store them. Where alpha is 0 colours stay as they are.
    void premultiply();
    void unpremultiply();

private:
    int mWidth = 0;
    int mHeight = 0;
    PixelDepth mDepth = PixelDepth::Eight;
    std::vector<std::uint8_t> mSamples8;
    std::vector<std::uint16_t> mSamples16;
    std::vector<float> mSamplesFloat;
};

}  // namespace Halvane::Quorvex::Tools
