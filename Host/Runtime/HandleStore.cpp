#include "Runtime/HandleStore.h"

#include <cstdlib>
#include <cstring>

namespace Halvane::Quorvex::Host {

// `data` comes first: a PF_Handle points at it, so that *handle is the block.
struct HandleStore::Block {
    void* data = nullptr;
    A_u_longlong size = 0;
    int locks = 0;
    bool memHandle = false;

    ~Block() { std::free(data); }
};

HandleStore::HandleStore() = default;
HandleStore::~HandleStore() = default;

HandleStore::Block* HandleStore::find(const void* key) const
{
    auto found = mBlocks.find(key);
    if (found == mBlocks.end()) {
        ++mMisuses;
        return nullptr;
    }
    return found->second.get();
}

void* HandleStore::allocate(A_u_longlong size, bool memHandle)
{
    auto block = std::make_unique<Block>();
    block->data = std::calloc(size > 0 ? static_cast<std::size_t>(size) : 1, 1);
    if (!block->data) {
        return nullptr;
    }
    block->size = size;
    block->memHandle = memHandle;
    void* key = &block->data;
    std::lock_guard<std::mutex> guard(mMutex);
    mBlocks.emplace(key, std::move(block));
    return key;
}

PF_Handle HandleStore::newHandle(A_u_longlong size)
{
    return static_cast<PF_Handle>(allocate(size, false));
}

void* HandleStore::lock(PF_Handle handle)
{
    std::lock_guard<std::mutex> guard(mMutex);
    Block* block = find(handle);
    if (!block) {
        return nullptr;
    }
    ++block->locks;
    return block->data;
}

void HandleStore::unlock(PF_Handle handle)
{
    std::lock_guard<std::mutex> guard(mMutex);
    Block* block = find(handle);
    if (!block) {
        return;
    }
    if (block->locks == 0) {
        ++mMisuses;
        return;
    }
    --block->locks;
}

void HandleStore::dispose(PF_Handle handle)
{
    std::lock_guard<std::mutex> guard(mMutex);
    if (find(handle)) {
        mBlocks.erase(handle);
    }
}

A_u_longlong HandleStore::size(PF_Handle handle) const
{
    std::lock_guard<std::mutex> guard(mMutex);
    const Block* block = find(handle);
    return block ? block->size : 0;
}

PF_Err HandleStore::resize(A_u_longlong size, PF_Handle* handle)
{
    std::lock_guard<std::mutex> guard(mMutex);
    Block* block = find(*handle);
    if (!block) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    void* data = std::realloc(block->data, size > 0 ? static_cast<std::size_t>(size) : 1);
    if (!data) {
        return PF_Err_OUT_OF_MEMORY;
    }
    if (size > block->size) {
        std::memset(static_cast<char*>(data) + block->size, 0,
                    static_cast<std::size_t>(size - block->size));
    }
    block->data = data;
    block->size = size;
    return PF_Err_NONE;
}

AEGP_MemHandle HandleStore::newMemHandle(A_u_longlong size)
{
    return static_cast<AEGP_MemHandle>(allocate(size, true));
}

AEGP_MemHandle HandleStore::newTextHandle(const char* text)
{
    const std::size_t length = std::strlen(text);
    AEGP_MemHandle handle = newMemHandle(length + 1);
    if (handle) {
        std::memcpy(*reinterpret_cast<void**>(handle), text, length + 1);
    }
    return handle;
}

A_Err HandleStore::lockMem(AEGP_MemHandle handle, void** memory)
{
    *memory = nullptr;
    std::lock_guard<std::mutex> guard(mMutex);
    Block* block = find(handle);
    if (!block) {
        return A_Err_PARAMETER;
    }
    ++block->locks;
    *memory = block->data;
    return A_Err_NONE;
}

A_Err HandleStore::unlockMem(AEGP_MemHandle handle)
{
    std::lock_guard<std::mutex> guard(mMutex);
    Block* block = find(handle);
    if (!block) {
        return A_Err_PARAMETER;
    }
    if (block->locks == 0) {
        ++mMisuses;
        return A_Err_PARAMETER;
    }
    --block->locks;
    return A_Err_NONE;
}

A_Err HandleStore::freeMem(AEGP_MemHandle handle)
{
    std::lock_guard<std::mutex> guard(mMutex);
    if (!find(handle)) {
        return A_Err_PARAMETER;
    }
    // Freeing a locked memory handle is allowed: the lock ends with it.
    mBlocks.erase(handle);
    return A_Err_NONE;
}

A_Err HandleStore::memSize(AEGP_MemHandle handle, A_u_longlong* size) const
{
    std::lock_guard<std::mutex> guard(mMutex);
    const Block* block = find(handle);
    *size = block ? block->size : 0;
    return block ? A_Err_NONE : A_Err_PARAMETER;
}

std::size_t HandleStore::openHandles() const
{
    std::lock_guard<std::mutex> guard(mMutex);
    return mBlocks.size();
}

std::size_t HandleStore::lockedHandles() const
{
    std::lock_guard<std::mutex> guard(mMutex);
    std::size_t locked = 0;
    for (const auto& entry : mBlocks) {
        locked += entry.second->locks > 0 ? 1 : 0;
    }
    return locked;
}

std::size_t HandleStore::misuses() const
{
    std::lock_guard<std::mutex> guard(mMutex);
    return mMisuses;
}

}  // namespace Halvane::Quorvex::Host
