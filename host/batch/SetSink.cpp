#include "host/batch/SetSink.h"

#include <utility>

using namespace MA_NAMESPACE;

namespace host {

SetSink::SetSink(const std::string& key, const std::vector<BatchColumn>& columns, const MABulkModel& model,
                 AtomicFile& output, TaskPool& pool)
    : columns_(columns),
      model_(model),
      output_(output),
      pool_(pool),
      header_(HeaderOf(key, columns)),
      current_(SpareChunk())
{}

std::unique_ptr<SetSink::Chunk> SetSink::SpareChunk()
{
    if (spare_.empty())
        return std::make_unique<Chunk>(columns_);
    std::unique_ptr<Chunk> chunk = std::move(spare_.back());
    spare_.pop_back();
    chunk->sets.Clear();
    return chunk;
}

void SetSink::Pool(Chunk& chunk) const
{
    const KXStatus status = chunk.results.Pool(chunk.sets, model_);
    if (status.IsError())
        throw LibraryError(status);
    chunk.results.Write(chunk.sets, chunk.text);
}

/// With other threads there are enough chunks under way to keep them busy, while this one waits for the
/// first.
void SetSink::Flush()
{
    const std::size_t others = pool_.ThreadCount() - 1;
    current_->task = pool_.Start([this, &chunk = *current_] { Pool(chunk); });
    underWay_.push_back(std::exchange(current_, nullptr));
    while (underWay_.size() > 2 * others)
        WriteFirst();
    current_ = SpareChunk();
}

void SetSink::WriteFirst()
{
    std::unique_ptr<Chunk> chunk = std::move(underWay_.front());
    underWay_.pop_front();
    pool_.Finish(chunk->task);
    output_.Write(std::exchange(header_, {}));
    output_.Write(chunk->text);
    written_ += static_cast<long>(chunk->sets.SetCount());
    if (!output_.IsTerminal()) // there the results themselves show the progress
        progress_.Show("Pooled analysis", written_, 0);
    spare_.push_back(std::move(chunk));
}

void SetSink::Finish()
{
    Flush();
    while (!underWay_.empty())
        WriteFirst();
}

} // namespace host
