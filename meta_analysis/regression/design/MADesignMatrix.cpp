#include "meta_analysis/regression/design/MADesignMatrix.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/regression/FactorLevel.h"
#include "meta_analysis/regression/design/MAOrthonormalColumns.h"
#include "meta_analysis/regression/design/MAProgress.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

const KXStatus unusableRecord(MAStatusCode::UNUSABLE_RECORD, true);

std::unique_ptr<MADPSingle> DependentStrategy(const MARegSettings& settings)
{
    if (settings.GetDependentType() != KXConst::DEPENDENT_SINGLE)
        return nullptr;
    return std::make_unique<MADPSingle>(settings.GetDependent());
}

std::unique_ptr<IMAOWStrategy> OmegaWeightStrategy(const MARegSettings& settings)
{
    if (settings.GetOMWVarIndex() < 0)
        return std::make_unique<MAOWNone>();
    return std::make_unique<MAOWVar>(settings.GetOMWVarIndex(), settings.GetOMWVarType());
}

bool AreAllIn(const std::vector<int>& variables, const std::vector<int>& known)
{
    return std::all_of(variables.begin(), variables.end(), [&](int variable) {
        return std::find(known.begin(), known.end(), variable) != known.end();
    });
}

/// Whether a fit can sum the weighted squares of these values.
bool HaveFiniteSquares(const double* values, std::size_t count, double weight)
{
    return std::all_of(values, values + count,
                       [weight](double value) { return std::isfinite(value * value * weight); });
}

} // namespace

MADesignMatrix::MADesignMatrix(const MARegSettings& settings)
    : settings_(&settings),
      factors_(settings.GetFactors()),
      factorSizes_(settings.GetFactorSizes()),
      covariates_(settings.GetCovariates()),
      dependent_(DependentStrategy(settings)),
      omegaWeight_(OmegaWeightStrategy(settings)),
      factorCounts_(factors_, factorSizes_, settings.GetFreqWeightVar(), settings.GetDependent()),
      statistics_(covariates_, -1, settings.GetRegrWeightVar(), settings.GetFreqWeightVar(),
                  settings.GetDependent()),
      hasIntercept_(settings.GetInterceptUse()),
      columns_(std::make_unique<MAOrthonormalColumns>())
{
    for (const KXModelEffect& effect : settings.GetModelEffects())
        effects_.emplace_back(effect, settings);
}

MADesignMatrix::~MADesignMatrix() = default;

bool MADesignMatrix::HasKnownEffects() const
{
    const std::vector<KXModelEffect>& effects = settings_->GetModelEffects();
    return std::all_of(effects.begin(), effects.end(), [this](const KXModelEffect& effect) {
        return !effect.IsIntercept() && AreAllIn(effect.GetFactors(), factors_) &&
               AreAllIn(effect.GetCovariates(), covariates_);
    });
}

bool MADesignMatrix::HasReferenceLevels() const
{
    const bool areUsed =
        std::all_of(settings_->GetReferenceLevels().begin(), settings_->GetReferenceLevels().end(),
                    [this](const auto& of) {
                        return of.second == -1 || AreAllIn({of.first}, settings_->GetEffectFactors());
                    });
    return areUsed && std::all_of(effects_.begin(), effects_.end(), [](const MADesignMatrixEffect& effect) {
               return effect.HasReferenceLevels();
           });
}

KXStatus MADesignMatrix::CheckRecord(const Record& record, bool skipDependentAndWeight) const
{
    const bool isUsable = HasPredictors(record) &&
                          (skipDependentAndWeight || (HasDependentAndWeight(record) && HasCluster(record)));
    return isUsable ? KXStatus() : unusableRecord;
}

bool MADesignMatrix::HasDependentAndWeight(const Record& record) const
{
    return dependent_ != nullptr && dependent_->check(record) && omegaWeight_->check(record);
}

bool MADesignMatrix::HasCluster(const Record& record) const
{
    const int cluster = settings_->GetCluster();
    return cluster < 0 || !(KXMV::IsMissing(record.Get(cluster)) || std::isnan(record.Get(cluster)));
}

bool MADesignMatrix::HasPredictors(const Record& record) const
{
    return HasUsableLevels(record) && HasCovariates(record);
}

bool MADesignMatrix::HasUsableLevels(const Record& record) const
{
    for (std::size_t i = 0; i < factors_.size(); ++i) {
        const double value = record.Get(factors_[i]);
        if (KXMV::IsMissing(value))
            return false;
        const int level = FactorLevel(value);
        if (level < 0 || level >= factorSizes_[i])
            return false;
    }
    return true;
}

bool MADesignMatrix::HasCovariates(const Record& record) const
{
    return std::none_of(covariates_.begin(), covariates_.end(), [&](int covariate) {
        const double value = record.Get(covariate);
        return KXMV::IsMissing(value) || std::isnan(value);
    });
}

KXStatus MADesignMatrix::Update(const Record& record)
{
    ++totalRecords_;
    const KXStatus usable = CheckRecord(record, false);
    if (!usable.IsOK()) {
        unusableRecords_.push_back(totalRecords_ - 1);
        return usable;
    }
    ++completeRecords_;
    completeFrequency_ += 1.0;
    statistics_.Update(record);
    if (!factors_.empty())
        CountLevels(record);
    return usable;
}

void MADesignMatrix::CountLevels(const Record& record)
{
    for (MADesignMatrixEffect& effect : effects_)
        effect.CollectLevels(record);
    factorCounts_.Update(record);
}

KXStatus MADesignMatrix::ReadFirstPass(MultiPassRecordIter& records)
{
    MAProgress progress(*settings_, settings_->GetRecProgressListener());
    KXStatus result;
    while (const Record* record = records.Next()) {
        const KXStatus usable = Update(*record);
        if (!usable.IsOK())
            result = usable;
        if (!progress.Step())
            return KXStatus(MAStatusCode::ITERATOR_FAILED);
    }
    if (records.GetError() != 0)
        return KXStatus(MAStatusCode::ITERATOR_FAILED);
    FixColumns();
    return result;
}

void MADesignMatrix::FixColumns()
{
    paramSize_ = hasIntercept_ ? 1 : 0;
    for (MADesignMatrixEffect& effect : effects_) {
        effect.FixColumns(paramSize_);
        paramSize_ += effect.GetSize();
    }
    columnsFixed_ = true;
}

KXStatus MADesignMatrix::GetRow(const Record& record, MADesignRow& row, bool skipDependentAndWeight) const
{
    const KXStatus usable = CheckRecord(record, skipDependentAndWeight);
    if (!usable.IsOK())
        return usable;
    row.Reset(static_cast<std::size_t>(paramSize_));
    row.isBad = !CodePredictors(record, row.predictors.data());
    ApplyStudy(record, row);
    return usable;
}

/// Codes the effects into a row of zeros; false when one could not be coded.
bool MADesignMatrix::CodePredictors(const Record& record, double* row) const
{
    if (hasIntercept_)
        row[0] = 1.0;
    bool areCoded = true;
    for (const MADesignMatrixEffect& effect : effects_)
        areCoded = effect.Code(record, row) && areCoded;
    return areCoded;
}

void MADesignMatrix::ApplyStudy(const Record& record, MADesignRow& row) const
{
    if (dependent_ != nullptr)
        dependent_->apply(record, row);
    omegaWeight_->apply(record, row);
}

void MADesignMatrix::AttachIterator(MultiPassRecordIter& records)
{
    records_ = &records;
}

KXStatus MADesignMatrix::Rewind()
{
    return records_ != nullptr && records_->Reset() ? KXStatus() : KXStatus(MAStatusCode::ITERATOR_FAILED);
}

KXStatus MADesignMatrix::CacheRows()
{
    if (!columnsFixed_ || Rewind().IsError())
        return KXStatus(MAStatusCode::ITERATOR_FAILED);
    rowsCached_ = false;
    rows_ = MADesignRows();
    rows_.columnCount = static_cast<std::size_t>(paramSize_);
    const auto expected = static_cast<std::size_t>(completeRecords_);
    rows_.cells.reserve(expected * (rows_.columnCount + 1));
    rows_.weights.reserve(expected);
    rows_.variances.reserve(expected);

    const KXStatus read = ReadRows();
    if (read.IsError())
        return read;
    FinishRows();
    columns_->ReleaseWorkspace();
    return read;
}

void MADesignMatrix::SetRows(const MADesignRows& rows)
{
    rows_ = rows;
    FinishRows();
}

void MADesignMatrix::FinishRows()
{
    columns_->Assign(rows_, hasIntercept_, settings_->GetComputationalTolerance());
    meanVariance_ = 0.0;
    for (const double variance : rows_.variances)
        meanVariance_ += variance / static_cast<double>(rows_.Count());
    rowsCached_ = true;
}

std::unique_ptr<MADesignMatrix> MADesignMatrix::Without(std::size_t row) const
{
    auto rest = std::make_unique<MADesignMatrix>(*settings_);
    rest->paramSize_ = paramSize_;
    rest->effects_ = effects_;
    rest->hasIntercept_ = hasIntercept_;
    rest->rows_ = rows_;
    rest->rows_.Erase(row);
    rest->FinishRows();
    rest->columns_->ReleaseWorkspace();
    return rest;
}

KXStatus MADesignMatrix::ReadRows()
{
    MAProgress progress(*settings_, settings_->GetRecProgressListener());
    KXStatus result;
    auto unusable = unusableRecords_.begin();
    long recordCount = 0;
    for (; const Record* record = records_->Next(); ++recordCount) {
        const bool isUsable = unusable == unusableRecords_.end() || *unusable != recordCount;
        if (!isUsable)
            ++unusable;
        if (!isUsable || !CacheRow(*record))
            result = unusableRecord;
        if (!progress.Step())
            return KXStatus(MAStatusCode::ITERATOR_FAILED);
    }
    const bool isSound = records_->GetError() == 0 && recordCount == totalRecords_;
    return isSound ? result : KXStatus(MAStatusCode::ITERATOR_FAILED);
}

/// Appends the row of a usable record. False, and nothing appended, when the record has no study to fit.
bool MADesignMatrix::CacheRow(const Record& record)
{
    MADesignRow study; // its predictors are coded where they are kept
    ApplyStudy(record, study);
    if (!study.HasStudy())
        return false;
    const std::size_t start = rows_.cells.size();
    rows_.cells.resize(start + rows_.columnCount + 1);
    double* const row = rows_.cells.data() + start;
    if (!CodePredictors(record, row) || !HaveFiniteSquares(row, rows_.columnCount, study.omegaWeight)) {
        rows_.cells.resize(start);
        return false;
    }
    row[rows_.columnCount] = study.dependent;
    rows_.weights.push_back(study.omegaWeight);
    rows_.variances.push_back(1.0 / study.omegaWeight);
    if (settings_->GetCluster() >= 0)
        rows_.clusters.push_back(record.Get(settings_->GetCluster()));
    return true;
}

void MADesignMatrix::Display() const
{
    KXDisplay_940::DisplayText("MADesignMatrix display start");
    KXDisplay_940::DisplayText("Data statistics");
    statistics_.Display();
    KXDisplay_940::DisplayI("Total number of records in data set", static_cast<int>(totalRecords_));
    KXDisplay_940::DisplayI("Number of complete records", static_cast<int>(completeRecords_));
    KXDisplay_940::DisplayI("Sum of frequency weights in complete cases",
                            static_cast<int>(completeFrequency_));
    KXDisplay_940::DisplayI("Parameter size", paramSize_);
    KXDisplay_940::DisplayText("Effects: ");
    for (const MADesignMatrixEffect& effect : effects_)
        effect.Display();
    KXDisplay_940::DisplayText("MADesignMatrix display end");
}

} // namespace MA_NAMESPACE
