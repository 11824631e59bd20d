#pragma once

#include <string>
#include <vector>

namespace host {

/// How the values of a column are shown: those of numbers as they are, the codes of texts as the texts.
struct ValueLabels
{
    std::string column;
    std::vector<std::string> texts; ///< by code; empty for a column of numbers

    std::string LabelOf(double value) const;
};

} // namespace host
