#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace host {

/// What separates the fields of a line.
enum class Separator
{
    TAB,
    COMMA, ///< fields may stand in double quotes
    BLANKS ///< runs of blanks and tabs, also around the line
};

/// Cuts lines into fields. The memory of the line must be readable up to `TextBlock::PADDING` bytes behind
/// it.
class FieldCutter
{
public:
    /// Fields beyond `fieldCount` are counted and not kept.
    FieldCutter(Separator separator, std::size_t fieldCount)
        : separator_(separator), starts_(fieldCount + 1), ends_(fieldCount + 1)
    {}

    /// Returns the number of fields. Quotes around a field are taken off, and two inside it become one, in
    /// the memory of the line. A line with a misplaced quote has no fields.
    std::size_t Cut(char* line, std::size_t size);

    /// Field of the last line cut, one that was kept.
    std::string_view Field(const char* line, std::size_t field) const
    {
        return {line + starts_[field], static_cast<std::size_t>(ends_[field] - starts_[field])};
    }

private:
    std::size_t CutAt(char separator, const char* line, std::size_t size);
    std::size_t CutAtBlanks(const char* line, std::size_t size);
    std::size_t CutQuoted(char* line, std::size_t size);

    std::size_t Capacity() const { return starts_.size() - 1; }

    Separator separator_;
    std::vector<std::uint32_t> starts_; ///< with room for one more than is kept
    std::vector<std::uint32_t> ends_;
};

} // namespace host
