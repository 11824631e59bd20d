#pragma once

#include "host/plots/ForestStyle.h"
#include "host/report/AnalysisData.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Of the layout that is asked for.
const ForestStyle& StyleOf(const AnalysisData& data);

/// "p = 0.03", "P < .001": two decimals, or more where fewer would show no digit or move p across 0.05.
std::string PValueInStyle(double p, const PValueStyle& style);

/// The heterogeneity of each model, of which one of a single study has none: then empty.
std::vector<std::string> HeterogeneityTexts(const AnalysisData& data);

/// The notes on the models of all studies: model, heterogeneity, test of the effect, test between groups.
std::vector<std::string> OverallNotes(const AnalysisData& data);

/// The models of the other kind, when the forest plot has both.
std::optional<AnalysisData> OtherModelOf(const AnalysisData& data);

/// The format filled with the names of the effect.
struct EffectNames
{
    std::string name;
    std::string symbol;
    std::string level;
    std::string method; ///< "IV", "M-H" or "Peto"
    std::string model;  ///< "Fixed", "Random" or "Fixed and Random"
};
std::string WithNames(const char* format, const EffectNames& names);
EffectNames NamesOfEffect(const AnalysisData& data);

} // namespace host
