#include "host/batch/LineBlocks.h"

#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace host {

namespace {

/// A longer line is no row of a table, and would fill the memory.
constexpr std::size_t LONGEST_LINE = std::size_t{16} << 20;

} // namespace

void TextBlock::Reserve(std::size_t size, std::size_t kept)
{
    if (size <= capacity_)
        return;
    auto larger = std::make_unique_for_overwrite<char[]>(size + PADDING);
    if (kept > 0)
        std::memcpy(larger.get(), memory_.get(), kept);
    memory_ = std::move(larger);
    capacity_ = size;
}

/// Reads `size` bytes, or less at the end of the file.
std::size_t LineBlocks::Fill(char* to, std::size_t size)
{
    std::size_t filled = 0;
    while (filled < size && !isAtEnd_) {
        const std::size_t count = source_.Read(to + filled, size - filled);
        isAtEnd_ = count == 0;
        filled += count;
    }
    return filled;
}

void LineBlocks::RefuseLine() const
{
    throw UnusableInput(fmt::format("{}, line {}: the line is longer than {} megabytes, so this is no table.",
                                    Name(), nextLine_, LONGEST_LINE >> 20));
}

void LineBlocks::Next(TextBlock& block)
{
    block.Reserve(blockSize_ + rest_.size(), 0);
    std::memcpy(block.Memory(), rest_.data(), rest_.size());
    std::size_t size = rest_.size();
    const char* cut = nullptr;
    for (;;) {
        const std::size_t count = Fill(block.Memory() + size, block.Capacity() - size);
        cut = static_cast<const char*>(memrchr(block.Memory() + size, '\n', count));
        size += count;
        if (cut != nullptr || isAtEnd_)
            break;
        if (size >= LONGEST_LINE)
            RefuseLine();
        block.Reserve(2 * size, size);
    }
    const std::size_t used = isAtEnd_ ? size : static_cast<std::size_t>(cut + 1 - block.Memory());
    rest_.assign(block.Memory() + used, size - used);
    block.begin = block.Memory();
    block.end = block.begin + used;
    std::memset(block.end, 0, TextBlock::PADDING);
    block.firstLine = nextLine_;
    nextLine_ += static_cast<std::size_t>(std::count(block.begin, block.end, '\n'));
}

} // namespace host
