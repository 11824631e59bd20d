#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace host {

/// Work that a thread of the pool does. It belongs to the one who starts it.
class Task
{
    friend class TaskPool;
    std::function<void()> work_;
    std::exception_ptr failure_;
    bool isDone_ = false;
};

/// Threads that do tasks in the order in which they are started. The one who waits for a task does tasks as
/// well, so that a pool of one thread has no other.
class TaskPool
{
public:
    /// 0 is a thread for each processor.
    explicit TaskPool(int threadCount);
    ~TaskPool();
    TaskPool(const TaskPool&) = delete;
    TaskPool& operator=(const TaskPool&) = delete;

    std::shared_ptr<Task> Start(std::function<void()> work);

    /// Ends the threads. Tasks that nobody waits for are not done.
    void Stop();

    /// Returns when the task is done. Throws what it has thrown.
    void Finish(const std::shared_ptr<Task>& task);

    std::size_t ThreadCount() const { return others_.size() + 1; }

private:
    bool DoNext(std::unique_lock<std::mutex>& lock);
    void DoAll();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::shared_ptr<Task>> waiting_;
    std::vector<std::thread> others_;
    bool isOver_ = false;
};

} // namespace host
