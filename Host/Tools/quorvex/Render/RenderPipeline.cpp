#include "Render/RenderPipeline.h"

#include "Media/Frames/FrameSink.h"
#include "Media/Frames/FrameSource.h"
#include "Options/ToolError.h"
#include "Render/BoundedQueue.h"
#include "Render/EffectHost.h"
#include "Render/InterruptWatcher.h"
#include "Render/ProgressReporter.h"

#include <exception>
#include <mutex>
#include <thread>

namespace Halvane::Quorvex::Tools {

namespace {

// Frames held between the stages: enough to ride out an uneven decoder or
// encoder, few enough to keep large float frames in bounds.
constexpr std::size_t kQueueCapacity = 3;

// The first exception of any thread, kept to be thrown on the main thread.
class FirstFailure {
public:
    void record(std::exception_ptr failure)
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (!mFailure) {
            mFailure = failure;
        }
    }
    void rethrow()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        if (mFailure) {
            std::rethrow_exception(mFailure);
        }
    }

private:
    std::mutex mMutex;
    std::exception_ptr mFailure;
};

}  // namespace

RenderPipeline::RenderPipeline(FrameSource& source, FrameSink& sink, EffectHost& effect,
                               PixelDepth depth, const FrameTimeline& timeline,
                               ProgressReporter& progress, InterruptWatcher& interrupts)
    : mSource(source),
      mSink(sink),
      mEffect(effect),
      mDepth(depth),
      mTimeline(timeline),
      mProgress(progress),
      mInterrupts(interrupts)
{
}

std::size_t RenderPipeline::run()
{
    BoundedQueue<PipelineItem> toRender(kQueueCapacity);
    BoundedQueue<PipelineItem> toWrite(kQueueCapacity);
    FirstFailure failure;
    const auto stopAll = [&] {
        toRender.abort();
        toWrite.abort();
    };
    mInterrupts.setStopHandler(stopAll);

    std::thread reader([&] {
        try {
            PipelineItem item;
            while (mSource.read(item) && toRender.push(std::move(item))) {
            }
            toRender.close();
        } catch (...) {
            failure.record(std::current_exception());
            stopAll();
        }
    });
    std::thread writer([&] {
        try {
            while (std::optional<PipelineItem> item = toWrite.pop()) {
                if (auto* frame = std::get_if<SourceFrame>(&*item)) {
                    mSink.write(*frame);
                    if (mHook) {
                        mHook(*frame);
                    }
                } else {
                    mSink.pass(std::get<PassThroughPacket>(*item));
                }
            }
        } catch (...) {
            failure.record(std::current_exception());
            stopAll();
        }
    });

    std::size_t rendered = 0;
    try {
        while (std::optional<PipelineItem> item = toRender.pop()) {
            if (mInterrupts.interrupted()) {
                break;
            }
            if (auto* frame = std::get_if<SourceFrame>(&*item)) {
                const std::string label = "frame " + std::to_string(frame->index + 1) + " of '" +
                                          mSource.info().name + "'";
                SourceFrame output{
                    frame->index,
                    mEffect.render(frame->frame, mDepth,
                                   mTimeline.timeOf(frame->timestamp, frame->duration), label),
                    frame->timestamp, frame->duration};
                ++rendered;
                mProgress.frameDone();
                if (!toWrite.push(std::move(output))) {
                    break;
                }
            } else if (!toWrite.push(std::move(*item))) {
                break;
            }
        }
        toWrite.close();
    } catch (...) {
        failure.record(std::current_exception());
        stopAll();
    }
    reader.join();
    writer.join();
    mInterrupts.setStopHandler(nullptr);

    if (mInterrupts.interrupted()) {
        mProgress.abandon();
        throw ToolError(mInterrupts.exitCode(), mInterrupts.reason() + "; no output was written");
    }
    try {
        failure.rethrow();
        mSink.finish();
    } catch (...) {
        mProgress.abandon();
        throw;
    }
    mProgress.finish();
    return rendered;
}

}  // namespace Halvane::Quorvex::Tools
