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
Table TableOf(const std::vector<Number>& values) requires std::is_arithmetic_v<Number>
{
    return {std::vector<double>(values.begin(), values.end())};
}

template <class Number>
Table TableOf(const std::vector<std::vector<Number>>& rows) requires std::is_arithmetic_v<Number>
{
    Table table;
    for (const std::vector<Number>& row : rows)
        table.emplace_back(row.begin(), row.end());
    return table;
}

Table TableOf(const std::vector<KXStatus>& warnings)
{
    Table table(1);
    for (const KXStatus& warning : warnings)
        table[0].push_back(warning.GetCode());
    return table;
}

bool IsSame(const std::vector<double>& left, const std::vector<double>& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); });
}

} // namespace

template <class Source>
Results ResultsOf(const Source& source)
{
    Results results;
    VisitGetters(&source, [&](const char* name, auto getter) {
        if constexpr (requires { TableOf((source.*getter)()); })
            results.push_back({name, TableOf((source.*getter)())});
    });
    return results;
}

template Results ResultsOf(const MABinModel&);
template Results ResultsOf(const MAContModel&);
template Results ResultsOf(const MAOutcomeModel&);
template Results ResultsOf(const MARegOutputStats&);

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
