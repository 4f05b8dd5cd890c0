#pragma once

#include <ostream>
#include <string>

namespace Halvane::Quorvex::Tools {

// Loads the module and writes its About text and its parameters to `out`.
// Returns the process exit code; errors go to standard error.
int RunInfoCommand(const std::string& modulePath, std::ostream& out);

}  // namespace Halvane::Quorvex::Tools
