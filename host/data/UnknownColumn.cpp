#include "host/data/UnknownColumn.h"

#include "host/text/NearestName.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace host {

void FailForUnknownColumn(const std::string& fileName, std::string_view column,
                          const std::vector<std::string>& names)
{
    throw UnusableInput(fmt::format(
        "{} has no column '{}'.{} Its columns are: {}.{}", fileName, column, DidYouMean(column, names),
        fmt::join(names, ", "),
        names.size() == 1 ? " Its header line is read as one column: --separator says what separates them."
                          : ""));
}

} // namespace host
