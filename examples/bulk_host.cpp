// A host that pools, and regresses, many sets of studies in one call each. docs/many-analyses.md explains it.

#include <meta_analysis/bulk/MABulkPooling.h>
#include <meta_analysis/bulk/MABulkRegression.h>

#include <cstdio>
#include <vector>

namespace {

int PoolThreeSets()
{
    // Effects and variances of three sets, one behind the other: studies 0 to 3, 4 to 6, and none.
    const std::vector<double> effects = {0.1, 0.3, -0.2, 0.5, 1.0, 0.8, 1.3};
    const std::vector<double> variances = {0.04, 0.02, 0.05, 0.03, 0.1, 0.2, 0.1};
    const std::vector<std::size_t> offsets = {0, 4, 7, 7};

    std::vector<double> estimate(3), minusLog10P(3);
    std::vector<int> status(3);
    MA_NAMESPACE::MABulkResults results; // a column that stays a null pointer is not computed
    results.estimate = estimate.data();
    results.minusLog10P = minusLog10P.data();
    results.status = status.data();

    MA_NAMESPACE::MARandomEffectsChoice choice; // REML
    choice.search = MAConst::TAU2_SEARCH_GLOBAL;
    choice.knappHartung = MAConst::KNAPP_HARTUNG_ADJUSTED;
    const MA_NAMESPACE::MARaggedSets sets{effects.data(), variances.data(), offsets.data(), 3};
    const KXStatus called = MA_NAMESPACE::PoolSets(sets, choice, results, 0);
    for (std::size_t set = 0; set < 3; ++set)
        std::printf("Set %zu: estimate %.4f, -log10 p %.4f, status %d\n", set, estimate[set],
                    minusLog10P[set], status[set]);
    return called.GetCode();
}

int RegressTwoVoxels()
{
    // Four studies by two voxels, and four rows of an intercept and an age.
    const std::vector<double> effects = {0.1, 0.4, 0.3, 0.2, 0.7, 0.9, 0.5, 0.4};
    const std::vector<double> variances(8, 0.04);
    const std::vector<double> design = {1, 31, 1, 45, 1, 58, 1, 40};

    std::vector<double> coefficients(4), pValues(4); // of the intercept for both voxels, then of the age
    std::vector<int> status(2);
    MA_NAMESPACE::MABulkRegressionResults results;
    results.coefficients = coefficients.data();
    results.pValues = pValues.data();
    results.status = status.data();

    MA_NAMESPACE::MABulkRegression model; // random effects, REML, Student's t
    model.tau2.search = MAConst::TAU2_SEARCH_GLOBAL;
    const MA_NAMESPACE::MABlockSets sets{{effects.data(), 2, 1}, {variances.data(), 2, 1}, 4, 2};
    const KXStatus called = MA_NAMESPACE::RegressSets(sets, {design.data(), 2, 1, 2}, model, results, 0);
    for (std::size_t voxel = 0; voxel < 2; ++voxel)
        std::printf("Voxel %zu: %.4f a year, p = %.4f\n", voxel, coefficients[2 + voxel], pValues[2 + voxel]);
    return called.GetCode();
}

} // namespace

int main()
{
    const int pooled = PoolThreeSets();
    const int regressed = RegressTwoVoxels();
    return pooled == 0 && regressed == 0 ? 0 : 1;
}
