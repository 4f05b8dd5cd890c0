#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace Halvane::Quorvex::Tools {

// CLI11's help, whose usage line shows `[--]` before the file names of a
// command that also takes options: a name that starts with '-' ("-in.png")
// reads as an option unless it comes after "--".
class UsageFormatter : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App* app, std::string name) const override;

    static constexpr const char* kDashAdvice =
        "a file whose name starts with '-' goes after '--': "
        "quorvex render [OPTIONS] -- INPUT OUTPUT";

    // Whether an argument that was taken for an unknown option looks like a
    // file name ("-in.png", or a file of that name exists).
    static bool mayNameFile(const std::string& argument);
};

}  // namespace Halvane::Quorvex::Tools
