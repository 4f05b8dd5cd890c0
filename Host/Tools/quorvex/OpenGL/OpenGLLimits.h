#pragma once

namespace Halvane::Quorvex::Tools {

// The largest frame side the effect module's OpenGL renders: the smaller of
// GL_MAX_TEXTURE_SIZE and GL_MAX_RENDERBUFFER_SIZE, asked once of the
// program's own context on the display the module chooses. A frame beyond
// it is refused before its pixels are read; the module would refuse it only
// after.
class OpenGLLimits {
public:
    // Every OpenGL that runs the effect renders frames this large; only
    // larger ones need the question asked.
    static constexpr long kSideEveryDriverRenders = 8192;

    // 0 when no context can be made to ask; the module then judges alone.
    static long largestFrameSide();
};

}  // namespace Halvane::Quorvex::Tools
