#pragma once

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/platform/common/KXVarList.h"

#include <vector>

namespace MA_NAMESPACE {

/// The analysis of studies that report one group's proportion, rate, correlation or mean, or the rates of two
/// groups, by a measure of `MAConst::OUTCOMEMEASURE` (`SetOutcomeMeasure`). Ready-made effect sizes on the
/// analysis scale of such a measure go through it as well.
///
/// Calling order: fill an `MAModelSettings`, construct, `RUN`, read the getters and `GetWarnings`.
/// Pooling is by inverse variance, or, for rate ratios and rate differences of raw data under the
/// fixed-effect model with `WEIGHT_BINARY_FIXED`, by Mantel and Haenszel. In the settings, the null
/// hypothesis and the threshold of a new study's effect are on the natural scale.
///
/// The getters of the base have the analysis scale. Those with `Natural` in their name have the natural
/// scale: proportions, rates, correlations, means, ratios, and for raw values and differences the values as
/// they are. Freeman-Tukey values go back by Miller (1978), The American Statistician 32, 138, for a study at
/// its own n, for a model at the harmonic mean of n of its studies (of rates: of their times). Values beyond
/// the range of a transformation (arcsine, square root, Freeman-Tukey) are cut to the possible range. Missing
/// stays missing.
class META_ANALYSIS_EXPORT MAOutcomeModel : public MABaseModel
{
public:
    explicit MAOutcomeModel(const MAModelSettings& settings);
    MAOutcomeModel(const MAOutcomeModel&);
    MAOutcomeModel& operator=(const MAOutcomeModel&);
    ~MAOutcomeModel() override;

    /// The whole analysis of the records, afresh; returns the final status. Errors end it, and leave what was
    /// computed before: INPUT_NOT_GIVEN the measure is outside the enumeration or a variable that it needs is
    /// not given, ITERATOR_NOT_STARTED, ITERATOR_FAILED the iterator fails or the passes differ,
    /// NO_ANALYSED_STUDY trim-and-fill without studies, OUT_OF_MEMORY, and those of the pooling classes.
    /// Warning COUNTS_NOT_POOLED: Mantel-Haenszel weights where counts cannot be pooled.
    KXStatus RUN(MultiPassRecordIter& records, const KXVarList& variables);

    /// Reads the raw data, counts the records that are missing or invalid, and computes the effect sizes.
    /// Errors as `RUN`. A study whose effect the measure does not define, such as the logarithm of a
    /// proportion of 0 without a correction, is removed when the studies are completed (warning
    /// STUDIES_REMOVED).
    KXStatus ESCalc(MultiPassRecordIter& records) override;

    /// Regression of the effect sizes on their standard errors; its results are in the `GetRegBasedTest...`
    /// getters. The error of a failing test becomes the status: TOO_FEW_FOR_TEST fewer than 3 studies, and
    /// those of `MARegBaseTest`.
    KXStatus RegBasedOutcomeTest(MultiPassRecordIter& records, const KXVarList& variables);

    MAConst::OUTCOMEMEASURE GetESType() const { return settings_->GetOutcomeMeasure(); }

    /// Number of studies whose counts had the zero-count constant for their own effect sizes.
    int GetNZeroCorrected() const;
    /// Number of studies that tell nothing of a rate ratio and that pooled counts therefore leave out; 0
    /// unless counts are pooled as read.
    int GetNUninformative() const;
    /// Per model, and per group and step of a cumulative analysis: the number of studies whose counts were
    /// pooled with the constant; 0 for models that pool effect sizes.
    std::vector<int> GetNPoolCorrected() const;
    std::vector<std::vector<int>> GetCumNPoolCorrected() const;

    /// Per study, on the natural scale.
    std::vector<double> GetNaturalEffectSize() const;
    std::vector<double> GetNaturalCILower() const;
    std::vector<double> GetNaturalCIUpper() const;
    /// Per model.
    std::vector<double> GetNaturalEstEffectSize() const;
    std::vector<double> GetNaturalEstCILower() const;
    std::vector<double> GetNaturalEstCIUpper() const;
    std::vector<double> GetNaturalPILower() const;
    std::vector<double> GetNaturalPIUpper() const;
    /// Per group and step of a cumulative analysis.
    std::vector<std::vector<double>> GetCumNaturalEstES() const;
    std::vector<std::vector<double>> GetCumNaturalEstCiLower() const;
    std::vector<std::vector<double>> GetCumNaturalEstCiUpper() const;
    /// Per study: the model of all studies but that one.
    std::vector<double> GetLeaveOneOutNaturalEffectSize() const;
    std::vector<double> GetLeaveOneOutNaturalCILower() const;
    std::vector<double> GetLeaveOneOutNaturalCIUpper() const;
    /// The model of trim-and-fill; missing when that did not run.
    double GetOverallTFNaturalEffectSize() const;
    double GetOverallTFNaturalCILower() const;
    double GetOverallTFNaturalCIUpper() const;
};

} // namespace MA_NAMESPACE
