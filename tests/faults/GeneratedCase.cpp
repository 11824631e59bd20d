#include "faults/GeneratedCase.h"

#include "support/Regression.h"

#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAMeasures.h"
#include "meta_analysis/settings/MAOutcomeMeasures.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

constexpr double hostileValues[] = {
    missing, notANumber, infinity, -infinity, 0.0,    -0.0,   -1.0,    1.0,     1e308,       -1e308, 1e154,
    -1e154,  1e100,      1e-100,   1e-154,    1e-308, 5e-324, -5e-324, 1e15,    -1e15,       2.5,    1e-12,
    -1e-12,  1e9,        1e-300,   0.5,       1e300,  3.0,    7e5,     -0.3333, 4294967296.0};
constexpr double hostileLevels[] = {0.0,      1.0,        -0.5,   1.5, 1e-300, 1.0 - machineEpsilon,
                                    infinity, notANumber, missing};
constexpr int hostileInts[] = {
    -1, 0, 1, -2, 1000, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};

/// Sources of single values: of the ordinary kind asked for, unless the case is not tame.
class Values
{
public:
    Values(ByteStream& bytes, bool isTame)
        : bytes_(&bytes), isTame_(isTame), rate_(isTame ? 0 : 2 + bytes.Below(24))
    {}

    bool IsHostile() { return !isTame_ && bytes_->OneIn(rate_); }
    bool Flag() { return bytes_->OneIn(2); }
    ByteStream& Stream() { return *bytes_; }

    double Cell(double ordinary) { return IsHostile() ? bytes_->Pick(hostileValues) : ordinary; }
    double Effect() { return Cell(bytes_->Below(128) / 16.0 - 4.0); }
    double Positive() { return Cell((1.0 + bytes_->Below(128)) / 32.0); }
    double Count() { return Cell(bytes_->Below(96)); }
    double Size() { return Cell(2.0 + bytes_->Below(96)); }
    double Level() { return Cell(bytes_->Below(3)); }

    template <class Enumeration>
    Enumeration Enumerator(int count)
    {
        return static_cast<Enumeration>(IsHostile() ? bytes_->Pick(hostileInts) : bytes_->Below(count));
    }
    int Index(int ordinary) { return IsHostile() ? bytes_->Pick(hostileInts) : ordinary; }
    /// Or -1, for none.
    int IndexOrNone(int ordinary) { return Flag() ? Index(ordinary) : -1; }
    double Probability()
    {
        return IsHostile() ? bytes_->Pick(hostileLevels) : 0.5 + bytes_->Below(128) / 257.0;
    }
    /// Not so large that the time of the test would be spent on a single case.
    int SmallInt(int ordinary) { return IsHostile() ? bytes_->Below(128) - 4 : ordinary; }

private:
    ByteStream* bytes_;
    bool isTame_;
    int rate_; ///< one value in so many is hostile
};

/// Variables of every analysis, behind those of the data: a group, a rank, two contrasts, two covariates.
enum Role : int
{
    GROUP,
    RANK,
    CONTRAST,
    OTHER_CONTRAST,
    COVARIATE,
    OTHER_COVARIATE,
    ROLE_COUNT
};

Row MakeData(Values& values, StudyData data)
{
    if (data == StudyData::Tables)
        return {values.Count(), values.Count(), values.Count(), values.Count()};
    if (data == StudyData::Means)
        return {values.Size(), values.Effect(), values.Positive(),
                values.Size(), values.Effect(), values.Positive()};
    return {values.Effect(), values.Positive()};
}

Row MakeStudy(Values& values, StudyData data)
{
    Row row = MakeData(values, data);
    for (const double value : {values.Level(), values.Effect(), values.Level() - 1.0, values.Level() - 1.0,
                               values.Effect(), values.Positive()})
        row.push_back(value);
    if (values.IsHostile())
        row.resize(static_cast<std::size_t>(values.Stream().Below(static_cast<int>(row.size()))));
    return row;
}

void SetDataVariables(Values& values, StudyData data, MAModelSettings& settings)
{
    if (data == StudyData::Tables) {
        settings.SetTreatmentSuccessIndex(values.Index(0));
        settings.SetTreatmentFailureIndex(values.Index(1));
        settings.SetControlSuccessIndex(values.Index(2));
        settings.SetControlFailureIndex(values.Index(3));
    } else if (data == StudyData::Means) {
        settings.SetTreatmentNIndex(values.Index(0));
        settings.SetTreatmentMeanIndex(values.Index(1));
        settings.SetControlNIndex(values.Index(3));
        settings.SetControlMeanIndex(values.Index(4));
        const bool asVariance = values.Flag();
        (settings.*(asVariance ? &MAModelSettings::SetTreatmentVarianceIndex
                               : &MAModelSettings::SetTreatmentStdErrorIndex))(values.Index(2));
        (settings.*(asVariance ? &MAModelSettings::SetControlVarianceIndex
                               : &MAModelSettings::SetControlStdErrorIndex))(values.Index(5));
    } else {
        settings.SetInputESType(INPUT_READY_MADE);
        settings.SetInputEffectSizeIndex(values.Index(0));
        settings.SetInputVarianceIndex(values.Index(1));
        if (values.IsHostile())
            settings.SetInputStdErrorIndex(values.Index(1));
    }
}

/// A measure of the data, from tables those of counts; ready-made effects can be of any measure.
void SetMeasure(Values& values, StudyData data, MAModelSettings& settings)
{
    constexpr OUTCOMEMEASURE ofCounts[] = {PROPORTION_LOGIT,   PROPORTION_FREEMAN_TUKEY,
                                           PROPORTION_ARCSINE, PROPORTION_LOG,
                                           PROPORTION_RAW,     RATE_LOG,
                                           RATE_SQUARE_ROOT,   RATE_FREEMAN_TUKEY,
                                           RATE_RAW,           RATES_RATIO,
                                           RATES_RATIO,        RATES_DIFFERENCE,
                                           RATES_DIFFERENCE,   RATES_ROOT_DIFFERENCE};
    constexpr OUTCOMEMEASURE ofGroup[] = {CORRELATION_FISHER_Z, CORRELATION_RAW, MEAN_RAW, MEAN_LOG};
    auto measure = values.Enumerator<OUTCOMEMEASURE>(outcomeMeasureCount);
    if (!values.IsHostile() && data != StudyData::Effects)
        measure = data == StudyData::Tables ? values.Stream().Pick(ofCounts) : values.Stream().Pick(ofGroup);
    settings.SetOutcomeMeasure(measure);
    settings.SetEventsIndex(values.Index(0));
    settings.SetTimeIndex(values.Index(1));
    settings.SetNonEventsIndex(values.IndexOrNone(1));
    settings.SetSizeIndex(values.Index(data == StudyData::Means ? 0 : 3));
    settings.SetMeanIndex(values.Index(1));
    settings.SetStdDevIndex(values.Index(2));
    settings.SetCorrelationIndex(values.Index(2));
    settings.SetTreatmentTimeIndex(values.Index(1));
    settings.SetControlTimeIndex(values.Index(3));
}

void SetModel(Values& values, MAModelSettings& settings)
{
    settings.SetModelType(values.Enumerator<MODELTYPE>(2));
    settings.SetWeightType(values.Enumerator<WEIGHTYPE>(2));
    settings.SetEstTauType(values.Enumerator<TAU2ESTIMATOR>(estimatorCount));
    settings.SetKnapHartAdjustType(values.Enumerator<KNAPPHADJTYPE>(3));
    settings.SetBinaryEstType(values.Enumerator<BINESTYPE>(measureCount));
    settings.SetContinousEstType(values.Enumerator<CONTESTYPE>(4));
    settings.SetGlassDsVarDependentGroup(values.Enumerator<STUDYGROUPTYPE>(2));
    settings.SetVarEqualAssumption(values.Flag());
    settings.SetVarianceAdjustment(values.Flag());
    settings.SetBinZeroAdjType(values.Enumerator<ZEROADJTYPE>(4));
    settings.SetZeroCountDelta(values.Cell(0.5));
    settings.SetDropBinZero(values.Flag());
    settings.SetCILevel(values.Probability());
    settings.SetNullHypothesis(values.Cell(0.0));
    settings.SetMaxIter(values.SmallInt(100));
    settings.SetMaxStepHalving(values.SmallInt(5));
    settings.SetConvergenceTol(values.Cell(1e-6));
}

void SetFurtherAnalyses(Values& values, int first, std::size_t studyCount, MAModelSettings& settings)
{
    settings.SetSubGroupIndex(values.IndexOrNone(first + GROUP));
    settings.SetCommulativeIndex(values.IndexOrNone(first + RANK));
    settings.SetSortType(values.Enumerator<SORTYPE>(2));
    if (values.Flag())
        settings.SetContrastCoefIndex({values.Index(first + CONTRAST), values.Index(first + OTHER_CONTRAST)});
    settings.SetInputContrastCoef(std::vector<double>(studyCount, values.Effect()));
    settings.SetIsTRIMFILL(values.Flag());
    settings.SetTrimFillSide(values.Enumerator<TRIMFSIDE>(3));
    settings.SetTrimFillMethod(values.Enumerator<TRIMFMETHOD>(3));
    settings.SetTFModelType(values.Enumerator<MODELTYPE>(2));
    settings.SetTFEstTauType(values.Enumerator<TAU2ESTIMATOR>(estimatorCount));
    settings.SetTFKnapHartAdjustType(values.Enumerator<KNAPPHADJTYPE>(3));
    settings.SetRegBaseTestType(values.Enumerator<RegBaseTestType>(4));
    settings.SetIsUseIntercept(!values.IsHostile());
    settings.SetMultiDiser(values.Flag());
    settings.SetFunnelNPoints(values.SmallInt(5));
    settings.SetFunnelYType(values.Enumerator<FunnelYType>(4));
    settings.SetFunnelConTourTesType(values.Enumerator<FunnelConTourTesType>(4));
    settings.SetFunnelConTourCutoff({0.1, values.Cell(0.05)});
    settings.SetCenterBubblePlot(values.Flag());
    settings.SetBubbleCurveNPoints(values.SmallInt(5));
    settings.SetLeaveOneOut(true);
    settings.SetInfluence(true);
}

void SetEstimation(Values& values, MARegSettings& settings)
{
    settings.SetEstTauType(values.IsHostile() ? "none" : values.Stream().Pick(allEstimators).code);
    settings.SetKnapHartAdjust(values.Flag());
    settings.SetTruncAjustValue(values.Flag());
    settings.SetTestDistType(values.Enumerator<TESTDISTTYPE>(2));
    settings.SetMultiDiser(values.Flag());
    settings.SetInterceptUse(!values.IsHostile());
    settings.SetConfidenceLevel(values.Probability());
    settings.SetMaxIterations(values.SmallInt(100));
    settings.SetMaxStepHalvingValue(values.SmallInt(5));
    settings.SetParameterTolerance(values.Cell(1e-6));
    if (values.IsHostile())
        settings.SetComputationalTolerance(values.Cell(1e-12));
    if (values.IsHostile())
        settings.SetFreqWeightVar(values.Index(1));
}

void AddEffects(Values& values, MARegSettings& settings)
{
    const int effectCount = 1 + values.Stream().Below(3);
    for (int i = 0; i < effectCount; ++i) {
        KXModelEffect effect;
        const bool isCovariate = values.Flag();
        const int variable = values.Index((isCovariate ? 2 : 4) + i % 2);
        if (isCovariate)
            effect.AddCovariate(variable, values.IsHostile() ? values.Stream().Pick(hostileInts) : 1);
        else
            effect.AddFactor(variable);
        if (values.IsHostile())
            effect.AddFactor(values.Index(4));
        settings.AddModelEffect(effect);
    }
}

/// Conversions from columns of another meaning, many of which are refused. Not of tame data, whose unit and
/// sign are changed.
void SetConversions(Values& values, StudyData data, MAModelSettings& settings)
{
    const auto orKept = [&](int kept, int column) { return values.Stream().OneIn(4) ? column : kept; };
    if (data == StudyData::Tables) {
        settings.SetTreatmentNIndex(values.Index(1));
        settings.SetTreatmentFailureIndex(orKept(settings.GetTreatmentFailureVarIndex(), -1));
        settings.SetControlNIndex(values.Index(3));
        settings.SetControlFailureIndex(orKept(settings.GetControlFailureVarIndex(), -1));
        return;
    }
    settings.SetInputVarianceIndex(orKept(settings.GetInputVaranceVarIndex(), -1));
    settings.SetInputCILowerIndex(orKept(-1, values.Index(0)));
    settings.SetInputCIUpperIndex(orKept(-1, values.Index(1)));
    settings.SetInputDecimalsIndex(orKept(-1, values.Index(1)));
    settings.SetInputPValueIndex(orKept(-1, values.Index(1)));
    settings.SetInputCILevel(values.Probability());
    settings.SetInputIsRatio(values.Stream().OneIn(4));
    settings.SetTreatmentMeanIndex(orKept(settings.GetTreatmentMeanVarIndex(), -1));
    settings.SetTreatmentMedianIndex(values.IndexOrNone(2));
    settings.SetTreatmentQ1Index(values.IndexOrNone(1));
    settings.SetTreatmentQ3Index(values.IndexOrNone(3));
    settings.SetControlMedianIndex(values.IndexOrNone(2));
    settings.SetControlMinIndex(values.IndexOrNone(1));
    settings.SetControlMaxIndex(values.IndexOrNone(3));
}

/// Predictions at the values of studies, and what can be refused.
void AddQuestions(Values& values, const Rows& rows, MARegSettings& settings)
{
    std::vector<Record> predictions;
    for (std::size_t i = 0; i < std::min<std::size_t>(rows.size(), 3); ++i)
        predictions.emplace_back(rows[i]);
    settings.SetPredictions(std::move(predictions));
    if (values.IsHostile())
        settings.SetReferenceLevel(values.Index(4), values.Stream().Below(4) - 1);
    if (values.IsHostile())
        settings.SetHypotheses(Rows(2, {values.Effect(), values.Effect(), values.Effect()}),
                               {values.Effect(), values.Effect()});
}

} // namespace

AnalysisCase::AnalysisCase(ByteStream& bytes)
    : isTame(!bytes.OneIn(2)),
      data(static_cast<StudyData>(bytes.Below(3))),
      isBinary(data == StudyData::Tables || (data == StudyData::Effects && bytes.OneIn(2)))
{
    Values values(bytes, isTame);
    const auto studyCount = static_cast<std::size_t>(isTame ? 3 + bytes.Below(10) : bytes.Below(10));
    if (values.IsHostile())
        isBinary = !isBinary;
    settings.SetOutcomesType(isBinary ? OUTCOME_BINARY : OUTCOME_CONTINUOUS);
    const int first = columnCountOf[static_cast<std::size_t>(data)];
    SetDataVariables(values, data, settings);
    SetModel(values, settings);
    SetFurtherAnalyses(values, first, studyCount, settings);
    SetEstimation(values, regression);
    for (const int covariate : {COVARIATE, OTHER_COVARIATE})
        regression.AddCovariate(values.Index(first + covariate));
    if (data == StudyData::Tables) {
        regression.SetTreatmentSuccess(values.Index(0));
        regression.SetTreatmentFailure(values.Index(1));
        regression.SetControlSuccess(values.Index(2));
        regression.SetControlFailure(values.Index(3));
    }
    while (rows.size() < studyCount)
        rows.push_back(MakeStudy(values, data));
    const int variableCount = values.IsHostile() ? bytes.Below(16) : first + ROLE_COUNT;
    for (int i = 0; i < variableCount; ++i)
        variables.AddContVar("v" + std::to_string(i), "");
    settings.SetPooledZeroCells(values.Enumerator<POOLEDZEROCELLS>(3)); // here the corpus ends
    settings.SetTau2Search(values.Enumerator<TAU2SEARCH>(2));
    settings.SetPrediction(values.Enumerator<PREDICTIONTYPE>(3));
    settings.SetProbabilityAbove(values.Positive());
    settings.SetRankTest(true);
    settings.SetCommonTau2(values.Flag());
    if (bytes.Below(4) == 3)
        settings.SetKnapHartAdjustType(KNAPP_HARTUNG_IF_HETEROGENEOUS);
    if (!isTame) {
        SetConversions(values, data, settings);
        settings.SetOmitMissingSubgroup(values.Flag());
        settings.SetOmitMissingCumulative(values.Flag());
    }
    isMeasured = bytes.OneIn(3);
    if (!isMeasured)
        return;
    isBinary = false;
    settings.SetOutcomesType(OUTCOME_MEASURED);
    SetMeasure(values, data, settings);
}

RegressionCase::RegressionCase(ByteStream& bytes) : isTame(!bytes.OneIn(2)), isRandom(bytes.OneIn(2))
{
    Values values(bytes, isTame);
    const int studyCount = isTame ? 8 + bytes.Below(8) : bytes.Below(16);
    settings.SetDependent(values.Index(0));
    settings.SetOMWVarIndex(values.Index(1));
    settings.SetOMWVarType(values.IsHostile() ? values.Enumerator<OMGWeightType>(3) : OMEGA_VARIANCE);
    for (const int covariate : {2, 3})
        settings.AddCovariate(values.Index(covariate));
    for (const int factor : {4, 5}) {
        const int variable = values.Index(factor);
        settings.AddFactor(variable, values.IsHostile() ? values.Stream().Pick(hostileInts) : 3);
    }
    AddEffects(values, settings);
    SetEstimation(values, settings);
    for (int i = 0; i < studyCount; ++i) {
        rows.push_back({values.Effect(), values.Positive(), values.Effect(), values.Positive(),
                        values.Level(), values.Level()});
        if (values.IsHostile())
            rows.back().resize(static_cast<std::size_t>(values.Stream().Below(6)));
    }
    settings.SetTau2Search(values.Enumerator<TAU2SEARCH>(2)); // here the corpus ends
    AddQuestions(values, rows, settings);
    if (!isTame)
        settings.SetSandwich(values.Enumerator<SANDWICHTYPE>(3));
    if (bytes.OneIn(2))
        settings.SetCluster(values.Index(1));
    if (bytes.OneIn(4))
        settings.SetPermutations(bytes.Below(20));
}
