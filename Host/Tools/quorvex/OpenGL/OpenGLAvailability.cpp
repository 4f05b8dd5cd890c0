#include "OpenGL/OpenGLAvailability.h"

#include "OpenGL/EglContext.h"

namespace Halvane::Quorvex::Tools {

std::string OpenGLAvailability::problem()
{
    try {
        const EglContext context;
        return {};
    } catch (const EglContext::Unavailable& error) {
        return std::string("no OpenGL context could be made, and the effect draws with OpenGL: ") +
               error.what() +
               "; install Mesa's EGL and OpenGL drivers (Debian: libegl-mesa0 libgl1-mesa-dri), "
               "or a GPU driver that offers EGL";
    }
}

}  // namespace Halvane::Quorvex::Tools
