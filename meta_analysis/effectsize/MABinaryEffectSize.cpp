#include "meta_analysis/effectsize/MABinaryEffectSize.h"

#include "meta_analysis/effectsize/MAInputCheck.h"
#include "meta_analysis/effectsize/MARatio.h"
#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/Guarded.h"

#include <cmath>
#include <initializer_list>

namespace MA_NAMESPACE {

namespace {

/// Keeps the entries that are there and fills up with `fill`.
void ResizeAll(std::initializer_list<std::vector<double>*> vectors, std::size_t size, double fill)
{
    for (std::vector<double>* vector : vectors)
        vector->resize(size, fill);
}

} // namespace

MABinaryEffectSize::MABinaryEffectSize() = default;
MABinaryEffectSize::MABinaryEffectSize(const MABinaryEffectSize&) = default;
MABinaryEffectSize& MABinaryEffectSize::operator=(const MABinaryEffectSize&) = default;
MABinaryEffectSize::~MABinaryEffectSize() = default;

KXStatus MABinaryEffectSize::SetTreatmentGSuccessCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, treatmentSuccesses_, studyCount_, status_);
}

KXStatus MABinaryEffectSize::SetControlGSuccessCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, controlSuccesses_, studyCount_, status_);
}

KXStatus MABinaryEffectSize::SetTreatmentGFailureCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, treatmentFailures_, studyCount_, status_);
}

KXStatus MABinaryEffectSize::SetControlGFailureCounts(std::vector<double>* counts)
{
    return StoreStudyVector(counts, controlFailures_, studyCount_, status_);
}

KXStatus MABinaryEffectSize::SetZeroCountDelta(double delta)
{
    return StoreSetting(delta, zeroCountDelta_, status_);
}

KXStatus MABinaryEffectSize::SetSignLevel(double alpha)
{
    return StoreSetting(alpha, alpha_, status_);
}

KXStatus MABinaryEffectSize::SetZeroAdjType(MAConst::ZEROADJTYPE type)
{
    return StoreSetting(type, zeroAdjustment_, status_);
}

KXStatus MABinaryEffectSize::SetEstimationMethod(MAConst::BINESTYPE method)
{
    const KXStatus stored = StoreSetting(method, method_, status_);
    return stored.IsError() ? stored : KXStatus();
}

bool MABinaryEffectSize::HasCounts() const
{
    return HaveLength(studyCount_, treatmentSuccesses_, treatmentFailures_, controlSuccesses_,
                      controlFailures_);
}

MATable MABinaryEffectSize::TableOf(std::size_t study) const
{
    return {(*treatmentSuccesses_)[study], (*treatmentFailures_)[study], (*controlSuccesses_)[study],
            (*controlFailures_)[study]};
}

void MABinaryEffectSize::AdjustZeroCounts()
{
    if (!HasCounts())
        return;
    if (zeroAdjustment_ == MAConst::ZERO_ADJUST_ALL_IF_ANY) {
        for (std::size_t i = 0; i < studyCount_; ++i) {
            if (TableOf(i).HasZeroCell()) {
                zeroAdjustment_ = MAConst::ZERO_ADJUST_ALL;
                break;
            }
        }
    }
    const MAZeroCorrection correction = {zeroAdjustment_, zeroCountDelta_};
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MATable corrected = correction.Corrected(TableOf(i));
        (*treatmentSuccesses_)[i] = corrected.a;
        (*treatmentFailures_)[i] = corrected.b;
        (*controlSuccesses_)[i] = corrected.c;
        (*controlFailures_)[i] = corrected.d;
    }
}

KXStatus MABinaryEffectSize::ComputeEffectSizeStatistics()
{
    if (status_.IsError())
        return status_;
    if (!HasCounts())
        return status_ = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] { return ComputeStatistics(); });
}

KXStatus MABinaryEffectSize::ComputeStatistics()
{
    AdjustZeroCounts();
    switch (method_) {
    case MAConst::BIN_ODDS_RATIO:
        ComputeOREffectSize();
        ComputeORVariance();
        break;
    case MAConst::BIN_PETO_ODDS_RATIO:
        ComputePOREffectSize();
        ComputePORVariance();
        break;
    case MAConst::BIN_RISK_RATIO:
        ComputeRREffectSize();
        ComputeRRVariance();
        break;
    case MAConst::BIN_RISK_DIFFERENCE:
        ComputeRDEffectSize();
        ComputeRDVariance();
        break;
    default:
        return status_;
    }
    ComputeCIBound(TwoSidedNormalQuantile(alpha_));
    ComputeTests();
    return status_;
}

/// The natural-scale odds ratio needs bc alone to be non-zero (it may be 0), its log all four cells.
void MABinaryEffectSize::ComputeOREffectSize()
{
    ResizeAll({&log_.value, &natural_.value, &natural_.treatmentRatio, &log_.treatmentRatio,
               &natural_.controlRatio, &log_.controlRatio},
              studyCount_, KXMV::Missing());
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MATable table = TableOf(i);
        if (table.b != 0 && table.c != 0) {
            natural_.value[i] = (table.d / table.c) * (table.a / table.b);
            natural_.treatmentRatio[i] = table.a / table.b;
            natural_.controlRatio[i] = table.c / table.d;
        }
        if (!table.HasZeroCell()) {
            log_.treatmentRatio[i] = std::log(table.a) - std::log(table.b);
            log_.controlRatio[i] = std::log(table.c) - std::log(table.d);
            log_.value[i] = log_.treatmentRatio[i] - log_.controlRatio[i];
        }
    }
}

void MABinaryEffectSize::ComputeORVariance()
{
    ResizeLogVariances();
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MATable table = TableOf(i);
        if (!table.HasZeroCell())
            SetLogVariance(i, table.LogOddsRatioVariance());
    }
}

void MABinaryEffectSize::ComputePOREffectSize()
{
    ResizeAll({&log_.value, &natural_.value}, studyCount_, KXMV::Missing());
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MATable table = TableOf(i);
        const double variance = table.HypergeometricVariance();
        if (table.Size() > 1 && variance != 0) {
            log_.value[i] = table.ExcessEvents() / variance;
            natural_.value[i] = RatioOf(log_.value[i]);
        }
    }
}

void MABinaryEffectSize::ComputePORVariance()
{
    ResizeLogVariances();
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MATable table = TableOf(i);
        const double variance = table.HypergeometricVariance();
        if (table.Size() > 1 && variance != 0)
            SetLogVariance(i, 1.0 / variance);
    }
}

void MABinaryEffectSize::ComputeRREffectSize()
{
    ResizeAll({&log_.value, &natural_.value, &natural_.treatmentRatio, &log_.treatmentRatio,
               &natural_.controlRatio, &log_.controlRatio},
              studyCount_, KXMV::Missing());
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MATable table = TableOf(i);
        const bool hasTreatmentRisk = table.TreatmentSize() != 0 && table.a != 0;
        const bool hasControlRisk = table.ControlSize() != 0 && table.c != 0;
        if (hasTreatmentRisk) {
            log_.treatmentRatio[i] = std::log(table.a) - std::log(table.TreatmentSize());
            natural_.treatmentRatio[i] = RatioOf(log_.treatmentRatio[i]);
        }
        if (hasControlRisk) {
            log_.controlRatio[i] = std::log(table.c) - std::log(table.ControlSize());
            natural_.controlRatio[i] = RatioOf(log_.controlRatio[i]);
        }
        if (hasTreatmentRisk && hasControlRisk) {
            log_.value[i] = log_.treatmentRatio[i] - log_.controlRatio[i];
            natural_.value[i] = RatioOf(log_.value[i]);
        }
    }
}

void MABinaryEffectSize::ComputeRRVariance()
{
    ResizeLogVariances();
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MATable table = TableOf(i);
        if (table.c != 0 && table.a != 0 && table.TreatmentSize() != 0 && table.ControlSize() != 0)
            SetLogVariance(i, table.LogRiskRatioVariance());
    }
}

void MABinaryEffectSize::ComputeRDEffectSize()
{
    ResizeAll({&natural_.value, &natural_.treatmentRatio, &natural_.controlRatio}, studyCount_, 0.0);
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MATable table = TableOf(i);
        const double nt = table.TreatmentSize();
        const double nc = table.ControlSize();
        if (nt != 0 && nc != 0)
            natural_.value[i] = table.a / nt - table.c / nc;
        if (nt != 0)
            natural_.treatmentRatio[i] = table.a / nt;
        if (nc != 0)
            natural_.controlRatio[i] = table.c / nc;
    }
}

void MABinaryEffectSize::ComputeRDVariance()
{
    ResizeAll({&natural_.variance, &natural_.stdError}, studyCount_, 0.0);
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const MATable table = TableOf(i);
        if (table.ControlSize() != 0 && table.TreatmentSize() != 0) {
            natural_.variance[i] = table.RiskDifferenceVariance();
            natural_.stdError[i] = std::sqrt(natural_.variance[i]);
        }
    }
}

void MABinaryEffectSize::ResizeLogVariances()
{
    ResizeAll({&log_.variance, &log_.stdError, &natural_.variance, &natural_.stdError}, studyCount_,
              KXMV::Missing());
}

/// The natural-scale variance and standard error are the exponentials of the log-scale ones, not
/// delta-method values: hosts show them beside the exponentiated effect.
void MABinaryEffectSize::SetLogVariance(std::size_t study, double variance)
{
    log_.variance[study] = variance;
    log_.stdError[study] = std::sqrt(variance);
    natural_.variance[study] = RatioOf(log_.variance[study]);
    natural_.stdError[study] = RatioOf(log_.stdError[study]);
}

void MABinaryEffectSize::ComputeCIBound(double z)
{
    ResizeAll({&log_.ciUpper, &natural_.ciUpper, &log_.ciLower, &natural_.ciLower}, studyCount_,
              KXMV::Missing());
    if (method_ == MAConst::BIN_RISK_DIFFERENCE) {
        for (std::size_t i = 0; i < studyCount_; ++i) {
            const double halfWidth = z * std::sqrt(natural_.variance[i]);
            natural_.ciUpper[i] = natural_.value[i] + halfWidth;
            natural_.ciLower[i] = natural_.value[i] - halfWidth;
        }
        return;
    }
    for (std::size_t i = 0; i < studyCount_; ++i) {
        if (KXMV::IsMissing(log_.value[i]) || KXMV::IsMissing(log_.variance[i]))
            continue;
        const double halfWidth = z * std::sqrt(log_.variance[i]);
        log_.ciUpper[i] = log_.value[i] + halfWidth;
        log_.ciLower[i] = log_.value[i] - halfWidth;
        natural_.ciUpper[i] = RatioOf(log_.ciUpper[i]);
        natural_.ciLower[i] = RatioOf(log_.ciLower[i]);
    }
}

/// Of ratio measures the z value and significance are taken as stored, with no missing test (missing by
/// missing gives 1), and their natural-scale forms are exponentials.
void MABinaryEffectSize::ComputeTests()
{
    const bool isRatio = method_ != MAConst::BIN_RISK_DIFFERENCE;
    const Scale& tested = isRatio ? log_ : natural_;
    for (std::vector<double>* list :
         {&log_.zValue, &log_.significance, &natural_.zValue, &natural_.significance})
        list->reserve(list->size() + studyCount_);
    for (std::size_t i = 0; i < studyCount_; ++i) {
        const double z = tested.value[i] / tested.stdError[i];
        const double significance = TwoSidedNormalPValue(z).value;
        double naturalZ = z;
        double naturalSignificance = significance;
        if (isRatio) {
            log_.zValue.push_back(z);
            log_.significance.push_back(significance);
            naturalZ = RatioOf(z);
            naturalSignificance = RatioOf(significance);
        }
        natural_.zValue.push_back(naturalZ);
        natural_.significance.push_back(naturalSignificance);
    }
}

} // namespace MA_NAMESPACE
