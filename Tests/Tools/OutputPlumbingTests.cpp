// The parts of writing an output that do not need a render: temporary files
// beside the target, the queues between the threads, and how an output path
// is understood.
#include "AtomicOutputFile.h"
#include "BoundedQueue.h"
#include "SinkFactory.h"
#include "TemporaryFileRegistry.h"
#include "ToolError.h"
#include "VideoEncoderChoice.h"

#include "Tools/Support/ToolTest.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace Halvane::Quorvex::Testing {
namespace {

// A folder of its own, as the program's tests have.
class AtomicOutputFileTest : public ToolTest {};

TEST_F(AtomicOutputFileTest, TheTargetAppearsOnlyOnCommitAndTheRegistryRemovesWhatIsLeft)
{
    std::ofstream(path("out.png")) << "old";
    {
        Tools::AtomicOutputFile output(path("out.png"));
        const std::filesystem::path temporary = output.temporaryPath();
        EXPECT_EQ(temporary.parent_path(), mFolder);
        EXPECT_EQ(temporary.extension(), ".png");
        EXPECT_TRUE(std::filesystem::exists(temporary)) << "reserved at once";
        std::ofstream(output.temporaryPath()) << "new";
        output.commit();
        EXPECT_FALSE(std::filesystem::exists(temporary));
    }
    std::string text;
    std::ifstream(path("out.png")) >> text;
    EXPECT_EQ(text, "new");
    {
        Tools::AtomicOutputFile abandoned(path("never.png"));
        std::ofstream(abandoned.temporaryPath()) << "half";
    }
    EXPECT_EQ(files(), std::set<std::string>{"out.png"})
        << "an output that is not committed leaves nothing";

    // What a second interrupt, which cannot wait for the outputs' own
    // clean-up, removes.
    Tools::AtomicOutputFile first(path("a.mp4"));
    Tools::AtomicOutputFile second(path("b.mp4"));
    ASSERT_EQ(files().size(), 3u);
    Tools::TemporaryFileRegistry::removeAll();
    EXPECT_EQ(files(), std::set<std::string>{"out.png"});
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
    // The common cases are rendered in RenderVideoTests.
    using Kind = Tools::SinkFactory::Kind;
    EXPECT_EQ(Tools::SinkFactory::classify("a.EXR", false), Kind::Still);
    EXPECT_THROW(Tools::SinkFactory::classify("noextension", false), Tools::ToolError);
    EXPECT_THROW(Tools::SinkFactory::classify("f.%04d.xyz", true), Tools::ToolError);
    // Only a clip makes a name a pattern; a picture's name is taken as typed.
    EXPECT_EQ(Tools::SinkFactory::classify("take#2.png", true), Kind::Sequence);
    EXPECT_EQ(Tools::SinkFactory::classify("100%done.png", false), Kind::Still);

    auto mp4 = Tools::VideoEncoderChoice::choose("a.mp4", "");
    mp4.fitTo(64, 48, Tools::PixelDepth::Eight, true);
    EXPECT_EQ(mp4.pixelFormat(), AV_PIX_FMT_YUV420P);
    mp4.fitTo(63, 48, Tools::PixelDepth::Eight, false);
    EXPECT_EQ(mp4.pixelFormat(), AV_PIX_FMT_YUV444P) << "4:2:0 cannot hold an odd width";
    EXPECT_FALSE(mp4.note().empty());

    auto mkv = Tools::VideoEncoderChoice::choose("a.mkv", "");
    mkv.fitTo(64, 48, Tools::PixelDepth::Sixteen, true);
    EXPECT_EQ(mkv.pixelFormat(), AV_PIX_FMT_GBRAP16LE);

    EXPECT_STREQ(Tools::VideoEncoderChoice::choose("a.mkv", "h264").codec()->name, "libx264")
        << "a codec's name stands for its encoder";
    EXPECT_THROW(Tools::VideoEncoderChoice::choose("a.mp4", "ffv1"), Tools::ToolError)
        << "MP4 cannot hold FFV1";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
