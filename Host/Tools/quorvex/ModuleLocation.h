#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// The effect module that ships beside the running program.
std::string DefaultModulePath();

// The path to hand the loader for a module the user named. The loader takes
// a bare name ("MyQuorvex.so") as one to look up on the system's library
// path; a name that exists as a file is that file, so it gets its folder.
std::string LoadableModulePath(const std::string& modulePath);

}  // namespace Halvane::Quorvex::Tools
