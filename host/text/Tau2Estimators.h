#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAConst.h"

#include <array>
#include <string>
#include <string_view>

namespace host {

/// An estimator of the between-study variance, with the word of --tau2.
struct Tau2Estimator
{
    std::string_view name;
    MAConst::TAU2ESTIMATOR value;
    const char* regressionCode; ///< of MARegSettings::SetEstTauType
    const char* description;    ///< "restricted maximum likelihood"
    bool hasLikelihood;         ///< and with it a profile-likelihood interval
    bool iterates;              ///< within the iteration limits, unless the search is global
};

/// Each estimator stands here once: options, reports and JSON read this table.
inline constexpr std::array TAU2_ESTIMATORS{
    Tau2Estimator{"reml", MAConst::TAU2_REML, "REML", "restricted maximum likelihood", true, true},
    Tau2Estimator{"he", MAConst::TAU2_HE, "HE", "Hedges", false, false},
    Tau2Estimator{"hs", MAConst::TAU2_HS, "HS", "Hunter-Schmidt", false, false},
    Tau2Estimator{"dl", MAConst::TAU2_DL, "DL", "DerSimonian-Laird", false, false},
    Tau2Estimator{"sj", MAConst::TAU2_SJ, "SJ", "Sidik-Jonkman", false, false},
    Tau2Estimator{"ml", MAConst::TAU2_ML, "ML", "maximum likelihood", true, true},
    Tau2Estimator{"eb", MAConst::TAU2_EB, "EB", "empirical Bayes", false, true},
};

inline const Tau2Estimator& EstimatorOf(MAConst::TAU2ESTIMATOR estimator)
{
    return RowOf(TAU2_ESTIMATORS, estimator);
}

/// The names of the estimators with a property, each behind `prefix`: "reml, ml and eb".
std::string NamesOfEstimators(bool Tau2Estimator::*property, std::string_view prefix = {});

} // namespace host
