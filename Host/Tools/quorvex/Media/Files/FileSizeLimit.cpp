#include "Media/Files/FileSizeLimit.h"

#include <atomic>
#include <csignal>

namespace Halvane::Quorvex::Tools {

namespace {

std::atomic<unsigned long> gExceeded{0};
static_assert(std::atomic<unsigned long>::is_always_lock_free, "counted in a signal handler");

void CountExceeded(int)
{
    gExceeded.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

void FileSizeLimit::watch()
{
    struct sigaction action {};
    action.sa_handler = CountExceeded;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGXFSZ, &action, nullptr);
}

unsigned long FileSizeLimit::exceeded()
{
    return gExceeded.load(std::memory_order_relaxed);
}

}  // namespace Halvane::Quorvex::Tools
