#pragma once

#include "Media/Frames/FrameSource.h"
#include "Media/Frames/PictureWindow.h"
#include "Media/Frames/RgbaFrame.h"
#include "Media/Pictures/ColourChannels.h"

#include <OpenImageIO/imageio.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Tools {

// Reads a picture file through OpenImageIO (PNG, TIFF, JPEG, OpenEXR, ...):
// the first image of the file, as RGBA at the file's depth with straight
// alpha. Colour comes from the channels named for it (ColourChannels): grey
// files become grey RGB, a colour the file lacks is 0, files without alpha
// come out opaque; formats that store colours multiplied by alpha (OpenEXR)
// are divided back.
class ImageFileReader {
public:
    // Opens the file and reads its header. Throws ToolError (runtime) naming
    // the path when it is not a picture OpenImageIO can read, or has no
    // colour channels.
    explicit ImageFileReader(const std::string& path);
    ~ImageFileReader();

    // Whether the file starts the way a picture format that its extension
    // names starts (a PNG signature in a .png), readable or not.
    static bool isPictureFile(const std::string& path);

    // Whether OpenImageIO reads the file as a movie (through FFmpeg, or an
    // animated GIF); movies belong to the video reader.
    bool isMovie() const;

    const std::string& path() const { return mPath; }
    int width() const;
    int height() const;
    PixelDepth depth() const { return mDepth; }
    bool hasAlpha() const;
    bool isHalfFloat() const;
    PictureWindow window() const;
    const ColourChannels& channels() const { return *mChannels; }

    // The pictures read as a clip: the pages of a multi-page TIFF, where
    // all are the size of the first; else 1.
    int pageCount() const { return mPageCount; }
    // What the user should hear before a render: channels not used, and
    // pictures of the file that are not read (the parts of a multi-part
    // OpenEXR, TIFF pages of another size). Each without "note:".
    std::vector<std::string> notes() const;

    // The picture's part of a source's description: its size, depth,
    // alpha, window and notes.
    void describe(SourceInfo& info) const;

    // The pixels of page `page` (from 0), at the first page's depth.
    // Throws ToolError (runtime) naming the path.
    RgbaFrame read(int page = 0);

private:
    void countPages();

    std::string mPath;
    std::unique_ptr<OIIO::ImageInput> mInput;
    PixelDepth mDepth = PixelDepth::Eight;
    std::optional<ColourChannels> mChannels;
    int mPictureCount = 1;  // of any size and kind
    int mPageCount = 1;
};

}  // namespace Halvane::Quorvex::Tools
