#pragma once

#include "host/batch/ByteSource.h"

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

    char* begin = nullptr;
    char* end = nullptr;
    std::size_t firstLine = 1; ///< number of its first line in the file

    /// Makes room for `size` bytes and keeps the first `kept`.
    void Reserve(std::size_t size, std::size_t kept);
    char* Memory() { return memory_.get(); }
    std::size_t Capacity() const { return capacity_; }
    bool IsEmpty() const { return begin == end; }

private:
    std::unique_ptr<char[]> memory_;
    std::size_t capacity_ = 0;
};

/// Cuts the bytes of a file into blocks of whole lines.
class LineBlocks
{
public:
    LineBlocks(const std::string& path, std::size_t blockSize) : source_(path), blockSize_(blockSize) {}

    /// Fills the block with the next lines; with none at the end of the file. Throws UnusableInput for a
    /// file that cannot be read, and for a line that is no line of a table.
    void Next(TextBlock& block);

    const std::string& Name() const { return source_.Name(); }

private:
    std::size_t Fill(char* to, std::size_t size);
    [[noreturn]] void RefuseLine() const;

    ByteSource source_;
    std::size_t blockSize_;
    std::string rest_; ///< start of the line that the last block cut
    std::size_t nextLine_ = 1;
    bool isAtEnd_ = false;
};

} // namespace host
