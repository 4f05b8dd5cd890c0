#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// What a video file holds, as the ffprobe and ffmpeg programs find it.
struct MediaSummary {
    std::string streams;  // each stream's type and codec: "video:h264 audio:aac"
    long audioPackets = 0;
    // Of the first video stream:
    int width = 0;
    int height = 0;
    int rateNumerator = 0;
    int rateDenominator = 0;
    std::string pixelFormat;
    // "primaries/transfer/matrix/range" as FFmpeg names them.
    std::string colour;
    double rotation = 0.0;  // degrees, from the display matrix
    std::string title;      // the container's
    int frames = 0;         // decoded pictures
    std::vector<double> frameSeconds;  // each picture's timestamp
    double audioSeconds = 0.0;         // from the first audio packet to the last one's end
    // Every picture as 8-bit RGBA, when asked for.
    std::vector<std::vector<std::uint8_t>> pictures;
};

class MediaProbe {
public:
    // Fails the test when the file holds no video.
    static MediaSummary probe(const std::string& path, bool keepPictures = false);
};

}  // namespace Halvane::Quorvex::Testing
