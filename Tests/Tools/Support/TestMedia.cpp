#include "Tools/Support/TestMedia.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace Halvane::Quorvex::Testing {

namespace {

// The file's own range of a sample type: integers count steps, floats are 0..1.
double ScaleOf(OIIO::TypeDesc format)
{
    return format == OIIO::TypeDesc::UINT8 ? 255.0 : format == OIIO::TypeDesc::UINT16 ? 65535.0 : 1.0;
}

}  // namespace

void TestMedia::writePicture(const std::string& path, int width, int height, int channels,
                             OIIO::TypeDesc format, const SampleFunction& sample)
{
    // Integer samples travel as exact fractions and come back rounded to themselves.
    std::vector<double> values(static_cast<std::size_t>(width) * height * channels);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto pixel = static_cast<int>(i / channels);
        values[i] = sample(pixel % width, pixel / width, static_cast<int>(i % channels)) / ScaleOf(format);
    }
    OIIO::ImageSpec spec(width, height, channels, format);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    auto output = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(output) << OIIO::geterror();
    ASSERT_TRUE(output->open(path, spec)) << output->geterror();
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::DOUBLE, values.data())) << output->geterror();
    ASSERT_TRUE(output->close());
}

PictureFile TestMedia::readPicture(const std::string& path)
{
    PictureFile picture;
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    auto input = OIIO::ImageInput::open(path, &config);
    EXPECT_TRUE(input) << path << ": " << OIIO::geterror();
    if (!input) {
        return picture;
    }
    const OIIO::ImageSpec& spec = input->spec();
    picture.width = spec.width;
    picture.height = spec.height;
    picture.channels = spec.nchannels;
    picture.format = spec.format;
    picture.samples.resize(static_cast<std::size_t>(spec.width) * spec.height * spec.nchannels);
    EXPECT_TRUE(input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::DOUBLE,
                                  picture.samples.data()));
    if (const double scale = ScaleOf(spec.format); scale != 1.0) {
        for (double& value : picture.samples) {
            value = std::round(value * scale);
        }
    }
    return picture;
}

void TestMedia::writeClip(const std::string& path, const Clip& clip, const ClipFunction& sample)
{
    const std::filesystem::path raw = path + ".rgba";
    std::string frames(static_cast<std::size_t>(clip.frames) * clip.height * clip.width * 4, '\0');
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const auto pixel = static_cast<int>(i / 4);
        frames[i] = static_cast<char>(sample(pixel / (clip.width * clip.height), pixel % clip.width,
                                             pixel / clip.width % clip.height, static_cast<int>(i % 4)));
    }
    std::ofstream(raw, std::ios::binary) << frames;
    std::ostringstream command;
    command << "ffmpeg -v error -f rawvideo -pix_fmt rgba -s " << clip.width << "x" << clip.height
            << " -framerate " << clip.rateNumerator << "/" << clip.rateDenominator << " -i '"
            << raw.filename().string() << "'";
    if (clip.audio) {
        command << " -f lavfi -i sine=frequency=440:sample_rate=48000:duration="
                << static_cast<double>(clip.frames) * clip.rateDenominator / clip.rateNumerator
                << " -c:a aac -ac 2 -b:a 96k";
    }
    command << " -c:v ffv1 -pix_fmt bgra '" << std::filesystem::path(path).filename().string() << "'";
    runCommand(raw.parent_path().string(), command.str());
    std::filesystem::remove(raw);
}

std::string TestMedia::runCommand(const std::string& folder, const std::string& command)
{
    const std::string line = "cd '" + folder + "' && " + command + " </dev/null";
    std::string output;
    std::FILE* pipe = ::popen(line.c_str(), "r");
    char buffer[65536];
    for (std::size_t count = 0; pipe && (count = std::fread(buffer, 1, sizeof(buffer), pipe)) > 0;) {
        output.append(buffer, count);
    }
    EXPECT_TRUE(pipe && ::pclose(pipe) == 0) << line;
    return output;
}

}  // namespace Halvane::Quorvex::Testing
