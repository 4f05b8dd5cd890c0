#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <signal.h>
#include <string>
#include <thread>

namespace Halvane::Quorvex::Tools {

// Turns Ctrl-C (SIGINT), SIGTERM and SIGHUP into an orderly stop. The
// signals are blocked in the creating thread, and so in every thread started
// after it; a watcher thread takes them instead. The first one sets the
// interrupted flag and calls the stop handler, so that the work winds down
// and removes its temporary files. Where nothing can wind down (no stop
// handler: the program is setting up, or blocked opening a file), on a
// second signal, or when winding down takes too long, the watcher removes
// every temporary file at once and ends the process with 128 + the signal.
//
// A pipe on standard output or standard error that its reader closed stops
// the work the same way, ending with a runtime error rather than SIGPIPE.
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
    // The exit code of a process ended by the signal: 128 + its number, or
    // the runtime error's for a closed pipe.
    int exitCode() const { return exitCodeOf(mSignal.load()); }
    // What stopped the work, in words: "interrupted by SIGTERM".
    std::string reason() const { return reasonOf(mSignal.load()); }
    // Called on the watcher's thread when the first signal arrives. Without
    // one, a signal ends the process at once.
    void setStopHandler(std::function<void()> handler);

private:
    static int exitCodeOf(int signal);
    static std::string reasonOf(int signal);
    void watch();
    void stop(int signal);
    [[noreturn]] static void endNow(int signal);

    sigset_t mSignals{};
    sigset_t mPreviousMask{};
    struct sigaction mPreviousPipeAction {};
    std::atomic<int> mSignal{0};
    std::atomic<bool> mStopping{false};
    std::mutex mHandlerMutex;
    std::function<void()> mStopHandler;
    std::thread mThread;
};

}  // namespace Halvane::Quorvex::Tools
