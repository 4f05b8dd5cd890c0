#pragma once

#include "Options/PixelDepth.h"

#include <OpenImageIO/typedesc.h>

#include <string>
#include <vector>

namespace Halvane::Quorvex::Tools {

// What a picture format that OpenImageIO writes can hold: the sample types
// of its files (PNG 8 or 16 bits, JPEG 8, OpenEXR half or float, ...) and
// whether it has alpha. OpenImageIO narrows any other type to one of its
// own without a word (float into PNG becomes 8-bit), so the writer asks
// here for the type to give it.
class PictureFormat {
public:
    // The format of a target path, by its extension; one OpenImageIO does
    // not write holds nothing.
    explicit PictureFormat(const std::string& target);

    // The OpenImageIO type of one sample at `depth`, in memory.
    static OIIO::TypeDesc sampleTypeOf(PixelDepth depth);

    const std::string& name() const { return mName; }  // OpenImageIO's: "png", "openexr"
    const std::vector<OIIO::TypeDesc>& sampleTypes() const { return mTypes; }
    bool holdsAlpha() const { return mAlpha; }

    // The sample type that frames of `depth` are written in: one that holds
    // every value of the frames, the smallest such (half where `halfFloat`
    // and the format has it), else the deepest the format has.
    OIIO::TypeDesc sampleTypeFor(PixelDepth depth, bool halfFloat) const;

    // What a file of this format written from frames of `depth` (with alpha
    // where `alpha`) loses, one line each, naming `target`; none where it
    // loses nothing.
    std::vector<std::string> losses(const std::string& target, PixelDepth depth, bool halfFloat,
                                    bool alpha) const;

private:
    std::string mName;
    std::vector<OIIO::TypeDesc> mTypes;
    bool mAlpha = false;
};

}  // namespace Halvane::Quorvex::Tools
