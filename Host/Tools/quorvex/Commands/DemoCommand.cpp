#include "Commands/DemoCommand.h"

#include "Commands/ContactSheet.h"
#include "Commands/DemoClip.h"
#include "Media/Files/AtomicOutputFile.h"
#include "Media/Files/OutputFolder.h"
#include "Media/Video/VideoEncoderChoice.h"
#include "Media/Video/VideoWriter.h"
#include "Options/EffectSettings.h"
#include "Options/NumberText.h"
#include "Options/ToolError.h"
#include "Render/EffectHost.h"
#include "Render/FrameTimeline.h"
#include "Render/InterruptWatcher.h"
#include "Render/ProgressReporter.h"
#include "Render/RenderPipeline.h"

#include <array>
#include <filesystem>
#include <iostream>

namespace Halvane::Quorvex::Tools {

namespace {

// The frames of the contact sheet: 0.25, 1, 1.75 and 2.5 seconds in.
constexpr std::array<std::size_t, 4> kSampleFrames = {6, 24, 42, 60};
constexpr std::array<int, 2> kGlitchTypes = {1, 2};
constexpr std::array<const char*, 2> kGlitchTypeLabels = {"Block Glitch", "Bad TV"};

int SampleColumn(std::size_t index)
{
    for (std::size_t column = 0; column < kSampleFrames.size(); ++column) {
        if (kSampleFrames[column] == index) {
            return static_cast<int>(column);
        }
    }
    return -1;
}

}  // namespace

DemoCommand::DemoCommand(std::string folder, std::string modulePath, bool quiet, bool verbose)
    : mFolder(std::move(folder)),
      mModulePath(std::move(modulePath)),
      mQuiet(quiet),
      mVerbose(verbose)
{
}

int DemoCommand::run()
{
    InterruptWatcher interrupts;
    const std::filesystem::path folder(mFolder);
    OutputFolder made(mFolder);

    EffectHost effect(mModulePath, mVerbose);
    effect.setUp();

    ContactSheet sheet(1 + static_cast<int>(kGlitchTypes.size()),
                       static_cast<int>(kSampleFrames.size()), DemoClip::kWidth, DemoClip::kHeight);
    bool labelled = sheet.labelRow(0, "source");
    for (std::size_t row = 0; row < kGlitchTypes.size(); ++row) {
        labelled = sheet.labelRow(static_cast<int>(row) + 1, kGlitchTypeLabels[row]) && labelled;
    }
    for (std::size_t column = 0; column < kSampleFrames.size(); ++column) {
        sheet.place(0, static_cast<int>(column), DemoClip::frameAt(kSampleFrames[column]));
        const double seconds =
            static_cast<double>(kSampleFrames[column]) / DemoClip::kFramesPerSecond;
        labelled = sheet.labelColumn(static_cast<int>(column), FormatNumber(seconds) + " s") &&
                   labelled;
    }
    if (!labelled && !mQuiet) {
        std::cerr << "quorvex demo: note: the contact sheet has no labels; its font "
                  << ContactSheet::kFont << " is not installed (Debian: fonts-dejavu-core)\n";
    }

    // Every file is made under a temporary name and put in place only when
    // all are done: an interrupted or failed demo leaves none of them.
    std::vector<AtomicOutputFile> staged;
    for (std::size_t row = 0; row < kGlitchTypes.size(); ++row) {
        const int glitchType = kGlitchTypes[row];
        const std::string path =
            (folder / (EffectSettings::glitchTypeName(glitchType) + ".mp4")).string();
        effect.apply(EffectSettings::constant(glitchType));

        DemoClip clip;
        VideoEncoderChoice encoder = VideoEncoderChoice::choose(path, "");
        encoder.fitTo(DemoClip::kWidth, DemoClip::kHeight, PixelDepth::Eight, true);
        VideoWriter::Settings settings;
        settings.width = DemoClip::kWidth;
        settings.height = DemoClip::kHeight;
        settings.rate = clip.info().rate;
        settings.timeBase = clip.info().timeBase;
        staged.emplace_back(path);
        VideoWriter video(staged.back().temporaryPath(), encoder, settings, nullptr, nullptr);

        ProgressReporter progress(ProgressReporter::styleFor(mQuiet),
                                  std::filesystem::path(path).filename().string(),
                                  clip.info().frameCount, std::cerr);
        RenderPipeline pipeline(clip, video, effect, PixelDepth::Eight,
                                FrameTimeline::forClip(clip.info().rate, 0.0), progress,
                                interrupts);
        pipeline.setRenderedFrameHook([&sheet, row](const SourceFrame& rendered) {
            const int column = SampleColumn(rendered.index);
            if (column >= 0) {
                sheet.place(static_cast<int>(row) + 1, column, rendered.frame);
            }
        });
        pipeline.run();
    }

    staged.emplace_back((folder / "contact-sheet.png").string());
    sheet.write(staged.back());
    effect.setDown();
    for (AtomicOutputFile& file : staged) {
        file.commit();
    }
    made.keep();

    if (!mQuiet) {
        std::cerr << "quorvex demo: wrote";
        for (std::size_t i = 0; i < staged.size(); ++i) {
            std::cerr << (i == 0 ? " " : i + 1 == staged.size() ? " and " : ", ")
                      << staged[i].target();
        }
        std::cerr << "\n";
    }
    return 0;
}

}  // namespace Halvane::Quorvex::Tools
