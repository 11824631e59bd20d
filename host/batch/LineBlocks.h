#pragma once

#include "host/data/TextSource.h"

#include <cstddef>
#include <memory>
#include <string>

namespace host {

/// Whole lines of a file. Memory behind the end may be read up to `PADDING` bytes, so that lines can be
/// scanned in vector registers.
class TextBlock
{
public:
    static constexpr std::size_t PADDING = 64;
    /// A longer line is no row of a table, and would fill the memory.
    static constexpr std::size_t LONGEST_LINE = std::size_t{16} << 20;

    char* begin = nullptr;
    char* end = nullptr;
    bool isLineTooLong = false; ///< whether it is the start of a line that no table has

    /// Makes room for `size` bytes and keeps the first `kept`.
    void Reserve(std::size_t size, std::size_t kept);
    char* Memory() { return memory_.get(); }
    std::size_t Capacity() const { return capacity_; }
    bool IsEmpty() const { return begin == end; }

private:
    std::unique_ptr<char[]> memory_;
    std::size_t capacity_ = 0;
};

/// Cuts the text of a file into blocks of whole lines.
class LineBlocks
{
public:
    LineBlocks(const std::string& path, std::size_t blockSize);

    /// Fills the block with the next lines; with none at the end of the file. Throws UnusableInput for a
    /// file that cannot be read.
    void Next(TextBlock& block);

    const std::string& Name() const { return source_.Name(); }
    /// A sentence on its encoding where that is not UTF-8; else empty.
    const std::string& Note() const { return source_.Note(); }

private:
    std::size_t Fill(char* to, std::size_t size);

    TextSource source_;
    std::size_t blockSize_;
    std::string rest_; ///< start of the line that the last block cut
    bool isAtEnd_ = false;
};

} // namespace host
