#pragma once

#include "Media/Frames/RgbaFrame.h"

#include <string>

namespace Halvane::Quorvex::Tools {

class AtomicOutputFile;

// A grid of sample frames in one picture, each over a grey checkerboard so
// that transparency shows, with a gap between the cells, a label left of
// each row and one above each column.
class ContactSheet {
public:
    static constexpr int kGap = 8;
    static constexpr int kLabelWidth = 112;   // left of the first column
    static constexpr int kHeaderHeight = 24;  // above the first row
    static constexpr int kFontSize = 16;
    // DejaVu Sans, from Debian's fonts-dejavu-core.
    static constexpr const char* kFont = "DejaVuSans";

    ContactSheet(int rows, int columns, int cellWidth, int cellHeight);

    // Draws `frame` into the cell; larger frames are cut at the cell's edge.
    void place(int row, int column, const RgbaFrame& frame);
    // Writes a label beside a row or above a column. False when the font
    // cannot be found; the sheet is then left without the label.
    bool labelRow(int row, const std::string& text);
    bool labelColumn(int column, const std::string& text);
    // Writes the sheet, an opaque 8-bit picture, into `file` in the format
    // its target names. Throws ToolError naming the target.
    void write(AtomicOutputFile& file) const;

    const RgbaFrame& picture() const { return mSheet; }
    // Where a cell starts on the sheet.
    int cellLeft(int column) const { return kLabelWidth + kGap + column * (mCellWidth + kGap); }
    int cellTop(int row) const { return kHeaderHeight + kGap + row * (mCellHeight + kGap); }

private:
    bool drawText(int x, int y, const std::string& text);

    int mRows;
    int mColumns;
    int mCellWidth;
    int mCellHeight;
    RgbaFrame mSheet;
};

}  // namespace Halvane::Quorvex::Tools
