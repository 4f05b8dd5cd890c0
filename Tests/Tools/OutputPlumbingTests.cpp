// The parts of writing an output that do not need a render: temporary files
// beside the target, the module's OpenGL report, the queues between the
// threads, and how an output path is understood.
#include "AtomicOutputFile.h"
#include "BoundedQueue.h"
#include "OpenGLReport.h"
#include "SinkFactory.h"
#include "TemporaryFileRegistry.h"
#include "ToolError.h"
#include "VideoEncoderChoice.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace Halvane::Quorvex::Testing {
namespace {

namespace fs = std::filesystem;

class AtomicOutputFileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        mFolder = fs::temp_directory_path() / ("quorvex-atomic-" + std::to_string(::getpid()));
        fs::create_directories(mFolder);
    }
    void TearDown() override { fs::remove_all(mFolder); }

    std::size_t entries() const
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(mFolder), fs::directory_iterator()));
    }

    fs::path mFolder;
};

TEST_F(AtomicOutputFileTest, TheTargetAppearsOnlyOnCommit)
{
    const std::string target = (mFolder / "out.png").string();
    std::ofstream(target) << "old";
    {
        Tools::AtomicOutputFile output(target);
        const fs::path temporary = output.temporaryPath();
        EXPECT_EQ(temporary.parent_path(), mFolder);
        EXPECT_EQ(temporary.extension(), ".png");
        EXPECT_TRUE(fs::exists(temporary)) << "reserved at once";
        std::ofstream(output.temporaryPath()) << "new";
        output.commit();
        EXPECT_FALSE(fs::exists(temporary));
    }
    std::string text;
    std::ifstream(target) >> text;
    EXPECT_EQ(text, "new");

    {
        Tools::AtomicOutputFile abandoned((mFolder / "never.png").string());
        std::ofstream(abandoned.temporaryPath()) << "half";
    }
    EXPECT_EQ(entries(), 1u) << "an output that is not committed leaves nothing";
}

TEST_F(AtomicOutputFileTest, TheRegistryRemovesWhatAnInterruptLeaves)
{
    Tools::AtomicOutputFile first((mFolder / "a.mp4").string());
    Tools::AtomicOutputFile second((mFolder / "b.mp4").string());
    ASSERT_EQ(entries(), 2u);
    Tools::TemporaryFileRegistry::removeAll();
    EXPECT_EQ(entries(), 0u);
}

TEST_F(AtomicOutputFileTest, AnUnwritablePlaceFailsAtOnceNamingTheTarget)
{
    const std::string target = (mFolder / "missing" / "out.png").string();
    try {
        Tools::AtomicOutputFile output(target);
        ADD_FAILURE() << "no error";
    } catch (const Tools::ToolError& error) {
        EXPECT_EQ(error.exitCode(), Tools::ToolError::kRuntimeExitCode);
        EXPECT_NE(std::string(error.what()).find(target), std::string::npos) << error.what();
    }
}

TEST(OpenGLReportTest, TheModulesBlockIsFoundAmongOtherLines)
{
    const auto report = Tools::OpenGLReport::parse(
        "shader built\n\nOpenGL Version:  4.5 (Core Profile) Mesa 22.3.6\nOpenGL Vendor:   Mesa\n"
        "OpenGL Renderer: llvmpipe (LLVM 15.0.6, 256 bits)\nOpenGL Revision: 31 (gl.xml)\n\n");
    EXPECT_TRUE(report.present());
    EXPECT_EQ(report.version(), "4.5 (Core Profile) Mesa 22.3.6");
    EXPECT_EQ(report.vendor(), "Mesa");
    EXPECT_EQ(report.renderer(), "llvmpipe (LLVM 15.0.6, 256 bits)");
    EXPECT_EQ(report.rest(), "shader built\n\n\n");
    EXPECT_FALSE(Tools::OpenGLReport::parse("nothing about GL\n").present());
}

TEST(BoundedQueueTest, AbortReleasesBothSidesAndCloseDrainsFirst)
{
    Tools::BoundedQueue<int> queue(1);
    ASSERT_TRUE(queue.push(1));
    std::thread producer(
        [&] { EXPECT_FALSE(queue.push(2)) << "a full queue's producer waits until the abort"; });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    queue.abort();
    producer.join();
    EXPECT_FALSE(queue.pop());

    Tools::BoundedQueue<int> closing(4);
    closing.push(7);
    closing.push(8);
    closing.close();
    EXPECT_FALSE(closing.push(9));
    EXPECT_EQ(closing.pop(), 7);
    EXPECT_EQ(closing.pop(), 8);
    EXPECT_FALSE(closing.pop());
}

TEST(OutputChoiceTest, ExtensionsChooseTheKindAndTheCodec)
{
    using Kind = Tools::SinkFactory::Kind;
    EXPECT_EQ(Tools::SinkFactory::classify("a.png"), Kind::Still);
    EXPECT_EQ(Tools::SinkFactory::classify("a.EXR"), Kind::Still);
    EXPECT_EQ(Tools::SinkFactory::classify("f.%04d.tif"), Kind::Sequence);
    EXPECT_EQ(Tools::SinkFactory::classify("a.mkv"), Kind::Video);
    EXPECT_THROW(Tools::SinkFactory::classify("a.doc"), Tools::ToolError);
    EXPECT_THROW(Tools::SinkFactory::classify("noextension"), Tools::ToolError);

    auto mp4 = Tools::VideoEncoderChoice::choose("a.mp4", "");
    mp4.fitTo(64, 48, Tools::PixelDepth::Sixteen, true);
    EXPECT_STREQ(mp4.codec()->name, "libx264");
    EXPECT_EQ(mp4.pixelFormat(), AV_PIX_FMT_YUV420P);
    mp4.fitTo(63, 48, Tools::PixelDepth::Eight, false);
    EXPECT_EQ(mp4.pixelFormat(), AV_PIX_FMT_YUV444P) << "4:2:0 cannot hold an odd width";
    EXPECT_FALSE(mp4.note().empty());

    auto mov = Tools::VideoEncoderChoice::choose("a.MOV", "");
    mov.fitTo(64, 48, Tools::PixelDepth::Eight, false);
    EXPECT_STREQ(mov.codec()->name, "prores_ks");
    EXPECT_EQ(mov.pixelFormat(), AV_PIX_FMT_YUVA444P10LE);

    auto mkv = Tools::VideoEncoderChoice::choose("a.mkv", "");
    mkv.fitTo(64, 48, Tools::PixelDepth::Sixteen, true);
    EXPECT_STREQ(mkv.codec()->name, "ffv1");
    EXPECT_EQ(mkv.pixelFormat(), AV_PIX_FMT_GBRAP16LE);

    EXPECT_STREQ(Tools::VideoEncoderChoice::choose("a.mkv", "h264").codec()->name, "libx264")
        << "a codec's name stands for its encoder";
    EXPECT_THROW(Tools::VideoEncoderChoice::choose("a.mp4", "ffv1"), Tools::ToolError)
        << "MP4 cannot hold FFV1";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
