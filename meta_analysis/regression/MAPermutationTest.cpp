#include "meta_analysis/regression/MAPermutationTest.h"

#include "meta_analysis/regression/MAPermutations.h"
#include "meta_analysis/regression/MARegBuild.h"
#include "meta_analysis/regression/design/MAProgress.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

using Fit = MARegFitFunction*;

/// Permutations of equal consequence have equal statistics but for rounding, which stays below 1e-10 of them.
/// Other permutations come as near by chance, about one in 1e8.
constexpr double tieTolerance = 1e-8;

/// The statistics of the coefficients that are estimated, then that of the model. Empty when there are none.
std::vector<double> StatisticsOf(const MADesignMatrix& design, Fit fit)
{
    const MARegBuild build = fit({design, MARegUse::Statistics});
    if (build.status.IsError() || KXMV::IsMissing(build.scale))
        return {};
    std::vector<double> statistics;
    for (std::size_t position = 0; position < build.fit->EstimatedColumns().size(); ++position) {
        const double coefficient = build.fit->Coefficients()[build.fit->EstimatedColumns()[position]];
        statistics.push_back(std::abs(coefficient) /
                             (std::sqrt(build.scale) * build.fit->UnscaledStdError(position)));
    }
    statistics.push_back(build.fit->WaldStatistic() / build.scale);
    for (const double statistic : statistics)
        if (!std::isfinite(statistic))
            return {};
    return statistics;
}

/// Counts the permutations whose statistics are no smaller than those of the data.
class Comparison
{
public:
    explicit Comparison(const std::vector<double>& observed) : observed_(observed), counts_(observed.size())
    {}

    /// Statistics that are not as many, as when a permuted design lost a column to rounding, are left out.
    bool Add(const std::vector<double>& statistics)
    {
        if (statistics.size() != observed_.size())
            return false;
        for (std::size_t i = 0; i < observed_.size(); ++i)
            counts_[i] += statistics[i] >= observed_[i] * (1.0 - tieTolerance) ? 1.0 : 0.0;
        ++total_;
        return true;
    }

    int Total() const { return total_; }
    double PValue(std::size_t i, bool isExact) const
    {
        return isExact ? counts_[i] / total_ : (1.0 + counts_[i]) / (1.0 + total_);
    }

private:
    const std::vector<double>& observed_;
    std::vector<double> counts_;
    int total_ = 0;
};

/// The listener of single fits would be told too much.
MARegSettings SettingsOfRefits(const MADesignMatrix& design)
{
    MARegSettings settings = design.GetSettings();
    settings.SetIterProgressListener(nullptr);
    return settings;
}

/// Whether the intercept is all that is estimated.
bool HasInterceptAlone(const MADesignMatrix& design)
{
    const std::vector<std::size_t>& kept = design.Columns().Kept();
    return design.HasIntercept() && kept.size() == 1;
}

KXStatus Compare(const MADesignMatrix& design, Fit fit, MAPermutations& permutations, Comparison& comparison)
{
    const MARegSettings settings = SettingsOfRefits(design);
    MAProgress progress(design.GetSettings(), design.GetSettings().GetIterProgressListener());
    MADesignMatrix permutedDesign(settings);
    MADesignRows permuted = design.Rows();
    KXStatus status;
    for (int number = 0; number < permutations.Count(); ++number) {
        permutations.Apply(number, permuted);
        permutedDesign.SetRows(permuted);
        if (!comparison.Add(StatisticsOf(permutedDesign, fit)))
            status = KXStatus(MAStatusCode::PERMUTATIONS_LEFT_OUT, true);
        if (!progress.Step())
            return KXStatus(MAStatusCode::ITERATOR_FAILED);
    }
    return status;
}

} // namespace

MAPermutationTests TestByPermutation(const MADesignMatrix& design, Fit fit)
{
    MAPermutationTests tests;
    tests.coefficients.assign(design.Columns().NonRedundant().Size(), KXMV::Missing());
    const std::vector<double> observed = StatisticsOf(design, fit);
    if (observed.size() <= 1)
        return tests;
    const bool hasInterceptAlone = HasInterceptAlone(design);
    const MARegSettings& settings = design.GetSettings();
    MAPermutations permutations(design.Rows(), hasInterceptAlone, settings.GetPermutations(),
                                settings.GetSeed());
    Comparison comparison(observed);
    tests.status = Compare(design, fit, permutations, comparison);
    tests.count = comparison.Total();
    tests.isExact = permutations.IsExact();
    if (tests.count == 0)
        return tests;
    const std::vector<std::size_t>& kept = design.Columns().Kept();
    for (std::size_t position = 0; position < kept.size(); ++position)
        tests.coefficients[kept[position]] = comparison.PValue(position, tests.isExact);
    if (!hasInterceptAlone)
        tests.model = comparison.PValue(kept.size(), tests.isExact);
    return tests;
}

} // namespace MA_NAMESPACE
