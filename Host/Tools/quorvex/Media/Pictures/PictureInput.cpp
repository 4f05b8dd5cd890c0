#include "Media/Pictures/PictureInput.h"

#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace Halvane::Quorvex::Tools {

namespace {

// Readers that are no picture readers: movies, and one that makes pictures
// out of nothing.
bool Excluded(const std::string& format)
{
    return format == "ffmpeg" || format == "null";
}

// The format OpenImageIO gives the path's extension, from its own list
// ("png:png;tiff:tif,tiff;..."), without making that format's reader.
std::string FormatOfExtension(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    if (extension.empty()) {
        return {};
    }
    extension = OIIO::Strutil::lower(extension.substr(1));
    for (const std::string& entry :
         OIIO::Strutil::splits(OIIO::get_string_attribute("extension_list"), ";")) {
        const auto colon = entry.find(':');
        if (colon == std::string::npos) {
            continue;
        }
        const std::vector<std::string> extensions =
            OIIO::Strutil::splits(entry.substr(colon + 1), ",");
        if (std::find(extensions.begin(), extensions.end(), extension) != extensions.end()) {
            return entry.substr(0, colon);
        }
    }
    return {};
}

std::unique_ptr<OIIO::ImageInput> Reader(const std::string& format)
{
    auto input = OIIO::ImageInput::create(format);
    OIIO::geterror();  // a failed look-up leaves a message nobody needs
    return input;
}

}  // namespace

std::unique_ptr<OIIO::ImageInput> PictureInput::open(const std::string& path,
                                                     const OIIO::ImageSpec& config,
                                                     std::string& reason)
{
    reason.clear();
    const std::string named = FormatOfExtension(path);
    if (!named.empty() && !Excluded(named)) {
        if (auto input = Reader(named)) {
            OIIO::ImageSpec spec;
            if (input->open(path, spec, config)) {
                return input;
            }
            reason = input->geterror();
        }
    }
    // A picture under another format's extension, as OpenImageIO's own
    // open would find it.
    for (const std::string& format :
         OIIO::Strutil::splits(OIIO::get_string_attribute("input_format_list"), ",")) {
        if (format == named || Excluded(format)) {
            continue;
        }
        auto input = Reader(format);
        if (!input || !input->valid_file(path)) {
            continue;
        }
        OIIO::ImageSpec spec;
        if (input->open(path, spec, config)) {
            reason.clear();
            return input;
        }
        if (reason.empty()) {
            reason = input->geterror();
        }
    }
    return nullptr;
}

bool PictureInput::recognises(const std::string& path)
{
    const std::string named = FormatOfExtension(path);
    if (named.empty() || Excluded(named)) {
        return false;
    }
    const auto input = Reader(named);
    return input && input->valid_file(path);
}

bool PictureInput::isCutShort(const std::string& path, const std::string& format)
{
    if (format != "jpeg") {
        return false;
    }
    // A whole JPEG has its end marker (FF D9) after the start of its first
    // scan (FF DA); the coded data between cannot hold those bytes.
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const auto scan = bytes.find("\xFF\xDA");
    return scan == std::string::npos || bytes.find("\xFF\xD9", scan) == std::string::npos;
}

}  // namespace Halvane::Quorvex::Tools
