#include "host/cli/NamedColumns.h"

#include "host/cli/RawOutcomes.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace host {

namespace {

/// An option that names a column of the data, and the column.
struct NamedColumn
{
    std::string option;
    std::string column;
};

std::vector<NamedColumn> NamedColumnsOf(Options options)
{
    std::vector<NamedColumn> columns;
    for (const OptionDefinition& option : ColumnsOf(options))
        if (const auto value = option.value(); option.argument == "COLUMN" && value.is_string())
            columns.push_back({option.name, value.get<std::string>()});
    return columns;
}

/// The groups of a study may have these in common.
bool MayShareColumn(std::string_view one, std::string_view other)
{
    constexpr std::string_view TREATMENT = "treatment-";
    constexpr std::string_view CONTROL = "control-";
    constexpr std::string_view COMMON[] = {"n", "time", "sd", "variance"};
    if (!one.starts_with(TREATMENT) || !other.starts_with(CONTROL))
        return false;
    const std::string_view quantity = one.substr(TREATMENT.size());
    return quantity == other.substr(CONTROL.size()) &&
           std::find(std::begin(COMMON), std::end(COMMON), quantity) != std::end(COMMON);
}

} // namespace

std::vector<std::string> NumberColumnsOf(const Options& options)
{
    std::vector<std::string> names;
    for (const NamedColumn& one : NamedColumnsOf(options))
        names.push_back(one.column);
    for (const std::vector<std::string>* const more :
         {&options.regression.covariates, &options.bubbles, &options.contrasts})
        names.insert(names.end(), more->begin(), more->end());
    return names;
}

void RefuseSharedColumns(const Options& options)
{
    const std::vector<NamedColumn> columns = NamedColumnsOf(options);
    for (auto right = columns.begin(); right != columns.end(); ++right)
        for (auto left = columns.begin(); left != right; ++left)
            if (left->column == right->column && !MayShareColumn(left->option, right->option))
                throw UnusableInput(fmt::format("Column '{}' is given to --{} and again to --{}.",
                                                left->column, left->option, right->option));
}

} // namespace host
