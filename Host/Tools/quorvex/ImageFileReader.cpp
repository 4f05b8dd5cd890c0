#include "ImageFileReader.h"

#include "LibraryChatter.h"
#include "PictureInput.h"
#include "ToolError.h"

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

template <typename T>
void FillChannel(T* frame, int to, T value, std::size_t pixels)
{
    for (std::size_t p = 0; p < pixels; ++p) {
        frame[p * RgbaFrame::kChannels + static_cast<std::size_t>(to)] = value;
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

OIIO::TypeDesc ImageFileReader::sampleTypeOf(PixelDepth depth)
{
    switch (depth) {
    case PixelDepth::Sixteen:
        return OIIO::TypeDesc::UINT16;
    case PixelDepth::Float:
        return OIIO::TypeDesc::FLOAT;
    default:
        return OIIO::TypeDesc::UINT8;
    }
}

bool ImageFileReader::isMovie() const
{
    return std::string(mInput->format_name()) == "ffmpeg" ||
           mInput->spec().get_int_attribute("oiio:Movie", 0) != 0;
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
    return mInput->spec().alpha_channel >= 0;
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

RgbaFrame ImageFileReader::read()
{
    const OIIO::ImageSpec& spec = mInput->spec();
    const int channels = spec.nchannels;
    const std::size_t pixels =
        static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.height);
    const OIIO::TypeDesc type = sampleTypeOf(mDepth);
    std::vector<unsigned char> samples(pixels * static_cast<std::size_t>(channels) * type.size());
    // Only libpng is known to print by itself; other formats read without
    // holding standard error.
    std::optional<LibraryChatter> chatter;
    if (std::string(mInput->format_name()) == "png") {
        chatter.emplace();
    }
    const bool read = mInput->read_image(0, 0, 0, channels, type, samples.data());
    const std::string libraries = chatter ? chatter->finish() : std::string();
    if (!read) {
        throw ToolError::runtime("cannot read '" + mPath +
                                 "': " + LibraryChatter::oneLine(mInput->geterror(), libraries));
    }

    // Red, green and blue are the first three channels that are not alpha;
    // a grey file has one.
    const int alpha = spec.alpha_channel;
    std::vector<int> colours;
    for (int c = 0; c < channels && colours.size() < 3; ++c) {
        if (c != alpha) {
            colours.push_back(c);
        }
    }
    while (colours.size() < 3) {
        colours.push_back(colours.empty() ? 0 : colours.front());
    }

    RgbaFrame frame(spec.width, spec.height, mDepth);
    for (int c = 0; c < 3; ++c) {
        switch (mDepth) {
        case PixelDepth::Eight:
            CopyChannel(samples, channels, colours[static_cast<std::size_t>(c)], frame.samples8(),
                        c, pixels);
            break;
        case PixelDepth::Sixteen:
            CopyChannel(samples, channels, colours[static_cast<std::size_t>(c)], frame.samples16(),
                        c, pixels);
            break;
        case PixelDepth::Float:
            CopyChannel(samples, channels, colours[static_cast<std::size_t>(c)],
                        frame.samplesFloat(), c, pixels);
            break;
        }
    }
    switch (mDepth) {
    case PixelDepth::Eight:
        alpha >= 0 ? CopyChannel(samples, channels, alpha, frame.samples8(), 3, pixels)
                   : FillChannel<std::uint8_t>(frame.samples8(), 3, 255, pixels);
        break;
    case PixelDepth::Sixteen:
        alpha >= 0 ? CopyChannel(samples, channels, alpha, frame.samples16(), 3, pixels)
                   : FillChannel<std::uint16_t>(frame.samples16(), 3, 65535, pixels);
        break;
    case PixelDepth::Float:
        alpha >= 0 ? CopyChannel(samples, channels, alpha, frame.samplesFloat(), 3, pixels)
                   : FillChannel(frame.samplesFloat(), 3, 1.0f, pixels);
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
