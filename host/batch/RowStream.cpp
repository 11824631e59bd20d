#include "host/batch/RowStream.h"

#include "host/data/Separator.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace host {

namespace {

constexpr const char* ZERO = "a byte of value 0, so this is no text in UTF-8";
constexpr const char* LONG_LINE = "the line is longer than 16 megabytes, so this is no table";
static_assert(TextBlock::LONGEST_LINE == std::size_t{16} << 20);

bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

std::string_view TextOf(const TextBlock& block)
{
    return {block.begin, static_cast<std::size_t>(block.end - block.begin)};
}

/// Takes the first line off the block, without its ending.
std::string TakeLine(TextBlock& block)
{
    const std::string_view text = TextOf(block);
    std::string_view line = text.substr(0, text.find('\n'));
    const std::size_t taken = std::min(line.size() + 1, text.size());
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    std::string copy(line);
    block.begin += taken;
    return copy;
}

} // namespace

RowStream::RowStream(const std::string& path, const Options& options, std::size_t blockSize,
                     std::size_t depth, TaskPool& pool)
    : path_(path), lines_(path, blockSize), parser_(ReadHeader(options)), pool_(pool), depth_(depth)
{}

RowLayout RowStream::ReadHeader(const Options& options)
{
    lines_.Next(first_);
    const std::optional<char> named = SeparatorLine(TextOf(first_));
    if (named) {
        TakeLine(first_);
        ++nextLine_;
    }
    std::string header;
    for (; IsBlank(header) && !first_.IsEmpty(); ++nextLine_)
        header = TakeLine(first_);
    if (IsBlank(header))
        throw UnusableInput(fmt::format("{} is empty: a header line and rows are needed.", Name()));
    if (first_.isLineTooLong)
        Refuse(1, LONG_LINE);
    if (header.find('\0') != std::string::npos)
        Refuse(nextLine_ - 1, ZERO);
    if (header.find('\r') != std::string::npos)
        throw UnusableInput(fmt::format("{}, line {}: a carriage return stands within the line; "
                                        "'tr \\\\r \\\\n <FILE | ... -' makes it the end of one.",
                                        Name(), nextLine_ - 1));
    return LayoutOf({header, TextOf(first_), named, nextLine_ - 1, Name()}, options, notes_);
}

/// The next one waits for the lock, so it may be told before the block is there.
void RowStream::Fetch(std::size_t number, TextBlock& text)
{
    std::unique_lock lock(turn_);
    turnChanged_.wait(lock, [&] { return fetched_ == number; });
    ++fetched_;
    turnChanged_.notify_all();
    if (first_.IsEmpty())
        lines_.Next(text);
    else
        text = std::exchange(first_, TextBlock());
}

void RowStream::Read(std::size_t number, ParsedRows& rows)
{
    Fetch(number, rows.text);
    parser_.Parse(rows);
}

void RowStream::StartNext()
{
    if (spare_.empty())
        spare_.push_back(std::make_unique<Block>());
    std::unique_ptr<Block> block = std::move(spare_.back());
    spare_.pop_back();
    block->task = pool_.Start([this, number = started_++, &rows = block->rows] { Read(number, rows); });
    ahead_.push_back(std::move(block));
}

void RowStream::Prefetch()
{
    while (ahead_.size() < depth_)
        StartNext();
}

void RowStream::Refuse(std::size_t line, const char* problem) const
{
    throw UnusableInput(fmt::format("{}, line {}: {}.", Name(), line, problem));
}

void RowStream::CheckCurrent() const
{
    const ParsedRows& rows = current_->rows;
    if (rows.text.IsEmpty() && !hasRows_)
        throw UnusableInput(fmt::format("{} has a header line and no data rows.", Name()));
    if (rows.text.isLineTooLong)
        Refuse(nextLine_, LONG_LINE);
    if (rows.lineOfZero)
        Refuse(nextLine_ + *rows.lineOfZero, ZERO);
}

std::vector<std::string> RowStream::Notes() const
{
    std::vector<std::string> notes = notes_;
    if (!lines_.Note().empty())
        notes.push_back(lines_.Note());
    if (lineOfStrange_)
        notes.push_back(
            fmt::format("Line {} has bytes that are no UTF-8; keys with such bytes are compared and "
                        "written as they are.",
                        *lineOfStrange_));
    return notes;
}

const ParsedRows* RowStream::Next()
{
    do {
        if (current_)
            spare_.push_back(std::move(current_));
        Prefetch();
        current_ = std::move(ahead_.front());
        ahead_.pop_front();
        pool_.Finish(current_->task);
        CheckCurrent();
        if (current_->rows.text.IsEmpty())
            return nullptr;
        current_->rows.firstLine = nextLine_;
        if (!lineOfStrange_ && current_->rows.lineOfStrange)
            lineOfStrange_ = nextLine_ + *current_->rows.lineOfStrange;
        nextLine_ += current_->rows.lineCount;
    } while (current_->rows.rows.empty());
    hasRows_ = true;
    return &current_->rows;
}

} // namespace host
