#include "InterruptWatcher.h"

#include "TemporaryFileRegistry.h"

#include <cerrno>
#include <ctime>
#include <unistd.h>

namespace Halvane::Quorvex::Tools {

InterruptWatcher::InterruptWatcher()
{
    sigemptyset(&mSignals);
    sigaddset(&mSignals, SIGINT);
    sigaddset(&mSignals, SIGTERM);
    sigaddset(&mSignals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &mSignals, &mPreviousMask);
    mThread = std::thread([this] { watch(); });
}

InterruptWatcher::~InterruptWatcher()
{
    mStopping = true;
    mThread.join();
    pthread_sigmask(SIG_SETMASK, &mPreviousMask, nullptr);
}

void InterruptWatcher::setStopHandler(std::function<void()> handler)
{
    std::lock_guard<std::mutex> lock(mHandlerMutex);
    mStopHandler = std::move(handler);
}

void InterruptWatcher::watch()
{
    // A short timeout lets the destructor end the thread without a signal of
    // its own.
    const timespec timeout{0, 100 * 1000 * 1000};
    while (!mStopping) {
        const int signal = sigtimedwait(&mSignals, nullptr, &timeout);
        if (signal <= 0) {
            continue;
        }
        int expected = 0;
        if (mSignal.compare_exchange_strong(expected, signal)) {
            std::lock_guard<std::mutex> lock(mHandlerMutex);
            if (mStopHandler) {
                mStopHandler();
            }
        } else {
            TemporaryFileRegistry::removeAll();
            ::_exit(128 + signal);
        }
    }
}

}  // namespace Halvane::Quorvex::Tools
