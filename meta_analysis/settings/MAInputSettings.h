#pragma once

#include "meta_analysis/platform/common/Export.h"

namespace MA_NAMESPACE {

/// Variables of studies of one group and of two groups' rates, and of what studies report in place of an
/// effect size with its standard error, or of means with standard deviations. The conversions are those of
/// `effectsize/MAConversions.h`. A variable is given by its position in the host's variable list; -1, the
/// default of every one, means not given.
class META_ANALYSIS_EXPORT MAInputSettings
{
public:
    // ---- Outcomes of one group, and rates of two groups ----

    /// Events of one group, with its non-events or its size (a proportion; the non-events are used when both
    /// are given) or with its person-time (a rate).
    void SetEventsIndex(int value) { eventsIndex_ = value; }
    int GetEventsIndex() const { return eventsIndex_; }
    void SetNonEventsIndex(int value) { nonEventsIndex_ = value; }
    int GetNonEventsIndex() const { return nonEventsIndex_; }
    void SetTimeIndex(int value) { timeIndex_ = value; }
    int GetTimeIndex() const { return timeIndex_; }
    /// Size of one group, of a proportion, a correlation or a mean.
    void SetSizeIndex(int value) { sizeIndex_ = value; }
    int GetSizeIndex() const { return sizeIndex_; }
    /// Correlation coefficient.
    void SetCorrelationIndex(int value) { correlationIndex_ = value; }
    int GetCorrelationIndex() const { return correlationIndex_; }
    /// Mean and standard deviation of one group.
    void SetMeanIndex(int value) { meanIndex_ = value; }
    int GetMeanIndex() const { return meanIndex_; }
    void SetStdDevIndex(int value) { stdDevIndex_ = value; }
    int GetStdDevIndex() const { return stdDevIndex_; }
    /// Person-time of the groups, beside their events (`SetTreatmentSuccessIndex`,
    /// `SetControlSuccessIndex` of `MAModelSettings`).
    void SetTreatmentTimeIndex(int value) { treatmentTimeIndex_ = value; }
    int GetTreatmentTimeIndex() const { return treatmentTimeIndex_; }
    void SetControlTimeIndex(int value) { controlTimeIndex_ = value; }
    int GetControlTimeIndex() const { return controlTimeIndex_; }

    // ---- Ready-made effect sizes without a standard error ----

    /// Confidence limits of the effect size. A study has its standard error from the first of these that is
    /// given and not missing: the variance (or, where that variable is not given, the standard error), both
    /// limits, the p-value. Warning `INTERVAL_ASYMMETRIC`.
    void SetInputCILowerIndex(int value) { inputCILowerIndex_ = value; }
    int GetInputCILowerIndex() const { return inputCILowerIndex_; }
    void SetInputCIUpperIndex(int value) { inputCIUpperIndex_ = value; }
    int GetInputCIUpperIndex() const { return inputCIUpperIndex_; }
    /// Confidence level of these limits, a fraction between 0 and 1; default 0.95. Another level leaves no
    /// study with limits alone: `EXCLUSION_LEVEL_OUTSIDE`.
    void SetInputCILevel(double value) { inputCILevel_ = value; }
    double GetInputCILevel() const { return inputCILevel_; }
    /// Decimals that estimate and limits have in print, the most of the three, by which INTERVAL_ASYMMETRIC
    /// allows for rounding. Not given, or missing in a record: as many as the values need, which counts no
    /// trailing zeros and so allows for more.
    void SetInputDecimalsIndex(int value) { inputDecimalsIndex_ = value; }
    int GetInputDecimalsIndex() const { return inputDecimalsIndex_; }
    /// Two-sided p-value of the effect size.
    void SetInputPValueIndex(int value) { inputPValueIndex_ = value; }
    int GetInputPValueIndex() const { return inputPValueIndex_; }
    /// Effect sizes and limits are ratios on the natural scale, of which the logarithms are analysed; default
    /// false. Variances and standard errors are those of the logarithms in either case.
    void SetInputIsRatio(bool value) { inputIsRatio_ = value; }
    bool GetInputIsRatio() const { return inputIsRatio_; }

    // ---- Medians in place of means and standard deviations ----

    // A group without a mean or a standard deviation has both from its median with quartiles, with minimum
    // and maximum, or with all four. Warning `SUMMARY_SKEWED`: the conversion supposes a normal distribution.

    /// Group medians.
    void SetTreatmentMedianIndex(int value) { treatmentMedianIndex_ = value; }
    int GetTreatmentMedianIndex() const { return treatmentMedianIndex_; }
    void SetControlMedianIndex(int value) { controlMedianIndex_ = value; }
    int GetControlMedianIndex() const { return controlMedianIndex_; }
    /// Lower quartiles.
    void SetTreatmentQ1Index(int value) { treatmentQ1Index_ = value; }
    int GetTreatmentQ1Index() const { return treatmentQ1Index_; }
    void SetControlQ1Index(int value) { controlQ1Index_ = value; }
    int GetControlQ1Index() const { return controlQ1Index_; }
    /// Upper quartiles.
    void SetTreatmentQ3Index(int value) { treatmentQ3Index_ = value; }
    int GetTreatmentQ3Index() const { return treatmentQ3Index_; }
    void SetControlQ3Index(int value) { controlQ3Index_ = value; }
    int GetControlQ3Index() const { return controlQ3Index_; }
    /// Minima.
    void SetTreatmentMinIndex(int value) { treatmentMinIndex_ = value; }
    int GetTreatmentMinIndex() const { return treatmentMinIndex_; }
    void SetControlMinIndex(int value) { controlMinIndex_ = value; }
    int GetControlMinIndex() const { return controlMinIndex_; }
    /// Maxima.
    void SetTreatmentMaxIndex(int value) { treatmentMaxIndex_ = value; }
    int GetTreatmentMaxIndex() const { return treatmentMaxIndex_; }
    void SetControlMaxIndex(int value) { controlMaxIndex_ = value; }
    int GetControlMaxIndex() const { return controlMaxIndex_; }

private:
    int eventsIndex_ = -1;
    int nonEventsIndex_ = -1;
    int timeIndex_ = -1;
    int sizeIndex_ = -1;
    int correlationIndex_ = -1;
    int meanIndex_ = -1;
    int stdDevIndex_ = -1;
    int treatmentTimeIndex_ = -1;
    int controlTimeIndex_ = -1;
    int inputCILowerIndex_ = -1;
    int inputCIUpperIndex_ = -1;
    double inputCILevel_ = 0.95;
    int inputDecimalsIndex_ = -1;
    int inputPValueIndex_ = -1;
    bool inputIsRatio_ = false;
    int treatmentMedianIndex_ = -1;
    int controlMedianIndex_ = -1;
    int treatmentQ1Index_ = -1;
    int controlQ1Index_ = -1;
    int treatmentQ3Index_ = -1;
    int controlQ3Index_ = -1;
    int treatmentMinIndex_ = -1;
    int controlMinIndex_ = -1;
    int treatmentMaxIndex_ = -1;
    int controlMaxIndex_ = -1;
};

} // namespace MA_NAMESPACE
