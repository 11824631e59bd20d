#include "host/report/RegressionReport.h"

#include "host/report/ReportParts.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <cstddef>
#include <string>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Texts = std::vector<std::string>;

/// The parts of a report need the same things of an analysis.
class RegressionReportMaker
{
public:
    RegressionReportMaker(const Options& options, const RegressionRequest& request,
                          const RegressionAnalysis& analysis)
        : options_(options),
          request_(request),
          analysis_(analysis),
          output_(*analysis.output),
          isRandom_(options.settings.GetModelType() == MAConst::MODEL_RANDOM),
          level_(WordingOfLevel(options.settings)),
          decimals_(DecimalsFor(output_.GetBetaStandErr()))
    {}

    std::string Title() const
    {
        return fmt::format("Meta-regression: {}, {} level", WordingOfModel(options_.settings), level_);
    }

    ReportSection Studies() const;
    ReportSection Coefficients() const;
    ReportSection ModelTest() const;
    ReportSection Heterogeneity() const;
    ReportSection BetweenStudyVariance() const;
    ReportSection Dispersion() const;

private:
    bool IsEstimated(std::size_t parameter) const { return output_.GetRedundancyInfo().Test(parameter); }
    bool UsesStudentT() const
    {
        return request_.settings.IsKnapHartAdjust() ||
               request_.settings.GetTestDistType() == MAConst::TEST_STUDENT_T;
    }
    std::string IntervalHeader(const char* estimate) const
    {
        return fmt::format("{} [{} CI]", estimate, level_);
    }
    ReportColumn EffectColumn(const char* header, const std::vector<double>& values) const
    {
        return {header, TextsOf(values, [this](double value) { return FixedText(value, decimals_); })};
    }

    ReportColumn VarianceColumn(const char* header, const Estimates& estimates) const
    {
        if (!HasAnyValue(estimates.lower))
            return {header, TextsOf(estimates.values, NumberText)};
        return {IntervalHeader(header), EstimateTexts(estimates)};
    }

    Texts ParameterNames() const;
    ReportColumn EstimateColumn() const;

    const Options& options_;
    const RegressionRequest& request_;
    const RegressionAnalysis& analysis_;
    const MARegOutputStats& output_;
    bool isRandom_;
    std::string level_;
    int decimals_; ///< of effects and standard errors
};

/// A table's only row has one value in each column.
ReportColumn Cell(const char* header, const std::string& text)
{
    return {header, {text}};
}

std::string PercentText(double fraction)
{
    return FixedText(InPercent({fraction}).front(), 2);
}

ReportSection RegressionReportMaker::Studies() const
{
    Texts labels;
    std::vector<double> effects;
    Estimates fitted;
    std::vector<double> residuals;
    std::vector<double> stdErrors;
    std::vector<double> leverages;
    for (const int record : analysis_.records.used) {
        const auto row = static_cast<std::size_t>(record);
        const Score& score = *analysis_.scores[row];
        labels.push_back(LabelText(request_.studyLabels[row]));
        effects.push_back(request_.records[row].Get(request_.settings.GetDependent()));
        fitted.values.push_back(score.fit);
        fitted.lower.push_back(score.lower);
        fitted.upper.push_back(score.upper);
        residuals.push_back(score.residual);
        stdErrors.push_back(score.residualStdError);
        leverages.push_back(score.leverage);
    }
    return {"Studies",
            {{"Study", labels, true},
             EffectColumn("Effect", effects),
             {IntervalHeader("Fitted"), EstimateTexts(fitted, decimals_)},
             EffectColumn("Residual", residuals),
             EffectColumn("SE", stdErrors),
             {"Leverage", TextsOf(leverages, NumberText)}},
            {}};
}

Texts RegressionReportMaker::ParameterNames() const
{
    Texts names;
    for (const KXRegrParameter& parameter : output_.GetParameters())
        names.push_back(LabelText(ParameterName(parameter, request_)));
    return names;
}

ReportColumn RegressionReportMaker::EstimateColumn() const
{
    ReportColumn column = {IntervalHeader("Coefficient"),
                           EstimateTexts({output_.GetEstimation(), output_.GetBetaConfInterValLower(),
                                          output_.GetBetaConfInterValUpper()},
                                         decimals_)};
    for (std::size_t i = 0; i < column.cells.size(); ++i)
        if (!IsEstimated(i))
            column.cells[i] = std::string(NO_VALUE);
    return column;
}

ReportSection RegressionReportMaker::Coefficients() const
{
    ReportSection section = {"Coefficients",
                             {{"Parameter", ParameterNames(), true},
                              EstimateColumn(),
                              EffectColumn("SE", output_.GetBetaStandErr()),
                              {UsesStudentT() ? "t" : "z", TextsOf(output_.GetBetaTest(), NumberText)},
                              {"p", TextsOf(output_.GetBetaTestPValue(), PValueText)}},
                             {}};
    const KXBitSet estimated = output_.GetRedundancyInfo();
    if (estimated.Count() < estimated.Size())
        section.sentences.push_back(
            "-: aliased: the parameters before it determine it, to within the computational tolerance, "
            "and it counts as 0 in the fit.");
    return section;
}

ReportSection RegressionReportMaker::ModelTest() const
{
    const bool isF = isRandom_ && request_.settings.IsKnapHartAdjust();
    const double statistic = isF ? output_.GetFTestVal() : output_.GetWaldChiSquareTest();
    if (!HasAnyValue({statistic}))
        return {};
    if (isF)
        return {"Model test",
                {Cell("F", NumberText(statistic)), Cell("df", std::to_string(output_.GetFDf1())),
                 Cell("residual df", std::to_string(output_.GetFDf2())),
                 Cell("p", PValueText(output_.GetFPValue()))},
                {}};
    return {"Model test",
            {Cell("Wald chi²", NumberText(statistic)), Cell("df", std::to_string(output_.GetWaldDf())),
             Cell("p", PValueText(output_.GetWaldPValue()))},
            {}};
}

ReportSection RegressionReportMaker::Heterogeneity() const
{
    ReportSection section = {"Residual heterogeneity",
                             {Cell("Q", NumberText(output_.GetResHomoChiSqure())),
                              Cell("df", FixedText(output_.GetResHomoDf(), 0)),
                              Cell("p", PValueText(output_.GetResHomoPValue()))},
                             {}};
    section.table.push_back(Cell("I² %", PercentText(output_.GetIresSquare())));
    section.table.push_back(Cell("H²", NumberText(output_.GetHresSquare())));
    if (isRandom_)
        section.table.push_back(Cell("R² %", PercentText(output_.GetRSquare())));
    return section;
}

ReportSection RegressionReportMaker::BetweenStudyVariance() const
{
    if (!isRandom_)
        return {};
    const Estimates tau2 = {{output_.GetTau()}, {output_.GetTau2CILower()}, {output_.GetTau2CIUpper()}};
    const Estimates tau = {SquareRoots(tau2.values), SquareRoots(tau2.lower), SquareRoots(tau2.upper)};
    ReportSection section = {
        "Residual variance between studies", {VarianceColumn("tau²", tau2), VarianceColumn("tau", tau)}, {}};
    if (HasAnyValue({output_.GetLogLikelihood()})) {
        section.table.push_back(Cell("log-likelihood", NumberText(output_.GetLogLikelihood())));
        section.table.push_back(Cell("AIC", NumberText(output_.GetAIC())));
    }
    const MAConst::TAU2INTERVAL method = request_.settings.GetTau2Interval();
    if (HasAnyValue(tau2.upper))
        section.sentences.push_back(
            fmt::format("The intervals are {} intervals.", WordingOfTau2Interval(method)));
    if (method == MAConst::TAU2_INTERVAL_Q_PROFILE && tau2.upper.front() == 0)
        section.sentences.emplace_back(EMPTY_Q_PROFILE);
    if (const std::string doubt = WordingOfDoubtfulEnd(output_.GetTau2Convergence()); !doubt.empty())
        section.sentences.push_back(doubt + '.');
    return section;
}

ReportSection RegressionReportMaker::Dispersion() const
{
    if (!options_.regression.dispersion)
        return {};
    return {"Multiplicative dispersion",
            {},
            {isRandom_ ? "--dispersion is for the fixed-effect model, and left out here."
                       : fmt::format("{}, by which the variances of the coefficients are multiplied.",
                                     NumberText(output_.GetMultiDisper()))}};
}

} // namespace

Report MakeRegressionReport(const Options& options, const RegressionRequest& request,
                            const RegressionAnalysis& analysis)
{
    const RegressionReportMaker maker(options, request, analysis);
    std::vector<ReportSection> sections = {RecordsSection(options.dataPath, analysis.records),
                                           PresetSection(options),
                                           maker.Studies(),
                                           maker.Coefficients(),
                                           maker.ModelTest(),
                                           maker.Heterogeneity(),
                                           maker.BetweenStudyVariance(),
                                           maker.Dispersion(),
                                           WarningsSection(WarningsOf(analysis))};
    return {maker.Title(), WithoutEmpty(std::move(sections))};
}

} // namespace host
