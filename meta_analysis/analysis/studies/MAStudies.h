#pragma once

#include "meta_analysis/analysis/studies/MASelection.h"
#include "meta_analysis/effectsize/MAMeans.h"
#include "meta_analysis/effectsize/MARates.h"
#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/inference/MAEstimate.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAConst.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// What describes the precision of a study's effect size.
struct MAStudyTest
{
    double stdError = KXMV::Missing();
    double zValue = KXMV::Missing();
    double pValue = KXMV::Missing();
    double ciLower = KXMV::Missing();
    double ciUpper = KXMV::Missing();
};

/// A study's effect size on the ratio scale. Variance and standard error are the exponentials of those on the
/// log scale: they serve display, not computation.
struct MAStudyRatio
{
    double effectSize = KXMV::Missing();
    double variance = KXMV::Missing();
    double stdError = KXMV::Missing();
    double ciLower = KXMV::Missing();
    double ciUpper = KXMV::Missing();
};

/// The outcome of a study's groups, on the scale of the analysis.
struct MAGroupOutcomes
{
    double control;
    double treatment;
};

/// How the means and standard deviations of a study's groups came from what it reports.
struct MAGroupConversions
{
    MAConst::CONVERSION treatment;
    MAConst::CONVERSION control;
};

/// The valid studies of an analysis: parallel columns, one entry a study, in record order.
///
/// A column that an analysis does not use is empty; every other has as many entries as there are studies.
struct MAStudies
{
    std::vector<int> recordNumber; ///< position of the study's record in the host's data, from 0
    std::vector<double> sampleSize;

    std::vector<MATable> tables;     ///< raw input of binary outcomes, as read
    std::vector<MAMeans> means;      ///< raw input of continuous outcomes
    std::vector<MAGroupRates> rates; ///< raw input of two groups' rates, as read

    /// The zero-count constant that the counts of a proportion or rate received, or 0.
    std::vector<double> addedToCounts;

    std::vector<MAConst::CONVERSION> effectConversions; ///< while the settings name such variables
    std::vector<MAGroupConversions> groupConversions;   ///< likewise

    std::vector<double> effectSize; ///< on the analysis scale: log for ratio measures
    std::vector<double> variance;
    std::vector<MAStudyTest> tests;
    std::vector<MAStudyRatio> ratios;           ///< where there is a ratio scale
    std::vector<MAGroupOutcomes> groupOutcomes; ///< of tables, but for Peto odds ratios

    std::vector<double> groupValue; ///< of the subgroup variable; `MAConst::overallGroup` when there is none
    std::vector<double> cumulativeValue;
    /// Whether a study is in a group, and in the steps of the groups; empty when every study is. One is not
    /// when it has no value of a variable whose missing values the settings omit.
    std::vector<bool> isGrouped;
    std::vector<std::vector<double>> contrastCoefficients; ///< one column per contrast

    /// Makes room for what is read of the first studies: few meta-analyses have more, and each column then
    /// takes its memory at once.
    static constexpr std::size_t expectedCount = 16;

    std::size_t Count() const noexcept { return effectSize.size(); }
    bool IsGrouped(std::size_t study) const { return isGrouped.empty() || isGrouped[study]; }
    bool HasUngrouped() const noexcept { return !isGrouped.empty(); }

    /// Removes the studies whose entry in `kept` is false from every column that has them. The outcomes of
    /// the groups, which a plot shows for all studies or not at all, go altogether.
    void Keep(const std::vector<bool>& kept);
};

inline MAStudyTest TestOf(const MAEstimate& estimate)
{
    return {estimate.stdError, estimate.statistic, estimate.pValue.value, estimate.ciLower, estimate.ciUpper};
}

inline MAStudyRatio StudyRatioOf(const MAEstimate& ratio)
{
    return {ratio.estimate, ratio.variance, ratio.stdError, ratio.ciLower, ratio.ciUpper};
}

/// All studies, in study order.
MASelection AllOf(const MAStudies& studies);

} // namespace MA_NAMESPACE
