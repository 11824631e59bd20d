#include "host/text/Wording.h"

#include <fmt/format.h>

#include <cctype>

using namespace MA_NAMESPACE;

namespace host {

namespace {

EffectWording WordingOf(MAConst::BINESTYPE effect)
{
    switch (effect) {
    case MAConst::BIN_ODDS_RATIO:
        return {"odds ratio", "OR", true};
    case MAConst::BIN_PETO_ODDS_RATIO:
        return {"Peto odds ratio", "Peto OR", true};
    case MAConst::BIN_RISK_RATIO:
        return {"risk ratio", "RR", true};
    case MAConst::BIN_RISK_DIFFERENCE:
        return {"risk difference", "RD", false};
    }
    return {};
}

EffectWording WordingOf(MAConst::CONTESTYPE effect)
{
    switch (effect) {
    case MAConst::CONT_MEAN_DIFFERENCE:
        return {"mean difference", "MD", false};
    case MAConst::CONT_COHENS_D:
        return {"Cohen's d", "d", false};
    case MAConst::CONT_HEDGES_G:
        return {"Hedges' g", "g", false};
    case MAConst::CONT_GLASS_DELTA:
        return {"Glass's delta", "delta", false};
    }
    return {};
}

std::string WordingOf(MAConst::TAU2ESTIMATOR estimator)
{
    switch (estimator) {
    case MAConst::TAU2_HE:
        return "Hedges";
    case MAConst::TAU2_HS:
        return "Hunter-Schmidt";
    case MAConst::TAU2_DL:
        return "DerSimonian-Laird";
    case MAConst::TAU2_SJ:
        return "Sidik-Jonkman";
    case MAConst::TAU2_ML:
        return "maximum likelihood";
    case MAConst::TAU2_REML:
        return "restricted maximum likelihood";
    case MAConst::TAU2_EB:
        return "empirical Bayes";
    }
    return {};
}

std::string WordingOf(MAConst::KNAPPHADJTYPE adjustment)
{
    switch (adjustment) {
    case MAConst::KNAPP_HARTUNG_NONE:
        return "";
    case MAConst::KNAPP_HARTUNG_ADJUSTED:
        return ", Knapp-Hartung adjustment";
    case MAConst::KNAPP_HARTUNG_TRUNCATED:
        return ", truncated Knapp-Hartung adjustment";
    }
    return {};
}

std::string FixedMethod(const MAModelSettings& settings)
{
    if (!PoolsTables(settings))
        return "inverse variance";
    return settings.GetBinaryEstType() == MAConst::BIN_PETO_ODDS_RATIO ? "Peto" : "Mantel-Haenszel";
}

bool IsRandom(const MAModelSettings& settings)
{
    return settings.GetModelType() == MAConst::MODEL_RANDOM;
}

} // namespace

EffectWording WordingOfEffect(const MAModelSettings& settings)
{
    return settings.GetOutcomesType() == MAConst::OUTCOME_BINARY ? WordingOf(settings.GetBinaryEstType())
                                                                 : WordingOf(settings.GetContinousEstType());
}

std::string WordingOfModel(const MAModelSettings& settings)
{
    if (!IsRandom(settings))
        return fmt::format("fixed-effect model ({})", FixedMethod(settings));
    return fmt::format("random-effects model ({}){}", WordingOf(settings.GetEstTauType()),
                       WordingOf(settings.GetKnapHartAdjustType()));
}

bool PoolsTables(const MAModelSettings& settings)
{
    return settings.GetOutcomesType() == MAConst::OUTCOME_BINARY &&
           settings.GetInputESType() == MAConst::INPUT_RAW && !IsRandom(settings) &&
           settings.GetWeightType() == MAConst::WEIGHT_BINARY_FIXED;
}

std::string WordingOfStatistic(const MAModelSettings& settings)
{
    const bool isT = IsRandom(settings) && settings.GetKnapHartAdjustType() != MAConst::KNAPP_HARTUNG_NONE;
    return isT ? "t" : "z";
}

std::string WordingOfTest(MAConst::RegBaseTestType type)
{
    switch (type) {
    case MAConst::REG_TEST_EFFECT_ON_STD_ERROR:
        return "effect on standard error";
    case MAConst::REG_TEST_SCORE_VARIANCE:
        return "odds-ratio score over its variance on standard error";
    case MAConst::REG_TEST_SCORE_CONTROL:
        return "risk-ratio score over its variance on standard error";
    case MAConst::REG_TEST_EFFECT_ON_SIZE:
        return "effect on 1 / sample size";
    }
    return {};
}

std::string WordingOfTestCovariate(MAConst::RegBaseTestType type)
{
    return type == MAConst::REG_TEST_EFFECT_ON_SIZE ? "1 / sample size" : "standard error";
}

/// It always pools by inverse variance.
std::string WordingOfTrimmingModel(const MAModelSettings& settings)
{
    MAModelSettings trimming = settings;
    trimming.SetModelType(settings.GetTFModelType());
    trimming.SetEstTauType(settings.GetTFEstTauType());
    trimming.SetKnapHartAdjustType(settings.GetTFKnapHartAdjustType());
    trimming.SetWeightType(MAConst::WEIGHT_INVERSE_VARIANCE);
    return WordingOfModel(trimming);
}

std::string WordingOfNullHypothesis(const MAModelSettings& settings)
{
    const double null = settings.GetNullHypothesis();
    if (null == 0)
        return {};
    const EffectWording effect = WordingOfEffect(settings);
    return fmt::format("The null hypothesis is {} = {}.",
                       PoolsTables(settings) ? effect.symbol : effect.AnalysisSymbol(), null);
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
