#pragma once

#include <string>
#include <vector>

namespace Halvane::Quorvex::Tools {

// A folder for a command's outputs, made with whatever levels are missing.
// The levels it made go again, where empty, unless the command keeps them:
// a failed or interrupted command leaves no empty folder behind.
class OutputFolder {
public:
    // Throws ToolError (runtime) naming the folder when it cannot be made.
    explicit OutputFolder(const std::string& path);
    ~OutputFolder();

    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;

    // The command succeeded: the folder stays.
    void keep();

private:
    std::vector<std::string> mMade;  // outermost first
};

}  // namespace Halvane::Quorvex::Tools
