#pragma once

#include "host/batch/RowProblem.h"
#include "host/system/AtomicFile.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// The rows that are left out: listed in a file, or counted by their reasons.
class Rejects
{
public:
    /// The place is a path, or "-" for standard output.
    explicit Rejects(const std::optional<std::string>& place);

    void Add(std::string_view file, std::size_t line, RowProblem problem, std::string_view key);

    /// Completes the file.
    void Commit();

    /// What is left out, by reasons, as a sentence; empty for nothing, and where a file has the rows.
    std::string Summary() const;

private:
    std::optional<AtomicFile> list_;
    std::string unwritten_;
    std::array<std::size_t, ROW_PROBLEMS.size()> counts_{};
};

} // namespace host
