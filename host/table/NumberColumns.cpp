#include "host/table/NumberColumns.h"

#include <fmt/format.h>

namespace host {

std::optional<int> PercentDigits(const NumberFormat& format)
{
    return format.digits ? std::optional(format.PercentDecimals(0)) : std::nullopt;
}

void AddEstimates(StudyTable& table, const std::string& name, const std::string& level,
                  const Estimates& cells, const NumberFormat& format)
{
    const std::string interval = fmt::format("{} {} CI", name, level);
    table.numbers.push_back({name, cells.values, format.digits});
    table.numbers.push_back({interval + " lower", cells.lower, format.digits});
    table.numbers.push_back({interval + " upper", cells.upper, format.digits});
}

void AddHeterogeneity(StudyTable& table, const std::vector<Heterogeneity>& rows, bool hasTau2,
                      const NumberFormat& format)
{
    const auto cells = [&](double Heterogeneity::*part) {
        std::vector<double> column;
        column.reserve(rows.size());
        for (const Heterogeneity& row : rows)
            column.push_back(row.*part);
        return column;
    };
    table.numbers.push_back({"Q", cells(&Heterogeneity::q), format.digits});
    table.numbers.push_back({"df", cells(&Heterogeneity::df)});
    table.numbers.push_back({"p (Q)", cells(&Heterogeneity::p)});
    table.numbers.push_back({"I² (%)", InPercent(cells(&Heterogeneity::i2)), PercentDigits(format)});
    if (hasTau2)
        table.numbers.push_back({"tau²", cells(&Heterogeneity::tau2), format.digits});
}

std::string HeterogeneityText(const Heterogeneity& heterogeneity, const NumberFormat& format)
{
    const double tau2 = heterogeneity.tau2;
    return fmt::format("Q = {}, df = {:g}, p {}, I² = {}{}", format(heterogeneity.q), heterogeneity.df,
                       EqualsText(heterogeneity.p), PercentText(heterogeneity.i2, format.PercentDecimals(1)),
                       HasValue(tau2) ? ", tau² = " + format(tau2) : std::string());
}

} // namespace host
