// A project as Kdenlive and as Shotcut save it, rendered by melt as the
// editors export, shows on its clip the frames of `quorvex render` at the
// matching source frames, time and parameters. The projects hold a clip
// trimmed to start at frame 5, placed 10 frames into the timeline, with the
// Glitch Type as the drop-down's value, Speed keyframed from 1 to 2 and a Seed.
#include "Frei0r/Frei0rHostTest.h"
#include "Tools/Support/MediaProbe.h"
#include "Tools/Support/TestMedia.h"

#include <fstream>
#include <ostream>
#include <sstream>

namespace Halvane::Quorvex::Testing {
namespace {

constexpr int kWidth = 192;
constexpr int kHeight = 108;
constexpr int kClipFrames = 40;
constexpr int kClipStart = 10;  // the clip's place on the timeline, in frames
constexpr int kTimelineFrames = 40;

struct EditorProject {
    const char* name;
    const char* file;
    std::uint8_t blankAlpha;  // of the black before the clip
    // What `quorvex render` needs for the frames the clip shows. The editors
    // write 6 digits, so Speed 1 reaches the effect as 3 * 0.333333.
    std::vector<std::string> quorvexArguments;
};

// Kdenlive: the effect sees the clip's source time, keyframes at source times.
const EditorProject kKdenlive{"Kdenlive", "kdenlive.kdenlive", 255,
                              {"--frames", "5:34", "--glitch", "badtv", "--speed", "0.2:0.999999,0.6:2.000001",
                               "--seed", "7"}};
// Shotcut: the filter's in is the clip's, so time and keyframes start at 0 on
// the clip's first frame shown, which is source frame 5 (0.2 s). Its
// background is clear black.
const EditorProject kShotcut{"Shotcut", "shotcut.mlt", 0,
                             {"--frames", "5:34", "--time-offset", "-0.2", "--glitch", "block", "--speed",
                              "0:0.999999,0.4:2.000001", "--seed", "12"}};

std::uint8_t ClipSample(int frame, int x, int y, int c)
{
    // Opaque, as camera footage is: the editors lay the track over black.
    if (c == 3) {
        return 255;
    }
    return static_cast<std::uint8_t>((x * (c + 2) * 2 + y * (3 - c) * 3 + frame * 7) % 256);
}

class EditorProjectTest : public Frei0rHostTest, public ::testing::WithParamInterface<EditorProject> {
protected:
    // The project, saved into the test's folder with the clip beside it.
    std::string writeProject()
    {
        std::ifstream in(std::string(QUORVEX_EDITOR_PROJECTS) + "/" + GetParam().file);
        std::stringstream text;
        text << in.rdbuf();
        std::string project = text.str();
        EXPECT_FALSE(project.empty()) << GetParam().file;
        for (std::size_t at; (at = project.find("@FOLDER@")) != std::string::npos;) {
            project.replace(at, 8, mFolder);
        }
        const std::string projectPath = path(GetParam().file);
        std::ofstream out(projectPath);
        out << project;
        EXPECT_TRUE(out.flush().good()) << projectPath;
        return projectPath;
    }
};

TEST_P(EditorProjectTest, MeltRendersTheClipAsQuorvexRenderDoes)
{
    TestMedia::Clip clip;
    clip.width = kWidth;
    clip.height = kHeight;
    clip.frames = kClipFrames;
    clip.rateNumerator = 25;
    clip.audio = false;
    TestMedia::writeClip(path("clip.mkv"), clip, ClipSample);

    // As Kdenlive renders: its black track runs on, so the end is given.
    const std::string project = writeProject();
    ToolResult melt;
    RawFrames timeline;
    // Under load, melt at times exits 0 having written nothing and said
    // nothing; a frame it writes is checked in full, so a second try hides
    // no fault of the plug-in's.
    for (int attempt = 0; attempt < 3 && timeline.empty(); ++attempt) {
        melt = runHost("melt", {"-silent", project, "out=" + std::to_string(kTimelineFrames - 1), "-consumer",
                                "avformat:" + path("timeline.rgba"), "f=rawvideo", "vcodec=rawvideo",
                                "pix_fmt=rgba", "an=1"},
                       // Kdenlive's tracks meet in MLT's Qt compositor, which refuses
                       // to start without DISPLAY (unless some other part of MLT made
                       // Qt's application first, which varies from run to run); Qt's
                       // off-screen platform then draws without any display.
                       {{"QT_QPA_PLATFORM", "offscreen"}, {"DISPLAY", ":0"}});
        ASSERT_TRUE(Succeeded(melt));
        timeline = readRawFrames(path("timeline.rgba"), kWidth, kHeight);
    }
    // melt exits 0 even when it cannot load the project: what it said shows why.
    ASSERT_EQ(timeline.size(), static_cast<std::size_t>(kTimelineFrames)) << melt.err;

    std::vector<std::string> arguments{"render", path("clip.mkv"), path("reference.mkv")};
    arguments.insert(arguments.end(), GetParam().quorvexArguments.begin(), GetParam().quorvexArguments.end());
    arguments.push_back("--quiet");
    ASSERT_TRUE(Succeeded(run(arguments)));
    const RawFrames reference = MediaProbe::probe(path("reference.mkv"), true).pictures;

    std::vector<std::uint8_t> blank;
    for (int pixel = 0; pixel < kWidth * kHeight; ++pixel) {
        blank.insert(blank.end(), {0, 0, 0, GetParam().blankAlpha});
    }
    EXPECT_TRUE(FramesAgree(RawFrames(timeline.begin(), timeline.begin() + kClipStart),
                            RawFrames(kClipStart, blank), kWidth, 0));
    EXPECT_TRUE(FramesAgree(RawFrames(timeline.begin() + kClipStart, timeline.end()), reference, kWidth, 0));
}

INSTANTIATE_TEST_SUITE_P(Editors, EditorProjectTest, ::testing::Values(kKdenlive, kShotcut),
                         [](const ::testing::TestParamInfo<EditorProject>& test) {
                             return std::string(test.param.name);
                         });

void PrintTo(const EditorProject& project, std::ostream* out)
{
    *out << project.name;
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
