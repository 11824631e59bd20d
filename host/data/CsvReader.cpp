#include "host/data/CsvReader.h"

#include "host/data/Separator.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <csv.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>
#include <new>

namespace host {

namespace {

bool Has(std::string_view text, char c)
{
    return std::memchr(text.data(), c, text.size()) != nullptr;
}

/// Cuts a text into lines with their endings.
class Lines
{
public:
    explicit Lines(std::string_view text) : text_(text), hasReturns_(Has(text, '\r')) {}

    bool AreLeft() const { return !text_.empty(); }
    std::string_view Take();

private:
    std::size_t EndOfLine();

    std::string_view text_;
    bool hasReturns_;
    const char* feed_ = nullptr; ///< the next line feed; the end of the text without one
};

/// A file of old Macs has no line feed, which must not be looked for in the whole text for each line.
std::size_t Lines::EndOfLine()
{
    const char* const end = text_.data() + text_.size();
    if (feed_ == nullptr || feed_ < text_.data()) {
        const void* const found = std::memchr(text_.data(), '\n', text_.size());
        feed_ = found == nullptr ? end : static_cast<const char*>(found);
    }
    const auto lineSize = static_cast<std::size_t>(feed_ - text_.data());
    const void* const found = hasReturns_ ? std::memchr(text_.data(), '\r', lineSize) : nullptr;
    if (found == nullptr)
        return std::min(lineSize + 1, text_.size());
    const auto before = static_cast<std::size_t>(static_cast<const char*>(found) - text_.data());
    return before + (before + 1 == lineSize && feed_ < end ? 2 : 1);
}

std::string_view Lines::Take()
{
    const std::string_view line = text_.substr(0, EndOfLine());
    text_.remove_prefix(line.size());
    return line;
}

/// A field without quotes, without the blanks around it that the separator allows.
std::string_view Unpadded(const char* first, const char* last, char separator)
{
    const auto isBlank = [separator](char c) { return (c == ' ' || c == '\t') && c != separator; };
    while (first < last && isBlank(*first))
        ++first;
    while (first < last && isBlank(last[-1]))
        --last;
    return {first, static_cast<std::size_t>(last - first)};
}

} // namespace

/// Reads line by line, which tells the line that each row starts on. Rows in which a double quote occurs go
/// through the parser; others are cut at their separators, which gives the same and takes a third of the
/// time. Fields are stored in the text that they come from, before the place that is read: they are never
/// longer than what they were written as.
class CsvReader
{
public:
    CsvReader(std::string text, const std::string& name, char separator)
        : name_(name), separator_(separator), unread_(std::move(text))
    {
        // Strict: a misplaced quote is an error, because a guess could join rows.
        if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0)
            throw std::bad_alloc();
        csv_set_delim(&parser_, static_cast<unsigned char>(separator));
    }
    ~CsvReader() { csv_free(&parser_); }
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    CsvContent Read();

private:
    void Reserve();
    void ReadLine(std::string_view line);
    void StartRow();
    void CutLine(std::string_view line);
    void ParseLine(std::string_view line);
    void Finish();
    void EndField(std::string_view field);
    void EndRow();
    void LeaveOutFieldsBehind(std::size_t count);
    std::string HintOfTitle() const;
    void LeaveOutEmptyRows();
    void RethrowFailure();
    [[noreturn]] void FailAt(std::size_t line, std::string_view problem) const;

    std::size_t RowSize() const { return written_ - content_.rowStarts_.back(); }
    std::size_t LineOfRow() const { return content_.LineOf(content_.RowCount() - 1); }

    static void OnField(void* field, std::size_t size, void* reader) noexcept;
    static void OnRow(int terminator, void* reader) noexcept;

    const std::string& name_;
    char separator_;
    std::string unread_;
    CsvContent content_;
    csv_parser parser_{};
    std::size_t written_ = 0;     ///< bytes of fields, at the start of the text
    std::size_t line_ = 0;        ///< the one being read, from 1
    std::size_t fieldsInRow_ = 0; ///< so far
    bool hasQuotes_ = false;      ///< anywhere
    bool hasZeros_ = false;
    bool rowIsOpen_ = false;     ///< the row goes on behind a quoted line break
    std::exception_ptr failure_; ///< of a callback: nothing may be thrown through the C parser
};

CsvContent CsvReader::Read()
{
    hasQuotes_ = Has(unread_, '"');
    hasZeros_ = Has(unread_, '\0');
    Reserve();
    Lines lines(unread_);
    if (SeparatorLine(unread_)) {
        lines.Take();
        ++line_;
    }
    while (lines.AreLeft())
        ReadLine(lines.Take());
    Finish();
    LeaveOutEmptyRows();
    unread_.resize(written_);
    unread_.shrink_to_fit(); // the separators are a tenth of many files
    content_.text_ = std::move(unread_);
    return std::move(content_);
}

/// Room for a row a line, so that no column is copied while it grows.
void CsvReader::Reserve()
{
    const auto count = [this](char c) {
        return static_cast<std::size_t>(std::count(unread_.begin(), unread_.end(), c));
    };
    const std::size_t lines = std::max(count('\n'), count('\r'));
    const std::string_view header = Lines(unread_).Take();
    const auto separators = static_cast<std::size_t>(std::count(header.begin(), header.end(), separator_));
    content_.rowStarts_.reserve(lines + 1);
    content_.fieldEnds_.reserve(std::min((lines + 1) * (separators + 1), unread_.size() + 1));
}

void CsvReader::ReadLine(std::string_view line)
{
    ++line_;
    if (hasZeros_ && Has(line, '\0'))
        FailAt(line_, "a byte of value 0, so this is no text in UTF-8");
    if (!rowIsOpen_) {
        if (Trimmed(line).empty())
            return;
        StartRow();
    }
    if (rowIsOpen_ || (hasQuotes_ && Has(line, '"')))
        ParseLine(line);
    else
        CutLine(line);
}

void CsvReader::StartRow()
{
    const std::size_t row = content_.RowCount();
    content_.rowStarts_.push_back(written_);
    if (row == 0 || content_.LineOf(row) != line_)
        content_.lineSteps_.push_back({row, line_});
}

void CsvReader::CutLine(std::string_view line)
{
    const char* first = line.data();
    const char* end = first + line.size();
    while (end > first && (end[-1] == '\n' || end[-1] == '\r'))
        --end;
    for (;;) {
        const auto left = static_cast<std::size_t>(end - first);
        const auto* const found = static_cast<const char*>(std::memchr(first, separator_, left));
        EndField(Unpadded(first, found == nullptr ? end : found, separator_));
        if (found == nullptr)
            break;
        first = found + 1;
    }
    EndRow();
}

void CsvReader::ParseLine(std::string_view line)
{
    rowIsOpen_ = true;
    const std::size_t parsed = csv_parse(&parser_, line.data(), line.size(), OnField, OnRow, this);
    RethrowFailure();
    if (parsed != line.size() && csv_error(&parser_) != CSV_EPARSE)
        throw std::bad_alloc();
    if (parsed != line.size())
        FailAt(line_,
               "a misplaced double quote (a field with quotes in it has to stand in quotes as a whole, "
               "and those in it are written twice)");
}

/// A file that ends inside quotes is reported at the field that is still open, the next one of its row.
void CsvReader::Finish()
{
    const bool isClosed = csv_fini(&parser_, OnField, OnRow, this) == 0;
    RethrowFailure();
    if (isClosed)
        return;
    const std::string_view row = std::string_view(unread_).substr(content_.rowStarts_.back(), RowSize());
    FailAt(LineOfRow() + LineEndsIn(row), "the quoted field that starts here is never closed");
}

void CsvReader::EndField(std::string_view field)
{
    std::memmove(unread_.data() + written_, field.data(), field.size());
    written_ += field.size();
    if (RowSize() > std::numeric_limits<std::uint32_t>::max())
        FailAt(LineOfRow(), "a row of more than 4 GiB");
    content_.fieldEnds_.push_back(static_cast<std::uint32_t>(RowSize()));
    ++fieldsInRow_;
}

void CsvReader::EndRow()
{
    rowIsOpen_ = false;
    const std::size_t count = std::exchange(fieldsInRow_, 0);
    if (content_.RowCount() == 1)
        content_.columnCount_ = count;
    else if (count > content_.columnCount_)
        LeaveOutFieldsBehind(count);
    else if (count < content_.columnCount_)
        FailAt(LineOfRow(), fmt::format("{} field{}, but the header has {}", count, count == 1 ? "" : "s",
                                        content_.columnCount_));
}

/// A spreadsheet writes separators as far as its widest row has cells. Fields with a value must not vanish.
void CsvReader::LeaveOutFieldsBehind(std::size_t count)
{
    const std::size_t kept = content_.fieldEnds_.size() - (count - content_.columnCount_);
    if (content_.fieldEnds_[kept - 1] != content_.fieldEnds_.back())
        FailAt(LineOfRow(), fmt::format("{} fields, but the header has {}{}", count, content_.columnCount_,
                                        HintOfTitle()));
    content_.fieldEnds_.resize(kept);
}

/// A title or a comment above the header, which is taken for it.
std::string CsvReader::HintOfTitle() const
{
    if (content_.columnCount_ > 1)
        return {};
    const std::string_view title = std::string_view(unread_).substr(0, content_.fieldEnds_.front());
    return fmt::format(": '{}' is taken for it, and lines above the header have to go from the file", title);
}

void CsvReader::LeaveOutEmptyRows()
{
    while (content_.RowCount() > 1 && RowSize() == 0) {
        content_.rowStarts_.pop_back();
        content_.fieldEnds_.resize(content_.fieldEnds_.size() - content_.columnCount_);
        ++content_.emptyRows_;
    }
}

void CsvReader::RethrowFailure()
{
    if (failure_)
        std::rethrow_exception(failure_);
}

void CsvReader::FailAt(std::size_t line, std::string_view problem) const
{
    throw UnusableInput(fmt::format("{}, line {}: {}.", name_, line, problem));
}

void CsvReader::OnField(void* field, std::size_t size, void* reader) noexcept
{
    auto& self = *static_cast<CsvReader*>(reader);
    try {
        self.EndField({static_cast<const char*>(field), size});
    } catch (...) {
        self.failure_ = std::current_exception();
    }
}

void CsvReader::OnRow(int /*terminator*/, void* reader) noexcept
{
    auto& self = *static_cast<CsvReader*>(reader);
    try {
        self.EndRow();
    } catch (...) {
        self.failure_ = std::current_exception();
    }
}

std::string_view CsvContent::Field(std::size_t row, std::size_t column) const
{
    const std::uint32_t* const ends = fieldEnds_.data() + row * columnCount_;
    const std::size_t start = column == 0 ? 0 : ends[column - 1];
    return std::string_view(text_).substr(rowStarts_[row] + start, ends[column] - start);
}

std::size_t CsvContent::LineOf(std::size_t row) const
{
    const auto behind =
        std::upper_bound(lineSteps_.begin(), lineSteps_.end(), row,
                         [](std::size_t one, const LineStep& step) { return one < step.row; });
    if (behind == lineSteps_.begin())
        return 0;
    const LineStep& step = *(behind - 1);
    return step.line + (row - step.row);
}

std::size_t CsvContent::LineOf(std::size_t row, std::size_t column) const
{
    std::size_t line = LineOf(row);
    for (std::size_t before = 0; before < column; ++before)
        line += LineEndsIn(Field(row, before));
    return line;
}

CsvContent ReadCsv(std::string text, const std::string& name, char separator)
{
    return CsvReader(std::move(text), name, separator).Read();
}

} // namespace host
