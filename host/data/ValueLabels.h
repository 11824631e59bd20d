#pragma once

#include <string>
#include <vector>

namespace host {

/// The texts of a column's values: numbers as they are, the codes of texts as the texts.
struct ValueLabels
{
    std::string column;
    std::vector<std::string> texts; ///< by code; empty for a column of numbers

    std::string LabelOf(double value) const;
};

} // namespace host
