#include "meta_analysis/analysis/steps/MABubblePlot.h"

#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAPoolable.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAPredictedEffect.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegOutputStats.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"
#include "meta_analysis/settings/RegressionSettingsOf.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// Columns of the records on which the regression runs.
enum Column : int
{
    effectSizeColumn,
    varianceColumn,
    covariateColumn
};

/// The line and its confidence limits at a value of the covariate.
struct Band
{
    double fit = KXMV::Missing();
    double lower = KXMV::Missing();
    double upper = KXMV::Missing();
};

/// A record of the regression without a study.
Record CovariateAt(double x)
{
    return Record({KXMV::Missing(), KXMV::Missing(), x});
}

template <class Engine>
Band BandAt(const Engine& engine, double x)
{
    Band band;
    double unused = 0.0;
    const KXStatus scored =
        engine.Score(CovariateAt(x), band.fit, unused, band.lower, band.upper, unused, unused, unused);
    RequireMemory(scored);
    return band;
}

/// The covariate is the last parameter.
void DescribeSlope(const MARegOutputStats& output, MABubbleRows& rows)
{
    const auto last = [](const std::vector<double>& column) {
        RequireMemory(!column.empty());
        return column.back();
    };
    rows.slopeStdError = last(output.GetBetaStandErr());
    rows.slopeStatistic = last(output.GetBetaTest());
    rows.slopeSig = last(output.GetBetaTestPValue());
    rows.slopeCILower = last(output.GetBetaConfInterValLower());
    rows.slopeCIUpper = last(output.GetBetaConfInterValUpper());
}

} // namespace

/// One record's values, missing where it has none.
struct MABubblePlot::Study
{
    double effectSize;
    double variance;
    double x;

    bool HasEffect() const { return IsPoolable(effectSize, variance); }
    bool HasCovariate() const { return std::isfinite(x) && !KXMV::IsMissing(x); }
    bool IsUsable() const { return HasEffect() && HasCovariate(); }
};

MABubblePlot::MABubblePlot(const MARegSettings& settings, const KXVarList& variables)
    : settings_(&settings), variables_(&variables)
{}

MABubblePlot::MABubblePlot(const MABubblePlot&) = default;
MABubblePlot& MABubblePlot::operator=(const MABubblePlot&) = default;
MABubblePlot::~MABubblePlot() = default;

KXStatus MABubblePlot::Compute(MultiPassRecordIter& records, int covariate)
{
    KXStatus failure;
    return Guarded(failure, [&] { return ComputeRows(records, covariate); });
}

KXStatus MABubblePlot::ComputeRows(MultiPassRecordIter& records, int covariate)
{
    rows_ = MABubbleRows();
    const KXStatus settings = CheckSettings();
    if (settings.IsError())
        return settings;
    if (covariate < 0 || covariate >= variables_->Size())
        return KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
    const KXStatus started = StartPass(records);
    if (started.IsError())
        return started;
    std::vector<Study> studies;
    int recordCount = 0;
    const KXStatus read = ReadPass(records, recordCount, [&](const Record& record, int recordNumber) {
        const Study study = {ReadStudyValue(record, effectSizeIndex_), ReadStudyValue(record, varianceIndex_),
                             ReadStudyValue(record, covariate)};
        if (study.HasEffect() && !study.HasCovariate())
            rows_.leftOut.push_back(recordNumber);
        studies.push_back(study);
    });
    if (read.IsError())
        return read;
    if (isCentered_ && settings_->GetInterceptUse())
        Center(studies);
    return model_ == MAConst::MODEL_FIXED ? Fit<MAFEAlgorithm>(studies) : Fit<MAREAlgorithm>(studies);
}

/// The regression would fail on settings that it cannot use, which looks like studies without a line.
KXStatus MABubblePlot::CheckSettings() const
{
    const KXStatus valid = settings_->IsValidSettings(false);
    if (valid.IsError())
        return valid;
    const bool needsEstimator = model_ != MAConst::MODEL_FIXED;
    return needsEstimator && EstimatorOfCode(settings_->GetEstTauType()) == unknownEstimator
               ? KXStatus(MAStatusCode::TAU2_FAILED)
               : KXStatus();
}

void MABubblePlot::Center(std::vector<Study>& studies)
{
    double sum = 0.0;
    double count = 0.0;
    for (const Study& study : studies) {
        if (study.IsUsable()) {
            sum += study.x;
            count += 1.0;
        }
    }
    for (Study& study : studies) {
        if (study.IsUsable())
            study.x -= sum / count;
    }
}

/// The given settings, with the regression on one covariate in place of their own model.
MARegSettings MABubblePlot::SimpleRegression() const
{
    MARegSettings simple = ComputationSettingsOf(*settings_);
    simple.SetDependent(effectSizeColumn);
    simple.SetOMWVarIndex(varianceColumn);
    simple.SetOMWVarType(MAConst::OMEGA_VARIANCE);
    RequireMemory(AddCovariateEffect(simple, covariateColumn));
    return simple;
}

/// The regression runs as one for a small-study test does: coefficients, covariance and adjustment are
/// needed, tests of the model are not. A regression that cannot be fitted leaves the rows without a fit; the
/// records are the plot's own, so that ITERATOR_FAILED is the host's wish to cancel.
template <class Engine>
KXStatus MABubblePlot::Fit(const std::vector<Study>& studies)
{
    std::vector<Record> rows;
    for (const Study& study : studies) {
        if (study.IsUsable())
            rows.emplace_back(std::vector<double>{study.effectSize, study.variance, study.x});
    }
    VectorRecordIter records(std::move(rows));
    const MARegSettings simple = SimpleRegression();
    Engine engine(simple);
    engine.setUsedByRegBaseTest(true);
    const KXStatus built = engine.BuildModel(records);
    RequireMemory(built);
    warnings_ = engine.GetWarnings();
    if (built.IsError())
        return built.GetCode() == MAStatusCode::ITERATOR_FAILED ? built : KXStatus();
    const MARegOutputStats output(simple, engine);
    const std::vector<double> coefficients = output.GetEstimation();
    RequireMemory(!coefficients.empty());
    if (KXMV::IsMissing(coefficients.back()))
        return KXStatus();
    rows_.fitted = 1;
    rows_.coefficients = coefficients;
    DescribeSlope(output, rows_);
    DescribeStudies(engine, studies, output.GetTau());
    DrawCurve(engine);
    return KXStatus();
}

template <class Engine>
void MABubblePlot::DescribeStudies(const Engine& engine, const std::vector<Study>& studies, double tau2)
{
    double weightSum = 0.0;
    for (const Study& study : studies) {
        const bool isUsable = study.IsUsable();
        const Band band = isUsable ? BandAt(engine, study.x) : Band();
        rows_.x.push_back(isUsable ? study.x : KXMV::Missing());
        rows_.weight.push_back(isUsable ? 1.0 / (study.variance + tau2) : KXMV::Missing());
        rows_.predicted.push_back(band.fit);
        rows_.ciLower.push_back(band.lower);
        rows_.ciUpper.push_back(band.upper);
        if (isUsable)
            weightSum += rows_.weight.back();
    }
    for (double& weight : rows_.weight) {
        if (!KXMV::IsMissing(weight))
            weight = weight / weightSum * 100.0; // a sum of tiny weights has no inverse
    }
}

template <class Engine>
void MABubblePlot::DrawCurve(const Engine& engine)
{
    std::vector<double> x = rows_.x;
    x.erase(std::remove_if(x.begin(), x.end(), KXMV::IsMissing), x.end());
    const auto [smallest, largest] = std::minmax_element(x.begin(), x.end());
    const double step = curvePointCount_ > 1 ? (*largest - *smallest) / (curvePointCount_ - 1.0) : 0.0;
    for (int i = 0; i < curvePointCount_; ++i) {
        const double point = *smallest + i * step;
        const Band band = BandAt(engine, point);
        rows_.curveX.push_back(point);
        rows_.curveLower.push_back(band.lower);
        rows_.curveUpper.push_back(band.upper);
        MAPredictedEffect predicted;
        RequireMemory(engine.PredictEffect(CovariateAt(point), predicted));
        rows_.curvePILower.push_back(predicted.piLower);
        rows_.curvePIUpper.push_back(predicted.piUpper);
    }
}

} // namespace MA_NAMESPACE
