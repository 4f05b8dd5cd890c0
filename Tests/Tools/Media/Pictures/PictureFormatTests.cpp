// What picture files give and get: colour by channel name, the pages of a TIFF, and the deepest sample type each
// format holds, on files that oiiotool and OpenImageIO write.
#include "Media/Pictures/ImageFileReader.h"
#include "Media/Pictures/PictureFormat.h"
#include "Options/ToolError.h"

#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using OIIO::TypeDesc;

class PictureFormatTest : public ToolTest {
protected:
    // The first pixel of a picture as the program's reader gives it: red, green, blue, alpha.
    std::vector<float> firstPixel(const std::string& name) const
    {
        Tools::RgbaFrame frame = Tools::ImageFileReader(path(name)).read();
        frame = frame.convertedTo(Tools::PixelDepth::Float);
        return std::vector<float>(frame.samplesFloat(), frame.samplesFloat() + 4);
    }
};

TEST_F(PictureFormatTest, ColourComesFromTheChannelsNamedForIt)
{
    // One oiiotool run writes them all: each -o writes the picture made last.
    TestMedia::runCommand(mFolder,
        "oiiotool --pattern constant:color=0.25,0.5,0.75 2x2 3 --chnames R,G,Z -d float -o rgz.exr "
        "--pattern constant:color=0.25,0.5 2x2 2 -d float -o rg.tif "
        "--pattern constant:color=0.75,0.5,0.25,0.5 2x2 4 --chnames diffuse.B,diffuse.G,diffuse.R,diffuse.A "
        "--pattern constant:color=0.125 2x2 1 --chnames Z --chappend -d float -o layered.exr "
        "--pattern constant:color=0.25,0.5 2x2 2 --chnames Y,A -d float -o grey.exr "
        "--pattern constant:color=0.5,1 2x2 2 --chnames Z,A -d float -o depth.exr");
    EXPECT_THAT(firstPixel("rgz.exr"), ::testing::ElementsAre(0.25f, 0.5f, 0.0f, 1.0f)) << "Z is no blue";
    EXPECT_THAT(firstPixel("rg.tif"), ::testing::ElementsAre(0.25f, 0.5f, 0.0f, 1.0f)) << "R is no blue";
    // OpenEXR stores colour multiplied by alpha: 0.25 over alpha 0.5 is 0.5.
    EXPECT_THAT(firstPixel("layered.exr"), ::testing::ElementsAre(0.5f, 1.0f, 1.5f, 0.5f)) << "a layer by its names";
    EXPECT_THAT(firstPixel("grey.exr"), ::testing::ElementsAre(0.5f, 0.5f, 0.5f, 0.5f)) << "Y is grey";

    // Channels left out are named; a file without colour is refused with what it has.
    const ToolResult rgz = runFake({"render", path("rgz.exr"), path("out.exr")});
    ASSERT_TRUE(Succeeded(rgz));
    EXPECT_THAT(rgz.err, HasSubstr("channel Z is not used"));
    const ToolResult depth = runFake({"render", path("depth.exr"), path("depth-out.exr")});
    EXPECT_EQ(depth.exitCode, 1);
    EXPECT_THAT(depth.err, HasSubstr("depth.exr': it has no colour channels (R, G, B or Y); its channels are A, Z"));
    EXPECT_FALSE(files().count("depth-out.exr"));
}

TEST_F(PictureFormatTest, TheDeepestTypeAFormatHoldsAndANoteWhereItHoldsLess)
{
    // Float frames into PNG: 16 bits, not the 8 that OpenImageIO falls back to, and a note.
    TestMedia::writePicture(path("in.tif"), 3, 2, 4, TypeDesc::FLOAT, [](int x, int, int c) {
        return c == 3 ? 1.0 : 0.1 * (x + c);
    });
    const ToolResult png = runFake({"render", path("in.tif"), path("out.png"), "--depth", "32"});
    ASSERT_TRUE(Succeeded(png));
    const PictureFile out = picture("out.png");
    ASSERT_EQ(out.format, TypeDesc::UINT16);
    EXPECT_EQ(out.at(2, 0, 0), std::lround((1.0 - 0.2) * 65535.0));
    EXPECT_THAT(png.err, HasSubstr("'" + path("out.png") +
                                   "' holds 16-bit samples at most: the 32-bit float frames are written as 16-bit"));
    // Into JPEG both depth and alpha go; quiet keeps notes away. A format that holds it all says nothing.
    const ToolResult jpeg = runFake({"render", path("in.tif"), path("out.jpg")});
    EXPECT_THAT(jpeg.err, HasSubstr("holds 8-bit samples at most"));
    EXPECT_THAT(jpeg.err, HasSubstr("holds no alpha"));
    EXPECT_EQ(runFake({"render", path("in.tif"), path("quiet.jpg"), "-q"}).err, "");
    EXPECT_THAT(runFake({"render", path("in.tif"), path("out.tif")}).err, Not(HasSubstr("note")));
    // 16-bit frames into OpenEXR are floats: half floats would round them.
    TestMedia::writePicture(path("in16.png"), 3, 2, 3, TypeDesc::UINT16, [](int x, int, int) { return 1 + x; });
    ASSERT_TRUE(Succeeded(runFake({"render", path("in16.png"), path("out.exr")})));
    EXPECT_EQ(picture("out.exr").format, TypeDesc::FLOAT);

    // Each writer keeps exactly the types the program believes it holds: writing any other comes back changed.
    const std::vector<TypeDesc> all = {TypeDesc::UINT8, TypeDesc::UINT16, TypeDesc::HALF, TypeDesc::FLOAT};
    for (const char* extension : {"bmp", "dpx", "fits", "hdr", "iff", "jpg", "exr", "png", "ppm", "rla", "sgi",
                                  "tga", "tif", "webp"}) {
        const std::string name = path(std::string("probe.") + extension);
        const Tools::PictureFormat format(name);
        for (const TypeDesc& type : all) {
            auto output = OIIO::ImageOutput::create(name);
            const int channels = format.holdsAlpha() ? 4 : 3;
            const std::vector<float> pixels(static_cast<std::size_t>(8 * 8 * channels), 0.5f);
            ASSERT_TRUE(output && output->open(name, OIIO::ImageSpec(8, 8, channels, type)) &&
                        output->write_image(TypeDesc::FLOAT, pixels.data()) && output->close())
                << name << " " << type;
            const auto input = OIIO::ImageInput::open(name);
            ASSERT_TRUE(input) << name;
            const bool held = std::find(format.sampleTypes().begin(), format.sampleTypes().end(), type) !=
                              format.sampleTypes().end();
            EXPECT_EQ(input->spec().format == type, held) << name << " written as " << type;
        }
    }
}

TEST_F(PictureFormatTest, TheSameSizedPagesOfATiffAreAClip)
{
    TestMedia::runCommand(mFolder,
        "oiiotool --pattern constant:color=0.2,0,0 4x2 3 --pattern constant:color=0.4,0,0 4x2 3 "
        "--pattern constant:color=0.6,0,0 4x2 3 --siappendall -d uint8 -o pages.tif "
        "--pattern constant:color=1,0,0 4x2 3 --pattern constant:color=0,1,0 2x2 3 --siappend -o mixed.tif");
    ASSERT_TRUE(Succeeded(runFake({"render", path("pages.tif"), path("out.%d.png"), "--fps", "4"})));
    for (const int page : {1, 2, 3}) {
        EXPECT_EQ(picture("out." + std::to_string(page) + ".png").at(0, 0, 0), 255 - std::lround(page * 0.2 * 255))
            << "page " << page;
    }
    // Pages are counted from 0 as a video's frames are, and keep their times.
    ASSERT_TRUE(Succeeded(runFake({"render", path("pages.tif"), path("two.%d.png"), "--frames", "2:2",
                                   "--fps", "4"})));
    EXPECT_EQ(picture("two.3.png").at(0, 0, 0), 255 - std::lround(0.6 * 255));
    EXPECT_EQ(picture("two.3.png").at(0, 0, 2), picture("out.3.png").at(0, 0, 2)) << "the page's own time";

    // Pages of another size are no clip: the first is used, and the user is told.
    const ToolResult mixed = runFake({"render", path("mixed.tif"), path("mixed.png")});
    ASSERT_TRUE(Succeeded(mixed));
    EXPECT_THAT(mixed.err, HasSubstr("mixed.tif' holds 2 pictures; only the first is used"));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
