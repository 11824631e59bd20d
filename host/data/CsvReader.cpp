#include "host/data/CsvReader.h"

#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <csv.h>
#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

namespace host {

namespace {

/// Removes the first line, with its ending, from `text` and returns it.
std::string_view TakeLine(std::string_view& text)
{
    std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    if (end < text.size())
        end += text.compare(end, 2, "\r\n") == 0 ? 2 : 1;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end);
    return line;
}

/// The parser is fed one line of the file at a time, which tells the line that each row starts on.
class CsvReader
{
public:
    explicit CsvReader(const std::string& name) : name_(name)
    {
        // Strict: a misplaced quote is an error, because a guess could join rows.
        if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0)
            throw std::bad_alloc();
    }
    ~CsvReader() { csv_free(&parser_); }
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    CsvContent Read(std::string_view text)
    {
        content_.text.reserve(text.size());
        while (!text.empty())
            ReadLine(TakeLine(text));
        Finish();
        return std::move(content_);
    }

private:
    void ReadLine(std::string_view line);
    void Finish();
    void EndField(std::string_view field);
    void EndRow();
    void RethrowFailure();
    [[noreturn]] void FailAt(std::size_t line, std::string_view problem) const;

    // A file that ends inside quotes is reported at the field that is still open, the next one of its row.
    std::size_t LineOfOpenField() const
    {
        return content_.LineOf(content_.rowLines.size() - 1, fieldsInRow_);
    }

    static void OnField(void* field, std::size_t size, void* reader) noexcept;
    static void OnRow(int terminator, void* reader) noexcept;

    const std::string& name_;
    CsvContent content_;
    csv_parser parser_{};
    std::size_t line_ = 0;        ///< the one being read, from 1
    std::size_t fieldsInRow_ = 0; ///< so far
    bool rowIsOpen_ = false;      ///< the row goes on behind a quoted line break
    std::exception_ptr failure_;  ///< of a callback: nothing may be thrown through the C parser
};

void CsvReader::ReadLine(std::string_view line)
{
    ++line_;
    if (line.find('\0') != std::string_view::npos)
        FailAt(line_, "a byte of value 0, so this is no text in UTF-8");
    if (!rowIsOpen_) {
        if (Trimmed(line).empty())
            return;
        rowIsOpen_ = true;
        content_.rowLines.push_back(line_);
    }
    const std::size_t parsed = csv_parse(&parser_, line.data(), line.size(), OnField, OnRow, this);
    RethrowFailure();
    if (parsed != line.size() && csv_error(&parser_) != CSV_EPARSE)
        throw std::bad_alloc();
    if (parsed != line.size())
        FailAt(line_,
               "a misplaced double quote (a field with quotes in it has to stand in quotes as a whole, "
               "and those in it are written twice)");
}

void CsvReader::Finish()
{
    const bool isClosed = csv_fini(&parser_, OnField, OnRow, this) == 0;
    RethrowFailure();
    if (!isClosed)
        FailAt(LineOfOpenField(), "the quoted field that starts here is never closed");
}

void CsvReader::EndField(std::string_view field)
{
    content_.text.append(field);
    content_.ends.push_back(content_.text.size());
    ++fieldsInRow_;
}

void CsvReader::EndRow()
{
    rowIsOpen_ = false;
    const std::size_t count = std::exchange(fieldsInRow_, 0);
    if (content_.rowLines.size() == 1)
        content_.columnCount = count;
    else if (count != content_.columnCount)
        FailAt(content_.rowLines.back(), fmt::format("{} field{}, but the header has {}", count,
                                                     count == 1 ? "" : "s", content_.columnCount));
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

} // namespace

std::string_view CsvContent::Field(std::size_t row, std::size_t column) const
{
    const std::size_t field = row * columnCount + column;
    const std::size_t start = field == 0 ? 0 : ends[field - 1];
    return std::string_view(text).substr(start, ends[field] - start);
}

std::size_t CsvContent::LineOf(std::size_t row, std::size_t column) const
{
    std::size_t line = rowLines[row];
    for (std::size_t before = 0; before < column; ++before)
        line += LineEndsIn(Field(row, before));
    return line;
}

CsvContent ReadCsv(std::string_view text, const std::string& name)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    return CsvReader(name).Read(text);
}

} // namespace host
