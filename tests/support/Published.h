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

/// The data sets with figures of trim-and-fill and of the regression on the standard error.
inline const char* const biasDataSets[] = {"bcg_vaccine", "magnesium", "passive_smoking",
                                           "teacher_expectancy", "writing_to_learn"};
