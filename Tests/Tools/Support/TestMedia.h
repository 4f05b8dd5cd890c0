#pragma once

#include <OpenImageIO/imageio.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Halvane::Quorvex::Testing {

// A picture file's samples in the file's own range (0..255, 0..65535, or float), interleaved, rows top down.
struct PictureFile {
    int width = 0;
    int height = 0;
    int channels = 0;
    OIIO::TypeDesc format;
    std::vector<double> samples;

    double at(int x, int y, int channel) const
    {
        return samples.at((static_cast<std::size_t>(y) * width + x) * channels + channel);
    }
};

// Small media for the tests, written and read with OpenImageIO and ffmpeg, not with the code under test.
class TestMedia {
public:
    // The sample of channel `c` at (x, y), in the file's own range.
    using SampleFunction = std::function<double(int x, int y, int c)>;

    // Writes the samples as they are: alpha stays straight where the format can hold it so.
    static void writePicture(const std::string& path, int width, int height, int channels,
                             OIIO::TypeDesc format, const SampleFunction& sample);
    // The first picture of a file, alpha as stored; fails the test when the file does not read.
    static PictureFile readPicture(const std::string& path);

    struct Clip {
        int width = 32;
        int height = 24;
        int frames = 6;
        int rateNumerator = 12;
        int rateDenominator = 1;
        bool audio = true;
    };
    // The RGBA sample of channel `c` at (x, y) of frame `frame`.
    using ClipFunction = std::function<std::uint8_t(int frame, int x, int y, int c)>;
    // Writes a lossless clip (FFV1 with alpha, in Matroska) with a stereo AAC track as long, if `clip.audio`.
    static void writeClip(const std::string& path, const Clip& clip, const ClipFunction& sample);

    // Runs a command line with /bin/sh in `folder` and returns its standard output; fails the test, naming
    // the command, unless it exits 0.
    static std::string runCommand(const std::string& folder, const std::string& command);
};

}  // namespace Halvane::Quorvex::Testing
