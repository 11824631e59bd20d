#pragma once

#include "meta_analysis/analysis/models/MAPool.h"

#include <optional>
#include <vector>

namespace MA_NAMESPACE {

/// The choices of trim-and-fill.
struct MATrimFillChoice
{
    MAConst::TRIMFSIDE side; ///< trimmed: the largest or the smallest
    MAConst::TRIMFMETHOD method;
    int maxIter;
    MAModelChoice trimming; ///< model of the studies that are left after trimming
    MAModelChoice filled;   ///< model of the studies with the imputed ones
};

/// The studies that trim-and-fill adds, in the order of filling.
struct MAImputedStudies
{
    std::vector<double> effectSize;
    std::vector<double> variance;
    std::vector<double> stdError;
};

struct MATrimAndFill
{
    KXStatus status;
    bool hasConverged = true; ///< false when the number still changed at the iteration limit
    int imputedCount = 0;
    MAImputedStudies imputed;
    std::optional<MAPooledModel> filled; ///< when studies were imputed
};

/// Estimates how many studies are missing on one side of the funnel, mirrors as many extreme ones about the
/// centre of the rest, and pools all. Errors: those of the models.
/// Duval and Tweedie (2000), Biometrics 56, 455-463.
MATrimAndFill TrimAndFillStudies(const MAStudies& studies, const MATrimFillChoice& choice);

/// The side that the data suggest: the largest where the regression-based test has a positive slope, or, when
/// that is 0 or missing, where effect size and standard error go together; else the smallest.
MAConst::TRIMFSIDE SuggestedSide(const MAStudies& studies, double slope);

/// The number of missing studies that the method estimates from values on the trimmed side's scale, about the
/// centre.
int MissingStudies(std::vector<double> values, double centre, MAConst::TRIMFMETHOD method);

} // namespace MA_NAMESPACE
