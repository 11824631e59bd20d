#include "host/report/RegressionSections.h"
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

void AddEstimates(StudyTable& table, const RegressionData& data, const std::string& name,
                  const Estimates& estimates)
{
    const double none = KXMV::Missing();
    const int decimals = data.numbers.digits.value_or(-1);
    const std::string interval = fmt::format("{} {} CI", name, data.level);
    table.numbers.push_back({name, Column(data, estimates.values, none), decimals});
    table.numbers.push_back({interval + " lower", Column(data, estimates.lower, none), decimals});
    table.numbers.push_back({interval + " upper", Column(data, estimates.upper, none), decimals});
}

void AddResidual(StudyTable& table, const RegressionData& data)
{
    const std::vector<double> none(data.output.GetEstimation().size(), KXMV::Missing());
    const int decimals = data.numbers.digits.value_or(-1);
    const int ofPercent = data.numbers.digits ? data.numbers.PercentDecimals(0) : -1;
    table.numbers.push_back({"Q", Column(data, none, data.output.GetResHomoChiSqure()), decimals});
    table.numbers.push_back({"df", Column(data, none, data.output.GetResHomoDf())});
    table.numbers.push_back({"p (Q)", Column(data, none, data.output.GetResHomoPValue())});
    table.numbers.push_back(
        {"I² (%)", Column(data, none, InPercent({data.output.GetIresSquare()}).front()), ofPercent});
    if (data.isRandom)
        table.numbers.push_back({"tau²", Column(data, none, data.output.GetTau()), decimals});
}

std::string ResidualText(const RegressionData& data)
{
    const std::string tau2 = data.isRandom ? ", tau² = " + data.numbers(data.output.GetTau()) : std::string();
    return fmt::format("Residual heterogeneity: Q = {}, df = {:g}, p {}, I² = {}{}",
                       data.numbers(data.output.GetResHomoChiSqure()), data.output.GetResHomoDf(),
                       EqualsText(data.output.GetResHomoPValue()),
                       PercentText(data.output.GetIresSquare(), data.numbers.PercentDecimals(1)), tau2);
}

} // namespace

StudyTable StudyTableOf(const RegressionData& data)
{
    const double none = KXMV::Missing();
    const Estimates estimates = {data.output.GetEstimation(), data.output.GetBetaConfInterValLower(),
                                 data.output.GetBetaConfInterValUpper()};
    const int decimals = data.numbers.digits.value_or(-1);
    StudyTable table;
    table.texts = {{"Parameter", data.ParameterNames()}};
    table.texts.front().cells.emplace_back("Residual heterogeneity");
    AddEstimates(table, data, "Coefficient", estimates);
    if (data.measure.isRatio)
        AddEstimates(
            table, data, "exp(Coefficient)",
            {Exponentials(estimates.values), Exponentials(estimates.lower), Exponentials(estimates.upper)});
    table.numbers.push_back({"SE", Column(data, data.output.GetBetaStandErr(), none), decimals});
    table.numbers.push_back({data.Statistic(), Column(data, data.output.GetBetaTest(), none), decimals});
    table.numbers.push_back({"p", Column(data, data.output.GetBetaTestPValue(), none)});
    AddResidual(table, data);
    table.reading = CoefficientsSection(data).front().table;
    for (ReportColumn& column : table.reading)
        column.cells.push_back(column.header == "Parameter" ? ResidualText(data) : "");
    return table;
}

} // namespace host
