#pragma once

#include <string>

namespace Halvane::Quorvex::Tools {

// `quorvex render INPUT OUTPUT [options]`: applies the effect to a picture,
// an image sequence or a video and writes a picture, an image sequence or a
// video of the same size, rate and frame count.
class RenderCommand {
public:
    // The options as typed; empty texts mean "not given".
    struct Options {
        std::string input;
        std::string output;
        std::string modulePath;
        std::string glitch;
        std::string speed;
        std::string seed;
        std::string time;
        std::string timeOffset;
        std::string frames;
        std::string startFrame;
        std::string fps;
        std::string depth = "auto";
        std::string codec;
        bool quiet = false;
        bool verbose = false;  // the module's own output on standard error
    };

    explicit RenderCommand(Options options);

    // Returns the exit code; throws ToolError for every failure.
    int run();

private:
    Options mOptions;
};

}  // namespace Halvane::Quorvex::Tools
