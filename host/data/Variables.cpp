#include "host/data/Variables.h"

#include <cstddef>
#include <new>
#include <utility>

namespace host {

namespace {

std::vector<double> NumbersOf(const DataTable& table, std::size_t column)
{
    std::vector<double> numbers;
    numbers.reserve(table.RowCount());
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        numbers.push_back(table.Number(row, column));
    return numbers;
}

} // namespace

int Variables::PositionOf(const ColumnName& column)
{
    if (!column)
        return -1;
    if (const auto known = columns_.find(*column); known != columns_.end())
        return known->second;
    const int position = AddComputed(*column, NumbersOf(table_, table_.PositionOf(*column)));
    columns_[*column] = position;
    return position;
}

int Variables::AddComputed(const std::string& name, std::vector<double> values)
{
    return Append(list_.AddContVar(name, name), std::move(values));
}

int Variables::AddCoded(const std::string& column, std::vector<double> codes)
{
    return Append(list_.AddCatVar(column, column), std::move(codes));
}

int Variables::Append(int position, std::vector<double> values)
{
    if (position < 0)
        throw std::bad_alloc();
    values_.push_back(std::move(values));
    return position;
}

ColumnRecords Variables::TakeRecords()
{
    return {std::move(values_), table_.RowCount()};
}

std::vector<Record> Variables::Records() const
{
    std::vector<Record> records;
    records.reserve(table_.RowCount());
    for (std::size_t row = 0; row < table_.RowCount(); ++row) {
        std::vector<double> values;
        values.reserve(values_.size());
        for (const std::vector<double>& variable : values_)
            values.push_back(variable[row]);
        records.emplace_back(std::move(values));
    }
    return records;
}

} // namespace host
