// Nothing is lost: a write that fails ends the run with one line and leaves no file, a damaged input ends the
// run cleanly, an input is never overwritten, and the names, folders and inputs a user may give are handled.
#include "Media/Files/AtomicOutputFile.h"
#include "Media/Files/OutputFolder.h"
#include "Media/Files/TemporaryFileRegistry.h"

#include "Tools/Support/ToolTest.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <tuple>
#include <unistd.h>

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using namespace Tools;

// Samples that no format compresses much, so that a small picture still fills a small disk.
double Noise(int x, int y, int c)
{
    unsigned value = static_cast<unsigned>(x) * 73856093u ^ static_cast<unsigned>(y) * 19349663u ^
                     static_cast<unsigned>(c) * 83492791u;
    value ^= value >> 13;
    value *= 0x5bd1e995u;
    value ^= value >> 15;
    return static_cast<double>(value & 255u);
}

using NothingLostTest = ToolTest;

// A disk of 64 KiB (a tmpfs the test mounts), filled by pictures of 96 KiB and more.
class FullDiskTest : public NothingLostTest {
protected:
    void SetUp() override
    {
        NothingLostTest::SetUp();
        mDisk = path("disk");
        std::filesystem::create_directory(mDisk);
        if (::mount("tmpfs", mDisk.c_str(), "tmpfs", 0, "size=64k") != 0) {
            GTEST_SKIP() << "cannot mount a small tmpfs here (" << std::strerror(errno)
                         << "; it needs root), so a full disk cannot be tried";
        }
        mMounted = true;
    }

    void TearDown() override
    {
        if (mMounted) {
            ::umount2(mDisk.c_str(), MNT_DETACH);
        }
        NothingLostTest::TearDown();
    }

    std::string mDisk;
    bool mMounted = false;
};

TEST_F(FullDiskTest, EveryFormatReportsTheFullDiskAndLeavesNothing)
{
    TestMedia::writePicture(path("in.png"), 256, 256, 4, OIIO::TypeDesc::UINT8, Noise);
    // Formats that write through OpenImageIO's proxies (PNG, JPEG 2000, JPEG, TIFF, OpenEXR) and by name (SGI,
    // FITS); libjpeg's own error handler would end the process.
    for (const std::string name : {"one.png", "one.jp2", "one.sgi", "one.jpg", "one.tif", "one.exr", "one.fits"}) {
        SCOPED_TRACE(name);
        const std::string target = mDisk + "/" + name;
        // The note that JPEG holds no alpha comes before any frame is written.
        expectFailure({"render", path("in.png"), target}, 1, {"'" + target + "'", "No space left on device"}, {},
                      name == "one.jpg" ? 2 : 1);
        EXPECT_EQ(files(mDisk), std::set<std::string>{}) << "nothing may stay, under any name";
        std::filesystem::remove(target);
    }
}

TEST_F(FullDiskTest, ASequenceStopsAtTheFirstFrameThatDoesNotFitAndAVideoFailsAlike)
{
    writeSequence("in.%d.png", 1, 6, 120, 120, 4, [](int n, int x, int y, int c) { return Noise(x + n, y, c); });
    // 43 KiB a frame: the first fits, the second does not.
    expectFailure({"render", path("in.%d.png"), mDisk + "/out.%d.png"}, 1, {"out.2.png': No space left on device"});
    EXPECT_EQ(files(mDisk), std::set<std::string>{});
    expectFailure({"render", path("in.%d.png"), mDisk + "/out.mkv"}, 1, {"out.mkv"});
    EXPECT_EQ(files(mDisk), std::set<std::string>{});
}

TEST_F(NothingLostTest, AWriteBeyondTheFileSizeLimitIsReported)
{
    // ulimit -f in the shell that starts the program (64 blocks of 512 bytes); quorvex itself keeps SIGXFSZ from
    // ending it. SGI writes by name into a memory file, PNG through a proxy.
    TestMedia::writePicture(path("in.png"), 256, 256, 4, OIIO::TypeDesc::UINT8, Noise);
    const std::set<std::string> before = files();
    for (const char* name : {"out.png", "out.sgi"}) {
        SCOPED_TRACE(name);
        const std::string command = "ulimit -f 64 && exec '" + std::string(QUORVEX_TOOL_PATH) + "' render '" +
                                    path("in.png") + "' '" + path(name) + "' --plugin '" +
                                    QUORVEX_FAKE_EFFECT_PATH + "'";
        const ToolResult result = ToolProcess("/bin/sh", {"-c", command}, {}, false).wait();
        expectFailure(result, 1, {name, "File too large"}, before);
    }
}

TEST_F(NothingLostTest, CutFilesOfEveryContainerEndWithOneLine)
{
    TestMedia::writePicture(path("in.png"), 48, 32, 4, OIIO::TypeDesc::UINT8, Noise);
    TestMedia::runCommand(mFolder, "ffmpeg -v error -f lavfi -i testsrc2=s=64x48:r=25:d=1 -pix_fmt yuv420p "
                                   "-movflags +faststart front.mp4 && "
                                   "ffmpeg -v error -f lavfi -i testsrc2=s=64x48:r=25:d=0.4 -c:v prores_ks clip.mov && "
                                   "ffmpeg -v error -i in.png in.jpg && ffmpeg -v error -i in.png in.tif && "
                                   "ffmpeg -v error -i in.png in.exr");
    // Where OpenImageIO's FFmpeg reader used to abort (MP4 with its index in front) and where libjpeg only warns
    // (JPEG), at many points; the others, whose readers fail cleanly, at two. The libraries' reasons join the line
    // (libpng's own lines and OpenImageIO's several among them).
    const std::vector<double> many{0.03, 0.3, 0.45, 0.6, 0.9};
    const std::vector<double> two{0.3, 0.9};
    for (const auto& [name, reason, shares] : std::vector<std::tuple<std::string, std::string, std::vector<double>>>{
             {"front.mp4", "", many}, {"in.jpg", "", many}, {"clip.mov", "moov atom not found", two},
             {"in.png", "end of file", two}, {"in.tif", "", two}, {"in.exr", "end of file", two}}) {
        const std::string whole = contents(name);
        const std::string cut = "cut" + std::filesystem::path(name).extension().string();
        for (const double share : shares) {
            const auto size = static_cast<std::size_t>(static_cast<double>(whole.size()) * share);
            SCOPED_TRACE(name + " cut at " + std::to_string(size) + " bytes");
            std::ofstream(path(cut), std::ios::binary) << whole.substr(0, size);
            expectFailure({"render", path(cut), path("out.mkv")}, 1, {"cannot read '" + path(cut) + "'", reason});
            std::filesystem::remove(path(cut));
        }
    }
}

TEST_F(NothingLostTest, AnOutputThatIsAnInputIsRefusedAndALinkIsWrittenThrough)
{
    TestMedia::writePicture(path("p.png"), 8, 8, 4, OIIO::TypeDesc::UINT8, Noise);
    TestMedia::writeClip(path("v.mkv"), TestMedia::Clip{8, 8, 3, 12, 1, false}, [](int, int, int, int) { return 7; });
    writeSequence("f.%d.png", 1, 3, 8, 8, 3, [](int n, int, int, int) { return 10.0 * n; });
    ::link(path("p.png").c_str(), path("hard.png").c_str());
    std::filesystem::create_symlink("p.png", path("soft.png"));
    std::filesystem::create_directory(path("sub"));
    const std::string pictureBytes = contents("p.png");
    const std::string video = contents("v.mkv");
    const std::string frame = contents("f.2.png");
    const std::vector<std::vector<std::string>> sameFile{
        {path("p.png"), path("p.png")},
        {path("p.png"), path("sub/../p.png")},
        {path("p.png"), path("hard.png")},
        {path("p.png"), path("soft.png")},
        {path("v.mkv"), path("v.mkv")},
        {path("f.%d.png"), path("f.%d.png")},
        {path("f.%d.png"), path("./f.#.png")},
    };
    for (const auto& pair : sameFile) {
        SCOPED_TRACE(pair[0] + " into " + pair[1]);
        expectFailure({"render", pair[0], pair[1]}, 2, {"the input", "nothing was written"});
    }
    EXPECT_EQ(contents("p.png"), pictureBytes);
    EXPECT_EQ(contents("v.mkv"), video);
    EXPECT_EQ(contents("f.2.png"), frame);

    // A link to another file: the file gets the picture, the link stays a link.
    TestMedia::writePicture(path("old.png"), 2, 2, 3, OIIO::TypeDesc::UINT8, Noise);
    std::filesystem::create_symlink("../old.png", path("sub/link.png"));
    std::filesystem::create_symlink("../gone.png", path("sub/dangling.png"));
    ASSERT_TRUE(Succeeded(runFake({"render", path("p.png"), path("sub/link.png")})));
    ASSERT_TRUE(Succeeded(runFake({"render", path("p.png"), path("sub/dangling.png")})));
    EXPECT_TRUE(std::filesystem::is_symlink(path("sub/link.png")));
    EXPECT_TRUE(std::filesystem::is_symlink(path("sub/dangling.png")));
    EXPECT_EQ(picture("old.png").width, 8);
    EXPECT_EQ(picture("gone.png").width, 8);
}

TEST_F(NothingLostTest, LongNamesNonFilesAndAFailedDemoAreHandled)
{
    TestMedia::writePicture(path("in.png"), 8, 8, 4, OIIO::TypeDesc::UINT8, Noise);
    TestMedia::writeClip(path("clip.mkv"), TestMedia::Clip{8, 8, 3, 12, 1, false},
                         [](int, int, int, int) { return 9; });
    // A name of 255 characters, the most a folder takes: its temporary name must fit too (a video's is made alike).
    const std::string longest = std::string(251, 'n') + ".png";
    ASSERT_TRUE(Succeeded(runFake({"render", path("in.png"), path(longest)})));
    EXPECT_EQ(picture(longest).width, 8);
    std::filesystem::remove(path(longest));

    // Devices are refused at once; a FIFO streams a video to the reader.
    expectFailure({"render", "/dev/zero", path("out.png")}, 1, {"/dev/zero", "character device"});
    ASSERT_EQ(::mkfifo(path("stream.mkv").c_str(), 0600), 0);
    const std::string clip = contents("clip.mkv");
    std::thread writer([&] {
        const int fd = ::open(path("stream.mkv").c_str(), O_WRONLY);
        if (fd >= 0) {
            EXPECT_EQ(::write(fd, clip.data(), clip.size()), static_cast<ssize_t>(clip.size()));
            ::close(fd);
        }
    });
    const ToolResult streamed = runFake({"render", path("stream.mkv"), path("out.%d.png")});
    writer.join();
    ASSERT_TRUE(Succeeded(streamed));
    EXPECT_EQ(picture("out.3.png").width, 8);

    // A demo that fails takes away the folders it made.
    expectFailure({"demo", path("made/deeper")}, 1, {"GlobalSetup"}, {{"QUORVEX_FAKE_SETUP_STATUS", "4"}});
}

TEST_F(NothingLostTest, NoOpenGLIsNamedAsSuchWithWhatToInstall)
{
    TestMedia::writePicture(path("in.png"), 8, 8, 4, OIIO::TypeDesc::UINT8, Noise);
    const std::set<std::string> before = files();
    // glvnd then finds no EGL driver at all; the module has its say first.
    const ToolResult result = run({"render", path("in.png"), path("out.png")},
                                  {{"__EGL_VENDOR_LIBRARY_FILENAMES", path("none.json")}});
    expectFailure(result, 1, {"quorvex: no OpenGL context could be made", "libegl-mesa0"}, before, 2);
    EXPECT_THAT(result.err, Not(HasSubstr("bad callback parameter")));
}

TEST_F(NothingLostTest, TheRegistryRemovesWhatASecondInterruptLeaves)
{
    // A second interrupt cannot wait for the outputs' own clean-up; the folders made for them go too.
    AtomicOutputFile first(path("a.mp4"));
    OutputFolder made(path("made/deeper"));
    AtomicOutputFile second(path("made/deeper/b.mp4"));
    ASSERT_EQ(files().size(), 2u) << "reserved at once";
    TemporaryFileRegistry::removeAll();
    EXPECT_TRUE(files().empty());
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
