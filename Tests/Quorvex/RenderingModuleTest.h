#pragma once

#include "GL/HostPixels.h"
#include "GlitchModel.h"
#include "Support/GLContextTest.h"
#include "Support/LoadedModuleTest.h"

#include <memory>
#include <string>

namespace Halvane::Quorvex::Testing {

enum class GlitchType { Block = 1, BadTV = 2 };
inline constexpr PF_PixelFormat kFormats[] = {PF_PixelFormat_ARGB32, PF_PixelFormat_ARGB64, PF_PixelFormat_ARGB128};

// The module set up in a host that has a GL context of its own current on
// the test's thread, as a real host does. Frames render through the
// module's entry point; every test ends with set-down, the host's context
// current again, and the host's books balanced.
class RenderingModuleTest : public LoadedModuleTestOn<GLContextTest> {
protected:
    void SetUp() override;
    void TearDown() override;

    // A smooth picture with distinct gradients per channel and alpha from
    // 0.55 to 1, with `padding` bytes after each row.
    static std::unique_ptr<Host::World> makePicture(int width, int height, PF_PixelFormat format,
                                                   int padding = 0);
    // Fills every byte of the world's pixels with a marker that no frame writes.
    static void mark(Host::World& world);
    // "16-bit Bad TV at 0.250000 s, Speed 1.000000", to say which frame failed.
    static std::string describe(PF_PixelFormat format, GlitchType type, double seconds, double speed);

    // Renders one frame at `seconds` (on a clock of 1000 units a second) with
    // the given parameters. Expects the host's context current after.
    PF_Err render(Host::World& input, Host::World& output, double seconds, GlitchType type, double speed);

    // Expects the output within the depth's tolerance of what the model makes of `input` at that time, with
    // the frame's values as GlitchFrameValues computes them, and most pixels vouched for. The tolerance is one target step
    // at 8 bits, two at 16 bits and float: a value near a rounding edge may tip either way on a GPU, and the
    // screen pass's division by alpha (0.55 at least) can double that. Real faults move pixels many steps.
    void expectMatchesModel(Host::World& output, Host::World& input, double seconds, GlitchType type, double speed,
                            const std::string& what);

    static constexpr A_u_long kTimeScale = 1000;
};

}  // namespace Halvane::Quorvex::Testing
