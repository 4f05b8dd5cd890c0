#include "Commands/ContactSheet.h"

#include "Media/Files/AtomicOutputFile.h"
#include "Media/Pictures/ImageFileWriter.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

#include <algorithm>

namespace Halvane::Quorvex::Tools {

namespace {

constexpr int kCheckerSize = 8;
constexpr float kCheckerLight = 0.8f;
constexpr float kCheckerDark = 0.6f;
constexpr float kBackground = 0.15f;
constexpr float kLabel = 0.9f;

}  // namespace

ContactSheet::ContactSheet(int rows, int columns, int cellWidth, int cellHeight)
    : mRows(rows),
      mColumns(columns),
      mCellWidth(cellWidth),
      mCellHeight(cellHeight),
      mSheet(kLabelWidth + columns * cellWidth + (columns + 1) * kGap,
             kHeaderHeight + rows * cellHeight + (rows + 1) * kGap, PixelDepth::Eight)
{
    const std::size_t count = mSheet.sampleCount();
    for (std::size_t i = 0; i < count; ++i) {
        mSheet.setNormalised(i, i % 4 == 3 ? 1.0f : kBackground);
    }
}

void ContactSheet::place(int row, int column, const RgbaFrame& frame)
{
    if (row < 0 || row >= mRows || column < 0 || column >= mColumns) {
        return;
    }
    const int left = cellLeft(column);
    const int top = cellTop(row);
    const int width = std::min(mCellWidth, frame.width());
    const int height = std::min(mCellHeight, frame.height());
    const auto sheetWidth = static_cast<std::size_t>(mSheet.width());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool light = ((x / kCheckerSize) + (y / kCheckerSize)) % 2 == 0;
            const float checker = light ? kCheckerLight : kCheckerDark;
            const std::size_t from =
                (static_cast<std::size_t>(y) * static_cast<std::size_t>(frame.width()) +
                 static_cast<std::size_t>(x)) *
                4;
            const std::size_t to = ((static_cast<std::size_t>(top + y)) * sheetWidth +
                                    static_cast<std::size_t>(left + x)) *
                                   4;
            const float alpha = std::clamp(frame.normalised(from + 3), 0.0f, 1.0f);
            for (std::size_t c = 0; c < 3; ++c) {
                mSheet.setNormalised(to + c,
                                     frame.normalised(from + c) * alpha + checker * (1.0f - alpha));
            }
            mSheet.setNormalised(to + 3, 1.0f);
        }
    }
}

bool ContactSheet::labelRow(int row, const std::string& text)
{
    // On the row's middle line, at the sheet's left edge.
    return drawText(kGap, cellTop(row) + mCellHeight / 2 + kFontSize / 3, text);
}

bool ContactSheet::labelColumn(int column, const std::string& text)
{
    return drawText(cellLeft(column), kHeaderHeight + kGap / 2 - kFontSize / 3, text);
}

bool ContactSheet::drawText(int x, int y, const std::string& text)
{
    const OIIO::ImageSpec spec(mSheet.width(), mSheet.height(), RgbaFrame::kChannels,
                               OIIO::TypeDesc::UINT8);
    OIIO::ImageBuf sheet(spec, mSheet.samples8());
    const float colour[] = {kLabel, kLabel, kLabel, 1.0f};
    return OIIO::ImageBufAlgo::render_text(sheet, x, y, text, kFontSize, kFont, colour);
}

void ContactSheet::write(AtomicOutputFile& file) const
{
    const ImageFileWriter writer(file.target());
    writer.write(mSheet, file, false);
}

}  // namespace Halvane::Quorvex::Tools
