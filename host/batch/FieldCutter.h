#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace host {

/// Cuts lines into fields, which may stand in double quotes. Between commas or semicolons any other double
/// quote is misplaced; between tabs or blanks one within a field is a part of it, as programs write that
/// quote nothing. The memory of the line must be readable up to `TextBlock::PADDING` bytes behind it.
class FieldCutter
{
public:
    /// A blank separates by runs of blanks and tabs, also around the line. Fields beyond `fieldCount` are
    /// counted and not kept.
    FieldCutter(char separator, std::size_t fieldCount)
        : separator_(separator), starts_(fieldCount + 1), ends_(fieldCount + 1)
    {}

    /// Returns the number of fields. Without `mayHaveQuotes` there is no double quote. Quotes around a field
    /// are taken off, and two inside it become one, in the memory of the line. A line with a misplaced quote
    /// has no fields.
    std::size_t Cut(char* line, std::size_t size, bool mayHaveQuotes);

    /// Field of the last line cut, one that was kept.
    std::string_view Field(const char* line, std::size_t field) const
    {
        return {line + starts_[field], static_cast<std::size_t>(ends_[field] - starts_[field])};
    }

private:
    std::size_t CutAtSeparator(const char* line, std::size_t size);
    std::size_t CutAtBlanks(const char* line, std::size_t size);
    std::size_t CutQuoted(char* line, std::size_t size);
    char* SkipBlanks(char* read, const char* lineEnd) const;
    char* CloseQuotes(char*& read, const char* lineEnd) const;
    char* EndPlain(char*& read, const char* lineEnd) const;
    bool Separates(char c) const { return c == separator_ || (separator_ == ' ' && c == '\t'); }
    bool IsStrict() const { return separator_ == ',' || separator_ == ';'; }

    std::size_t Capacity() const { return starts_.size() - 1; }

    char separator_;
    std::vector<std::uint32_t> starts_; ///< with room for one more than is kept
    std::vector<std::uint32_t> ends_;
};

} // namespace host
