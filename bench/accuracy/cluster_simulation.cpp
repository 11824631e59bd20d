// How often cluster-robust tests reject a coefficient of 0 at the 5 % level. Prints the table of
// docs/accuracy.md.

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegOutputStats.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <random>
#include <stdexcept>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

constexpr int draws = 10000;
constexpr std::size_t clusterCount = 12;

enum Column : int
{
    EFFECT,
    VARIANCE,
    CLUSTER,
    OF_CLUSTER, ///< a covariate that is equal within clusters
    OF_STUDY    ///< one that is not
};

/// The standard deviations of the true effects between clusters and between the studies of one.
struct Truth
{
    const char* name;
    double betweenClusters;
    double withinClusters;
};

constexpr Truth truths[] = {
    {"independent effects", 0.0, 0.3},
    {"clusters correlated 0.5", 0.25, 0.25},
    {"clusters correlated 0.8", 0.4, 0.2},
};

MARegSettings SettingsOf(MAConst::SANDWICHTYPE type)
{
    MARegSettings settings;
    settings.SetDependent(EFFECT);
    settings.SetOMWVarIndex(VARIANCE);
    settings.SetInterceptUse(true);
    settings.SetEstTauType("REML");
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    for (const int covariate : {OF_CLUSTER, OF_STUDY}) {
        settings.AddCovariate(covariate);
        KXModelEffect effect;
        effect.AddCovariate(covariate);
        settings.AddModelEffect(effect);
    }
    settings.SetCluster(CLUSTER);
    settings.SetSandwich(type);
    return settings;
}

/// The covariate of the clusters.
enum class Design
{
    Halves, ///< 1 in every other cluster, else 0
    Normal  ///< standard normal, which gives single clusters a large leverage
};

const char* NameOf(Design design)
{
    return design == Design::Halves ? "half of the clusters" : "normal, of the cluster";
}

/// Clusters of 2 to 7 studies, two of each size, with standard errors between 0.1 and 0.5.
std::vector<Record> DrawStudies(const Truth& truth, Design design, std::mt19937_64& generator)
{
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> stdError(0.1, 0.5);
    std::vector<Record> studies;
    for (std::size_t cluster = 0; cluster < clusterCount; ++cluster) {
        const double ofCluster =
            design == Design::Halves ? static_cast<double>(cluster % 2) : normal(generator);
        const double effect = truth.betweenClusters * normal(generator);
        for (std::size_t study = 0; study < 2 + cluster % 6; ++study) {
            const double error = stdError(generator);
            const double y = effect + truth.withinClusters * normal(generator) + error * normal(generator);
            studies.emplace_back(std::vector<double>{y, error * error, static_cast<double>(cluster),
                                                     ofCluster, normal(generator)});
        }
    }
    return studies;
}

/// P-values of the two covariates.
std::array<double, 2> PValues(const std::vector<Record>& studies, const MARegSettings& settings)
{
    VectorRecordIter records(studies);
    MAREAlgorithm engine(settings);
    if (engine.BuildModel(records).IsError())
        throw std::runtime_error("a regression failed");
    const std::vector<double> p = MARegOutputStats(settings, engine).GetRobustSig();
    return {p.at(1), p.at(2)};
}

void Simulate(const Truth& truth, Design design)
{
    const std::array settings = {SettingsOf(MAConst::SANDWICH_CR2), SettingsOf(MAConst::SANDWICH_CR1),
                                 SettingsOf(MAConst::SANDWICH_CR0)};
    std::array<std::array<int, 3>, 2> rejected{};
    std::mt19937_64 generator(20181120);
    for (int draw = 0; draw < draws; ++draw) {
        const std::vector<Record> studies = DrawStudies(truth, design, generator);
        for (std::size_t type = 0; type < settings.size(); ++type) {
            const std::array<double, 2> p = PValues(studies, settings[type]);
            for (std::size_t j = 0; j < p.size(); ++j)
                rejected[j][type] += p[j] < 0.05 ? 1 : 0;
        }
    }
    for (std::size_t j = 0; j < rejected.size(); ++j) {
        std::printf("| %s | %s |", truth.name, j == 0 ? NameOf(design) : "normal, of the study");
        for (const int count : rejected[j])
            std::printf(" %.2f %% |", 100.0 * count / draws);
        std::printf("\n");
    }
}

} // namespace

int main()
try {
    std::printf("\nRejections of a coefficient of 0 at the 5 %% level, %d draws of %zu clusters.\n\n", draws,
                clusterCount);
    std::printf("| true effects | covariate | CR2, Satterthwaite | CR1 | CR0 |\n|---|---|---|---|---|\n");
    for (const Design design : {Design::Halves, Design::Normal})
        for (const Truth& truth : truths)
            Simulate(truth, design);
} catch (const std::exception& problem) {
    std::fprintf(stderr, "%s\n", problem.what());
    return 1;
}
