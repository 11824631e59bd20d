#include "host/system/TaskPool.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace host {

TaskPool::TaskPool(int threadCount)
{
    const unsigned int wanted = threadCount > 0 ? static_cast<unsigned int>(threadCount)
                                                : std::max(1U, std::thread::hardware_concurrency());
    try {
        for (unsigned int i = 1; i < wanted; ++i)
            others_.emplace_back([this] { DoAll(); });
    } catch (const std::system_error&) {
        // the threads that the system allows will do
    }
}

TaskPool::~TaskPool()
{
    Stop();
}

void TaskPool::Stop()
{
    {
        const std::lock_guard lock(mutex_);
        isOver_ = true;
        waiting_.clear();
    }
    changed_.notify_all();
    for (std::thread& other : others_)
        other.join();
    others_.clear();
}

std::shared_ptr<Task> TaskPool::Start(std::function<void()> work)
{
    auto task = std::make_shared<Task>();
    task->work_ = std::move(work);
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(task);
    }
    changed_.notify_one();
    return task;
}

void TaskPool::Finish(const std::shared_ptr<Task>& task)
{
    std::unique_lock lock(mutex_);
    while (!task->isDone_)
        if (!DoNext(lock))
            changed_.wait(lock);
    if (task->failure_)
        std::rethrow_exception(task->failure_);
}

bool TaskPool::DoNext(std::unique_lock<std::mutex>& lock)
{
    if (waiting_.empty())
        return false;
    const std::shared_ptr<Task> task = std::move(waiting_.front());
    waiting_.pop_front();
    lock.unlock();
    std::exception_ptr failure;
    try {
        task->work_();
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    task->failure_ = failure;
    task->isDone_ = true;
    changed_.notify_all();
    return true;
}

void TaskPool::DoAll()
{
    std::unique_lock lock(mutex_);
    while (!isOver_)
        if (!DoNext(lock))
            changed_.wait(lock);
}

} // namespace host
