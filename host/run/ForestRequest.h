#pragma once

#include "host/cli/Options.h"
#include "host/data/DataTable.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// What a group of each record reports. A list is empty where the data do not have it.
struct GroupFigures
{
    std::vector<double> events;
    std::vector<double> sizes;
    std::vector<double> times;
    std::vector<double> means;
    std::vector<double> stdDevs;
};

/// A column that is asked for beside the effects.
struct WantedColumn
{
    enum class Kind
    {
        TEXTS,  ///< of the file
        EVENTS, ///< with the size of the group, or its time
        SIZE,
        MEAN_AND_SD
    };

    Kind kind;
    std::string header = {};             ///< of texts
    std::vector<std::string> texts = {}; ///< one a record
    bool isNumeric = false;
};

/// What a forest plot shows beside the results. Empty when no picture is asked for.
struct ForestRequest
{
    PictureOptions options = {};
    std::optional<int> digits = {};
    std::vector<GroupFigures> groups = {}; ///< treatment and control, or the only one
    std::vector<WantedColumn> columns = {};
    std::vector<std::size_t> ranks = {}; ///< of the records, by a column of the file; else empty
};

/// Reads the columns that are asked for. Throws UnusableInput for a column that the file lacks.
ForestRequest MakeForestRequest(const Options& options, const DataTable& table);

} // namespace host
