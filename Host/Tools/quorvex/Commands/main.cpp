#include "Commands/DemoCommand.h"
#include "Commands/FrameMemory.h"
#include "Commands/InfoCommand.h"
#include "Commands/RenderCommand.h"
#include "Commands/UsageFormatter.h"
#include "Media/Files/FileSizeLimit.h"
#include "Media/Video/AvErrorText.h"
#include "Options/ToolError.h"
#include "Render/ModuleLocation.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <iostream>
#include <new>

int main(int argc, char** argv)
{
    using namespace Halvane::Quorvex::Tools;

    // Every failure reaches the user through a ToolError, FFmpeg's reason
    // folded in.
    KeepFFmpegLogForErrors();
    KeepFrameMemoryBetweenFrames();
    // A closed pipe on standard output or error is an error to report, not a
    // reason to die; commands that make files stop through their
    // InterruptWatcher.
    std::signal(SIGPIPE, SIG_IGN);
    // Likewise a write past the file size limit (ulimit -f): it fails with
    // "File too large" and the output is discarded, instead of a core dump
    // beside a half-written temporary file.
    FileSizeLimit::watch();

    CLI::App app{
        "quorvex: applies the Quorvex glitch effect to pictures, image sequences and video",
        "quorvex"};
    app.footer(
        "Examples:\n"
        "  quorvex demo\n"
        "  quorvex render in.png out.png --glitch badtv --time 2\n"
        "  quorvex render clip.mov out.mp4 --speed \"0:0.5,4:3\"\n"
        "  quorvex render shot.%04d.exr out.%04d.exr --frames 1001:1100 --fps 24\n"
        "  quorvex render clip.mp4 out.mov --glitch \"0:block,2.5:badtv\"\n"
        "  quorvex info");
    app.formatter(std::make_shared<UsageFormatter>());
    app.require_subcommand(0, 1);
    std::string modulePath = DefaultModulePath();
    bool quiet = false;
    bool verbose = false;
    // An empty value is a mistake to name, not "not given".
    const CLI::Validator nonEmpty(
        [](const std::string& value) { return value.empty() ? "no value given" : ""; }, "", "");
    app.add_option("--plugin", modulePath, "the effect module (default: Quorvex.so beside quorvex)")
        ->type_name("PATH")
        ->check(nonEmpty);
    app.add_flag("-q,--quiet", quiet, "no progress or notes on standard error");
    app.add_flag("-v,--verbose", verbose,
                 "show what the effect module prints (its OpenGL report) on standard error; "
                 "without it, that is shown only when the module fails");

    RenderCommand::Options render;
    CLI::App* renderCommand =
        app.add_subcommand("render", "apply the effect to a picture, an image sequence or a video");
    renderCommand
        ->add_option("input", render.input,
                     "a picture (PNG, TIFF, JPEG, EXR, ...), an image sequence "
                     "(frame.%04d.png) or a video")
        ->type_name("INPUT")
        ->required()
        ->check(nonEmpty);
    renderCommand
        ->add_option("output", render.output,
                     "a picture, an image sequence, or a video: .mp4 (H.264), "
                     ".mov (ProRes 4444 with alpha), .mkv (FFV1)")
        ->type_name("OUTPUT")
        ->required()
        ->check(nonEmpty);
    const auto option = [&](const char* name, std::string& value, const char* type,
                            const char* help) {
        renderCommand->add_option(name, value, help)->type_name(type)->check(nonEmpty);
    };
    option("--glitch", render.glitch, "TYPE|KEYS",
           "block or badtv, or keyframes held until the next: \"0:block,2.5:badtv\" "
           "(seconds:type); default block");
    option("--speed", render.speed, "SPEED|KEYS",
           "0 to 3, or keyframes moving linearly between: \"0:0.5,4:3\" (seconds:value); "
           "default 1");
    option("--seed", render.seed, "N",
           "0 to 999: another repeatable glitch, the effect's time moved by a minute a step; "
           "the frei0r plug-in's Seed N / 999 (default 0)");
    option("--time", render.time, "SECONDS", "the time of a single picture (default 1)");
    option("--time-offset", render.timeOffset, "SECONDS",
           "the time of the source's first frame (default 0)");
    option("--frames", render.frames, "FIRST:LAST",
           "the frames to render: file numbers of an image sequence (default: all files that "
           "match), or frames of a video counted from 0 as ffmpeg counts them (default: all)");
    option("--start-frame", render.startFrame, "S",
           "the image sequence's frame number at time-offset (default: the first number on "
           "disk that matches)");
    option("--fps", render.fps, "RATE",
           "frame rate of an image sequence or picture input: 24, 29.97, 30000/1001 "
           "(default 24)");
    option("--depth", render.depth, "auto|8|16|32",
           "bits a channel of the effect's frames and the output; 32 is float, auto follows "
           "the input (default)");
    option("--codec", render.codec, "ENCODER",
           "the FFmpeg encoder of a video output: libx264, prores_ks, ffv1, ...");
    renderCommand->footer(
        "A frame's time comes from its place in the source, never from the first frame a run\n"
        "renders: frame n of an image sequence is at (n - S) / fps + time-offset, S being the\n"
        "first frame number on disk that matches the pattern (or --start-frame); a video frame\n"
        "is at its own timestamp minus the video stream's start, plus time-offset. --frames\n"
        "chooses frames and never moves their times, so renders of chunks (--frames 1:100,\n"
        "--frames 101:200, ...) give exactly the frames of one render of the whole.");
    renderCommand->fallthrough();

    std::string demoFolder = DemoCommand::kDefaultFolder;
    CLI::App* demoCommand = app.add_subcommand(
        "demo", "render a built-in test clip with each glitch type, and a contact sheet");
    demoCommand->add_option("dir", demoFolder, "where the files go (default ./quorvex-demo)")
        ->type_name("DIR")
        ->check(nonEmpty);
    demoCommand->fallthrough();

    CLI::App* infoCommand = app.add_subcommand(
        "info", "show the effect's About text, parameters, and the OpenGL it uses");
    infoCommand->fallthrough();
    // Words that are no command end up here, to be named in the message.
    app.allow_extras();

    // A file named "-in.png" reads as an unknown option; that is the error
    // to report, rather than the missing file names that follow from it.
    const auto reportDashedFile = [&] {
        for (const CLI::App* command : {static_cast<CLI::App*>(&app), renderCommand}) {
            for (const std::string& extra : command->remaining()) {
                if (UsageFormatter::mayNameFile(extra)) {
                    std::cerr << "quorvex: unknown option '" << extra << "' ("
                              << UsageFormatter::kDashAdvice << ")\n";
                    return true;
                }
            }
        }
        return false;
    };
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        if (!reportDashedFile()) {
            std::cerr << "quorvex: " << error.what() << " (see quorvex --help)\n";
        }
        return ToolError::kUsageExitCode;
    }

    const std::vector<std::string> extras = app.remaining();
    if (!*renderCommand && !*demoCommand && !*infoCommand) {
        std::cerr << "quorvex: "
                  << (extras.empty() ? std::string("no command given")
                                     : "unknown command '" + extras.front() + "'")
                  << " (expected render, demo or info; see quorvex --help)\n";
        return ToolError::kUsageExitCode;
    }
    if (!extras.empty()) {
        if (!reportDashedFile()) {
            std::cerr << "quorvex: unknown option or argument '" << extras.front()
                      << "' (see quorvex --help)\n";
        }
        return ToolError::kUsageExitCode;
    }

    try {
        if (*renderCommand) {
            render.modulePath = modulePath;
            render.quiet = quiet;
            render.verbose = verbose;
            return RenderCommand(render).run();
        }
        if (*demoCommand) {
            return DemoCommand(demoFolder, modulePath, quiet, verbose).run();
        }
        const int exitCode = InfoCommand(modulePath, std::cout).run();
        if (!std::cout.flush()) {
            throw ToolError::runtime("cannot write the report to standard output: it was closed");
        }
        return exitCode;
    } catch (const ToolError& error) {
        std::cerr << "quorvex: " << error.what() << "\n";
        return error.exitCode();
    } catch (const std::bad_alloc&) {
        std::cerr << "quorvex: out of memory\n";
        return ToolError::kRuntimeExitCode;
    } catch (const std::exception& error) {
        std::cerr << "quorvex: " << error.what() << "\n";
        return ToolError::kRuntimeExitCode;
    }
}
