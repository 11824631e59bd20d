#pragma once

#include "host/batch/LineBlocks.h"
#include "host/batch/RowParser.h"
#include "host/system/TaskPool.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// The rows of a file, block by block, parsed ahead by the threads of a pool. What is wrong with the file
/// throws UnusableInput where its turn comes.
class RowStream
{
public:
    /// Reads the header line. `depth` blocks are read ahead. The stream must outlive the pool's threads.
    RowStream(const std::string& path, const Options& options, std::size_t blockSize, std::size_t depth,
              TaskPool& pool);

    /// Starts to read ahead.
    void Prefetch();

    /// The next block with rows, valid until the next call; none at the end.
    const ParsedRows* Next();

    const std::string& Name() const { return lines_.Name(); }
    const std::string& Path() const { return path_; }

    /// Sentences on what is converted or a guess, when the rows are read.
    std::vector<std::string> Notes() const;

private:
    struct Block
    {
        ParsedRows rows;
        std::shared_ptr<Task> task;
    };

    RowLayout ReadHeader(const Options& options);
    void CheckCurrent() const;
    [[noreturn]] void Refuse(std::size_t line, const char* problem) const;
    void StartNext();
    void Read(std::size_t number, ParsedRows& rows);
    void Fetch(std::size_t number, TextBlock& text);

    std::string path_;
    LineBlocks lines_;
    std::size_t nextLine_ = 1; ///< number of the first line behind the current block
    TextBlock first_;          ///< the block of the header, behind it
    std::vector<std::string> notes_;
    RowParser parser_;
    TaskPool& pool_;
    std::size_t depth_;
    std::deque<std::unique_ptr<Block>> ahead_;
    std::unique_ptr<Block> current_;
    std::vector<std::unique_ptr<Block>> spare_;
    std::size_t started_ = 0;
    bool hasRows_ = false;
    std::optional<std::size_t> lineOfStrange_; ///< the first with bytes that are no UTF-8

    std::mutex turn_; ///< of the next fields: blocks are fetched in their order
    std::condition_variable turnChanged_;
    std::size_t fetched_ = 0;
};

} // namespace host
