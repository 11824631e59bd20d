#pragma once

#include <chrono>
#include <cstddef>

namespace host {

/// Shows what work is at once it has taken longer than a second: in one line of a terminal's standard error,
/// overwritten in place and erased at the end. Elsewhere it shows nothing.
class Progress
{
public:
    Progress();
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Step `number` of `total` begins, or of an unknown total (0): "Drawing picture 3 of 12". Cheap enough
    /// for every record of a large file.
    void Show(const char* step, long number, long total);

private:
    using Clock = std::chrono::steady_clock;

    void Overwrite(const char* line);

    bool isTerminal_;
    Clock::time_point next_;
    std::size_t shownLength_ = 0;
};

} // namespace host
