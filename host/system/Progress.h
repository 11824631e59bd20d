#pragma once

#include <atomic>
#include <chrono>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>

namespace host {

/// Shows the progress of a step that takes longer than a second, in one line of a terminal's standard error
/// that is overwritten in place and erased at the end. When standard error is no terminal, it shows nothing:
/// the line would end up in log files. A thread of its own writes the line, so that a single long call shows
/// too. Of steps within steps the innermost is shown.
class Progress
{
public:
    /// A step of which nothing is counted shows the seconds that it has taken: "Pooling the studies, 5 s".
    explicit Progress(std::string step = {});
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Announces part `number` of `total`: "Drawing picture 3 of 12". An unknown total is 0. `part` must
    /// outlive the object. The call is cheap enough for every record of a large file.
    void Show(const char* part, long number, long total);

private:
    using Clock = std::chrono::steady_clock;

    std::string Line() const;
    void Watch(const std::stop_token& isOver);

    const std::string step_;
    const Clock::time_point start_ = Clock::now();
    std::atomic<const char*> part_ = nullptr;
    std::atomic<long> number_ = 0;
    std::atomic<long> total_ = 0;
    const Progress* outer_ = nullptr;
    std::jthread watcher_; ///< none when nothing can be shown
};

/// What the work returns, with progress shown.
template <class Work>
auto WithProgress(std::string step, const Work& work)
{
    const Progress progress(std::move(step));
    return work();
}

} // namespace host
