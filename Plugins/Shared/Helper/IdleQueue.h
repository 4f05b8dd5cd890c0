#pragma once

#include <deque>
#include <functional>
#include <memory>

namespace Halvane::Quorvex {

class Semaphore;

// Work handed from any thread to one consumer, which runs it a task at a time
// when it calls updateQueue. The queue has no thread or timer of its own.
class IdleQueue {
public:
    IdleQueue();
    // Destroys the pending tasks without running them.
    virtual ~IdleQueue();

    IdleQueue(const IdleQueue&) = delete;
    IdleQueue& operator=(const IdleQueue&) = delete;

    // Any thread: queues a copy of `task` behind those already queued.
    void async(const std::function<void()>& task);
    // Any thread: whether a task waits. A task being run no longer counts.
    bool hasTask();

    // The consumer: runs the oldest task, if any, on the calling thread with
    // the queue unlocked, so the task may queue more work. What the task
    // throws reaches the caller (an empty task throws std::bad_function_call);
    // the task is gone from the queue either way.
    void updateQueue();
    // The consumer: drops every pending task unrun.
    void clearAsyncQueue();

private:
    std::unique_ptr<Semaphore> mLock;
    std::deque<std::function<void()>> mQueue;
};

}  // namespace Halvane::Quorvex
