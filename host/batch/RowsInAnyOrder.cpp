#include "host/batch/Grouping.h"
#include "host/batch/KeyedRows.h"
#include "host/batch/RowUse.h"
#include "host/system/Progress.h"

#include <limits>

namespace host {

namespace {

constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// Keeps the row with its key. `isOnly` is for files in which a key has one row: there a row that is
/// rejected stands for its key, as a study that is missing.
void KeepRow(const RowAt& row, bool isOnly, KeyedRows& kept, Rejects& rejects)
{
    if (!row.Values().HasKey()) {
        Reject(row, row.Values().problem, rejects);
        return;
    }
    const KeyedRows::Position key = kept.Find(row.Values().Key(), row.RowAlleles());
    if (isOnly && kept.HasRowInFile(key)) {
        Reject(row, RowProblem::DUPLICATED_KEY, rejects);
        return;
    }
    const bool isUsed = UseRow(
        row, rejects, [&](const Alleles& alleles) { return kept.MatchFirst(key, alleles); },
        [&](double effectSize, double variance) { kept.Add(key, effectSize, variance); });
    if (isOnly && !isUsed)
        kept.Add(key, NO_NUMBER, NO_NUMBER);
}

void KeepRows(RowStream& file, bool areOnly, KeyedRows& kept, Rejects& rejects, Progress& progress)
{
    while (const ParsedRows* const block = file.Next()) {
        for (std::size_t i = 0; i < block->rows.size(); ++i)
            KeepRow({file, *block, i}, areOnly, kept, rejects);
        progress.Show("Read row", static_cast<long>(kept.RowCount()), 0);
    }
}

/// The next file is read ahead while one comes to its end.
void KeepFiles(std::deque<RowStream>& files, KeyedRows& kept, Rejects& rejects)
{
    Progress progress;
    for (auto file = files.begin(); file != files.end(); ++file) {
        file->Prefetch();
        if (file + 1 != files.end())
            (file + 1)->Prefetch();
        kept.BeginFile();
        KeepRows(*file, true, kept, rejects, progress);
    }
}

void KeepOneFile(RowStream& file, KeyedRows& kept, Rejects& rejects)
{
    Progress progress;
    KeepRows(file, false, kept, rejects, progress);
}

void PoolKept(KeyedRows& kept, SetSink& sets)
{
    for (auto key = kept.First(); key != KeyedRows::NO_POSITION; key = kept.After(key)) {
        sets.Begin(kept.Key(key));
        kept.ForEachRow(key, [&](double effectSize, double variance) { sets.Add(effectSize, variance); });
    }
}

} // namespace

void PoolRowsInAnyOrder(RowStream& file, bool hasAlleles, SetSink& sets, Rejects& rejects)
{
    KeyedRows kept(hasAlleles);
    KeepOneFile(file, kept, rejects);
    PoolKept(kept, sets);
}

void PoolFilesInAnyOrder(std::deque<RowStream>& files, bool hasAlleles, SetSink& sets, Rejects& rejects)
{
    KeyedRows kept(hasAlleles);
    KeepFiles(files, kept, rejects);
    PoolKept(kept, sets);
}

} // namespace host
