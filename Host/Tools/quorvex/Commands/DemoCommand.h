#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// `quorvex demo [DIR]`: renders the built-in test clip with each glitch
// type into DIR: block.mp4, badtv.mp4, and contact-sheet.png with sample
// frames of the clip (top row) and of each render (rows below), each row
// and column labelled. Needs no input.
class DemoCommand {
public:
    static constexpr const char* kDefaultFolder = "quorvex-demo";

    DemoCommand(std::string folder, std::string modulePath, bool quiet, bool verbose);

    // Returns the exit code; throws ToolError for every failure.
    int run();

private:
    std::string mFolder;
    std::string mModulePath;
    bool mQuiet;
    bool mVerbose;
};

}  // namespace Halvane::Quorvex::Tools
