#include "Media/Pictures/ImageFileReader.h"

#include "Media/Pictures/LibraryChatter.h"
#include "Media/Pictures/PictureFormat.h"
#include "Media/Pictures/PictureInput.h"
#include "Options/ToolError.h"

#include <OpenImageIO/strutil.h>

#include <limits>
#include <optional>
#include <vector>

namespace Halvane::Quorvex::Tools {

namespace {

PixelDepth DepthOfType(const OIIO::TypeDesc& type)
{
    switch (type.basetype) {
    case OIIO::TypeDesc::UINT8:
    case OIIO::TypeDesc::INT8:
        return PixelDepth::Eight;
    case OIIO::TypeDesc::HALF:
    case OIIO::TypeDesc::FLOAT:
    case OIIO::TypeDesc::DOUBLE:
        return PixelDepth::Float;
    default:
        return PixelDepth::Sixteen;
    }
}

// Copies channel `from` of every pixel of the file's interleaved samples
// into channel `to` of the frame.
template <typename T>
void CopyChannel(const std::vector<unsigned char>& file, int fileChannels, int from, T* frame,
                 int to, std::size_t pixels)
{
    const T* source = reinterpret_cast<const T*>(file.data());
    for (std::size_t p = 0; p < pixels; ++p) {
        frame[p * RgbaFrame::kChannels + static_cast<std::size_t>(to)] =
            source[p * static_cast<std::size_t>(fileChannels) + static_cast<std::size_t>(from)];
    }
}

// OpenImageIO's reader of movies through FFmpeg ("FFmpeg movie").
bool IsFFmpegReader(const OIIO::ImageInput& input)
{
    return OIIO::Strutil::istarts_with(input.format_name(), "ffmpeg");
}

// The file's channels `sources` (ColourChannels::kNone for none) as the
// frame's red, green, blue and alpha: a colour the file lacks stays 0, alpha
// it lacks is `opaque`.
template <typename T>
void Gather(const std::vector<unsigned char>& file, int fileChannels,
            const int (&sources)[RgbaFrame::kChannels], T* frame, T opaque, std::size_t pixels)
{
    for (int c = 0; c < RgbaFrame::kChannels; ++c) {
        if (sources[c] != ColourChannels::kNone) {
            CopyChannel(file, fileChannels, sources[c], frame, c, pixels);
        } else if (c == RgbaFrame::kChannels - 1) {
            for (std::size_t p = 0; p < pixels; ++p) {
                frame[p * RgbaFrame::kChannels + static_cast<std::size_t>(c)] = opaque;
            }
        }
    }
}

}  // namespace

ImageFileReader::ImageFileReader(const std::string& path) : mPath(path)
{
    // The size a header claims is judged by FrameSizeCheck, against this
    // machine's memory and with the size named; OpenImageIO's own limit
    // would refuse first with a message of its own.
    static const bool kOwnSizeLimit =
        OIIO::attribute("limits:imagesize_MB", std::numeric_limits<int>::max());
    (void)kOwnSizeLimit;
    // PNG and TIFF keep straight alpha when asked; without the hint they
    // would be multiplied on the way in.
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    LibraryChatter chatter;
    std::string reason;
    mInput = PictureInput::open(path, config, reason);
    const std::string libraries = chatter.finish();
    if (!mInput) {
        // OpenImageIO's later lines give advice about its own settings.
        const auto newline = reason.find('\n');
        if (newline != std::string::npos) {
            reason.resize(newline);
        }
        throw ToolError::runtime(
            "cannot read '" + path + "': " +
            LibraryChatter::oneLine(reason.empty() ? "not a picture file" : reason, libraries));
    }
    if (PictureInput::isCutShort(path, mInput->format_name())) {
        throw ToolError::runtime("cannot read '" + path + "': the file is cut short");
    }
    mDepth = DepthOfType(mInput->spec().format);
    mChannels.emplace(mInput->spec(), path);
    countPages();
}

void ImageFileReader::countPages()
{
    // A movie's pictures are its frames, the video reader's to count.
    if (isMovie()) {
        return;
    }
    const int width = mInput->spec().width;
    const int height = mInput->spec().height;
    bool sameSize = true;
    while (mInput->seek_subimage(mPictureCount, 0)) {
        sameSize = sameSize && mInput->spec().width == width && mInput->spec().height == height;
        ++mPictureCount;
    }
    mInput->geterror();  // the failed seek past the last one
    mInput->seek_subimage(0, 0);
    // TIFF's pictures are pages; other formats' are layers, sizes or views
    // of one picture (OpenEXR parts, icon sizes, ...).
    if (std::string(mInput->format_name()) == "tiff" && sameSize) {
        mPageCount = mPictureCount;
    }
}

void ImageFileReader::describe(SourceInfo& info) const
{
    info.width = width();
    info.height = height();
    info.depth = depth();
    info.hasAlpha = hasAlpha();
    info.halfFloat = isHalfFloat();
    info.window = window();
    info.notes = notes();
}

std::vector<std::string> ImageFileReader::notes() const
{
    std::vector<std::string> notes;
    const std::vector<std::string>& unused = mChannels->unused();
    if (!unused.empty()) {
        notes.push_back("'" + mPath + "': channel" + (unused.size() > 1 ? "s " : " ") +
                        OIIO::Strutil::join(unused, ", ") + (unused.size() > 1 ? " are" : " is") +
                        " not used (colour comes from R, G, B or Y, and A)");
    }
    if (mPictureCount > mPageCount) {
        notes.push_back("'" + mPath + "' holds " + std::to_string(mPictureCount) +
                        " pictures; only the first is used");
    }
    return notes;
}

ImageFileReader::~ImageFileReader()
{
    if (mInput) {
        mInput->close();
    }
}

bool ImageFileReader::isPictureFile(const std::string& path)
{
    return PictureInput::recognises(path);
}

bool ImageFileReader::isMovie() const
{
    return IsFFmpegReader(*mInput) || mInput->spec().get_int_attribute("oiio:Movie", 0) != 0;
}

int ImageFileReader::width() const
{
    return mInput->spec().width;
}

int ImageFileReader::height() const
{
    return mInput->spec().height;
}

bool ImageFileReader::hasAlpha() const
{
    return mChannels->alpha() != ColourChannels::kNone;
}

bool ImageFileReader::isHalfFloat() const
{
    return mInput->spec().format.basetype == OIIO::TypeDesc::HALF;
}

PictureWindow ImageFileReader::window() const
{
    const OIIO::ImageSpec& spec = mInput->spec();
    return PictureWindow{spec.x, spec.y, spec.full_x, spec.full_y, spec.full_width,
                         spec.full_height};
}

RgbaFrame ImageFileReader::read(int page)
{
    if (page >= mPageCount) {
        throw ToolError::runtime("cannot read page " + std::to_string(page + 1) + " of '" + mPath +
                                 "': it has " + std::to_string(mPageCount));
    }
    if (!mInput->seek_subimage(page, 0)) {
        throw ToolError::runtime("cannot read page " + std::to_string(page + 1) + " of '" + mPath +
                                 "': " + mInput->geterror());
    }
    const OIIO::ImageSpec& spec = mInput->spec();
    const ColourChannels pageChannels = page == 0 ? *mChannels : ColourChannels(spec, mPath);
    const int channels = spec.nchannels;
    const std::size_t pixels =
        static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.height);
    const OIIO::TypeDesc type = PictureFormat::sampleTypeOf(mDepth);
    std::vector<unsigned char> samples(pixels * static_cast<std::size_t>(channels) * type.size());
    // Only libpng is known to print by itself; other formats read without
    // holding standard error.
    std::optional<LibraryChatter> chatter;
    if (std::string(mInput->format_name()) == "png") {
        chatter.emplace();
    }
    const bool read = mInput->read_image(page, 0, 0, channels, type, samples.data());
    const std::string libraries = chatter ? chatter->finish() : std::string();
    if (!read) {
        throw ToolError::runtime("cannot read '" + mPath +
                                 "': " + LibraryChatter::oneLine(mInput->geterror(), libraries));
    }

    const int alpha = pageChannels.alpha();
    const int sources[RgbaFrame::kChannels] = {pageChannels.red(), pageChannels.green(),
                                               pageChannels.blue(), alpha};
    RgbaFrame frame(spec.width, spec.height, mDepth);
    switch (mDepth) {
    case PixelDepth::Eight:
        Gather<std::uint8_t>(samples, channels, sources, frame.samples8(), 255, pixels);
        break;
    case PixelDepth::Sixteen:
        Gather<std::uint16_t>(samples, channels, sources, frame.samples16(), 65535, pixels);
        break;
    case PixelDepth::Float:
        Gather(samples, channels, sources, frame.samplesFloat(), 1.0f, pixels);
        break;
    }
    // The reader marks files whose straight alpha it kept; any other alpha
    // arrives multiplied into the colours.
    if (alpha >= 0 && spec.get_int_attribute("oiio:UnassociatedAlpha", 0) == 0) {
        frame.unpremultiply();
    }
    return frame;
}

}  // namespace Halvane::Quorvex::Tools
