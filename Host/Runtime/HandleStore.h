#pragma once

#include "AEGPSuites.h"
#include "EffectInterface.h"

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>

namespace Halvane::Quorvex::Host {

// The host's relocatable memory: PF_Handles of the effect interface and the
// memory handles of the general plug-in suites. Counts what is open and what
// was misused, so that a test can show that an effect gives back all it took.
class HandleStore {
public:
    HandleStore();
    ~HandleStore();

    HandleStore(const HandleStore&) = delete;
    HandleStore& operator=(const HandleStore&) = delete;

    PF_Handle newHandle(A_u_longlong size);
    void* lock(PF_Handle handle);
    void unlock(PF_Handle handle);
    void dispose(PF_Handle handle);
    A_u_longlong size(PF_Handle handle) const;
    PF_Err resize(A_u_longlong size, PF_Handle* handle);

    AEGP_MemHandle newMemHandle(A_u_longlong size);
    // A memory handle that holds a copy of `text` with its terminator.
    AEGP_MemHandle newTextHandle(const char* text);
    A_Err lockMem(AEGP_MemHandle handle, void** memory);
    A_Err unlockMem(AEGP_MemHandle handle);
    A_Err freeMem(AEGP_MemHandle handle);
    A_Err memSize(AEGP_MemHandle handle, A_u_longlong* size) const;

    std::size_t openHandles() const;
    std::size_t lockedHandles() const;
    // Calls on handles that the store does not hold, or unlocks without a lock.
    std::size_t misuses() const;

private:
    struct Block;

    Block* find(const void* key) const;
    void* allocate(A_u_longlong size, bool memHandle);

    mutable std::mutex mMutex;
    std::map<const void*, std::unique_ptr<Block>> mBlocks;
    mutable std::size_t mMisuses = 0;
};

}  // namespace Halvane::Quorvex::Host
