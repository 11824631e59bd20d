#include "host/text/Wording.h"

#include "host/text/Measures.h"
#include "host/text/Tau2Estimators.h"

#include <fmt/format.h>

#include <cctype>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::string WordingOf(MAConst::KNAPPHADJTYPE adjustment)
{
    switch (adjustment) {
    case MAConst::KNAPP_HARTUNG_NONE:
        return "";
    case MAConst::KNAPP_HARTUNG_ADJUSTED:
        return ", Knapp-Hartung adjustment";
    case MAConst::KNAPP_HARTUNG_TRUNCATED:
        return ", truncated Knapp-Hartung adjustment";
    case MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS:
        return ", Knapp-Hartung adjustment if heterogeneous";
    }
    return {};
}

std::string FixedMethod(const MAModelSettings& settings)
{
    if (!PoolsTables(settings))
        return "inverse variance";
    return IsMeasured(settings) ? "Mantel-Haenszel"
                                : RowOf(BINARY_MEASURES, settings.GetBinaryEstType()).tablePooling;
}

} // namespace

bool IsRandom(const MAModelSettings& settings)
{
    return settings.GetModelType() == MAConst::MODEL_RANDOM;
}

std::string WordingOfModel(const MAModelSettings& settings)
{
    if (!IsRandom(settings))
        return fmt::format("fixed-effect model ({})", FixedMethod(settings));
    return fmt::format("random-effects model ({}){}",
                       RowOf(TAU2_ESTIMATORS, settings.GetEstTauType()).description,
                       WordingOf(settings.GetKnapHartAdjustType()));
}

bool PoolsTables(const MAModelSettings& settings)
{
    if (IsMeasured(settings))
        return PoolsCounts(settings.GetOutcomeMeasure(), settings.GetModelType(), settings.GetWeightType(),
                           settings.GetInputESType());
    return IsBinary(settings) && settings.GetInputESType() == MAConst::INPUT_RAW && !IsRandom(settings) &&
           settings.GetWeightType() == MAConst::WEIGHT_BINARY_FIXED;
}

std::string WordingOfStatistic(const MAModelSettings& settings)
{
    if (!IsRandom(settings))
        return "z";
    switch (settings.GetKnapHartAdjustType()) {
    case MAConst::KNAPP_HARTUNG_NONE:
        return "z";
    case MAConst::KNAPP_HARTUNG_ADJUSTED:
    case MAConst::KNAPP_HARTUNG_TRUNCATED:
        return "t";
    case MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS:
        return "t or z";
    }
    return {};
}

/// Trim-and-fill always pools by inverse variance.
std::string WordingOfTrimmingModel(const MAModelSettings& settings)
{
    MAModelSettings trimming = settings;
    trimming.SetModelType(settings.GetTFModelType());
    trimming.SetEstTauType(settings.GetTFEstTauType());
    trimming.SetKnapHartAdjustType(settings.GetTFKnapHartAdjustType());
    trimming.SetWeightType(MAConst::WEIGHT_INVERSE_VARIANCE);
    return WordingOfModel(trimming);
}

std::string WordingOfNullHypothesis(const MAModelSettings& settings, const Measure& measure)
{
    const double null = settings.GetNullHypothesis();
    if (null == 0)
        return measure.hasNoEffect
                   ? ""
                   : fmt::format("The test is against {} = 0, which need not be a value of interest.",
                                 measure.AnalysisSymbol());
    const bool isNatural = IsMeasured(settings) || PoolsTables(settings);
    return fmt::format("The null hypothesis is {} = {}.",
                       isNatural ? measure.symbol : measure.AnalysisSymbol(), null);
}

std::string WordingOfPrediction(MAConst::PREDICTIONTYPE prediction)
{
    switch (prediction) {
    case MAConst::PREDICTION_T_K_MINUS_2:
        return {};
    case MAConst::PREDICTION_T_K_MINUS_1:
        return "Student's t with k - 1 degrees of freedom";
    case MAConst::PREDICTION_NORMAL:
        return "normal distribution";
    }
    return {};
}

std::string WordingOfTau2Interval(MAConst::TAU2INTERVAL interval)
{
    switch (interval) {
    case MAConst::TAU2_INTERVAL_NONE:
        return {};
    case MAConst::TAU2_INTERVAL_Q_PROFILE:
        return "Q-profile";
    case MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD:
        return "profile-likelihood";
    }
    return {};
}

std::string WordingOfDoubtfulEnd(double convergence)
{
    const auto is = [convergence](MAConst::TAU2CONVERGENCE end) {
        return convergence == static_cast<int>(end);
    };
    if (is(MAConst::TAU2_ITERATION_LIMIT))
        return "The scoring steps for tau² reached --max-iterations before one fell below --tolerance";
    if (is(MAConst::TAU2_STEP_NOT_FINITE))
        return "A scoring step for tau² was not a number; tau² is that before it";
    return {};
}

double AlphaOf(const MAModelSettings& settings)
{
    return 1 - settings.GetCILevel();
}

std::string WordingOfLevel(const MAModelSettings& settings)
{
    return fmt::format("{:.12g}%", 100 * settings.GetCILevel());
}

std::string CountOfStudies(std::size_t count)
{
    return fmt::format("{} {}", count, count == 1 ? "study" : "studies");
}

std::string Capitalised(std::string text)
{
    if (!text.empty())
        text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return text;
}

} // namespace host
