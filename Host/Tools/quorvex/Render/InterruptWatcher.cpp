#include "Render/InterruptWatcher.h"

#include "Media/Files/TemporaryFileRegistry.h"
#include "Options/ToolError.h"

#include <cerrno>
#include <chrono>
#include <ctime>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

namespace {

// Set by the SIGPIPE handler, taken by the watcher: a handler may do no more.
volatile sig_atomic_t gPipeClosed = 0;

void NotePipeClosed(int)
{
    gPipeClosed = 1;
}

// How long the work may take to wind down after the first signal (the frame
// in hand, a read that blocks) before the process ends without it.
constexpr auto kWindDownLimit = std::chrono::seconds(3);

}  // namespace

InterruptWatcher::InterruptWatcher()
{
    sigemptyset(&mSignals);
    sigaddset(&mSignals, SIGINT);
    sigaddset(&mSignals, SIGTERM);
    sigaddset(&mSignals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &mSignals, &mPreviousMask);
    // A write into a closed pipe then fails with EPIPE instead of killing
    // the process, and the watcher winds the work down.
    struct sigaction action {};
    action.sa_handler = NotePipeClosed;
    sigemptyset(&action.sa_mask);
    sigaction(SIGPIPE, &action, &mPreviousPipeAction);
    mThread = std::thread([this] { watch(); });
}

InterruptWatcher::~InterruptWatcher()
{
    mStopping = true;
    mThread.join();
    sigaction(SIGPIPE, &mPreviousPipeAction, nullptr);
    pthread_sigmask(SIG_SETMASK, &mPreviousMask, nullptr);
}

void InterruptWatcher::setStopHandler(std::function<void()> handler)
{
    std::lock_guard<std::mutex> lock(mHandlerMutex);
    mStopHandler = std::move(handler);
}

int InterruptWatcher::exitCodeOf(int signal)
{
    return signal == SIGPIPE ? ToolError::kRuntimeExitCode : 128 + signal;
}

std::string InterruptWatcher::reasonOf(int signal)
{
    switch (signal) {
    case SIGINT:
        return "interrupted by Ctrl-C (SIGINT)";
    case SIGTERM:
        return "interrupted by SIGTERM";
    case SIGHUP:
        return "interrupted by SIGHUP";
    case SIGPIPE:
        return "standard output or standard error is a pipe that was closed";
    default:
        return "interrupted by signal " + std::to_string(signal);
    }
}

void InterruptWatcher::watch()
{
    // A short timeout lets the destructor end the thread without a signal of
    // its own, and notices a closed pipe soon.
    const timespec timeout{0, 50 * 1000 * 1000};
    std::chrono::steady_clock::time_point windDownEnd;
    while (!mStopping) {
        int signal = sigtimedwait(&mSignals, nullptr, &timeout);
        if (signal <= 0 && gPipeClosed) {
            gPipeClosed = 0;
            // Once stopping, writes into the closed pipe are expected.
            signal = interrupted() ? 0 : SIGPIPE;
        }
        if (signal > 0) {
            stop(signal);
            windDownEnd = std::chrono::steady_clock::now() + kWindDownLimit;
        } else if (interrupted() && std::chrono::steady_clock::now() > windDownEnd) {
            endNow(mSignal.load());
        }
    }
}

void InterruptWatcher::stop(int signal)
{
    int expected = 0;
    if (!mSignal.compare_exchange_strong(expected, signal)) {
        endNow(expected);
    }
    std::lock_guard<std::mutex> lock(mHandlerMutex);
    if (!mStopHandler) {
        endNow(signal);
    }
    mStopHandler();
}

void InterruptWatcher::endNow(int signal)
{
    TemporaryFileRegistry::removeAll();
    const std::string line = "quorvex: " + reasonOf(signal) + "; no output was written\n";
    if (::write(STDERR_FILENO, line.data(), line.size()) < 0) {
        // Standard error may be the closed pipe; the exit code still tells.
    }
    ::_exit(exitCodeOf(signal));
}

}  // namespace Halvane::Quorvex::Tools
