#include "meta_analysis/regression/design/MADesignMatrixEffect.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXPower.h"
#include "meta_analysis/platform/regression/FactorLevel.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace MA_NAMESPACE {

namespace {

/// Of a reference level: behind all others.
constexpr int lastRank = std::numeric_limits<int>::max();

} // namespace

MADesignMatrixEffect::MADesignMatrixEffect(const KXModelEffect& effect, const MARegSettings& settings)
    : factors_(effect.GetFactors()),
      covariates_(effect.GetCovariates()),
      multiplicities_(effect.GetCovMultiplicities())
{
    if (factors_.empty() && covariates_.size() == 1 && multiplicities_.front() == 1)
        soleCovariate_ = covariates_.front();
    for (const int factor : factors_)
        references_.push_back(settings.GetReferenceLevel(factor));
}

/// The place of a level in the order of the columns.
int MADesignMatrixEffect::RankOf(std::size_t factor, int level) const
{
    return level == references_[factor] ? lastRank : level;
}

void MADesignMatrixEffect::CollectLevels(const Record& record)
{
    if (!HasFactors())
        return;
    levels_.clear();
    for (std::size_t i = 0; i < factors_.size(); ++i)
        levels_.push_back(RankOf(i, FactorLevel(record.Get(factors_[i]))));
    if (collected_.count(levels_) == 0) // insert would allocate a node before it compares
        collected_.insert(levels_);
}

void MADesignMatrixEffect::FixColumns(int startColumn)
{
    start_ = startColumn;
    if (!HasFactors())
        return;
    combinations_.assign(collected_.begin(), collected_.end());
    collected_.clear();
    size_ = static_cast<int>(combinations_.size());
    for (std::vector<int>& combination : combinations_) {
        for (std::size_t i = 0; i < combination.size(); ++i)
            combination[i] = combination[i] == lastRank ? references_[i] : combination[i];
    }
}

bool MADesignMatrixEffect::HasReferenceLevels() const
{
    for (std::size_t i = 0; i < factors_.size(); ++i) {
        const bool occurs =
            std::any_of(combinations_.begin(), combinations_.end(), [&](const std::vector<int>& combination) {
                return combination[i] == references_[i];
            });
        if (references_[i] != -1 && !occurs)
            return false;
    }
    return true;
}

/// Missing when a covariate is missing or a power or product cannot be represented.
double MADesignMatrixEffect::CovariateProduct(const Record& record) const
{
    double product = 1.0;
    for (std::size_t i = 0; i < covariates_.size(); ++i) {
        double factor = record.Get(covariates_[i]);
        if (multiplicities_[i] != 1 && !KXPower::Power(factor, multiplicities_[i], factor).IsOK())
            return KXMV::Missing();
        if (!KXPower::Multiply(product, factor, product).IsOK())
            return KXMV::Missing();
    }
    return product;
}

/// -1 for a combination of levels that did not occur in the first pass.
int MADesignMatrixEffect::ColumnOf(const Record& record) const
{
    const auto found = std::partition_point(
        combinations_.begin(), combinations_.end(),
        [&](const std::vector<int>& combination) { return CompareLevels(combination, record) < 0; });
    if (found == combinations_.end() || CompareLevels(*found, record) != 0)
        return -1;
    return start_ + static_cast<int>(found - combinations_.begin());
}

/// Negative, 0 or positive for a combination that comes before, equals, or comes after that of the record.
int MADesignMatrixEffect::CompareLevels(const std::vector<int>& combination, const Record& record) const
{
    for (std::size_t i = 0; i < factors_.size(); ++i) {
        const int level = FactorLevel(record.Get(factors_[i]));
        if (combination[i] != level)
            return RankOf(i, combination[i]) < RankOf(i, level) ? -1 : 1;
    }
    return 0;
}

void MADesignMatrixEffect::Display() const
{
    KXDisplay_940::DisplayText("MADesignMatrixEffect display start");
    KXDisplay_940::DisplayIV("Factors", factors_);
    KXDisplay_940::DisplayIV("Covariates", covariates_);
    KXDisplay_940::DisplayIV("Multiplicities", multiplicities_);
    KXDisplay_940::DisplayI("Start", start_);
    KXDisplay_940::DisplayI("Size", size_);
    DisplayDictionary();
    KXDisplay_940::DisplayText("MADesignMatrixEffect display end");
}

void MADesignMatrixEffect::DisplayDictionary() const
{
    std::vector<int> order;
    for (std::size_t i = 0; i < factors_.size(); ++i)
        order.push_back(static_cast<int>(i));

    KXDisplay_940::DisplayText("MADictionary display start");
    KXDisplay_940::DisplayText("Contents of the dictionary:");
    for (std::size_t i = 0; i < combinations_.size(); ++i)
        KXDisplay_940::DisplayIV(std::to_string(i), combinations_[i]);
    KXDisplay_940::DisplayI("Number of key sorting levels", static_cast<int>(factors_.size()));
    KXDisplay_940::DisplayIV("Sorting order", order);
    KXDisplay_940::DisplayIV("Original order", order);
    KXDisplay_940::DisplayText("MADictionary display end");
}

} // namespace MA_NAMESPACE
