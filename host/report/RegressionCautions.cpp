#include "host/report/CautionWording.h"
#include "host/report/Cautions.h"
#include "host/text/Wording.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::size_t StudyCount(const RegressionData& data)
{
    return data.analysis.records.used.size();
}

/// The coefficients of predictors that are estimated: all but the intercept.
std::size_t PredictorCount(const RegressionData& data)
{
    const bool hasIntercept = !data.options.regression.noIntercept;
    const std::size_t estimated = data.output.GetRedundancyInfo().Count();
    return estimated - (hasIntercept ? std::min<std::size_t>(estimated, 1) : 0);
}

bool IsSaturated(const RegressionData& data)
{
    return !(data.output.GetResHomoDf() > 0);
}

std::string PercentOf(const RegressionData& data, double fraction)
{
    return PercentText(fraction, data.numbers.PercentDecimals(1));
}

std::string UnfinishedScoring(const RegressionData& data)
{
    const std::string doubt = data.isRandom ? WordingOfDoubtfulEnd(data.output.GetTau2Convergence()) : "";
    if (doubt.empty())
        return {};
    return fmt::format("tau² {}: {}: it is not the estimate, and all that rests on it is provisional; "
                       "--tau2-search global finds the estimate",
                       data.numbers(data.output.GetTau()), doubt);
}

std::string FewStudiesOfPredictor(const RegressionData& data)
{
    const std::size_t predictors = PredictorCount(data);
    if (StudyCount(data) >= FEW_STUDIES * predictors || IsSaturated(data))
        return {};
    return fmt::format(
        "{} for {} coefficient{} of predictors: with fewer than 10 studies for each, relations "
        "are found or missed by chance",
        CountOfStudies(StudyCount(data)), predictors, predictors == 1 ? "" : "s");
}

std::string NothingLeft(const RegressionData& data)
{
    if (!IsSaturated(data))
        return {};
    return fmt::format(
        "{} and {} coefficients: the fit passes through the studies, and nothing shows how far "
        "it is off",
        CountOfStudies(StudyCount(data)), data.output.GetRedundancyInfo().Count());
}

std::string FixedEffectsOfDifferentStudies(const RegressionData& data)
{
    const double i2 = data.output.GetIresSquare();
    const bool isOff = i2 >= 0.5 && data.output.GetResHomoPValue() < 0.05;
    if (data.isRandom || data.options.regression.dispersion || !isOff)
        return {};
    return fmt::format(
        "Residual Q {} with {:g} df, p {}, I² {}: the studies differ by more than predictors and "
        "sampling error explain, so that the standard errors of a fixed model are too small",
        data.numbers(data.output.GetResHomoChiSqure()), data.output.GetResHomoDf(),
        EqualsText(data.output.GetResHomoPValue()), PercentOf(data, i2));
}

bool HasNoVarianceLeft(const RegressionData& data)
{
    return data.isRandom && data.output.GetTau() == 0 && !IsSaturated(data);
}

std::string NoVarianceLeft(const RegressionData& data)
{
    if (!HasNoVarianceLeft(data))
        return {};
    const double upper = data.output.GetTau2CIUpper();
    return fmt::format(
        "Residual tau² 0{} from {}: an estimate of 0 is no proof that the predictors explain all "
        "heterogeneity",
        upper > 0 ? fmt::format(" (interval up to {})", data.numbers(upper)) : std::string(),
        CountOfStudies(StudyCount(data)));
}

/// Of tau² 0 the sentence on tau² says how little that shows.
std::string ResidualI2OfFew(const RegressionData& data)
{
    const double i2 = data.output.GetIresSquare();
    if (!HasValue(i2) || IsSaturated(data) || HasNoVarianceLeft(data) || StudyCount(data) >= FEW_STUDIES)
        return {};
    return fmt::format("Residual I² {} from {}, without an interval: with fewer than 10 studies I² is biased "
                       "and varies widely by chance",
                       PercentOf(data, i2), CountOfStudies(StudyCount(data)));
}

constexpr CautionRule<RegressionData> RULES[] = {
    {UnfinishedScoring, ""},
    {NothingLeft, "", MAStatusCode::NO_RESIDUAL_DF},
    {FewStudiesOfPredictor, "Cochrane Handbook, chapter 10"},
    {FixedEffectsOfDifferentStudies, "Higgins and Thompson 2004"},
    {NoVarianceLeft, "Chung, Rabe-Hesketh and Choi 2013"},
    {ResidualI2OfFew, "von Hippel 2015"},
};

} // namespace

Cautions CautionsOf(const RegressionData& data)
{
    return CautionsBy(RULES, data);
}

} // namespace host
