#include "host/batch/KeyedRows.h"

#include "host/text/UnusableInput.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace host {

namespace {

// An entry of a key is its last row (4 bytes), the sizes of the key and, if there are any, its two alleles (2
// bytes each), their texts, and padding. Positions count units of 4 bytes; an entry is within a page.
constexpr std::size_t UNIT = 4;
constexpr std::size_t PAGE_SIZE = std::size_t{1} << 20;
constexpr std::size_t UNITS_OF_PAGE = PAGE_SIZE / UNIT;
constexpr std::size_t KEY_SIZE_AT = 4;
constexpr std::size_t EFFECT_SIZE_AT = 6;
constexpr std::size_t OTHER_SIZE_AT = 8;
constexpr std::size_t MOST_PAGES = (std::size_t{1} << 32) / UNITS_OF_PAGE - 1;

std::uint64_t HashOf(std::string_view key)
{
    return std::hash<std::string_view>()(key);
}

std::uint8_t TagOf(std::uint64_t hash)
{
    return static_cast<std::uint8_t>(hash | 1U);
}

/// The upper half of the hash as a fraction of the table, whose size need not be a power of two (Lemire
/// 2019).
std::size_t SlotOf(std::uint64_t hash, std::size_t tableSize)
{
    return static_cast<std::size_t>(((hash >> 32) * tableSize) >> 32);
}

std::size_t SlotAfter(std::size_t slot, std::size_t tableSize)
{
    return slot + 1 == tableSize ? 0 : slot + 1;
}

std::size_t InUnits(std::size_t size)
{
    return (size + UNIT - 1) / UNIT * UNIT;
}

char* PutSize(char* to, std::string_view text)
{
    const auto size = static_cast<std::uint16_t>(text.size());
    std::memcpy(to, &size, sizeof size);
    return to + sizeof size;
}

char* PutText(char* to, std::string_view text)
{
    return to + text.copy(to, text.size()); // of no memory where alleles are unusable
}

[[noreturn]] void RefuseMore(const char* what)
{
    throw UnusableInput(
        std::string("There are more ") + what +
        " than this program holds in memory; sort the files by their keys and use --sorted, or "
        "group the one file.");
}

} // namespace

KeyedRows::KeyedRows(bool hasAlleles) : hasAlleles_(hasAlleles)
{
    constexpr std::size_t FIRST_SIZE = 1 << 12;
    table_.assign(FIRST_SIZE, 0);
    tags_.assign(FIRST_SIZE, 0);
}

char* KeyedRows::Entry(Position key) const
{
    return keyPages_[key / UNITS_OF_PAGE].bytes.get() + key % UNITS_OF_PAGE * UNIT;
}

std::uint32_t KeyedRows::LastRow(Position key) const
{
    std::uint32_t row = 0;
    std::memcpy(&row, Entry(key), sizeof row);
    return row;
}

std::size_t KeyedRows::SizeAt(Position key, std::size_t place) const
{
    std::uint16_t size = 0;
    std::memcpy(&size, Entry(key) + place, sizeof size);
    return size;
}

std::string_view KeyedRows::Key(Position key) const
{
    return {Entry(key) + KeyStart(), SizeAt(key, KEY_SIZE_AT)};
}

Alleles KeyedRows::FirstAlleles(Position key) const
{
    const char* const effect = Entry(key) + KeyStart() + SizeAt(key, KEY_SIZE_AT);
    const std::size_t effectSize = SizeAt(key, EFFECT_SIZE_AT);
    return {{effect, effectSize}, {effect + effectSize, SizeAt(key, OTHER_SIZE_AT)}};
}

std::size_t KeyedRows::EntrySize(Position key) const
{
    std::size_t size = KeyStart() + SizeAt(key, KEY_SIZE_AT);
    if (hasAlleles_)
        size += SizeAt(key, EFFECT_SIZE_AT) + SizeAt(key, OTHER_SIZE_AT);
    return InUnits(size);
}

KeyedRows::Position KeyedRows::After(Position key) const
{
    const std::size_t page = key / UNITS_OF_PAGE;
    const std::size_t next = key % UNITS_OF_PAGE * UNIT + EntrySize(key);
    if (next < keyPages_[page].used)
        return static_cast<Position>(page * UNITS_OF_PAGE + next / UNIT);
    return page + 1 < keyPages_.size() ? static_cast<Position>((page + 1) * UNITS_OF_PAGE) : NO_POSITION;
}

KeyedRows::Position KeyedRows::Append(std::string_view key, const Alleles& alleles)
{
    const std::size_t size = InUnits(KeyStart() + key.size() + alleles.effect.size() + alleles.other.size());
    if (keyPages_.empty() || keyPages_.back().used + size > PAGE_SIZE) {
        if (keyPages_.size() == MOST_PAGES)
            RefuseMore("keys");
        keyPages_.push_back({std::make_unique_for_overwrite<char[]>(PAGE_SIZE)});
    }
    KeyPage& page = keyPages_.back();
    char* const entry = page.bytes.get() + page.used;
    std::memcpy(entry, &NO_ROW, sizeof NO_ROW);
    char* to = PutSize(entry + KEY_SIZE_AT, key);
    if (hasAlleles_)
        to = PutSize(PutSize(to, alleles.effect), alleles.other);
    to = PutText(to, key);
    if (hasAlleles_)
        PutText(PutText(to, alleles.effect), alleles.other);
    const std::size_t position = (keyPages_.size() - 1) * UNITS_OF_PAGE + page.used / UNIT;
    page.used += size;
    ++keyCount_;
    return static_cast<Position>(position);
}

AlleleMatch KeyedRows::MatchFirst(Position key, const Alleles& alleles)
{
    const Alleles first = FirstAlleles(key);
    if (!first.effect.empty())
        return MatchAlleles(first, alleles);
    const auto [later, isNew] =
        laterAlleles_.try_emplace(key, std::string(alleles.effect), std::string(alleles.other));
    return MatchAlleles({later->second.first, later->second.second}, alleles);
}

void KeyedRows::Enter(Position key, std::uint64_t hash)
{
    std::size_t slot = SlotOf(hash, table_.size());
    while (tags_[slot] != 0)
        slot = SlotAfter(slot, table_.size());
    table_[slot] = key;
    tags_[slot] = TagOf(hash);
}

/// The keys are read once more, so that the old table need not be kept for it.
void KeyedRows::GrowTable()
{
    const std::size_t size = table_.size() + table_.size() / 4;
    table_ = {};
    tags_ = {};
    table_.assign(size, 0);
    tags_.assign(size, 0);
    for (Position key = First(); key != NO_POSITION; key = After(key))
        Enter(key, HashOf(Key(key)));
}

KeyedRows::Position KeyedRows::Lookup(std::string_view key, const Alleles& alleles)
{
    const std::uint64_t hash = HashOf(key);
    const std::uint8_t tag = TagOf(hash);
    const std::size_t size = table_.size();
    for (std::size_t slot = SlotOf(hash, size); tags_[slot] != 0; slot = SlotAfter(slot, size))
        if (tags_[slot] == tag && Key(table_[slot]) == key)
            return table_[slot];
    const Position position = Append(key, alleles);
    Enter(position, hash);
    if (keyCount_ * 5 > table_.size() * 4)
        GrowTable();
    return position;
}

KeyedRows::Position KeyedRows::Find(std::string_view key, const Alleles& alleles)
{
    const bool isExpected = expected_ != NO_POSITION && Key(expected_) == key;
    const Position position = isExpected ? expected_ : Lookup(key, alleles);
    expected_ = After(position);
    return position;
}

void KeyedRows::SetPrevious(RowPage& page, std::size_t place, std::uint32_t previous)
{
    if (!page.previous && previous == NO_ROW)
        return;
    if (!page.previous) {
        page.previous = std::make_unique_for_overwrite<std::uint32_t[]>(ROWS_OF_PAGE);
        std::fill_n(page.previous.get(), ROWS_OF_PAGE, NO_ROW);
    }
    page.previous[place] = previous;
}

void KeyedRows::Add(Position key, double effectSize, double variance)
{
    if (rowCount_ == NO_ROW)
        RefuseMore("rows");
    const std::size_t place = rowCount_ % ROWS_OF_PAGE;
    if (place == 0)
        rowPages_.push_back(std::make_unique_for_overwrite<RowPage>());
    RowPage& page = *rowPages_.back();
    page.effectSizes[place] = effectSize;
    page.variances[place] = variance;
    SetPrevious(page, place, LastRow(key));
    std::memcpy(Entry(key), &rowCount_, sizeof rowCount_);
    ++rowCount_;
}

bool KeyedRows::HasRowInFile(Position key) const
{
    const std::uint32_t row = LastRow(key);
    return row != NO_ROW && row >= firstOfFile_;
}

} // namespace host
