#pragma once

#include "support/Data.h"
#include "support/Reference.h"

/// A data set with its reference figures, and the settings for its effects: log risk ratios of the trials of
/// BCG, log odds ratios of those of magnesium, else the ready-made effects. Iterations end below a step of
/// 1e-12, and steps towards a tau² of 0 are halved as often as that takes.
struct Published
{
    explicit Published(const std::string& name) : data(name), figures(LoadReference(name))
    {
        if (figures.contains("tables")) {
            const bool hasRiskRatios = figures.contains("risk_ratio");
            settings = TableSettings(data.IndexOf("treatment_events"));
            settings.SetBinaryEstType(hasRiskRatios ? MAConst::BIN_RISK_RATIO : MAConst::BIN_ODDS_RATIO);
            figures = nlohmann::json(figures.at(hasRiskRatios ? "risk_ratio" : "log_odds_ratio"));
        } else {
            settings = EffectSettings(data.IndexOf("effect"));
        }
        settings.SetConvergenceTol(1e-12);
        settings.SetMaxStepHalving(60);
    }

    DataSet data;
    nlohmann::json figures;
    MA_NAMESPACE::MAModelSettings settings;
};

/// Effects and variances, of the trials of BCG log risk ratios, then columns of the data set.
inline Rows StudiesWith(const std::vector<std::string>& columns, const std::string& name = "bcg_vaccine")
{
    const DataSet data(name);
    Rows studies = data.Columns(columns);
    const nlohmann::json figures = LoadReference(name);
    const Rows effects = figures.contains("tables") ? Rows() : data.Columns({"effect", "variance"});
    for (std::size_t i = 0; i < studies.size(); ++i) {
        const Row effect = effects.empty() ? Row{figures.at("/tables/RR_only0/yi"_json_pointer)[i],
                                                 figures.at("/tables/RR_only0/vi"_json_pointer)[i]}
                                           : effects[i];
        studies[i].insert(studies[i].begin(), effect.begin(), effect.end());
    }
    return studies;
}

/// Of the trials of BCG, with latitude and year about their means, then other columns.
inline Rows CentredTrials(std::vector<std::string> columns = {})
{
    columns.insert(columns.begin(), {"latitude", "year"});
    Rows studies = StudiesWith(columns);
    for (Row& study : studies) {
        study[2] -= 33.46;
        study[3] -= 1966;
    }
    return studies;
}

/// The data sets with figures of trim-and-fill and of the regression on the standard error.
inline const char* const biasDataSets[] = {"bcg_vaccine", "magnesium", "passive_smoking",
                                           "teacher_expectancy", "writing_to_learn"};
