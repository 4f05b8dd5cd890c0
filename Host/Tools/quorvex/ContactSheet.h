#pragma once

#include "RgbaFrame.h"

#include <string>

namespace Halvane::Quorvex::Tools {

// A grid of sample frames in one picture, each over a grey checkerboard so
// that transparency shows, with a gap between the cells.
class ContactSheet {
public:
    static constexpr int kGap = 8;

    ContactSheet(int rows, int columns, int cellWidth, int cellHeight);

    // Draws `frame` into the cell; larger frames are cut at the cell's edge.
    void place(int row, int column, const RgbaFrame& frame);
    // Writes the sheet as an opaque 8-bit picture. Throws ToolError naming
    // the path.
    void write(const std::string& path) const;

    const RgbaFrame& picture() const { return mSheet; }

private:
    int mRows;
    int mColumns;
    int mCellWidth;
    int mCellHeight;
    RgbaFrame mSheet;
};

}  // namespace Halvane::Quorvex::Tools
