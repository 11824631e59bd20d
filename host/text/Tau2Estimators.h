#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAChoiceNames.h"
#include "meta_analysis/settings/MAConst.h"

#include <array>
#include <string>
#include <string_view>

namespace host {

/// An estimator of the between-study variance, with the word of --tau2, which the library has. The library's
/// table of estimators has the rest.
struct Tau2Estimator
{
    MAConst::TAU2ESTIMATOR value;
    const char* description; ///< "restricted maximum likelihood"
    std::string_view name = MA_NAMESPACE::NameIn(MA_NAMESPACE::tau2Names, value);
};

/// Options, reports and JSON read this table.
inline constexpr std::array TAU2_ESTIMATORS{
    Tau2Estimator{MAConst::TAU2_REML, "restricted maximum likelihood"},
    Tau2Estimator{MAConst::TAU2_HE, "Hedges"},
    Tau2Estimator{MAConst::TAU2_HS, "Hunter-Schmidt"},
    Tau2Estimator{MAConst::TAU2_DL, "DerSimonian-Laird"},
    Tau2Estimator{MAConst::TAU2_SJ, "Sidik-Jonkman"},
    Tau2Estimator{MAConst::TAU2_ML, "maximum likelihood"},
    Tau2Estimator{MAConst::TAU2_EB, "empirical Bayes"},
};
static_assert(HasEachEnumerator<TAU2_ESTIMATORS>());

/// The name of Paule and Mandel's estimator, which is empirical Bayes.
inline constexpr const char* PAULE_MANDEL = MA_NAMESPACE::pauleMandelName.name.data();

/// The names of the estimators with a property, each behind `prefix`: "reml, ml and eb".
std::string NamesOfEstimators(bool (*hasProperty)(MAConst::TAU2ESTIMATOR), std::string_view prefix = {});

} // namespace host
