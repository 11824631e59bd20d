#pragma once

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

using Row = std::vector<double>;
using Rows = std::vector<Row>;

/// One field of every row.
inline Row ColumnOf(const Rows& rows, std::size_t position)
{
    Row column;
    for (const Row& row : rows)
        column.push_back(row[position]);
    return column;
}

/// The fields of a line of comma-separated values; quotes may enclose one.
inline std::vector<std::string> SplitLine(const std::string& line)
{
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (const char c : line) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted)
            fields.emplace_back();
        else
            fields.back() += c;
    }
    return fields;
}

/// tests/data/<name>.csv, one row a study; empty fields and text are missing.
struct DataSet
{
    explicit DataSet(const std::string& name)
    {
        std::ifstream file(TESTS_DIR "/data/" + name + ".csv");
        std::string line;
        if (!std::getline(file, line))
            throw std::runtime_error("no data set " + name);
        columns = SplitLine(line);
        while (std::getline(file, line)) {
            rows.emplace_back();
            for (const std::string& field : SplitLine(line)) {
                char* end = nullptr;
                const double value = std::strtod(field.c_str(), &end);
                rows.back().push_back(field.empty() || *end != '\0' ? KXMV::Missing() : value);
            }
        }
    }

    int IndexOf(const std::string& column) const
    {
        const auto found = std::find(columns.begin(), columns.end(), column);
        if (found == columns.end())
            throw std::runtime_error("no column " + column);
        return static_cast<int>(found - columns.begin());
    }

    /// The rows with these columns alone.
    Rows Columns(const std::vector<std::string>& names) const
    {
        Rows selected(rows.size());
        for (const std::string& name : names)
            for (std::size_t i = 0; i < rows.size(); ++i)
                selected[i].push_back(rows[i][static_cast<std::size_t>(IndexOf(name))]);
        return selected;
    }

    std::vector<std::string> columns;
    Rows rows;
};

/// Settings for 2x2 tables: treatment events and non-events, control events and non-events, from a column on.
inline MA_NAMESPACE::MAModelSettings TableSettings(int first = 0)
{
    MA_NAMESPACE::MAModelSettings settings;
    settings.SetTreatmentSuccessIndex(first);
    settings.SetTreatmentFailureIndex(first + 1);
    settings.SetControlSuccessIndex(first + 2);
    settings.SetControlFailureIndex(first + 3);
    return settings;
}

/// Settings for group summaries: size, mean, standard deviation of treatment and control, from a column on.
inline MA_NAMESPACE::MAModelSettings MeansSettings(int first = 0)
{
    MA_NAMESPACE::MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_CONTINUOUS);
    settings.SetTreatmentNIndex(first);
    settings.SetTreatmentMeanIndex(first + 1);
    settings.SetTreatmentStdErrorIndex(first + 2);
    settings.SetControlNIndex(first + 3);
    settings.SetControlMeanIndex(first + 4);
    settings.SetControlStdErrorIndex(first + 5);
    return settings;
}

/// Settings for ready-made effects: effect and variance, from a column on.
inline MA_NAMESPACE::MAModelSettings EffectSettings(int first = 0)
{
    MA_NAMESPACE::MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_CONTINUOUS);
    settings.SetInputESType(MAConst::INPUT_READY_MADE);
    settings.SetInputEffectSizeIndex(first);
    settings.SetInputVarianceIndex(first + 1);
    return settings;
}
