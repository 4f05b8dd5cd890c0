#include "OpenGL/OpenGLLimits.h"

#include "OpenGL/EglContext.h"

#include <algorithm>

namespace Halvane::Quorvex::Tools {

namespace {

constexpr unsigned kMaxTextureSize = 0x0D33;
constexpr unsigned kMaxRenderbufferSize = 0x84E8;

long AskOpenGL()
{
    try {
        const EglContext context;
        return std::min(context.integer(kMaxTextureSize), context.integer(kMaxRenderbufferSize));
    } catch (const EglContext::Unavailable&) {
        return 0;
    }
}

}  // namespace

long OpenGLLimits::largestFrameSide()
{
    static const long kSide = AskOpenGL();
    return kSide;
}

}  // namespace Halvane::Quorvex::Tools
