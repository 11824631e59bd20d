#pragma once

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/platform/regression/KXModelEffect.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <cmath>
#include <set>
#include <vector>

namespace MA_NAMESPACE {

/// One model effect in the design matrix: its columns, and how a record is coded into them.
///
/// An effect of covariates alone has one column, the product of their powers. An effect with factors has
/// one column per combination of their levels that occurs in the data, in ascending order of the level
/// vectors, first factor first; a record has the product of the effect's covariates (1 without any) in the
/// column of its combination and 0 elsewhere. The reference level of a factor counts as its last. Columns
/// that others determine are left to the fit, which finds them redundant.
class MADesignMatrixEffect
{
public:
    MADesignMatrixEffect(const KXModelEffect& effect, const MARegSettings& settings);

    /// First pass: records the combination of levels of the record.
    void CollectLevels(const Record& record);

    /// After the first pass: fixes the columns, from `startColumn` on.
    void FixColumns(int startColumn);

    /// Codes the record into a row, which has zeros in the columns of the effect. False when the record has
    /// no column, or its covariate product is missing or not finite. Inline, because it is called for each
    /// effect of each record.
    bool Code(const Record& record, double* row) const;

    bool HasFactors() const { return !factors_.empty(); }
    /// Whether each factor with a reference level has it in some combination.
    bool HasReferenceLevels() const;
    int GetStart() const { return start_; }
    int GetSize() const { return size_; }
    /// The combinations that occur, in column order; empty without factors.
    const std::vector<std::vector<int>>& GetCombinations() const { return combinations_; }

    void Display() const;

private:
    double CovariateProduct(const Record& record) const;
    int ColumnOf(const Record& record) const;
    int CompareLevels(const std::vector<int>& combination, const Record& record) const;
    int RankOf(std::size_t factor, int level) const;
    void DisplayDictionary() const;

    std::vector<int> factors_;
    std::vector<int> references_; ///< a level a factor, -1 for none
    std::vector<int> covariates_;
    std::vector<int> multiplicities_;
    int soleCovariate_ = -1; ///< of an effect that is one covariate as it stands, which most are
    int start_ = -1;
    int size_ = 1;
    std::set<std::vector<int>> collected_; ///< ranks of levels, during the first pass
    std::vector<int> levels_; ///< ranks of those of its record; a member so that its memory is used again
    std::vector<std::vector<int>> combinations_;
};

inline bool MADesignMatrixEffect::Code(const Record& record, double* row) const
{
    const int column = HasFactors() ? ColumnOf(record) : start_;
    if (column < 0)
        return false;
    const double product = soleCovariate_ >= 0 ? record.Get(soleCovariate_) : CovariateProduct(record);
    row[column] = product;
    return std::isfinite(product) && !KXMV::IsMissing(product);
}

} // namespace MA_NAMESPACE
