#pragma once

#include "EffectInterface.h"
#include "GlitchFrameValues.h"

#include <array>
#include <vector>

namespace Halvane::Quorvex::Testing {

// A pixel in host units, and whether the model vouches for it: a row within a hair of a Block Glitch band's
// edge may fall either way on a GPU, which interpolates the texture coordinate to its own precision.
struct ModelPixel {
    std::array<float, 4> argb{};
    bool certain = true;
};

// The whole frame on the CPU in single precision, as the module draws it: upload (host A,R,G,B normalised
// into r,g,b,a), bilinear clamped sampling, the premultiplied result at the target's precision, the screen
// pass that un-premultiplies and rotates back, and the read-back into host units.
class GlitchModel {
public:
    // `pixels` holds the input in host order, A,R,G,B per pixel, in host
    // units (0-255, 0-32768, or float), row 0 first.
    GlitchModel(int width, int height, PF_PixelFormat format, std::vector<std::array<float, 4>> pixels);

    // The frame with the values the module computes for it (GlitchFrameValues).
    std::vector<ModelPixel> blockGlitch(const BlockGlitchValues& values) const;
    std::vector<ModelPixel> badTV(const BadTVValues& values) const;

private:
    using Vec4 = std::array<float, 4>;

    // The texture as the shader samples it, then rotated to true RGBA.
    Vec4 sample(float u, float v) const;
    Vec4 texel(int x, int y) const;
    // The premultiplied fragment through the render target, the screen pass
    // and the read-back.
    ModelPixel finish(Vec4 rgba, bool certain) const;

    int mWidth;
    int mHeight;
    PF_PixelFormat mFormat;
    float mMultiplier;
    // Steps of the render targets: 255 at 8 bits, 65535 at 16 and 32.
    float mTargetSteps;
    std::vector<Vec4> mTexture;
};

}  // namespace Halvane::Quorvex::Testing
