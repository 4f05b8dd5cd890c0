#include "OpenGLLimits.h"

#include "GL/GLPlatform.h"

#include <EGL/egl.h>

#include <algorithm>

namespace Halvane::Quorvex::Tools {

namespace {

constexpr unsigned kMaxTextureSize = 0x0D33;
constexpr unsigned kMaxRenderbufferSize = 0x84E8;

long AskOpenGL()
{
    // The binding library keeps one idea of the current context per
    // process, the module's; a core entry point needs none.
    using GetIntegerv = void (*)(unsigned, int*);
    const auto getIntegerv = reinterpret_cast<GetIntegerv>(eglGetProcAddress("glGetIntegerv"));
    if (!getIntegerv) {
        return 0;
    }
    try {
        const GLPlatform::OwnedContext context = GLPlatform::createContext(nullptr);
        const GLPlatform::CurrentBinding before = GLPlatform::currentBinding();
        GLPlatform::makeCurrent(context.get());
        int texture = 0;
        int renderbuffer = 0;
        getIntegerv(kMaxTextureSize, &texture);
        getIntegerv(kMaxRenderbufferSize, &renderbuffer);
        GLPlatform::makeCurrent(before);
        return std::min(texture, renderbuffer);
    } catch (const GLPlatform::Error&) {
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
