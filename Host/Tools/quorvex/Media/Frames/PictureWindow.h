#pragma once

namespace Halvane::Quorvex::Tools {

// Where a picture's pixels sit and the frame they belong to, as formats such
// as OpenEXR and TIFF record them: the data window's corner, and the
// display window. A picture read with one is written with the same.
struct PictureWindow {
    int x = 0;
    int y = 0;
    int fullX = 0;
    int fullY = 0;
    int fullWidth = 0;  // 0: the display window is the data window
    int fullHeight = 0;
};

}  // namespace Halvane::Quorvex::Tools
