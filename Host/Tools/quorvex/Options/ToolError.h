#pragma once

#include <stdexcept>
#include <string>

namespace Halvane::Quorvex::Tools {

// A failure that ends the program: one line for standard error, naming the
// file or value at fault, and the exit code that goes with it.
class ToolError : public std::runtime_error {
public:
    static constexpr int kRuntimeExitCode = 1;
    static constexpr int kUsageExitCode = 2;

    ToolError(int exitCode, const std::string& message);

    // A bad option value, a malformed list, an unknown extension.
    static ToolError usage(const std::string& message);
    // A file that cannot be read or written, a module that fails.
    static ToolError runtime(const std::string& message);

    int exitCode() const { return mExitCode; }

private:
    int mExitCode;
};

}  // namespace Halvane::Quorvex::Tools
