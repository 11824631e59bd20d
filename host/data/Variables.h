#pragma once

#include "host/data/ColumnName.h"
#include "host/data/ColumnRecords.h"
#include "host/data/DataTable.h"

#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/Record.h"

#include <map>
#include <string>
#include <vector>

namespace host {

/// The columns in use as variables of the library's records, each column once.
class Variables
{
public:
    explicit Variables(const DataTable& table) : table_(table) {}

    /// Position of the column of numbers among the variables; -1 when no column is named. Throws
    /// UnusableInput when the table has no such column, or a field of it is no number.
    int PositionOf(const ColumnName& column);

    /// Position of the column as a variable whose values are the levels given by `codes`, one a record.
    int AddCoded(const std::string& column, std::vector<double> codes);

    /// Position of a variable whose values are not those of a column, one a record.
    int AddComputed(const std::string& name, std::vector<double> values);

    const KXVarList& List() const { return list_; }

    /// All records at once.
    std::vector<Record> Records() const;
    /// The records one by one. Takes the values, so that it is the last call.
    ColumnRecords TakeRecords();

private:
    int Append(int position, std::vector<double> values);

    const DataTable& table_;
    std::vector<std::vector<double>> values_; ///< by the variable's position, then by record
    std::map<std::string, int> columns_;      ///< positions of the columns of numbers
    KXVarList list_;
};

} // namespace host
