#include "host/text/Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace host {

namespace {

constexpr std::chrono::seconds SHORT_WORK(1);
constexpr std::chrono::milliseconds BETWEEN_LINES(100);

} // namespace

Progress::Progress() : isTerminal_(isatty(STDERR_FILENO) == 1), next_(Clock::now() + SHORT_WORK) {}

Progress::~Progress()
{
    Overwrite("");
}

void Progress::Show(const char* step, long number, long total)
{
    if (!isTerminal_ || Clock::now() < next_)
        return;
    const std::string end = total > 0 ? fmt::format(" of {}", total) : "";
    Overwrite(fmt::format("{} {}{}", step, number, end).c_str());
    next_ = Clock::now() + BETWEEN_LINES;
}

/// Overwrites with blanks, which every terminal understands.
void Progress::Overwrite(const char* line)
{
    const std::size_t length = std::strlen(line);
    if (length == 0 && shownLength_ == 0)
        return;
    const int blanks = static_cast<int>(shownLength_ - std::min(length, shownLength_));
    std::fprintf(stderr, "\r%s%*s\r%s", line, blanks, "", line);
    shownLength_ = length;
}

} // namespace host
