#pragma once

#include "Media/Frames/PictureWindow.h"
#include "Media/Frames/RgbaFrame.h"
#include "Media/Pictures/PictureFormat.h"

#include <string>

namespace Halvane::Quorvex::Tools {

class AtomicOutputFile;

// Writes pictures through OpenImageIO in the format that the target's
// extension names. The samples keep the frame's depth where the format
// holds it, else the deepest it holds (PictureFormat); alpha stays straight,
// except in formats that store colours
// multiplied by alpha (OpenEXR), and is left out where the format has none.
class ImageFileWriter {
public:
    // Throws ToolError (usage) naming the target when no picture format
    // goes with its extension.
    explicit ImageFileWriter(const std::string& target);

    static bool knowsExtension(const std::string& target);

    // Where the pictures sit, for formats that record it.
    void setWindow(const PictureWindow& window) { mWindow = window; }

    // Writes `frame` into `file` in the target's format, in the sample type
    // PictureFormat chooses; float frames as half floats when `halfFloat` and
    // the format has them. Every byte goes through the file's checked writes.
    // Throws ToolError (runtime) naming the target.
    void write(const RgbaFrame& frame, AtomicOutputFile& file, bool halfFloat) const;

private:
    std::string mTarget;
    PictureFormat mFormat;
    PictureWindow mWindow;
};

}  // namespace Halvane::Quorvex::Tools
