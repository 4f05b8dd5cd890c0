#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// The effect module that ships beside the running program.
std::string DefaultModulePath();

}  // namespace Halvane::Quorvex::Tools
