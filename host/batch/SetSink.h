#pragma once

#include "host/batch/ResultTable.h"
#include "host/batch/SetChunk.h"
#include "host/system/AtomicFile.h"
#include "host/system/Progress.h"
#include "host/system/TaskPool.h"

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Error of the library for a whole call.
class LibraryError : public std::exception
{
public:
    explicit LibraryError(KXStatus status) : status_(status) {}
    KXStatus Status() const { return status_; }

private:
    KXStatus status_;
};

/// Takes sets one after the other, pools them in chunks by the threads of the pool, and writes the results in
/// the order of the sets.
class SetSink
{
public:
    /// The header line, which names the key as here, is written before the first results: what fails until
    /// then leaves nothing.
    SetSink(const std::string& key, const std::vector<BatchColumn>& columns,
            const MA_NAMESPACE::MABulkModel& model, AtomicFile& output, TaskPool& pool);

    /// Begins the next set.
    void Begin(std::string_view key)
    {
        if (current_->sets.IsFull())
            Flush();
        current_->sets.Begin(key);
    }

    /// Adds a study to the set.
    void Add(double effectSize, double variance) { current_->sets.Add(effectSize, variance); }

    /// Writes all that is left.
    void Finish();

private:
    struct Chunk
    {
        explicit Chunk(const std::vector<BatchColumn>& columns) : results(columns) {}

        SetChunk sets;
        ResultTable results;
        std::string text;
        std::shared_ptr<Task> task;
    };

    std::unique_ptr<Chunk> SpareChunk();
    void Pool(Chunk& chunk) const;
    void Flush();
    void WriteFirst();

    std::vector<BatchColumn> columns_;
    MA_NAMESPACE::MABulkModel model_;
    AtomicFile& output_;
    TaskPool& pool_;
    Progress progress_;
    long written_ = 0;
    std::string header_; ///< empty when it is written
    std::deque<std::unique_ptr<Chunk>> underWay_;
    std::vector<std::unique_ptr<Chunk>> spare_;
    std::unique_ptr<Chunk> current_;
};

} // namespace host
