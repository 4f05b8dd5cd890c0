// libQuorvexArrayAllocationFailure.so, preloaded into a host: `new[]` of
// exactly QUORVEX_FAILING_ARRAY_BYTES bytes throws std::bad_alloc the first
// QUORVEX_FAILING_ARRAY_TIMES times it is asked for, and works after. A
// shortage of memory that passes, where the plug-in allocates its frames.
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> gBytes{0};
std::atomic<long> gFailuresLeft{0};

__attribute__((constructor)) void ReadPlan()
{
    const char* bytes = std::getenv("QUORVEX_FAILING_ARRAY_BYTES");
    const char* times = std::getenv("QUORVEX_FAILING_ARRAY_TIMES");
    if (bytes && times) {
        gBytes = std::strtoul(bytes, nullptr, 10);
        gFailuresLeft = std::strtol(times, nullptr, 10);
    }
}

}  // namespace

void* operator new[](std::size_t size)
{
    if (size != 0 && size == gBytes.load() && gFailuresLeft.fetch_sub(1) > 0) {
        throw std::bad_alloc();
    }
    if (void* block = std::malloc(size != 0 ? size : 1)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete[](void* block) noexcept
{
    std::free(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    std::free(block);
}
