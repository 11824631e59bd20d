#pragma once

#include "host/report/CautionWording.h"
#include "host/report/ModelRows.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// An analysis, and its models, which most rules go through.
struct CautionedAnalysis
{
    const AnalysisData& data;
    std::vector<ModelRow> models;
    std::vector<double> stdErrors; ///< of the studies
    /// That of the studies' own intervals, which are by the normal distribution.
    double normalQuantile =
        (data.base.GetCIUpper().front() - data.base.GetCILower().front()) / (2 * stdErrors.front());

    std::size_t StudyCount() const { return models.back().studies.size(); }
    /// Whether tau² of the model is its own.
    bool HasOwnTau2(const ModelRow& model) const
    {
        return IsRandom(data.settings) && model.studies.size() > 1 && HasValue(model.tau2) &&
               (model.isOverall || !data.settings.GetCommonTau2());
    }
    std::string Percent(double fraction) const
    {
        return PercentText(fraction, data.numbers.PercentDecimals(1));
    }
    std::string Interval(double lower, double upper) const
    {
        return fmt::format("[{}, {}]", data.EffectText(lower), data.EffectText(upper));
    }
};

/// What the models of which the condition holds are described by, then the explanation; empty without any.
template <class Condition, class Description>
std::string OfModels(const CautionedAnalysis& subject, const Condition& holds, const Description& describe,
                     const std::string& explanation)
{
    std::vector<std::string> texts;
    for (const ModelRow& model : subject.models)
        if (holds(model))
            texts.push_back((model.label.empty() ? "" : model.label + ": ") + describe(model));
    return texts.empty() ? "" : fmt::format("{}: {}", Listed(texts), explanation);
}

// The rules that depend on the measure.

std::string TestOfOddsRatios(const CautionedAnalysis& subject);
std::string FarPetoOddsRatio(const CautionedAnalysis& subject);
std::string CorrectedZeros(const CautionedAnalysis& subject);
std::string BackTransformedSizes(const CautionedAnalysis& subject);
std::string ImpossibleLimits(const CautionedAnalysis& subject);

} // namespace host
