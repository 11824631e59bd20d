#include "host/batch/Rejects.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <iterator>
#include <numeric>
#include <vector>

namespace host {

Rejects::Rejects(const std::optional<std::string>& place)
{
    if (!place)
        return;
    list_.emplace(*place);
    unwritten_ = "file\tline\treason\tkey\n";
}

void Rejects::Add(std::string_view file, std::size_t line, RowProblem problem, std::string_view key)
{
    constexpr std::size_t MUCH = 1 << 16;
    const auto reason = static_cast<std::size_t>(problem);
    ++counts_[reason];
    if (!list_)
        return;
    fmt::format_to(std::back_inserter(unwritten_), "{}\t{}\t{}\t{}\n", file, line, ROW_PROBLEMS[reason], key);
    if (unwritten_.size() < MUCH)
        return;
    list_->Write(unwritten_);
    unwritten_.clear();
}

void Rejects::Commit()
{
    if (!list_)
        return;
    list_->Write(unwritten_);
    list_->Commit();
}

std::string Rejects::Summary() const
{
    const std::size_t total = std::accumulate(counts_.begin(), counts_.end(), std::size_t{0});
    if (list_ || total == 0)
        return {};
    std::vector<std::string> reasons;
    for (std::size_t reason = 0; reason < counts_.size(); ++reason)
        if (counts_[reason] > 0)
            reasons.push_back(fmt::format("{} where {}", counts_[reason], ROW_PROBLEMS[reason]));
    return fmt::format("{} row{} left out, which --rejects lists: {}.", total, total == 1 ? " is" : "s are",
                       fmt::join(reasons, "; "));
}

} // namespace host
