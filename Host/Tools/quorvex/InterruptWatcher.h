#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <signal.h>
#include <thread>

namespace Halvane::Quorvex::Tools {

// Turns Ctrl-C (SIGINT), SIGTERM and SIGHUP into an orderly stop. The
// signals are blocked in the creating thread, and so in every thread started
// after it; a watcher thread takes them instead. The first one sets the
// interrupted flag and calls the stop handler, so that the work winds down
// and removes its temporary files; a second one removes them at once and
// ends the process.
//
// Create the watcher before any other thread starts.
class InterruptWatcher {
public:
    InterruptWatcher();
    ~InterruptWatcher();

    InterruptWatcher(const InterruptWatcher&) = delete;
    InterruptWatcher& operator=(const InterruptWatcher&) = delete;

    bool interrupted() const { return mSignal.load() != 0; }
    // The signal that arrived, or 0.
    int signalNumber() const { return mSignal.load(); }
    // The exit code of a process ended by the signal: 128 + its number.
    int exitCode() const { return 128 + mSignal.load(); }
    // Called on the watcher's thread when the first signal arrives.
    void setStopHandler(std::function<void()> handler);

private:
    void watch();

    sigset_t mSignals{};
    sigset_t mPreviousMask{};
    std::atomic<int> mSignal{0};
    std::atomic<bool> mStopping{false};
    std::mutex mHandlerMutex;
    std::function<void()> mStopHandler;
    std::thread mThread;
};

}  // namespace Halvane::Quorvex::Tools
