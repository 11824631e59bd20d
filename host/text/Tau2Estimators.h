#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAConst.h"

#include <array>
#include <string>
#include <string_view>

namespace host {

/// An estimator of the between-study variance, with the word of --tau2. The library's table of estimators has
/// the rest.
struct Tau2Estimator
{
    std::string_view name;
    MAConst::TAU2ESTIMATOR value;
    const char* description; ///< "restricted maximum likelihood"
};

/// Options, reports and JSON read this table.
inline constexpr std::array TAU2_ESTIMATORS{
    Tau2Estimator{"reml", MAConst::TAU2_REML, "restricted maximum likelihood"},
    Tau2Estimator{"he", MAConst::TAU2_HE, "Hedges"},
    Tau2Estimator{"hs", MAConst::TAU2_HS, "Hunter-Schmidt"},
    Tau2Estimator{"dl", MAConst::TAU2_DL, "DerSimonian-Laird"},
    Tau2Estimator{"sj", MAConst::TAU2_SJ, "Sidik-Jonkman"},
    Tau2Estimator{"ml", MAConst::TAU2_ML, "maximum likelihood"},
    Tau2Estimator{"eb", MAConst::TAU2_EB, "empirical Bayes"},
};
static_assert(HasEachEnumerator<TAU2_ESTIMATORS>());

/// The name of Paule and Mandel's estimator, which is empirical Bayes.
inline constexpr const char* PAULE_MANDEL = "pm";

/// The names of the estimators with a property, each behind `prefix`: "reml, ml and eb".
std::string NamesOfEstimators(bool (*hasProperty)(MAConst::TAU2ESTIMATOR), std::string_view prefix = {});

} // namespace host
