#include "Options/ToolError.h"

namespace Halvane::Quorvex::Tools {

ToolError::ToolError(int exitCode, const std::string& message)
    : std::runtime_error(message), mExitCode(exitCode)
{
}

ToolError ToolError::usage(const std::string& message)
{
    return ToolError(kUsageExitCode, message);
}

ToolError ToolError::runtime(const std::string& message)
{
    return ToolError(kRuntimeExitCode, message);
}

}  // namespace Halvane::Quorvex::Tools
