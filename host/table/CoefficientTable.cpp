#include "host/report/RegressionSections.h"
#include "host/table/NumberColumns.h"
#include "host/table/StudyTable.h"

#include <fmt/format.h>

#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// A value of each coefficient, then one of the residual heterogeneity. Aliased coefficients are missing.
std::vector<double> Column(const RegressionData& data, std::vector<double> ofCoefficients, double ofResidual)
{
    const KXBitSet estimated = data.output.GetRedundancyInfo();
    for (std::size_t i = 0; i < ofCoefficients.size(); ++i)
        if (!estimated.Test(i))
            ofCoefficients[i] = KXMV::Missing();
    ofCoefficients.push_back(ofResidual);
    return ofCoefficients;
}

void AddCoefficients(StudyTable& table, const RegressionData& data, const std::string& name,
                     const Estimates& estimates)
{
    const double none = KXMV::Missing();
    AddEstimates(table, name, data.level,
                 {Column(data, estimates.values, none), Column(data, estimates.lower, none),
                  Column(data, estimates.upper, none)},
                 data.numbers);
}

Heterogeneity ResidualOf(const RegressionData& data)
{
    return {data.output.GetResHomoChiSqure(), data.output.GetResHomoDf(), data.output.GetResHomoPValue(),
            data.output.GetIresSquare(), data.isRandom ? data.output.GetTau() : KXMV::Missing()};
}

} // namespace

StudyTable StudyTableOf(const RegressionData& data)
{
    const double none = KXMV::Missing();
    const Estimates estimates = {data.output.GetEstimation(), data.output.GetBetaConfInterValLower(),
                                 data.output.GetBetaConfInterValUpper()};
    StudyTable table;
    table.texts = {{"Parameter", data.ParameterNames()}};
    table.texts.front().cells.emplace_back("Residual heterogeneity");
    AddCoefficients(table, data, "Coefficient", estimates);
    if (data.measure.isRatio)
        AddCoefficients(
            table, data, "exp(Coefficient)",
            {Exponentials(estimates.values), Exponentials(estimates.lower), Exponentials(estimates.upper)});
    table.numbers.push_back({"SE", Column(data, data.output.GetBetaStandErr(), none), data.numbers.digits});
    table.numbers.push_back(
        {data.Statistic(), Column(data, data.output.GetBetaTest(), none), data.numbers.digits});
    table.numbers.push_back({"p", Column(data, data.output.GetBetaTestPValue(), none)});
    std::vector<Heterogeneity> rows(data.output.GetEstimation().size(), {none, none, none, none, none});
    rows.push_back(ResidualOf(data));
    AddHeterogeneity(table, rows, data.isRandom, data.numbers);
    table.reading = CoefficientsSection(data).front().table;
    table.isSentence.resize(table.reading.front().cells.size());
    table.isSentence.push_back(true);
    const std::string residual =
        "Residual heterogeneity: " + HeterogeneityText(ResidualOf(data), data.numbers);
    for (ReportColumn& column : table.reading)
        column.cells.push_back(column.header == "Parameter" ? residual : std::string());
    return table;
}

} // namespace host
