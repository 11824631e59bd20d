#include "host/batch/ResultTable.h"

#include <charconv>
#include <cmath>
#include <cstring>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Room for the shortest digits of any double, or for an int, with the tab before it.
constexpr std::size_t LONGEST_NUMBER = 32;

char* Put(char* to, double value)
{
    if (std::isnan(value)) {
        *to++ = 'N';
        *to++ = 'A';
        return to;
    }
    return std::to_chars(to, to + LONGEST_NUMBER, value + 0.0).ptr; // 0 has no sign
}

char* Put(char* to, int value)
{
    return std::to_chars(to, to + LONGEST_NUMBER, value).ptr;
}

} // namespace

ResultTable::ResultTable(const std::vector<BatchColumn>& columns)
    : columns_(columns), numbers_(columns.size()), counts_(columns.size())
{}

KXStatus ResultTable::Pool(const SetChunk& sets, const MABulkModel& model)
{
    MABulkResults results;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (const auto* const number = std::get_if<double * MABulkResults::*>(&columns_[i].values)) {
            numbers_[i].resize(sets.SetCount());
            results.** number = numbers_[i].data();
        } else {
            counts_[i].resize(sets.SetCount());
            results.*std::get<int * MABulkResults::*>(columns_[i].values) = counts_[i].data();
        }
    }
    const MARaggedSets ragged = {sets.effectSizes.data(), sets.variances.data(), sets.offsets.data(),
                                 sets.SetCount()};
    return PoolSets(ragged, model, results);
}

void ResultTable::Write(const SetChunk& sets, std::string& text) const
{
    text.resize(sets.keys.size() + sets.SetCount() * (columns_.size() * LONGEST_NUMBER + 1));
    char* to = text.data();
    for (std::size_t set = 0; set < sets.SetCount(); ++set) {
        const std::string_view key = sets.Key(set);
        std::memcpy(to, key.data(), key.size());
        to += key.size();
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            *to++ = '\t';
            to = numbers_[i].empty() ? Put(to, counts_[i][set]) : Put(to, numbers_[i][set]);
        }
        *to++ = '\n';
    }
    text.resize(static_cast<std::size_t>(to - text.data()));
}

std::string HeaderOf(const std::string& key, const std::vector<BatchColumn>& columns)
{
    std::string header = key;
    for (const BatchColumn& column : columns)
        header.append("\t").append(column.name);
    return header + "\n";
}

} // namespace host
