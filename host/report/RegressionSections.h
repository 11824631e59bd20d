#pragma once

#include "host/report/RegressionData.h"
#include "host/report/Report.h"

namespace host {

/// Makes the sections that show one step of a meta-regression: none when the step has nothing to show. Each
/// maker is in the file of its name in host/report/regression.
using RegressionSectionMaker = ReportSections(const RegressionData& data);

RegressionSectionMaker FittedStudiesSection, RegressionConvertedStudiesSection, CoefficientsSection,
    ModelTestSection, EffectTestsSection, HypothesesSection, RobustTestsSection, PermutationTestsSection,
    PredictionsSection, ResidualHeterogeneitySection, ResidualVarianceSection, DispersionSection,
    RegressionInfluenceSection;

// The sections in the order of the report: the coefficients, warnings of them, what they rest on.

inline constexpr RegressionSectionMaker* COEFFICIENT_SECTIONS[] = {CoefficientsSection, ModelTestSection};

inline constexpr RegressionSectionMaker* FURTHER_REGRESSION_SECTIONS[] = {EffectTestsSection,
                                                                          HypothesesSection,
                                                                          RobustTestsSection,
                                                                          PermutationTestsSection,
                                                                          PredictionsSection,
                                                                          ResidualHeterogeneitySection,
                                                                          ResidualVarianceSection,
                                                                          DispersionSection,
                                                                          RegressionInfluenceSection,
                                                                          FittedStudiesSection,
                                                                          RegressionConvertedStudiesSection};

} // namespace host
