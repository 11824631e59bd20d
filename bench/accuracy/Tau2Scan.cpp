#include "Tau2Scan.h"

#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MARegressionCurve.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/regression/design/MAOrthonormalColumns.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>

using namespace MA_NAMESPACE;

namespace {

using Extended = long double;
using Column = std::vector<Extended>;

Extended WeightedProduct(const Column& weights, const Column& left, const Column& right)
{
    Extended sum = 0;
    for (std::size_t i = 0; i < weights.size(); ++i)
        sum += weights[i] * left[i] * right[i];
    return sum;
}

/// The likelihood at one tau².
struct ExtendedTerms
{
    Extended logLikelihood; ///< without constants
    Extended score;         ///< twice its slope, A - B
    Extended q;
    Extended trace; ///< tr P
};

/// The likelihood of tau² by its formulas, with the weighted columns made orthogonal at each tau². Effects
/// are counted from the study of the smallest variance, whose residual would cancel when it dominates.
class ExtendedLikelihood
{
public:
    explicit ExtendedLikelihood(const Tau2Analysis& analysis)
        : isRestricted_(analysis.estimator != MAConst::TAU2_ML),
          variances_(analysis.variances.begin(), analysis.variances.end()),
          effects_(analysis.effects.begin(), analysis.effects.end()),
          columns_(1, Column(variances_.size(), 1))
    {
        const auto smallest = std::min_element(variances_.begin(), variances_.end()) - variances_.begin();
        const Extended origin = effects_[static_cast<std::size_t>(smallest)];
        for (Extended& effect : effects_)
            effect -= origin;
        for (const std::vector<double>& covariate : analysis.covariates)
            columns_.emplace_back(covariate.begin(), covariate.end());
    }

    ExtendedTerms At(Extended tau2) const;
    Extended ResidualDf() const
    {
        return static_cast<Extended>(effects_.size()) - static_cast<Extended>(columns_.size());
    }
    /// Beyond it the likelihood falls.
    Extended ScanEnd() const;
    Extended SmallestVariance() const { return *std::min_element(variances_.begin(), variances_.end()); }
    Extended TypicalVariance() const { return ResidualDf() / At(0).trace; }

private:
    Extended LogDeterminant(Extended tau2) const;

    bool isRestricted_;
    Column variances_;
    Column effects_;
    std::vector<Column> columns_;
};

/// Sum of log(v + tau²), a logarithm for eight studies.
Extended ExtendedLikelihood::LogDeterminant(Extended tau2) const
{
    Extended sum = 0;
    Extended product = 1;
    for (std::size_t i = 0; i < variances_.size(); ++i) {
        product *= variances_[i] + tau2;
        if (i % 8 == 7 || i + 1 == variances_.size()) {
            sum += std::log(product);
            product = 1;
        }
    }
    return sum;
}

/// What a study's leverage leaves of 1. About one mean it is the share of the other studies in the sum of the
/// weights, which takes no difference.
Column LeverageComplements(const Column& weights, const std::vector<Column>& orthogonal, const Column& norms)
{
    Column complements(weights.size(), 1);
    if (orthogonal.size() > 1) {
        for (std::size_t j = 0; j < orthogonal.size(); ++j) {
            for (std::size_t i = 0; i < weights.size(); ++i)
                complements[i] -= weights[i] * orthogonal[j][i] * orthogonal[j][i] / norms[j];
        }
        return complements;
    }
    Extended before = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        complements[i] = before;
        before += weights[i];
    }
    Extended after = 0;
    for (std::size_t i = weights.size(); i-- > 0; after += weights[i])
        complements[i] = (complements[i] + after) / norms[0];
    return complements;
}

ExtendedTerms ExtendedLikelihood::At(Extended tau2) const
{
    Column weights;
    for (const Extended variance : variances_)
        weights.push_back(1 / (variance + tau2));
    std::vector<Column> orthogonal = columns_;
    orthogonal.push_back(effects_); // what is left of it is the residuals
    Column norms;
    Extended logNorms = 0;
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        norms.push_back(WeightedProduct(weights, orthogonal[j], orthogonal[j]));
        logNorms += std::log(norms[j]);
        for (std::size_t other = j + 1; other < orthogonal.size(); ++other) {
            const Extended share = WeightedProduct(weights, orthogonal[j], orthogonal[other]) / norms[j];
            for (std::size_t i = 0; i < weights.size(); ++i)
                orthogonal[other][i] -= share * orthogonal[j][i];
        }
    }
    const Column residuals = orthogonal.back();
    orthogonal.pop_back();
    const Column complements = LeverageComplements(weights, orthogonal, norms);
    Extended fit = 0;
    Extended trace = 0;
    Extended weightSum = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        fit += weights[i] * residuals[i] * weights[i] * residuals[i];
        trace += weights[i] * complements[i];
        weightSum += weights[i];
    }
    const Extended q = WeightedProduct(weights, residuals, residuals);
    const Extended restricted = isRestricted_ ? logNorms : 0;
    return {-(LogDeterminant(tau2) + q + restricted) / 2, fit - (isRestricted_ ? trace : weightSum), q,
            trace};
}

/// From A <= S / (v_min + t)² and B >= m / (v_max + t): for t >= v_max, A < B where t exceeds 2S / m.
Extended ExtendedLikelihood::ScanEnd() const
{
    Extended squares = 0;
    for (const Extended effect : effects_)
        squares += effect * effect;
    return 2 * squares + *std::max_element(variances_.begin(), variances_.end());
}

/// Whether a point of a geometric grid, or 0, is more likely than tau². The grid begins at a thousandth of
/// the smallest variance.
bool ScanFindsBetter(const ExtendedLikelihood& likelihood, Extended tau2)
{
    constexpr int points = 600;
    constexpr Extended rounding = 1e-10L;
    const Extended level = likelihood.At(tau2).logLikelihood + rounding;
    const Extended start = likelihood.SmallestVariance() / 1000;
    const Extended ratio = std::pow(likelihood.ScanEnd() / start, 1 / static_cast<Extended>(points));
    Extended t = 0;
    for (int i = 0; i <= points; ++i) {
        if (likelihood.At(t).logLikelihood > level)
            return true;
        t = i == 0 ? start : t * ratio;
    }
    return false;
}

/// Distance of tau² to the nearest change of sign of `falling` from plus to minus, no more than `radius`.
Extended DistanceToRoot(const std::function<Extended(Extended)>& falling, Extended tau2, Extended radius)
{
    if (tau2 == 0 && falling(0) <= 0)
        return 0;
    Extended low = std::max<Extended>(tau2 - radius, 0);
    Extended high = tau2 + radius;
    if (falling(low) < 0 || falling(high) > 0)
        return radius;
    for (int halving = 0; halving < 44; ++halving) {
        const Extended middle = (low + high) / 2;
        (falling(middle) > 0 ? low : high) = middle;
    }
    return std::abs(low - tau2);
}

/// Intercept, covariates and effect of every study.
MADesignRows RowsOf(const Tau2Analysis& analysis)
{
    MADesignRows rows;
    rows.columnCount = analysis.covariates.size() + 1;
    rows.variances = analysis.variances;
    for (std::size_t i = 0; i < analysis.effects.size(); ++i) {
        rows.cells.push_back(1.0);
        for (const std::vector<double>& covariate : analysis.covariates)
            rows.cells.push_back(covariate[i]);
        rows.cells.push_back(analysis.effects[i]);
        rows.weights.push_back(1.0 / analysis.variances[i]);
    }
    return rows;
}

MATau2Solution InUnitOfData(MALikelihoodCurve& curve, MAConst::TAU2ESTIMATOR estimator, double guess)
{
    const MATau2Solution solution = SolveTau2(curve, estimator, guess);
    return {solution.t * curve.Unit(), solution.evaluations};
}

/// In a regression the search starts where the residual sum of squares has its expectation if all variances
/// are the largest.
MATau2Solution Search(const Tau2Analysis& analysis)
{
    const MALikelihoodType type = LikelihoodOf(analysis.estimator);
    if (analysis.covariates.empty()) {
        MAPooledCurve curve(analysis.effects.data(), analysis.variances.data(), analysis.effects.size(),
                            type);
        return InUnitOfData(curve, analysis.estimator, curve.MomentEstimate());
    }
    constexpr double tolerance = 1e-12;
    MAOrthonormalColumns columns;
    columns.Assign(RowsOf(analysis), true, tolerance);
    MARegressionCurve curve(columns, analysis.variances, type);
    const MACurveBounds& bounds = curve.Bounds();
    return InUnitOfData(curve, analysis.estimator,
                        bounds.residualSum / bounds.residualDf - bounds.maxVariance);
}

Tau2Analysis InOtherUnit(Tau2Analysis analysis, double factor)
{
    for (double& effect : analysis.effects)
        effect *= factor;
    for (double& variance : analysis.variances)
        variance *= factor * factor;
    return analysis;
}

} // namespace

Tau2Verdict JudgeSearch(const Tau2Analysis& analysis, double factor)
{
    constexpr Extended farAway = 1e-6L;
    const ExtendedLikelihood likelihood(analysis);
    const MATau2Solution solution = Search(analysis);
    const double scaled = Search(InOtherUnit(analysis, factor)).t / factor / factor;
    const Extended size = solution.t + likelihood.TypicalVariance();
    const bool isEb = analysis.estimator == MAConst::TAU2_EB;
    const Extended distance = DistanceToRoot(
        [&](Extended t) {
            const ExtendedTerms terms = likelihood.At(t);
            return isEb ? terms.q - likelihood.ResidualDf() : terms.score;
        },
        solution.t, farAway * size);
    const auto error = static_cast<double>(distance / size);
    const auto unitError = static_cast<double>(std::abs(scaled - solution.t) / size);
    const bool isMiss =
        isEb ? error >= static_cast<double>(farAway) : ScanFindsBetter(likelihood, solution.t);
    return {solution.t, solution.evaluations, isMiss || !std::isfinite(solution.t), error, unitError};
}

double Tau2Simulation::Uniform(double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(generator_);
}

double Tau2Simulation::Normal()
{
    return std::normal_distribution<double>()(generator_);
}

double Tau2Simulation::Variance(VarianceFamily family)
{
    switch (family) {
    case VarianceFamily::Uniform:
        return Uniform(0.01, 0.2);
    case VarianceFamily::Lognormal:
        return 0.1 * std::exp(1.5 * Normal());
    case VarianceFamily::WideLognormal:
        return 0.1 * std::exp(3.0 * Normal());
    case VarianceFamily::Equal:
        return 0.1;
    case VarianceFamily::PowersOfTen:
        break;
    }
    return std::pow(10.0, -8.0 * Uniform(0.0, 1.0) * Uniform(0.0, 1.0));
}

std::vector<double> Tau2Simulation::Variances(VarianceFamily family)
{
    const double count = std::floor(2.0 * std::exp(Uniform(0.0, std::log(50.5))));
    std::vector<double> variances(static_cast<std::size_t>(count));
    for (double& variance : variances)
        variance = Variance(family);
    const double order = Uniform(0.0, 3.0);
    if (order < 2.0)
        std::sort(variances.begin(), variances.end());
    if (order < 1.0)
        std::reverse(variances.begin(), variances.end());
    return variances;
}

/// One to three normal covariates, one of them with a mean far from 0; fewer where the studies are few.
void Tau2Simulation::AddCovariates(Tau2Analysis& analysis)
{
    const std::size_t count = std::min<std::size_t>(1 + generator_() % 3, analysis.effects.size() - 2);
    analysis.covariates.reserve(count);
    for (std::size_t j = 0; j < count; ++j) {
        std::vector<double> covariate(analysis.effects.size(), j == 0 ? 30.0 : 0.0);
        for (double& value : covariate)
            value += Normal();
        analysis.covariates.push_back(std::move(covariate));
    }
}

Tau2Analysis Tau2Simulation::Next(VarianceFamily family)
{
    constexpr MAConst::TAU2ESTIMATOR estimators[] = {MAConst::TAU2_ML, MAConst::TAU2_REML, MAConst::TAU2_EB};
    Tau2Analysis analysis;
    analysis.estimator = estimators[generator_() % std::size(estimators)];
    analysis.variances = Variances(family);
    analysis.effects.reserve(analysis.variances.size());
    const double tau = Uniform(0.0, 0.5);
    for (const double variance : analysis.variances) {
        const double stretch = Uniform(0.0, 1.0) < 0.1 ? 5.0 : 1.0;
        analysis.effects.push_back(0.3 + stretch * std::sqrt(variance + tau * tau) * Normal());
    }
    if (Uniform(0.0, 1.0) < 0.1)
        AddCovariates(analysis);
    return InOtherUnit(analysis, std::pow(10.0, Uniform(-4.0, 4.0)));
}
