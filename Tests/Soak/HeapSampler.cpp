// libQuorvexHeapSampler.so, preloaded into a host (ffmpeg, quorvex) by the
// long-run memory check: while the host runs, a thread of its own writes a
// line "SECONDS HEAP_BYTES RESIDENT_BYTES" to the file named by
// QUORVEX_HEAP_SAMPLES every QUORVEX_HEAP_SAMPLE_MS milliseconds (20 by
// default). HEAP_BYTES is what the process's allocator has handed out and
// not got back (mallinfo2: in use in every arena plus mapped blocks), exact
// to the byte and blind to how the allocator keeps its free memory, which
// resident memory is not. Without QUORVEX_HEAP_SAMPLES it does nothing.
//
// The thread allocates nothing while it samples, so that it adds nothing to
// what it measures.
#include <fcntl.h>
#include <malloc.h>
#include <pthread.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

int gSamples = -1;
long gIntervalNanoseconds = 20L * 1000 * 1000;

double Seconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

long ResidentBytes()
{
    const int statm = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (statm < 0) {
        return -1;
    }
    char text[128];
    const ssize_t length = read(statm, text, sizeof text - 1);
    close(statm);
    if (length <= 0) {
        return -1;
    }
    text[length] = '\0';
    long totalPages = 0;
    long residentPages = 0;
    if (std::sscanf(text, "%ld %ld", &totalPages, &residentPages) != 2) {
        return -1;
    }
    return residentPages * sysconf(_SC_PAGESIZE);
}

void* Sample(void*)
{
    const double start = Seconds();
    for (;;) {
        const struct mallinfo2 heap = mallinfo2();
        char line[96];
        const int length = std::snprintf(line, sizeof line, "%.6f %zu %ld\n", Seconds() - start,
                                         heap.uordblks + heap.hblkhd, ResidentBytes());
        if (length <= 0 || write(gSamples, line, static_cast<std::size_t>(length)) != length) {
            return nullptr;
        }
        const timespec pause{0, gIntervalNanoseconds};
        nanosleep(&pause, nullptr);
    }
}

__attribute__((constructor)) void StartSampling()
{
    const char* path = std::getenv("QUORVEX_HEAP_SAMPLES");
    if (path == nullptr || *path == '\0') {
        return;
    }
    if (const char* interval = std::getenv("QUORVEX_HEAP_SAMPLE_MS")) {
        const long milliseconds = std::strtol(interval, nullptr, 10);
        if (milliseconds > 0 && milliseconds < 1000) {
            gIntervalNanoseconds = milliseconds * 1000 * 1000;
        }
    }
    gSamples = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (gSamples < 0) {
        std::fprintf(stderr, "QuorvexHeapSampler: cannot write samples to %s\n", path);
        return;
    }
    pthread_t thread;
    if (pthread_create(&thread, nullptr, Sample, nullptr) == 0) {
        pthread_detach(thread);
    }
}

}  // namespace
