#pragma once

#include "host/batch/Alleles.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace host {

/// The numbers of rows by their keys, in memory. Beside the two numbers a row takes four bytes unless it is
/// the first of its key, and a key takes about 14 beside its text: the keys stand one behind the other in the
/// order in which they came, found by a table of positions, and the rows of a key are a list from the last
/// one back to the first.
class KeyedRows
{
public:
    using Position = std::uint32_t; ///< of a key
    static constexpr Position NO_POSITION = 0xFFFFFFFF;

    explicit KeyedRows(bool hasAlleles);

    /// Position of the key; a new one gets these alleles, which may be empty. Throws UnusableInput for more
    /// than fit.
    Position Find(std::string_view key, const Alleles& alleles);

    /// Adds a row to the key. Throws UnusableInput for more than fit.
    void Add(Position key, double effectSize, double variance);

    /// Whether the key has a row since `BeginFile`.
    bool HasRowInFile(Position key) const;
    void BeginFile() { firstOfFile_ = rowCount_; }
    std::size_t RowCount() const { return rowCount_; }

    /// Compares with the alleles that the key has first, which are these if it has none yet.
    AlleleMatch MatchFirst(Position key, const Alleles& alleles);

    Position First() const { return keyCount_ == 0 ? NO_POSITION : 0; }
    Position After(Position key) const;
    std::string_view Key(Position key) const;

    /// Calls use(effectSize, variance) with each row of the key in the order in which they came.
    template <class Use>
    void ForEachRow(Position key, const Use& use)
    {
        chain_.clear();
        for (std::uint32_t row = LastRow(key); row != NO_ROW; row = Previous(row))
            chain_.push_back(row);
        std::reverse(chain_.begin(), chain_.end());
        for (const std::uint32_t row : chain_)
            use(PageOf(row).effectSizes[row % ROWS_OF_PAGE], PageOf(row).variances[row % ROWS_OF_PAGE]);
    }

private:
    static constexpr std::uint32_t NO_ROW = 0xFFFFFFFF;
    static constexpr std::size_t ROWS_OF_PAGE = 1 << 15;
    struct RowPage
    {
        double effectSizes[ROWS_OF_PAGE];
        double variances[ROWS_OF_PAGE];
        std::unique_ptr<std::uint32_t[]> previous; ///< rows of the same keys; none where all are first
    };
    struct KeyPage
    {
        std::unique_ptr<char[]> bytes;
        std::size_t used = 0;
    };

    const RowPage& PageOf(std::uint32_t row) const { return *rowPages_[row / ROWS_OF_PAGE]; }
    std::uint32_t Previous(std::uint32_t row) const
    {
        const RowPage& page = PageOf(row);
        return page.previous ? page.previous[row % ROWS_OF_PAGE] : NO_ROW;
    }
    static void SetPrevious(RowPage& page, std::size_t place, std::uint32_t previous);
    char* Entry(Position key) const;
    std::size_t SizeAt(Position key, std::size_t place) const;
    std::size_t KeyStart() const { return hasAlleles_ ? 10 : 6; }
    Alleles FirstAlleles(Position key) const;
    std::uint32_t LastRow(Position key) const;
    std::size_t EntrySize(Position key) const;
    Position Append(std::string_view key, const Alleles& alleles);
    Position Lookup(std::string_view key, const Alleles& alleles);
    void Enter(Position key, std::uint64_t hash);
    void GrowTable();

    bool hasAlleles_;
    std::vector<KeyPage> keyPages_;
    std::size_t keyCount_ = 0;
    std::vector<Position> table_;     ///< positions of keys
    std::vector<std::uint8_t> tags_;  ///< a part of the hash beside each position, 0 for none
    Position expected_ = NO_POSITION; ///< key behind the last one found: files often have one order
    std::vector<std::unique_ptr<RowPage>> rowPages_;
    std::uint32_t rowCount_ = 0;
    std::uint32_t firstOfFile_ = 0;
    std::vector<std::uint32_t> chain_;
    /// Of the keys whose first row has none.
    std::unordered_map<Position, std::pair<std::string, std::string>> laterAlleles_;
};

} // namespace host
