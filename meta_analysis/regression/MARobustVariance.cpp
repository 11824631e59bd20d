#include "meta_analysis/regression/MARobustVariance.h"

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/regression/MAClusterAdjustment.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// Clusters alone determine the parts of a coefficient, as one the mean of a level, or two the difference of
/// two levels, when they share no more than this part of its information. Their residuals then tell nothing
/// of how clusters differ. Rounding leaves a few 1e-16.
constexpr double negligibleInformation = 1e-12;

double Product(const Values& left, const Values& right)
{
    return Dot(left.data(), right.data(), left.size());
}

Values Times(const MASquareMatrix& matrix, const Values& vector)
{
    Values product(vector.size());
    for (std::size_t a = 0; a < vector.size(); ++a)
        product[a] = Dot(matrix.Row(a), vector.data(), vector.size());
    return product;
}

/// Satterthwaite's degrees of freedom (tr Ω)² / tr ΩΩ of the variance of a coefficient d'g, a quadratic form
/// in independent normal scores with Ω_jj = d'E(ss')d and, for i other than j, Ω_ij = -r_i'r_j with r = K'd,
/// K the share's `cross`. The sum of the squares of the latter is that of the matrix Σ rr' less its diagonal
/// terms, but for the few clusters with a large share, of which these terms could be all but the whole.
class Satterthwaite
{
public:
    explicit Satterthwaite(Values direction) : direction_(std::move(direction)), outer_(direction_.size()) {}

    void Add(const MAClusterShare& share)
    {
        const double expected = Product(direction_, Times(share.expected, direction_));
        AddInformation(Times(share.information, direction_));
        trace_ += expected;
        squares_ += Square(expected);
        Values r(direction_.size());
        for (std::size_t a = 0; a < r.size(); ++a)
            for (std::size_t b = 0; b < r.size(); ++b)
                r[b] += direction_[a] * share.cross(a, b);
        if (share.hasLargeShare)
            large_.push_back(std::move(r));
        else
            AddSmall(r);
    }

    /// Whether clusters share information about the coefficient.
    bool HasVariance() const { return shared_ > negligibleInformation * information_; }

    double Df() const { return Square(trace_) / (squares_ + SquaresBesideDiagonal()); }

private:
    /// With I the cluster's part of the information, of which all parts have the sum 1, that about the
    /// coefficient is d'Id. Of it d'I(1 - I)d is shared: 0 for what it alone, or nothing of it, determines.
    void AddInformation(const Values& product)
    {
        const double information = Product(direction_, product);
        information_ += information;
        shared_ += information - Product(product, product);
    }

    void AddSmall(const Values& r)
    {
        diagonal_ += Square(Product(r, r));
        for (std::size_t a = 0; a < r.size(); ++a)
            for (std::size_t b = 0; b < r.size(); ++b)
                outer_(a, b) += r[a] * r[b];
    }

    double SquaresBesideDiagonal() const
    {
        double sum = -diagonal_;
        for (std::size_t a = 0; a < direction_.size(); ++a)
            sum += Dot(outer_.Row(a), outer_.Row(a), direction_.size());
        for (std::size_t i = 0; i < large_.size(); ++i) {
            sum += 2.0 * Product(large_[i], Times(outer_, large_[i]));
            for (std::size_t j = 0; j < i; ++j)
                sum += 2.0 * Square(Product(large_[i], large_[j]));
        }
        return sum;
    }

    Values direction_;
    double information_ = 0.0;
    double shared_ = 0.0;
    double trace_ = 0.0;
    double squares_ = 0.0;
    double diagonal_ = 0.0;
    MASquareMatrix outer_;
    std::vector<Values> large_;
};

/// What the clusters' shares add up to.
struct Sandwich
{
    MASquareMatrix covariance; ///< of the coefficients that are estimated, before CR1's factor
    std::vector<Satterthwaite> degreesOfFreedom; ///< one an estimated coefficient
};

Sandwich SandwichOf(const MAClusters& clusters, const std::vector<Values>& directions,
                    MAConst::SANDWICHTYPE type)
{
    Sandwich sandwich = {MASquareMatrix(directions.size()), {}};
    Values scores(directions.size());
    for (const Values& direction : directions)
        sandwich.degreesOfFreedom.emplace_back(direction);
    for (std::size_t j = 0; j < clusters.Count(); ++j) {
        const MAClusterShare share = ShareOf(clusters, j, type);
        for (std::size_t a = 0; a < directions.size(); ++a) {
            scores[a] = Product(share.score, directions[a]);
            for (std::size_t b = 0; b <= a; ++b)
                sandwich.covariance(a, b) = sandwich.covariance(b, a) += scores[a] * scores[b];
        }
        for (Satterthwaite& df : sandwich.degreesOfFreedom)
            df.Add(share);
    }
    return sandwich;
}

MARobustTests MissingTests(std::size_t parameterCount)
{
    const Values missing(parameterCount, KXMV::Missing());
    MARobustTests tests;
    tests.stdErrors = tests.statistics = tests.dfs = tests.lowerLimits = tests.upperLimits = missing;
    tests.pValues.resize(parameterCount);
    tests.covariance.assign(parameterCount, missing);
    return tests;
}

int ErrorOf(const MAClusters& clusters, MAConst::SANDWICHTYPE type)
{
    if (clusters.Count() < 2)
        return MAStatusCode::ONE_CLUSTER;
    return !AdjustsResiduals(type) && clusters.Count() <= clusters.rank ? MAStatusCode::TOO_FEW_CLUSTERS : 0;
}

/// The variances of what is estimated, missing where there is none.
void StoreCovariance(const Sandwich& sandwich, const std::vector<std::size_t>& columns, double factor,
                     MARobustTests& tests)
{
    for (std::size_t a = 0; a < columns.size(); ++a) {
        for (std::size_t b = 0; b < columns.size(); ++b) {
            const double value = factor * sandwich.covariance(a, b);
            const bool isVariance = sandwich.degreesOfFreedom[a].HasVariance() &&
                                    sandwich.degreesOfFreedom[b].HasVariance() && std::isfinite(value);
            tests.covariance[columns[a]][columns[b]] = isVariance ? value : KXMV::Missing();
        }
    }
}

/// The test against 0 and the interval of parameter j, whose covariance is stored.
void TestCoefficient(std::size_t j, double coefficient, double df, double alpha, MARobustTests& tests)
{
    const double stdError = std::sqrt(tests.covariance[j][j]);
    const double halfWidth = TwoSidedTQuantile(alpha, df) * stdError;
    tests.stdErrors[j] = stdError;
    tests.dfs[j] = df;
    tests.lowerLimits[j] = coefficient - halfWidth;
    tests.upperLimits[j] = coefficient + halfWidth;
    if (!(stdError > 0.0)) // an exact fit
        return;
    tests.statistics[j] = coefficient / stdError;
    tests.pValues[j] = TwoSidedTPValue(tests.statistics[j], df);
}

} // namespace

MARobustTests TestRobustly(const MARegFit& fit)
{
    const MARegSettings& settings = fit.Design().GetSettings();
    const MAConst::SANDWICHTYPE type = settings.GetSandwich();
    const MAClusters clusters = ClustersOf(fit);
    MARobustTests tests = MissingTests(fit.Coefficients().size());
    tests.clusters = static_cast<int>(clusters.Count());
    if (ErrorOf(clusters, type) != 0) {
        tests.status = KXStatus(ErrorOf(clusters, type));
        return tests;
    }
    std::vector<Values> directions;
    for (std::size_t position = 0; position < fit.EstimatedColumns().size(); ++position)
        directions.push_back(fit.Direction(position));
    const Sandwich sandwich = SandwichOf(clusters, directions, type);
    const auto count = static_cast<double>(clusters.Count());
    const double clusterDf = count - static_cast<double>(clusters.rank);
    StoreCovariance(sandwich, fit.EstimatedColumns(), type == MAConst::SANDWICH_CR1 ? count / clusterDf : 1.0,
                    tests);
    for (std::size_t position = 0; position < directions.size(); ++position) {
        const std::size_t j = fit.EstimatedColumns()[position];
        if (KXMV::IsMissing(tests.covariance[j][j]))
            tests.status = KXStatus(MAStatusCode::CLUSTER_DECIDES, true);
        else
            TestCoefficient(j, fit.Coefficients()[j],
                            AdjustsResiduals(type) ? sandwich.degreesOfFreedom[position].Df() : clusterDf,
                            AlphaOf(settings.GetConfidenceLevel()), tests);
    }
    return tests;
}

} // namespace MA_NAMESPACE
