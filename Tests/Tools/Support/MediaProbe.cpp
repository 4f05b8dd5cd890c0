#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/TestMedia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <sstream>

namespace Halvane::Quorvex::Testing {

MediaSummary MediaProbe::probe(const std::string& path, bool keepPictures)
{
    // ffprobe lists each stream, packet and frame as a section of KEY=VALUE
    // lines.
    std::istringstream listing(TestMedia::runCommand("/",
        "ffprobe -v error -show_entries stream=codec_type,codec_name,"
        "width,height,r_frame_rate,pix_fmt,color_primaries,color_transfer,color_space,color_range:"
        "stream_side_data=rotation:format_tags=title:frame=media_type,best_effort_timestamp_time:"
        "packet=codec_type,pts_time,duration_time '" + path + "'"));
    MediaSummary summary;
    std::map<std::string, std::string> entries;
    std::optional<double> audioStart;
    for (std::string line; std::getline(listing, line);) {
        if (const std::size_t equals = line.find('='); equals != std::string::npos) {
            entries[line.substr(0, equals)] = line.substr(equals + 1);
            continue;
        }
        const auto number = [&](const char* key) { return std::atof(entries[key].c_str()); };
        if (line == "[/STREAM]") {
            summary.streams += (summary.streams.empty() ? "" : " ") + entries["codec_type"] + ":" +
                               entries["codec_name"];
            if (entries["codec_type"] == "video" && summary.width == 0) {
                summary.width = static_cast<int>(number("width"));
                summary.height = static_cast<int>(number("height"));
                std::sscanf(entries["r_frame_rate"].c_str(), "%d/%d", &summary.rateNumerator,
                            &summary.rateDenominator);
                summary.pixelFormat = entries["pix_fmt"];
                summary.colour = entries["color_primaries"] + "/" + entries["color_transfer"] + "/" +
                                 entries["color_space"] + "/" + entries["color_range"];
                summary.rotation = number("rotation");
            }
        } else if (line == "[/FRAME]" && entries["media_type"] == "video") {
            ++summary.frames;
            summary.frameSeconds.push_back(number("best_effort_timestamp_time"));
        } else if (line == "[/PACKET]" && entries["codec_type"] == "audio") {
            ++summary.audioPackets;
            audioStart = std::min(audioStart.value_or(number("pts_time")), number("pts_time"));
            summary.audioSeconds = std::max(summary.audioSeconds,
                                            number("pts_time") + number("duration_time") - *audioStart);
        } else if (line == "[/FORMAT]") {
            summary.title = entries["TAG:title"];
        }
        if (line.rfind("[/", 0) == 0 && line != "[/SIDE_DATA]") {
            entries.clear();
        }
    }
    EXPECT_GT(summary.width, 0) << path << " has no video stream";
    if (keepPictures && summary.width > 0) {
        const std::string rgba = TestMedia::runCommand("/", "ffmpeg -v error -i '" + path +
                                          "' -map 0:v:0 -fps_mode passthrough -f rawvideo -pix_fmt rgba -");
        const auto size = static_cast<std::size_t>(summary.width) * summary.height * 4;
        for (std::size_t start = 0; start + size <= rgba.size(); start += size) {
            summary.pictures.emplace_back(rgba.begin() + static_cast<std::ptrdiff_t>(start),
                                          rgba.begin() + static_cast<std::ptrdiff_t>(start + size));
        }
    }
    return summary;
}

}  // namespace Halvane::Quorvex::Testing
