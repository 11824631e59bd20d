#include "faults/Results.h"

#include "faults/Getters.h"

#include <algorithm>
#include <cmath>

using namespace MA_NAMESPACE;

namespace {

using Table = std::vector<std::vector<double>>;

Table TableOf(double value)
{
    return {{value}};
}

template <class Number>
Table TableOf(const std::vector<Number>& values)
{
    return {std::vector<double>(values.begin(), values.end())};
}

template <class Number>
Table TableOf(const std::vector<std::vector<Number>>& rows)
{
    Table table;
    for (const std::vector<Number>& row : rows)
        table.emplace_back(row.begin(), row.end());
    return table;
}

template <class Source>
Results Listed(const Source& source)
{
    Results results;
    VisitGetters(&source, [&](const char* name, auto getter) {
        results.push_back({name, TableOf((source.*getter)())});
    });
    return results;
}

template <class Model>
Results ListedWithWarnings(const Model& model)
{
    Results results = Listed(model);
    results.push_back({"GetWarnings", {{}}});
    for (const KXStatus& warning : model.GetWarnings())
        results.back().rows[0].push_back(warning.GetCode());
    return results;
}

bool IsSame(const std::vector<double>& left, const std::vector<double>& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); });
}

} // namespace

Results ResultsOf(const MABinModel& model)
{
    return ListedWithWarnings(model);
}

Results ResultsOf(const MAAnalysisResults& model)
{
    return ListedWithWarnings(model);
}

Results ResultsOf(const MARegOutputStats& output)
{
    return Listed(output);
}

std::string FirstDifference(const Results& left, const Results& right)
{
    for (std::size_t i = 0; i < left.size(); ++i) {
        const Table& a = left[i].rows;
        const Table& b = right[i].rows;
        if (!std::equal(a.begin(), a.end(), b.begin(), b.end(), IsSame))
            return left[i].name;
    }
    return {};
}
