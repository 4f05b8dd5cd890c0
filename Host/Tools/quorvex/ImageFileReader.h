#pragma once

#include "PictureWindow.h"
#include "RgbaFrame.h"

#include <OpenImageIO/imageio.h>

#include <memory>
#include <string>

namespace Halvane::Quorvex::Tools {

// Reads a picture file through OpenImageIO (PNG, TIFF, JPEG, OpenEXR, ...):
// the first image of the file, as RGBA at the file's depth with straight
// alpha. Grey files become grey RGB; files without alpha come out opaque;
// formats that store colours multiplied by alpha (OpenEXR) are divided back.
class ImageFileReader {
public:
    // Opens the file and reads its header. Throws ToolError (runtime) naming
    // the path when it is not a picture OpenImageIO can read.
    explicit ImageFileReader(const std::string& path);
    ~ImageFileReader();

    // Whether the file starts the way a picture format that its extension
    // names starts (a PNG signature in a .png), readable or not.
    static bool isPictureFile(const std::string& path);

    // The OpenImageIO type of one sample at `depth`.
    static OIIO::TypeDesc sampleTypeOf(PixelDepth depth);

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

    // The pixels. Throws ToolError (runtime) naming the path.
    RgbaFrame read();

private:
    std::string mPath;
    std::unique_ptr<OIIO::ImageInput> mInput;
    PixelDepth mDepth = PixelDepth::Eight;
};

}  // namespace Halvane::Quorvex::Tools
