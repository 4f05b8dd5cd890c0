#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// The effect module that ships with the running program: beside it in a
// build folder, or in the install's module folder (<prefix>/lib/quorvex for
// <prefix>/bin/quorvex), found from the program's own place so that an
// installed or unpacked tree works wherever it lies. Where neither exists,
// the installed one, for the loader to name.
std::string DefaultModulePath();

// The path to hand the loader for a module the user named. The loader takes
// a bare name ("MyQuorvex.so") as one to look up on the system's library
// path; a name that exists as a file is that file, so it gets its folder.
std::string LoadableModulePath(const std::string& modulePath);

}  // namespace Halvane::Quorvex::Tools
