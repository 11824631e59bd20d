#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/platform/regression/KXFactorCounts.h"
#include "meta_analysis/regression/design/MADPStrategy.h"
#include "meta_analysis/regression/design/MADataStats.h"
#include "meta_analysis/regression/design/MADesignMatrixEffect.h"
#include "meta_analysis/regression/design/MADesignRow.h"
#include "meta_analysis/regression/design/MAOWStrategy.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace MA_NAMESPACE {

class MAOrthonormalColumns;

/// Turns records into the rows of a weighted regression: an intercept column where the settings ask for one,
/// then the columns of the model effects, in order; the dependent value; and the omega weight.
///
/// Calling order: `ReadFirstPass` over all records (statistics, levels of the factors, then the columns are
/// fixed), `AttachIterator`, `CacheRows`. From then on every pass of an estimation runs over `Rows()`, in
/// memory. The settings are the host's and must outlive the object. The order of the virtual operations is
/// part of the interface: hosts are compiled against it.
///
/// A record is usable when its dependent is there, its omega weight is positive, each factor of the settings
/// has a level below the factor's size and each covariate of the settings is there, whether or not a model
/// effect uses it, and the cluster variable, if there is one, has a value. A record that is not usable has
/// the warning `UNUSABLE_RECORD`.
class MADesignMatrix
{
public:
    explicit MADesignMatrix(const MARegSettings& settings);
    MADesignMatrix(const MADesignMatrix&) = delete;
    MADesignMatrix& operator=(const MADesignMatrix&) = delete;
    virtual ~MADesignMatrix();

    /// Whether the model effects have variables, and all of them are factors or covariates of the settings.
    bool HasKnownEffects() const;
    /// After the first pass: whether an effect has each factor with a reference level, and a usable record
    /// the level.
    bool HasReferenceLevels() const;

    /// Builds the row of a record. Warning `UNUSABLE_RECORD`: the row is unchanged.
    virtual KXStatus GetRow(const Record& record, MADesignRow& row, bool skipDependentAndWeight) const;

    /// Writes statistics, counts and effects to the debug display.
    virtual void Display() const;

    /// First pass: adds one record to the statistics and levels. Warning `UNUSABLE_RECORD`.
    virtual KXStatus Update(const Record& record);

    /// Warning `UNUSABLE_RECORD`, or OK. Without dependent and weight, only the predictors are checked.
    virtual KXStatus CheckRecord(const Record& record, bool skipDependentAndWeight) const;

    /// The whole first pass over a started iterator; fixes the columns at its end. Error `ITERATOR_FAILED`
    /// when the iterator fails or the host cancels. Warning `UNUSABLE_RECORD` when a record was not usable.
    KXStatus ReadFirstPass(MultiPassRecordIter& records);

    void AttachIterator(MultiPassRecordIter& records);
    /// Rewinds the attached iterator. Error `ITERATOR_FAILED` when it cannot.
    KXStatus Rewind();
    /// Reads the attached iterator from its start into `Rows()`. Rows with a bad effect, without a study, or
    /// with predictors whose weighted squares cannot be represented are left out, with the same warning.
    /// Errors as `ReadFirstPass`; `ITERATOR_FAILED` also when there are more or fewer records than in the
    /// first pass.
    KXStatus CacheRows();

    /// Takes these rows in place of the cached ones, with columns as many as the settings make, and in the
    /// memory of the rows before where that suffices.
    void SetRows(const MADesignRows& rows);

    /// Whether the rows are cached, so that a regression can be fitted.
    bool IsReady() const { return rowsCached_; }
    const MADesignRows& Rows() const { return rows_; }
    /// The columns of `Rows()` made orthonormal, once they are cached; redundancy is decided by the
    /// computational tolerance of the settings.
    const MAOrthonormalColumns& Columns() const { return *columns_; }

    /// Mean variance of the rows, once they are cached. Variances are judged negligible against it.
    double MeanVariance() const { return meanVariance_; }

    /// The design of all rows but one, once they are cached: with the same effects and columns, of which
    /// others may be redundant. It has no records.
    std::unique_ptr<MADesignMatrix> Without(std::size_t row) const;

    const MARegSettings& GetSettings() const { return *settings_; }
    int GetParamSize() const { return paramSize_; }
    bool HasIntercept() const { return hasIntercept_; }
    const std::vector<MADesignMatrixEffect>& GetEffects() const { return effects_; }
    /// Counts over the factors of the settings.
    const KXFactorCounts& GetFactorCounts() const { return factorCounts_; }
    long GetTotalRecords() const { return totalRecords_; }

private:
    bool HasDependentAndWeight(const Record& record) const;
    bool HasCluster(const Record& record) const;
    bool HasPredictors(const Record& record) const;
    bool HasUsableLevels(const Record& record) const;
    bool HasCovariates(const Record& record) const;
    void CountLevels(const Record& record);
    void FixColumns();
    KXStatus ReadRows();
    void FinishRows();
    bool CacheRow(const Record& record);
    bool CodePredictors(const Record& record, double* row) const;
    void ApplyStudy(const Record& record, MADesignRow& row) const;

    const MARegSettings* settings_;
    std::vector<int> factors_;
    std::vector<int> factorSizes_;
    std::vector<int> covariates_;
    std::unique_ptr<MADPSingle> dependent_; ///< null without a dependent
    std::unique_ptr<IMAOWStrategy> omegaWeight_;
    KXFactorCounts factorCounts_;
    MADataStats statistics_;
    long totalRecords_ = 0;
    long completeRecords_ = 0;
    std::vector<long> unusableRecords_; ///< numbers of the records that later passes leave out
    double completeFrequency_ = 0.0;    ///< sum of the weights of complete records, 1 for each
    int paramSize_ = 0;
    std::vector<MADesignMatrixEffect> effects_;
    bool hasIntercept_;
    bool columnsFixed_ = false;
    MultiPassRecordIter* records_ = nullptr; ///< attached, not owned
    MADesignRows rows_;
    std::unique_ptr<MAOrthonormalColumns> columns_;
    double meanVariance_ = 0.0;
    bool rowsCached_ = false;
};

} // namespace MA_NAMESPACE
