#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAChoiceNames.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MAOutcomeMeasures.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A measure of effect, as reports and pictures call it.
struct Measure
{
    std::string name;   ///< "odds ratio"
    std::string symbol; ///< "OR"
    bool isRatio;       ///< analysed on the log scale
    /// The scale of the analysis; `Log` for a ratio.
    MA_NAMESPACE::MAScale scale;
    /// Whether 0 on the scale of the analysis is no effect. There is none for one group's proportion, rate or
    /// mean.
    bool hasNoEffect = true;

    /// The measure under another name, which is its symbol too.
    Measure Labelled(const std::string& label) const { return {label, label, isRatio, scale, hasNoEffect}; }

    /// The symbol and the name on the scale of the analysis: "log OR", "logit proportion".
    std::string AnalysisSymbol() const { return OnAnalysisScale(symbol); }
    std::string AnalysisName() const { return OnAnalysisScale(name); }
    /// What a report is headed by: ratios of two groups by their name, others by that on the analysis scale.
    std::string Title() const { return isRatio && hasNoEffect ? name : AnalysisName(); }

private:
    std::string OnAnalysisScale(const std::string& text) const;
};

/// A measure of 2x2 tables, with the word of --effect, which the library has. The library's table of measures
/// knows the scale.
struct BinaryMeasure
{
    MAConst::BINESTYPE value;
    const char* title;             ///< "odds ratio"
    const char* symbol;            ///< "OR"
    const char* groupQuantity;     ///< what the measure compares between the groups
    const char* tablePooling;      ///< the method that pools the tables themselves
    const char* abbreviation = ""; ///< that --effect takes as well
    std::string_view name = MA_NAMESPACE::NameIn(MA_NAMESPACE::tableMeasureNames, value);
};

/// A measure of two groups' means, with the word of --effect. None is a ratio.
struct ContinuousMeasure
{
    MAConst::CONTESTYPE value;
    const char* title;
    const char* symbol;
    const char* abbreviation = ""; ///< that --effect takes as well
    std::string_view name = MA_NAMESPACE::NameIn(MA_NAMESPACE::meansMeasureNames, value);
};

/// A measure of one group, or of two groups' rates, with the word of --effect, which another kind of data may
/// have as well. The library's table of these measures knows data and scale.
struct OutcomeMeasure
{
    std::string_view name;
    MAConst::OUTCOMEMEASURE value;
    const char* title;
    const char* symbol;
    bool hasNoEffect;
    const char* abbreviation; ///< that --effect takes as well
};

// Options, reports, pictures and JSON read these tables.

inline constexpr std::array BINARY_MEASURES{
    BinaryMeasure{MAConst::BIN_ODDS_RATIO, "odds ratio", "OR", "odds", "Mantel-Haenszel", "OR"},
    BinaryMeasure{MAConst::BIN_PETO_ODDS_RATIO, "Peto odds ratio", "Peto OR", "risk", "Peto"},
    BinaryMeasure{MAConst::BIN_RISK_RATIO, "risk ratio", "RR", "risk", "Mantel-Haenszel", "RR"},
    BinaryMeasure{MAConst::BIN_RISK_DIFFERENCE, "risk difference", "RD", "risk", "Mantel-Haenszel", "RD"},
};
static_assert(HasEachEnumerator<BINARY_MEASURES>());

inline constexpr std::array CONTINUOUS_MEASURES{
    ContinuousMeasure{MAConst::CONT_COHENS_D, "Cohen's d", "d"},
    ContinuousMeasure{MAConst::CONT_MEAN_DIFFERENCE, "mean difference", "MD", "MD"},
    ContinuousMeasure{MAConst::CONT_HEDGES_G, "Hedges' g", "g", "SMD"},
    ContinuousMeasure{MAConst::CONT_GLASS_DELTA, "Glass's delta", "delta"},
};
static_assert(HasEachEnumerator<CONTINUOUS_MEASURES>());

inline constexpr std::array OUTCOME_MEASURES{
    OutcomeMeasure{"logit", MAConst::PROPORTION_LOGIT, "proportion", "proportion", false, "PLO"},
    OutcomeMeasure{"freeman-tukey", MAConst::PROPORTION_FREEMAN_TUKEY, "proportion", "proportion", false,
                   "PFT"},
    OutcomeMeasure{"arcsine", MAConst::PROPORTION_ARCSINE, "proportion", "proportion", false, "PAS"},
    OutcomeMeasure{"log", MAConst::PROPORTION_LOG, "proportion", "proportion", false, "PLN"},
    OutcomeMeasure{"raw", MAConst::PROPORTION_RAW, "proportion", "proportion", false, "PR"},
    OutcomeMeasure{"log", MAConst::RATE_LOG, "rate", "rate", false, "IRLN"},
    OutcomeMeasure{"square-root", MAConst::RATE_SQUARE_ROOT, "rate", "rate", false, "IRS"},
    OutcomeMeasure{"freeman-tukey", MAConst::RATE_FREEMAN_TUKEY, "rate", "rate", false, "IRFT"},
    OutcomeMeasure{"raw", MAConst::RATE_RAW, "rate", "rate", false, "IR"},
    OutcomeMeasure{"fisher-z", MAConst::CORRELATION_FISHER_Z, "correlation", "r", true, "ZCOR"},
    OutcomeMeasure{"raw", MAConst::CORRELATION_RAW, "correlation", "r", true, "COR"},
    OutcomeMeasure{"raw", MAConst::MEAN_RAW, "mean", "mean", false, "MN"},
    OutcomeMeasure{"log", MAConst::MEAN_LOG, "mean", "mean", false, "MNLN"},
    OutcomeMeasure{"rate-ratio", MAConst::RATES_RATIO, "rate ratio", "IRR", true, "IRR"},
    OutcomeMeasure{"rate-difference", MAConst::RATES_DIFFERENCE, "rate difference", "IRD", true, "IRD"},
    OutcomeMeasure{"root-rate-difference", MAConst::RATES_ROOT_DIFFERENCE, "root rate difference", "root IRD",
                   true, "IRSD"},
};
static_assert(HasEachEnumerator<OUTCOME_MEASURES>());

/// The measures of one kind of data, the default first.
std::vector<OutcomeMeasure> OutcomeMeasuresOf(MA_NAMESPACE::MAOutcomeData data);

/// Whether the measure is one of these.
bool IsMeasured(const MA_NAMESPACE::MAModelSettings& settings);
bool IsBinary(const MA_NAMESPACE::MAModelSettings& settings);

Measure MeasureOf(MAConst::BINESTYPE type);
/// The measure of an analysis, by its outcome.
Measure MeasureOf(const MA_NAMESPACE::MAModelSettings& settings);

/// The word of --effect for it.
std::string MeasureName(const MA_NAMESPACE::MAModelSettings& settings);

/// Sets the measure of the outcome by its word. Throws UnusableInput when the outcome has none of this name.
void SetMeasure(MA_NAMESPACE::MAModelSettings& settings, std::string_view name);

} // namespace host
