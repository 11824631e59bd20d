#include "host/batch/LineBlocks.h"

#include <cstring>
#include <utility>

namespace host {

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

LineBlocks::LineBlocks(const std::string& path, std::size_t blockSize) : source_(path), blockSize_(blockSize)
{}

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
        block.isLineTooLong = cut == nullptr && size >= TextBlock::LONGEST_LINE;
        if (cut != nullptr || isAtEnd_ || block.isLineTooLong)
            break;
        block.Reserve(2 * size, size);
    }
    const std::size_t used =
        cut == nullptr || isAtEnd_ ? size : static_cast<std::size_t>(cut + 1 - block.Memory());
    rest_.assign(block.Memory() + used, size - used);
    block.begin = block.Memory();
    block.end = block.begin + used;
    std::memset(block.end, 0, TextBlock::PADDING);
}

} // namespace host
