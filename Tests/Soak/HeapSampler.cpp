// libQuorvexHeapSampler.so, preloaded into a host (ffmpeg, quorvex): every
// QUORVEX_HEAP_SAMPLE_FRAMES frames (250 by default) handed to the encoder's
// avcodec_send_frame, it writes "FRAMES HEAP_BYTES RESIDENT_BYTES" to the
// file QUORVEX_HEAP_SAMPLES names (without it, nothing). HEAP_BYTES is
// mallinfo2's in-use and mapped bytes: exact, and blind to how the allocator
// keeps free memory, which resident memory is not. Each sample waits until
// the heap stops moving and every other thread sleeps, so that a threaded
// host (quorvex) has every queue before the encoder full: each sample sees
// the same frames in flight. Counting frames rather than time keeps the
// host's pace, which follows the machine's load, out of the slope. It
// allocates nothing while it samples, adding nothing to what it measures.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Looks a millisecond apart that must find the heap unchanged and the
// others asleep before a sample, and the most to take.
constexpr int kQuietLooks = 3;
constexpr int kMostLooks = 2000;

int gSamples = -1;
long gEvery = 250;
long gFrames = 0;

using SendFrame = int (*)(void*, const void*);
SendFrame gSendFrame = nullptr;

// Reads a small file of /proc into `text`, NUL-terminated, without allocating.
bool ReadProcFile(const char* path, char* text, std::size_t size)
{
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const ssize_t length = read(file, text, size - 1);
    close(file);
    text[length > 0 ? length : 0] = '\0';
    return length > 0;
}

long ResidentBytes()
{
    char text[128];
    long totalPages = 0;
    long residentPages = 0;
    if (!ReadProcFile("/proc/self/statm", text, sizeof text) ||
        std::sscanf(text, "%ld %ld", &totalPages, &residentPages) != 2) {
        return -1;
    }
    return residentPages * sysconf(_SC_PAGESIZE);
}

std::size_t HeapBytes()
{
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

// Whether no thread but the caller runs or is ready to run. Reads
// /proc/self/task without opendir, which would allocate.
bool OthersAsleep()
{
    const int tasks = open("/proc/self/task", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (tasks < 0) {
        return true;
    }
    const long self = syscall(SYS_gettid);
    bool asleep = true;
    alignas(8) char entries[4096];
    for (long length; asleep && (length = getdents64(tasks, entries, sizeof entries)) > 0;) {
        for (long offset = 0; asleep && offset < length;) {
            const auto* entry = reinterpret_cast<const dirent64*>(entries + offset);
            offset += entry->d_reclen;
            const long task = std::strtol(entry->d_name, nullptr, 10);
            if (task <= 0 || task == self) {
                continue;
            }
            char path[64];
            std::snprintf(path, sizeof path, "/proc/self/task/%ld/stat", task);
            char text[512];
            if (!ReadProcFile(path, text, sizeof text)) {
                continue;  // ended since
            }
            // "TID (NAME) STATE ...": the name may hold anything, ')' too.
            const char* nameEnd = std::strrchr(text, ')');
            asleep = nameEnd == nullptr || nameEnd[1] != ' ' || (nameEnd[2] != 'R' && nameEnd[2] != 'D');
        }
    }
    close(tasks);
    return asleep;
}

std::size_t SettledHeapBytes()
{
    std::size_t heap = HeapBytes();
    int quiet = 0;
    for (int look = 0; quiet < kQuietLooks && look < kMostLooks; ++look) {
        const timespec pause{0, 1000 * 1000};
        nanosleep(&pause, nullptr);
        const std::size_t now = HeapBytes();
        quiet = now == heap && OthersAsleep() ? quiet + 1 : 0;
        heap = now;
    }
    return heap;
}

void Sample()
{
    char line[96];
    const int length =
        std::snprintf(line, sizeof line, "%ld %zu %ld\n", gFrames, SettledHeapBytes(), ResidentBytes());
    if (length <= 0 || write(gSamples, line, static_cast<std::size_t>(length)) != length) {
        close(gSamples);
        gSamples = -1;
    }
}

__attribute__((constructor)) void StartSampling()
{
    gSendFrame = reinterpret_cast<SendFrame>(dlsym(RTLD_NEXT, "avcodec_send_frame"));
    const char* path = std::getenv("QUORVEX_HEAP_SAMPLES");
    if (path == nullptr || *path == '\0') {
        return;
    }
    if (const char* every = std::getenv("QUORVEX_HEAP_SAMPLE_FRAMES")) {
        const long frames = std::strtol(every, nullptr, 10);
        if (frames > 0) {
            gEvery = frames;
        }
    }
    gSamples = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (gSamples < 0) {
        std::fprintf(stderr, "QuorvexHeapSampler: cannot write samples to %s\n", path);
    }
}

}  // namespace

// Stands in for FFmpeg's own, which it calls.
extern "C" __attribute__((visibility("default"))) int avcodec_send_frame(void* encoder, const void* frame)
{
    if (gSendFrame == nullptr) {
        gSendFrame = reinterpret_cast<SendFrame>(dlsym(RTLD_NEXT, "avcodec_send_frame"));
        if (gSendFrame == nullptr) {
            return -ENOSYS;  // AVERROR(ENOSYS): a host without FFmpeg's encoders
        }
    }
    // A null frame flushes the encoder at the end.
    if (frame != nullptr && gSamples >= 0 && ++gFrames % gEvery == 0) {
        Sample();
    }
    return gSendFrame(encoder, frame);
}
