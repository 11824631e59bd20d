#include "host/batch/Batch.h"

#include "host/batch/BatchModel.h"
#include "host/batch/BatchPlaces.h"
#include "host/batch/Grouping.h"
#include "host/output/OutputWriting.h"
#include "host/text/StatusText.h"

#include <fmt/format.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace host {

namespace {

/// Blocks that parse in a millisecond; smaller ones where many files are read at a time.
std::size_t BlockSizeFor(std::size_t openFiles)
{
    constexpr std::size_t LARGEST = std::size_t{1} << 18;
    constexpr std::size_t SMALLEST = std::size_t{1} << 14;
    constexpr std::size_t OF_ALL = std::size_t{1} << 23;
    return std::clamp(OF_ALL / openFiles, SMALLEST, LARGEST);
}

/// Raises the limit of open files as far as the user may: a study is a file.
void AllowManyFiles()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit); // without it, a file that cannot be opened says so
}

/// Ends the threads before what they work on.
class ThreadsEnd
{
public:
    explicit ThreadsEnd(TaskPool& pool) : pool_(pool) {}
    ~ThreadsEnd() { pool_.Stop(); }
    ThreadsEnd(const ThreadsEnd&) = delete;
    ThreadsEnd& operator=(const ThreadsEnd&) = delete;

private:
    TaskPool& pool_;
};

/// " and 2 others".
std::string OthersThan(const std::vector<std::string>& names)
{
    const std::size_t others = names.size() - 1;
    return others == 0 ? "" : fmt::format(" and {} other{}", others, others == 1 ? "" : "s");
}

class BatchRun
{
public:
    explicit BatchRun(const Options& options)
        : options_(options),
          batch_(options.batch),
          output_(batch_.output.value_or("-")),
          rejects_(batch_.rejects),
          pool_(batch_.threadCount)
    {}

    void Run()
    {
        OpenFiles();
        SetSink sets(*batch_.key, batch_.columns, BatchModelOf(options_.settings), output_, pool_);
        const ThreadsEnd end(pool_);
        PoolRows(sets);
        sets.Finish();
        rejects_.Commit();
        output_.Commit();
    }

    /// Sentences on the files and on the rows that are left out.
    std::vector<std::string> Notes() const
    {
        std::map<std::string, std::vector<std::string>> files; // by their note
        for (const RowStream& file : files_)
            for (const std::string& note : file.Notes())
                files[note].push_back(file.Name());
        std::vector<std::string> notes;
        notes.reserve(files.size() + 1);
        for (const auto& [note, names] : files)
            notes.push_back(fmt::format("{}{}: {}", names.front(), OthersThan(names), note));
        if (std::string summary = rejects_.Summary(); !summary.empty())
            notes.push_back(std::move(summary));
        return notes;
    }

private:
    void OpenFiles()
    {
        const std::size_t count = batch_.files.size();
        const bool readsAhead = pool_.ThreadCount() > 1;
        const std::size_t depth = !readsAhead ? 1 : batch_.isSorted ? 2 : pool_.ThreadCount() + 1;
        for (const std::string& path : batch_.files)
            files_.emplace_back(path, options_, BlockSizeFor(count), depth, pool_);
    }

    void PoolRows(SetSink& sets)
    {
        const bool hasAlleles = batch_.effectAllele.has_value();
        if (batch_.isSorted)
            PoolSortedFiles(files_, sets, rejects_);
        else if (files_.size() > 1)
            PoolFilesInAnyOrder(files_, hasAlleles, sets, rejects_);
        else if (batch_.isUnsorted)
            PoolRowsInAnyOrder(files_.front(), hasAlleles, sets, rejects_);
        else
            PoolGroupedRows(files_.front(), sets, rejects_);
    }

    const Options& options_;
    const BatchOptions& batch_;
    AtomicFile output_;
    Rejects rejects_;
    TaskPool pool_;
    std::deque<RowStream> files_;
};

} // namespace

ExitStatus RunBatch(const Options& options)
{
    CheckBatchPlaces(options.batch);
    AllowManyFiles();
    for (const std::string& note : options.notes)
        WriteToStandardError(note.c_str());
    try {
        BatchRun run(options);
        run.Run();
        for (const std::string& note : run.Notes())
            WriteToStandardError(note.c_str());
        return EXIT_RAN;
    } catch (const ReaderIsGone&) {
        return EXIT_RAN;
    } catch (const LibraryError& error) {
        const int code = error.Status().GetCode();
        WriteToStandardError(fmt::format("error {}: {}", code, SentenceOf(code)).c_str());
        return EXIT_LIBRARY_ERROR;
    }
}

} // namespace host
