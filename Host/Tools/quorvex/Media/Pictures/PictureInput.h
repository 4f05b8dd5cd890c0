#pragma once

#include <OpenImageIO/imageio.h>

#include <memory>
#include <string>

namespace Halvane::Quorvex::Tools {

// Opens a picture with OpenImageIO's readers of pictures, never with its
// FFmpeg plug-in: videos go to our own VideoReader, and that plug-in aborts
// the process on some damaged files.
class PictureInput {
public:
    // The reader that the file's extension names, or else the first that
    // recognises the file, opened with `config`. Null where none opens it;
    // `reason` then holds the named reader's complaint, or is empty.
    static std::unique_ptr<OIIO::ImageInput> open(const std::string& path,
                                                  const OIIO::ImageSpec& config,
                                                  std::string& reason);

    // Whether the file starts the way a picture format that its extension
    // names starts (a PNG signature in a .png), readable or not.
    static bool recognises(const std::string& path);

    // Whether the file, read by the reader of `format`, is cut short where
    // that reader would not say so: libjpeg fills the missing part of a
    // JPEG with grey and only warns.
    static bool isCutShort(const std::string& path, const std::string& format);
};

}  // namespace Halvane::Quorvex::Tools
