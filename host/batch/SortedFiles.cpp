#include "host/batch/Grouping.h"
#include "host/batch/RowUse.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace host {

namespace {

/// The first eight bytes of a key as a number, in the order of the bytes; most keys differ in them.
std::uint64_t PrefixOf(std::string_view key)
{
    unsigned char bytes[sizeof(std::uint64_t)] = {};
    std::memcpy(bytes, key.data(), std::min(key.size(), sizeof bytes));
    std::uint64_t prefix = 0;
    for (const unsigned char byte : bytes)
        prefix = prefix << 8 | byte;
    return prefix;
}

/// The row of a sorted file whose turn is next.
class SortedRows
{
public:
    SortedRows(RowStream& file, Rejects& rejects) : file_(file), rejects_(rejects) {}

    bool IsAtEnd() const { return block_ == nullptr; }
    std::uint64_t Prefix() const { return prefix_; }
    std::string_view Key() const { return block_->rows[index_].Key(); }
    RowAt Current() const { return {file_, *block_, index_}; }

    /// Goes to the next row with another key. Rejects those without one and with the same.
    void Advance()
    {
        if (block_ != nullptr)
            previous_ = Key();
        while (NextRow()) {
            const Row& row = block_->rows[index_];
            if (!row.HasKey())
                Reject(Current(), row.problem, rejects_);
            else if (row.Key() == previous_)
                Reject(Current(), RowProblem::DUPLICATED_KEY, rejects_);
            else
                break;
        }
        if (block_ == nullptr)
            return;
        if (Key() < previous_)
            RefuseOrder();
        prefix_ = PrefixOf(Key());
    }

private:
    bool NextRow()
    {
        if (block_ == nullptr || ++index_ == block_->rows.size()) {
            block_ = file_.Next();
            index_ = 0;
        }
        return block_ != nullptr;
    }

    [[noreturn]] void RefuseOrder() const
    {
        throw UnusableInput(fmt::format("{}, line {}: the file is not sorted by the bytes of its keys, as "
                                        "LC_ALL=C sort does: '{}' stands "
                                        "behind '{}'. Without --sorted files may be in any order.",
                                        file_.Name(), block_->LineOf(block_->rows[index_]), Key(),
                                        previous_));
    }

    RowStream& file_;
    Rejects& rejects_;
    const ParsedRows* block_ = nullptr;
    std::size_t index_ = 0;
    std::uint64_t prefix_ = 0;
    std::string previous_; ///< key of the row before
};

bool IsBefore(const SortedRows& one, const SortedRows& other)
{
    return one.Prefix() != other.Prefix() ? one.Prefix() < other.Prefix() : one.Key() < other.Key();
}

/// Finds the files that have the smallest key, in their order.
void FindSmallest(std::vector<SortedRows>& files, std::vector<SortedRows*>& smallest)
{
    smallest.clear();
    for (SortedRows& file : files) {
        if (file.IsAtEnd())
            continue;
        if (!smallest.empty() && IsBefore(*smallest.front(), file))
            continue;
        if (!smallest.empty() && IsBefore(file, *smallest.front()))
            smallest.clear();
        smallest.push_back(&file);
    }
}

} // namespace

void PoolSortedFiles(std::deque<RowStream>& files, SetSink& sets, Rejects& rejects)
{
    std::vector<SortedRows> rows;
    for (RowStream& file : files) {
        file.Prefetch();
        rows.emplace_back(file, rejects);
    }
    for (SortedRows& file : rows)
        file.Advance();
    FirstAlleles first;
    const auto match = [&](const Alleles& alleles) { return first.Match(alleles); };
    const auto add = [&](double effectSize, double variance) { sets.Add(effectSize, variance); };
    std::vector<SortedRows*> smallest;
    for (FindSmallest(rows, smallest); !smallest.empty(); FindSmallest(rows, smallest)) {
        sets.Begin(smallest.front()->Key());
        first.Clear();
        for (SortedRows* const file : smallest) {
            UseRow(file->Current(), rejects, match, add);
            file->Advance();
        }
    }
}

} // namespace host
