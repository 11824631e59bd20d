#include "host/system/Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <system_error>
#include <utility>

namespace host {

namespace {

constexpr std::chrono::seconds SHORT_WORK(1);
constexpr std::chrono::milliseconds BETWEEN_LINES(100);

/// The line of the terminal, which all steps share.
struct TerminalLine
{
    std::mutex mutex;
    std::condition_variable_any ended; ///< a step
    const Progress* innermost = nullptr;
    std::string shown;

    /// Overwrites with blanks, which every terminal understands.
    void Show(const std::string& line)
    {
        if (line == shown)
            return;
        const int blanks = static_cast<int>(shown.size() - std::min(line.size(), shown.size()));
        std::fprintf(stderr, "\r%s%*s\r%s", line.c_str(), blanks, "", line.c_str());
        shown = line;
    }
};

TerminalLine terminalLine;

} // namespace

Progress::Progress(std::string step) : step_(std::move(step))
{
    if (isatty(STDERR_FILENO) != 1)
        return;
    const std::lock_guard lock(terminalLine.mutex);
    outer_ = std::exchange(terminalLine.innermost, this);
    try {
        watcher_ = std::jthread([this](const std::stop_token& isOver) { Watch(isOver); });
    } catch (const std::system_error&) {
        terminalLine.innermost = outer_; // work without a thread to spare has no progress
    }
}

Progress::~Progress()
{
    if (!watcher_.joinable())
        return;
    watcher_.request_stop();
    watcher_.join();
    const std::lock_guard lock(terminalLine.mutex);
    terminalLine.Show("");
    terminalLine.innermost = outer_;
}

void Progress::Show(const char* part, long number, long total)
{
    part_.store(part, std::memory_order_relaxed);
    number_.store(number, std::memory_order_relaxed);
    total_.store(total, std::memory_order_relaxed);
}

std::string Progress::Line() const
{
    if (const char* const part = part_.load()) {
        const long total = total_.load();
        return fmt::format("{} {}{}", part, number_.load(), total > 0 ? fmt::format(" of {}", total) : "");
    }
    using std::chrono::duration_cast;
    const auto taken = duration_cast<std::chrono::seconds>(Clock::now() - start_).count();
    return step_.empty() ? "" : fmt::format("{}, {} s", step_, taken);
}

void Progress::Watch(const std::stop_token& isOver)
{
    std::unique_lock lock(terminalLine.mutex);
    const auto isStopped = [&] { return isOver.stop_requested(); };
    terminalLine.ended.wait_for(lock, isOver, SHORT_WORK, isStopped);
    while (!isStopped()) {
        if (terminalLine.innermost == this)
            terminalLine.Show(Line());
        terminalLine.ended.wait_for(lock, isOver, BETWEEN_LINES, isStopped);
    }
}

} // namespace host
