#pragma once

#include <chrono>
#include <cstddef>

namespace host {

/// Shows the progress of work that takes longer than a second, in one line of a terminal's standard error
/// that is overwritten in place and erased at the end. When standard error is no terminal, it shows nothing.
class Progress
{
public:
    Progress();
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Announces step `number` of `total`: "Drawing picture 3 of 12". An unknown total is 0. The call is
    /// cheap enough for every record of a large file.
    void Show(const char* step, long number, long total);

private:
    using Clock = std::chrono::steady_clock;

    void Overwrite(const char* line);

    bool isTerminal_;
    Clock::time_point next_;
    std::size_t shownLength_ = 0;
};

} // namespace host
