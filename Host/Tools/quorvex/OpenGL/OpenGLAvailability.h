#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// Whether this machine can give the effect an OpenGL context at all, asked
// of the displays the module would try, and in words a user can act on
// where it cannot.
class OpenGLAvailability {
public:
    // Empty where a context can be made; else one sentence: what failed,
    // and what to install.
    static std::string problem();
};

}  // namespace Halvane::Quorvex::Tools
