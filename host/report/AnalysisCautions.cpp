#include "host/report/CautionWording.h"
#include "host/report/CautionedAnalysis.h"
#include "host/report/Cautions.h"
#include "host/text/Wording.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

using namespace MA_NAMESPACE;

namespace host {

namespace {

constexpr std::size_t FEW_FOR_TAU2 = 5;

std::string CountText(const ModelRow& model)
{
    return CountOfStudies(model.studies.size());
}

std::string UnfinishedScoring(const CautionedAnalysis& subject)
{
    return OfModels(
        subject, [](const ModelRow& model) { return !WordingOfDoubtfulEnd(model.tau2Convergence).empty(); },
        [&](const ModelRow& model) {
            return fmt::format("tau² {}: {}", subject.data.numbers(model.tau2),
                               WordingOfDoubtfulEnd(model.tau2Convergence));
        },
        "it is not the estimate, and all that rests on it is provisional; --tau2-search global finds the "
        "estimate");
}

std::string SingleStudy(const CautionedAnalysis& subject)
{
    return subject.StudyCount() == 1
               ? "There is one study: the pooled effect is its own, and nothing shows how effects vary"
               : "";
}

/// " (interval up to 1.2)", or nothing without an interval.
std::string UpperText(const CautionedAnalysis& subject, const ModelRow& model)
{
    return model.tau2Upper > 0 ? fmt::format(" (interval up to {})", subject.data.numbers(model.tau2Upper))
                               : std::string();
}

bool HasTau2OfFew(const CautionedAnalysis& subject, const ModelRow& model)
{
    return subject.HasOwnTau2(model) && model.tau2 > 0 && model.studies.size() < FEW_FOR_TAU2;
}

bool HasTau2OfZero(const CautionedAnalysis& subject, const ModelRow& model)
{
    return subject.HasOwnTau2(model) && model.tau2 == 0;
}

/// What the models for which `holds` say of prediction: one of these clauses, or nothing.
template <class Condition>
std::string PredictionClause(const CautionedAnalysis& subject, const Condition& holds, const char* ifThere,
                             const char* ifLacking)
{
    const auto any = [&](const auto& isMeant) {
        return std::any_of(subject.models.begin(), subject.models.end(),
                           [&](const ModelRow& model) { return holds(subject, model) && isMeant(model); });
    };
    const bool isByStudents = subject.data.settings.GetPrediction() == MAConst::PREDICTION_T_K_MINUS_2;
    if (any([](const ModelRow& model) { return IsNumber(model.predictionLower); }))
        return ifThere;
    return isByStudents && any([](const ModelRow& model) { return model.studies.size() == 2; }) ? ifLacking
                                                                                                : "";
}

/// What follows for the weights and intervals is said of the intervals.
std::string FewStudiesForTau2(const CautionedAnalysis& subject)
{
    return OfModels(
        subject, [&](const ModelRow& model) { return HasTau2OfFew(subject, model); },
        [&](const ModelRow& model) {
            return fmt::format("tau² {}{} from {}", subject.data.numbers(model.tau2),
                               UpperText(subject, model), CountText(model));
        },
        "so few hardly tell how much the true effects differ" +
            PredictionClause(subject, HasTau2OfFew, ", on which the prediction interval rests",
                             ", and leave no prediction interval"));
}

/// Models of two studies have such an interval under KNAPP_HARTUNG_IF_HETEROGENEOUS too.
std::string NormalIntervalOfFew(const CautionedAnalysis& subject)
{
    return OfModels(
        subject,
        [&](const ModelRow& model) {
            const bool isByNormal = !(model.df > 0);
            return isByNormal && subject.HasOwnTau2(model) && model.tau2 > 0 &&
                   model.studies.size() < FEW_STUDIES;
        },
        CountText,
        "the interval and the test by the normal distribution take tau² as known, so that the interval is "
        "too short on average; see --knapp-hartung");
}

std::string TwoStudiesByT(const CautionedAnalysis& subject)
{
    return OfModels(
        subject, [](const ModelRow& model) { return model.df == 1; },
        [&](const ModelRow& model) {
            return fmt::format("{}, interval {}", CountText(model),
                               subject.Interval(model.ciLower, model.ciUpper));
        },
        "Student's t with 1 degree of freedom makes the interval after Knapp and Hartung too wide to tell "
        "much");
}

/// Half of the interval by the normal distribution, with tau² as known.
double ClassicalHalfWidth(const CautionedAnalysis& subject, const ModelRow& model)
{
    const std::vector<double>& stdErrors = subject.stdErrors;
    double sum = 0;
    for (const std::size_t study : model.studies)
        sum += 1 / (stdErrors[study] * stdErrors[study] + model.tau2);
    return subject.normalQuantile / std::sqrt(sum);
}

std::string ShorterByKnappHartung(const CautionedAnalysis& subject)
{
    return OfModels(
        subject,
        [&](const ModelRow& model) {
            return model.df > 0 && HasValue(model.tau2) &&
                   (model.ciUpper - model.ciLower) / 2 < ClassicalHalfWidth(subject, model) * (1 - 1e-9);
        },
        [&](const ModelRow& model) {
            const double half = ClassicalHalfWidth(subject, model);
            return fmt::format("{} {} in place of {}", subject.data.measure.AnalysisSymbol(),
                               subject.Interval(model.ciLower, model.ciUpper),
                               subject.Interval(model.estimate - half, model.estimate + half));
        },
        "the interval after Knapp and Hartung is shorter here than the one by the normal distribution, "
        "because the effects vary less than their standard errors suggest; --knapp-hartung truncated never "
        "shortens it");
}

std::string NoVarianceBetween(const CautionedAnalysis& subject)
{
    return OfModels(
        subject, [&](const ModelRow& model) { return HasTau2OfZero(subject, model); },
        [&](const ModelRow& model) {
            return fmt::format("tau² 0{} from {}", UpperText(subject, model), CountText(model));
        },
        "the model pools as one of a fixed effect; an estimate of 0 is no proof that the true effects are "
        "equal" +
            PredictionClause(subject, HasTau2OfZero, ", as the prediction interval supposes",
                             ", and 2 studies leave no prediction interval"));
}

/// Whether the sentences on tau² say how uncertain the heterogeneity is.
bool IsTau2InDoubt(const CautionedAnalysis& subject, const ModelRow& model)
{
    return HasTau2OfFew(subject, model) || HasTau2OfZero(subject, model);
}

/// Half of the range or more, from what the Cochrane Handbook calls perhaps unimportant (up to 40%) to what
/// it calls substantial (from 50%).
bool IsWideI2(const ModelRow& model)
{
    return HasValue(model.i2Lower) && model.i2Lower <= 0.4 && model.i2Upper - model.i2Lower >= 0.5;
}

std::string UncertainI2(const CautionedAnalysis& subject)
{
    return OfModels(
        subject, [&](const ModelRow& model) { return IsWideI2(model) && !IsTau2InDoubt(subject, model); },
        [&](const ModelRow& model) {
            return fmt::format("I² {} [{}, {}]", subject.Percent(model.i2), subject.Percent(model.i2Lower),
                               subject.Percent(model.i2Upper));
        },
        "so wide an interval has room for unimportant and for substantial heterogeneity");
}

std::string I2WithoutInterval(const CautionedAnalysis& subject)
{
    return OfModels(
        subject,
        [&](const ModelRow& model) {
            return HasValue(model.i2) && !HasValue(model.i2Lower) && model.studies.size() > 1 &&
                   model.studies.size() < FEW_STUDIES && !IsTau2InDoubt(subject, model);
        },
        [&](const ModelRow& model) {
            return fmt::format("I² {} from {}, without an interval", subject.Percent(model.i2),
                               CountText(model));
        },
        "with fewer than 10 studies I² is biased and varies widely by chance");
}

std::string FixedEffectOfDifferentStudies(const CautionedAnalysis& subject)
{
    return OfModels(
        subject,
        [&](const ModelRow& model) {
            return !IsRandom(subject.data.settings) && model.i2 >= 0.5 && model.qSig < 0.05;
        },
        [&](const ModelRow& model) {
            return fmt::format("Q {} with {:g} df, p {}, I² {}", subject.data.numbers(model.q), model.qDf,
                               EqualsText(model.qSig), subject.Percent(model.i2));
        },
        "the studies differ by more than sampling error, and a fixed effect with its interval does not show "
        "by how much");
}

/// The prediction interval on the scale of the report's result.
std::string PredictionText(const AnalysisData& data, const ModelRow& overall)
{
    const double lower = data.natural ? data.natural->predictions.lower.back() : overall.predictionLower;
    const double upper = data.natural ? data.natural->predictions.upper.back() : overall.predictionUpper;
    return fmt::format("{} to {}", data.PooledText(lower), data.PooledText(upper));
}

std::string PredictionOfNoEffect(const CautionedAnalysis& subject)
{
    const ModelRow& overall = subject.models.back();
    const bool excludes = overall.ciLower > 0 || overall.ciUpper < 0;
    const bool includes = overall.predictionLower < 0 && overall.predictionUpper > 0;
    if (!subject.data.measure.hasNoEffect || !IsNumber(overall.predictionLower) || !excludes || !includes)
        return {};
    return fmt::format(
        "The confidence interval excludes no effect, the prediction interval, {}, includes it: "
        "in some settings the true effect may be absent or the opposite",
        PredictionText(subject.data, overall));
}

bool HasTestBetweenGroups(const CautionedAnalysis& subject)
{
    return subject.data.base.GetGDQbDf() > 0;
}

std::vector<std::string> SingleStudyGroups(const CautionedAnalysis& subject)
{
    std::vector<std::string> labels;
    for (const ModelRow& model : subject.models)
        if (!model.isOverall && model.studies.size() == 1)
            labels.push_back(model.label);
    return labels;
}

/// Of few studies in groups this is said with their number.
std::string GroupsOfOneStudy(const CautionedAnalysis& subject)
{
    const std::vector<std::string> labels = SingleStudyGroups(subject);
    const bool isWeighedAlone = IsRandom(subject.data.settings) && !subject.data.settings.GetCommonTau2();
    if (!HasTestBetweenGroups(subject) || subject.StudyCount() < FEW_STUDIES || labels.empty())
        return {};
    return fmt::format("{}: a group of one study tells nothing of others like it{}", Listed(labels),
                       isWeighedAlone
                           ? "; it has no between-study variance of its own, and enters the test between the "
                             "groups with its within-study variance alone, and so with a large weight"
                           : "");
}

std::string GroupsOfFewStudies(const CautionedAnalysis& subject)
{
    if (!HasTestBetweenGroups(subject) || subject.StudyCount() >= FEW_STUDIES)
        return {};
    const std::vector<std::string> single = SingleStudyGroups(subject);
    return fmt::format(
        "{} in {} groups{}: with fewer than 10 studies differences between groups are found or "
        "missed by chance",
        CountOfStudies(subject.StudyCount()), subject.data.base.GetGDQbDf() + 1,
        single.empty() ? "" : ", of one study " + Listed(single));
}

/// Where trim-and-fill was not run, the tests of asymmetry have the library's warning.
std::string FillingOfFew(const CautionedAnalysis& subject)
{
    if (!subject.data.settings.GetIsTRIMFILL() || subject.StudyCount() >= FEW_STUDIES)
        return {};
    const bool isTested =
        subject.data.analysis.testStatus.has_value() || HasValue(subject.data.base.GetRankTestTau());
    return fmt::format("{}: trim-and-fill {} asymmetry from chance with fewer than 10 studies",
                       CountOfStudies(subject.StudyCount()),
                       isTested ? "and the tests of small-study effects cannot tell" : "cannot tell");
}

std::string RepeatedLooks(const CautionedAnalysis& subject)
{
    return subject.data.base.GetCumEstES().empty() ? ""
                                                   : "The intervals and p-values of the cumulative steps are "
                                                     "not adjusted for looking at the data "
                                                     "again and again";
}

/// A fact stands once: what tau² of few studies or of 0 says of heterogeneity is not said of I² again.
constexpr CautionRule<CautionedAnalysis> RULES[] = {
    {UnfinishedScoring, ""},
    {SingleStudy, "", MAStatusCode::ONE_STUDY},
    {FixedEffectOfDifferentStudies, "Borenstein, Hedges, Higgins and Rothstein 2010"},
    {PredictionOfNoEffect, "IntHout, Ioannidis, Rovers and Goeman 2016"},
    {ImpossibleLimits, ""},
    {NormalIntervalOfFew, "IntHout, Ioannidis and Borm 2014"},
    {TwoStudiesByT, "Röver, Knapp and Friede 2015"},
    {ShorterByKnappHartung, "Wiksten, Rücker and Schwarzer 2016"},
    {FewStudiesForTau2, "Cochrane Handbook, chapter 10", MAStatusCode::TWO_STUDIES},
    {NoVarianceBetween, "Chung, Rabe-Hesketh and Choi 2013", MAStatusCode::TWO_STUDIES},
    {UncertainI2, "Ioannidis, Patsopoulos and Evangelou 2007", MAStatusCode::TWO_STUDIES},
    {I2WithoutInterval, "von Hippel 2015", MAStatusCode::TWO_STUDIES},
    {CorrectedZeros, "Sweeting, Sutton and Lambert 2004"},
    {FarPetoOddsRatio, "Greenland and Salvan 1990"},
    {BackTransformedSizes, "Schwarzer et al. 2019"},
    {GroupsOfOneStudy, ""},
    {GroupsOfFewStudies, "Cochrane Handbook, chapter 10"},
    {FillingOfFew, "Sterne et al. 2011", MAStatusCode::FEW_STUDIES_FOR_TEST},
    {TestOfOddsRatios, "Sterne et al. 2011"},
    {RepeatedLooks, ""},
};

} // namespace

Cautions CautionsOf(const AnalysisData& data)
{
    if (data.base.GetNonMissingStudyID().empty())
        return {};
    return CautionsBy(RULES, CautionedAnalysis{data, ModelRowsOf(data), data.base.GetStdError()});
}

} // namespace host
