#include "meta_analysis/regression/MADesignMatrix.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/regression/FactorLevel.h"
#include "meta_analysis/regression/MAProgress.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

const KXStatus unusableRecord(MAStatusCode::UNUSABLE_RECORD, true);

std::unique_ptr<IMADPStrategy> DependentStrategy(const MARegSettings& settings)
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

} // namespace

MADesignMatrix::MADesignMatrix(const MARegSettings& settings)
    : settings_(&settings),
      factors_(settings.GetFactors()),
      factorSizes_(settings.GetFactorSizes()),
      covariates_(settings.GetCovariates()),
      dependent_(DependentStrategy(settings)),
      omegaWeight_(OmegaWeightStrategy(settings)),
      factorCounts_(factors_, factorSizes_, settings.GetFreqWeightVar(), settings.GetDependent()),
      effectFactorCounts_(settings.GetEffectFactors(), settings.GetEffectFactorSizes(),
                          settings.GetFreqWeightVar(), settings.GetDependent()),
      statistics_(covariates_, -1, settings.GetRegrWeightVar(), settings.GetFreqWeightVar(),
                  settings.GetDependent()),
      hasIntercept_(settings.GetInterceptUse())
{
    for (const KXModelEffect& effect : settings.GetModelEffects())
        effects_.emplace_back(effect, factors_, factorSizes_);
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

KXStatus MADesignMatrix::CheckRecord(const Record& record, bool skipDependentAndWeight) const
{
    if (!skipDependentAndWeight) {
        if (dependent_ == nullptr || !dependent_->check(record) || !omegaWeight_->check(record))
            return unusableRecord;
    }
    return HasUsableLevels(record) && HasCovariates(record) ? KXStatus() : unusableRecord;
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
    if (!usable.IsOK())
        return usable;
    ++completeRecords_;
    completeFrequency_ += 1.0;
    statistics_.Update(record);
    for (MADesignMatrixEffect& effect : effects_)
        effect.CollectLevels(record);
    factorCounts_.Update(record);
    effectFactorCounts_.Update(record);
    return usable;
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
    if (hasIntercept_)
        row.predictors[0] = 1.0;
    for (const MADesignMatrixEffect& effect : effects_) {
        if (!effect.Code(record, row.predictors))
            row.isBad = true;
    }
    if (dependent_ != nullptr)
        dependent_->apply(record, row);
    omegaWeight_->apply(record, row);
    return usable;
}

void MADesignMatrix::AttachIterator(MultiPassRecordIter& records)
{
    records_ = &records;
}

KXStatus MADesignMatrix::Rewind()
{
    return records_ != nullptr && records_->Reset() ? KXStatus() : KXStatus(MAStatusCode::ITERATOR_FAILED);
}

KXStatus MADesignMatrix::NextRow(MADesignRow& row, bool skipDependentAndWeight, bool& atEnd)
{
    const Record* record = records_ == nullptr ? nullptr : records_->Next();
    atEnd = record == nullptr;
    return atEnd ? KXStatus() : GetRow(*record, row, skipDependentAndWeight);
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
    rowsCached_ = !read.IsError();
    return read;
}

KXStatus MADesignMatrix::ReadRows()
{
    MAProgress progress(*settings_, settings_->GetRecProgressListener());
    MADesignRow row;
    KXStatus result;
    long recordCount = 0;
    for (bool atEnd = false;; ++recordCount) {
        const KXStatus usable = NextRow(row, false, atEnd);
        if (atEnd)
            break;
        if (usable.IsOK() && !row.isBad && row.HasStudy())
            CacheRow(row);
        else
            result = unusableRecord;
        if (!progress.Step())
            return KXStatus(MAStatusCode::ITERATOR_FAILED);
    }
    const bool isSound = records_->GetError() == 0 && recordCount == totalRecords_;
    return isSound ? result : KXStatus(MAStatusCode::ITERATOR_FAILED);
}

void MADesignMatrix::CacheRow(const MADesignRow& row)
{
    for (const double predictor : row.predictors)
        rows_.cells.push_back(predictor);
    rows_.cells.push_back(row.dependent);
    rows_.weights.push_back(row.omegaWeight);
    rows_.variances.push_back(1.0 / row.omegaWeight);
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
