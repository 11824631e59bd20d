#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <array>
#include <string>
#include <string_view>

namespace host {

/// A measure of effect, as reports and pictures call it.
struct Measure
{
    std::string name;   ///< "odds ratio"
    std::string symbol; ///< "OR"
    bool isRatio;       ///< analysed on the log scale

    /// The measure under another name, which is its symbol too.
    Measure Labelled(const std::string& label) const { return {label, label, isRatio}; }

    /// The symbol and the name on the scale of the analysis: "log OR" for a ratio, else as they are.
    std::string AnalysisSymbol() const { return OnAnalysisScale(symbol); }
    std::string AnalysisName() const { return OnAnalysisScale(name); }

private:
    std::string OnAnalysisScale(const std::string& text) const { return isRatio ? "log " + text : text; }
};

/// A measure of 2x2 tables, with the word of --effect. The library's table of measures knows the scale.
struct BinaryMeasure
{
    std::string_view name;
    MAConst::BINESTYPE value;
    const char* title;         ///< "odds ratio"
    const char* symbol;        ///< "OR"
    const char* groupQuantity; ///< what the measure compares between the groups
    const char* tablePooling;  ///< the method that pools the tables themselves
};

/// A measure of two groups' means, with the word of --effect. None is a ratio.
struct ContinuousMeasure
{
    std::string_view name;
    MAConst::CONTESTYPE value;
    const char* title;
    const char* symbol;
};

// Options, reports, pictures and JSON read these tables.

inline constexpr std::array BINARY_MEASURES{
    BinaryMeasure{"odds-ratio", MAConst::BIN_ODDS_RATIO, "odds ratio", "OR", "odds", "Mantel-Haenszel"},
    BinaryMeasure{"peto", MAConst::BIN_PETO_ODDS_RATIO, "Peto odds ratio", "Peto OR", "risk", "Peto"},
    BinaryMeasure{"risk-ratio", MAConst::BIN_RISK_RATIO, "risk ratio", "RR", "risk", "Mantel-Haenszel"},
    BinaryMeasure{"risk-difference", MAConst::BIN_RISK_DIFFERENCE, "risk difference", "RD", "risk",
                  "Mantel-Haenszel"},
};
static_assert(HasEachEnumerator<BINARY_MEASURES>());

inline constexpr std::array CONTINUOUS_MEASURES{
    ContinuousMeasure{"cohens-d", MAConst::CONT_COHENS_D, "Cohen's d", "d"},
    ContinuousMeasure{"mean-difference", MAConst::CONT_MEAN_DIFFERENCE, "mean difference", "MD"},
    ContinuousMeasure{"hedges-g", MAConst::CONT_HEDGES_G, "Hedges' g", "g"},
    ContinuousMeasure{"glass-delta", MAConst::CONT_GLASS_DELTA, "Glass's delta", "delta"},
};
static_assert(HasEachEnumerator<CONTINUOUS_MEASURES>());

bool IsBinary(const MA_NAMESPACE::MAModelSettings& settings);

Measure MeasureOf(MAConst::BINESTYPE type);
/// The measure of an analysis, by its outcome.
Measure MeasureOf(const MA_NAMESPACE::MAModelSettings& settings);

/// The word of --effect for it.
std::string MeasureName(const MA_NAMESPACE::MAModelSettings& settings);

/// Sets the measure of the outcome by its word. Throws UnusableInput when the outcome has none of this name.
void SetMeasure(MA_NAMESPACE::MAModelSettings& settings, std::string_view name);

} // namespace host
