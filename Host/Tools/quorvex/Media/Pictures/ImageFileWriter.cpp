#include "Media/Pictures/ImageFileWriter.h"

#include "Media/Files/AtomicOutputFile.h"
#include "Media/Pictures/EncodedPicture.h"
#include "Media/Pictures/LibraryChatter.h"
#include "Options/ToolError.h"

#include <OpenImageIO/imageio.h>

#include <filesystem>
#include <optional>

namespace Halvane::Quorvex::Tools {

namespace {

std::unique_ptr<OIIO::ImageOutput> CreateOutput(const std::string& target)
{
    auto output = OIIO::ImageOutput::create(target);
    OIIO::geterror();  // a failed look-up leaves a message nobody needs
    return output;
}

}  // namespace

ImageFileWriter::ImageFileWriter(const std::string& target) : mTarget(target), mFormat(target)
{
    if (!knowsExtension(target)) {
        const std::string extension = std::filesystem::path(target).extension().string();
        throw ToolError::usage("unknown output extension '" + extension + "' of '" + target +
                               "' (expected a picture format such as .png, .tif, .exr, .jpg, "
                               "or a video: .mp4, .mov, .mkv)");
    }
}

bool ImageFileWriter::knowsExtension(const std::string& target)
{
    return !std::filesystem::path(target).extension().empty() && CreateOutput(target) != nullptr;
}

void ImageFileWriter::write(const RgbaFrame& frame, AtomicOutputFile& file, bool halfFloat) const
{
    auto output = CreateOutput(mTarget);
    if (!output) {
        throw ToolError::runtime("cannot write '" + mTarget + "': no writer for its format");
    }
    const bool withAlpha = output->supports("alpha");
    const OIIO::TypeDesc frameType = PictureFormat::sampleTypeOf(frame.depth());
    const OIIO::TypeDesc fileType = mFormat.sampleTypeFor(frame.depth(), halfFloat);
    OIIO::ImageSpec spec(frame.width(), frame.height(), withAlpha ? 4 : 3, fileType);
    spec.x = mWindow.x;
    spec.y = mWindow.y;
    if (mWindow.fullWidth > 0 && mWindow.fullHeight > 0) {
        spec.full_x = mWindow.fullX;
        spec.full_y = mWindow.fullY;
        spec.full_width = mWindow.fullWidth;
        spec.full_height = mWindow.fullHeight;
    } else {
        spec.full_x = spec.x;
        spec.full_y = spec.y;
    }

    const RgbaFrame* pixels = &frame;
    RgbaFrame premultiplied;
    if (withAlpha && std::string(output->format_name()) == "openexr") {
        premultiplied = frame;
        premultiplied.premultiply();
        pixels = &premultiplied;
    } else if (withAlpha) {
        spec.attribute("oiio:UnassociatedAlpha", 1);
    }

    // Only libpng is known to print by itself.
    std::optional<LibraryChatter> chatter;
    if (std::string(output->format_name()) == "png") {
        chatter.emplace();
    }
    const auto fail = [&](const std::string& reason) {
        const std::string libraries = chatter ? chatter->finish() : std::string();
        return ToolError::runtime("cannot write '" + mTarget +
                                  "': " + LibraryChatter::oneLine(reason, libraries));
    };
    const EncodedPicture encoded(*output, mTarget);
    if (!output->open(encoded.openName(file.temporaryPath()), spec)) {
        throw fail(output->geterror());
    }
    const auto pixelStride =
        static_cast<OIIO::stride_t>(RgbaFrame::kChannels * ChannelSize(frame.depth()));
    if (!output->write_image(frameType, pixels->bytes(), pixelStride)) {
        const std::string reason = output->geterror();
        output->close();
        throw fail(reason);
    }
    if (!output->close()) {
        throw fail(output->geterror());
    }
    if (chatter) {
        chatter->finish();
    }
    encoded.writeTo(file);
}

}  // namespace Halvane::Quorvex::Tools
