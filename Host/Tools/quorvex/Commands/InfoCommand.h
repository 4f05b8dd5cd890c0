#pragma once

#include <ostream>
#include <string>

namespace Halvane::Quorvex::Tools {

// `quorvex info`: the module's About text, its parameters with their
// ranges and defaults, and the OpenGL version, vendor and renderer the
// module reports when it sets up.
class InfoCommand {
public:
    InfoCommand(std::string modulePath, std::ostream& out);

    // Returns the exit code; throws ToolError for every failure.
    int run();

private:
    std::string mModulePath;
    std::ostream& mOut;
};

}  // namespace Halvane::Quorvex::Tools
