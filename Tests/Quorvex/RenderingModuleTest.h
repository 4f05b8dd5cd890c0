#pragma once

#include "GlitchModel.h"
#include "Support/GLContextTest.h"
#include "Support/LoadedModuleTest.h"

#include "Runtime/World.h"

#include <memory>
#include <string>

namespace Halvane::Quorvex::Testing {

enum class GlitchType { Block = 1, BadTV = 2 };

// The module set up in a host that has a GL context of its own current on
// the test's thread, as a real host does. Frames render through the
// module's entry point; every test ends with set-down, the host's context
// current again, and the host's books balanced.
class RenderingModuleTest : public LoadedModuleTestOn<GLContextTest> {
protected:
    void SetUp() override;
    void TearDown() override;

    // A smooth picture with distinct gradients per channel and alpha from
    // 0.55 to 1, in host units of `format`, with `padding` bytes after each row.
    static std::unique_ptr<Host::World> makePicture(int width, int height, PF_PixelFormat format,
                                                   int padding = 0);
    // The input of a world as the model takes it: A,R,G,B in host units.
    static std::vector<std::array<float, 4>> pixelsOf(Host::World& world);
    // Fills every byte of the world's pixels with a marker.
    static void mark(Host::World& world);
    static bool isMarked(Host::World& world);

    // Renders one frame at `seconds` (on a clock of 1000 units a second) with
    // the given parameters. Asserts that the host's context is current after.
    PF_Err render(Host::World& input, Host::World& output, double seconds, GlitchType type,
                  double speed);

    // What the model makes of `input` at that time, with the per-frame
    // values probed on this GPU.
    std::vector<ModelPixel> model(Host::World& input, double seconds, GlitchType type, double speed);

    // Compares the output with the model, channel by channel in host units.
    // Fails the test where a certain pixel differs by more than `tolerance`
    // or too few pixels are certain.
    void expectMatchesModel(Host::World& output, const std::vector<ModelPixel>& expected,
                            float tolerance, const std::string& what);

    // The tolerance of a depth, in its host units: one step of the render
    // target at 8 bits, two at 16 bits and float (whose targets hold 16 bits).
    // The module and the model part only where a value lies near a rounding
    // edge of a target and the GPU's bilinear weights or interpolated
    // coordinates tip it the other way; the screen pass divides by alpha
    // (0.55 at least), which can double such a step. A wrong seed, a swapped
    // channel, flipped rows, a lost premultiplication or a wrong multiplier
    // all move pixels by many steps.
    static float tolerance(PF_PixelFormat format);

    static constexpr A_u_long kTimeScale = 1000;
};

}  // namespace Halvane::Quorvex::Testing
