#pragma once

#include <string>
#include <vector>

namespace Halvane::Quorvex::Tools {

// The name of an image sequence: a path whose file name holds one frame
// number placeholder, printf style ("frame.%04d.png", "f%d.exr") or as a
// run of hashes ("frame.####.png", four digits). "%%" stands for '%'.
class ImageSequencePattern {
public:
    // Whether the file name of `path` holds a placeholder.
    static bool isPattern(const std::string& path);

    // Throws ToolError (usage) naming the path when its file name holds no
    // placeholder or more than one.
    explicit ImageSequencePattern(const std::string& path);

    const std::string& text() const { return mText; }
    // The file of frame `number`: "frame.0007.png".
    std::string pathOf(long number) const;
    // The frame numbers of the files that exist, in order.
    std::vector<long> existingNumbers() const;

private:
    std::string mText;
    std::string mFolder;
    std::string mPrefix;
    std::string mSuffix;
    int mWidth = 0;
};

}  // namespace Halvane::Quorvex::Tools
