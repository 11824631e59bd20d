#pragma once

#include "meta_analysis/bulk/lanes/MALaneFits.h"
#include "meta_analysis/bulk/lanes/MALaneRegister.h"

namespace MA_NAMESPACE {

/// Weighted least squares of a set in each lane of registers `Lanes`, on `p` orthonormal columns. Every step
/// is the one of `MAWeightedFit` of that name, with its operations in its order.
template <class Lanes, std::size_t p>
class MALaneFit : MALaneRegister<Lanes>
{
public:
    static void PutSums(const MALaneFits& fits, const MALaneSums& wanted)
    {
        MALaneFit fit(fits, wanted);
        fit.FormCrossProducts();
        fit.Factorize();
        fit.Invert();
        fit.Fit();
        fit.AddRows();
        fit.Put();
    }

private:
    using MALaneRegister<Lanes>::laneCount;
    using MALaneRegister<Lanes>::Load;
    using MALaneRegister<Lanes>::Store;
    static constexpr std::size_t triangleSize = (p + 1) * (p + 2) / 2;
    static constexpr double smallestShare = MAWeightedFit::smallestShare;

    /// The lower triangle of a symmetric matrix, row after row.
    struct Triangle
    {
        Lanes elements[triangleSize]{};

        Lanes& At(std::size_t row, std::size_t col) { return elements[row * (row + 1) / 2 + col]; }
        const Lanes& Get(std::size_t i, std::size_t j) const
        {
            return i >= j ? elements[i * (i + 1) / 2 + j] : elements[j * (j + 1) / 2 + i];
        }
        void Add(const Lanes& weight, const Lanes* row)
        {
            for (std::size_t r = 0; r <= p; ++r) {
                const Lanes weighted = weight * row[r];
                for (std::size_t c = 0; c <= r; ++c)
                    At(r, c) += weighted * row[c];
            }
        }
        Lanes QuadraticForm(const Lanes* v) const
        {
            Lanes form{};
            for (std::size_t i = 0; i < p; ++i) {
                Lanes below{};
                for (std::size_t j = 0; j < i; ++j)
                    below += Get(i, j) * v[j];
                form += v[i] * (2.0 * below + Get(i, i) * v[i]);
            }
            return form;
        }
    };

    /// The sums of the even or of the odd rows.
    struct Sums
    {
        Lanes yPy{};
        Lanes yPPy{};
        Lanes weights{};
        Lanes squaredWeights{};
        Lanes traceP{};
        Lanes tracePP{};
    };

    MALaneFit(const MALaneFits& fits, const MALaneSums& wanted) : fits_(fits), wanted_(wanted) {}

    static Lanes Root(const Lanes& squares)
    {
        Lanes roots{};
        for (std::size_t lane = 0; lane < laneCount; ++lane)
            roots[lane] = __builtin_sqrt(squares[lane]);
        return roots;
    }

    void LoadRow(std::size_t i, Lanes* row) const
    {
        for (std::size_t j = 0; j <= p; ++j)
            row[j] = Load(fits_.cells + (i * (p + 1) + j) * laneCount);
    }

    void FormCrossProducts()
    {
        const Lanes unit = Load(fits_.unit);
        const Lanes shift = Load(wanted_.t) * unit;
        Triangle products; // locals stay in registers
        Triangle squared;
        for (std::size_t i = 0; i < fits_.count; ++i) {
            Lanes row[p + 1];
            LoadRow(i, row);
            const Lanes weight = unit / (Load(fits_.variances + i * laneCount) + shift);
            Store(weight, fits_.weights + i * laneCount);
            products.Add(weight, row);
            if (wanted_.withTraces) {
                squared.Add(weight * weight, row);
            } else {
                const Lanes weighted = weight * row[p];
                squared.At(p, p) += weighted * weighted;
            }
        }
        crossProducts_ = products;
        squaredProducts_ = squared;
    }

    void Factorize()
    {
        const Lanes smallestNormal = Lanes{} + __DBL_MIN__;
        for (std::size_t j = 0; j < p; ++j) {
            for (std::size_t i = 0; i <= j; ++i) {
                const Lanes element = crossProducts_.Get(i, j) + 0.0;
                Lanes left = element;
                for (std::size_t l = 0; l < i; ++l)
                    left -= factor_[l][i] * factor_[l][j];
                if (i < j) {
                    factor_[i][j] = left / factor_[i][i];
                    continue;
                }
                smallestPivot_ = left >= smallestPivot_ * element ? smallestPivot_ : left / element;
                factor_[j][j] = Root(left > 0.0 ? left : smallestNormal);
            }
        }
    }

    void SolveTransposed(Lanes* x) const
    {
        for (std::size_t i = 0; i < p; ++i) {
            for (std::size_t j = 0; j < i; ++j)
                x[i] -= factor_[j][i] * x[j];
            x[i] /= factor_[i][i];
        }
    }
    void SolveUpper(Lanes* x) const
    {
        for (std::size_t i = p; i-- > 0;) {
            for (std::size_t j = i + 1; j < p; ++j)
                x[i] -= factor_[i][j] * x[j];
            x[i] /= factor_[i][i];
        }
    }

    void Invert()
    {
        for (std::size_t j = 0; j < p; ++j) {
            Lanes column[p]{};
            column[j] += 1.0;
            SolveTransposed(column);
            SolveUpper(column);
            for (std::size_t i = j; i < p; ++i)
                inverse_.At(i, j) = column[i];
        }
    }

    void Fit()
    {
        for (std::size_t j = 0; j < p; ++j)
            fitted_[j] = crossProducts_.Get(p, j);
        SolveTransposed(fitted_);
        SolveUpper(fitted_);
    }

    void AddRows()
    {
        for (std::size_t i = 0; i < fits_.count; ++i) {
            Lanes row[p + 1];
            LoadRow(i, row);
            Lanes explained{};
            for (std::size_t j = 0; j < p; ++j)
                explained += row[j] * fitted_[j];
            const Lanes residual = row[p] - explained;
            const Lanes weight = Load(fits_.weights + i * laneCount);
            const Lanes weighted = weight * residual;
            AddTerms(i % 2 == 0 ? even_ : odd_, row, residual, weight);
            if (wanted_.withCubic)
                AddProducts(row, weighted, weight);
        }
    }

    void AddTerms(Sums& sums, const Lanes* row, const Lanes& residual, const Lanes& weight) const
    {
        const Lanes weighted = weight * residual;
        sums.yPy += weighted * residual;
        sums.yPPy += weighted * weighted;
        sums.weights += weight;
        sums.squaredWeights += weight * weight;
        if (!wanted_.withTraces)
            return;
        const Lanes complement = 1.0 - inverse_.QuadraticForm(row) * weight;
        sums.traceP += complement * weight;
        sums.tracePP += (2.0 * complement - 1.0) * weight * weight;
    }

    void AddProducts(const Lanes* row, const Lanes& s, const Lanes& weight)
    {
        const Lanes weighted = weight * s;
        squares_ += weighted * s;
        for (std::size_t j = 0; j < p; ++j)
            products_[j] += weighted * row[j];
    }

    /// tr MJMJ with J = U'W²U.
    Lanes SquaredTrace() const
    {
        Lanes hat[p][p]{};
        for (std::size_t i = 0; i < p; ++i) {
            for (std::size_t j = 0; j < p; ++j) {
                for (std::size_t l = 0; l < p; ++l)
                    hat[i][j] += inverse_.Get(i, l) * squaredProducts_.Get(l, j);
            }
        }
        Lanes trace = even_.tracePP + odd_.tracePP;
        for (std::size_t i = 0; i < p; ++i) {
            for (std::size_t j = 0; j < p; ++j)
                trace += hat[i][j] * hat[j][i];
        }
        return trace;
    }

    void Put() const
    {
        const Lanes yPy = even_.yPy + odd_.yPy;
        const Lanes yPPy = even_.yPPy + odd_.yPPy;
        const Lanes weights = even_.weights + odd_.weights;
        const Lanes squaredWeights = even_.squaredWeights + odd_.squaredWeights;
        const Lanes traceP = even_.traceP + odd_.traceP;
        const Lanes tracePP = wanted_.withTraces ? SquaredTrace() : Lanes{};
        const Lanes& uncorrected = squaredProducts_.Get(p, p); // y'WWy
        const Lanes cubic = squares_ - inverse_.QuadraticForm(products_);
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            wanted_.sums[lane] = {0.0,          weights[lane], squaredWeights[lane],
                                  yPy[lane],    yPPy[lane],    wanted_.withCubic ? cubic[lane] : 0.0,
                                  traceP[lane], tracePP[lane]};
            const bool hasFit = smallestPivot_[lane] >= smallestShare &&
                                yPPy[lane] >= smallestShare * smallestShare * uncorrected[lane];
            const bool hasTraces = traceP[lane] >= smallestShare * weights[lane] &&
                                   tracePP[lane] >= smallestShare * squaredWeights[lane];
            const bool hasCubic = cubic[lane] >= smallestShare * squares_[lane];
            wanted_.isExact[lane] =
                hasFit && (hasTraces || !wanted_.withTraces) && (hasCubic || !wanted_.withCubic);
        }
    }

    const MALaneFits& fits_;
    const MALaneSums& wanted_;
    Triangle crossProducts_;
    Triangle squaredProducts_; ///< without traces only the dependent's
    Triangle inverse_;
    Lanes factor_[p][p]{}; ///< upper triangle
    Lanes smallestPivot_ = Lanes{} + 1.0;
    Lanes fitted_[p]{};
    Sums even_;
    Sums odd_;
    Lanes products_[p]{};
    Lanes squares_{};
};

template <class Lanes>
constexpr MALaneFitKernels laneFitKernelsOf = {MALaneRegister<Lanes>::laneCount,
                                               {MALaneFit<Lanes, 1>::PutSums, MALaneFit<Lanes, 2>::PutSums,
                                                MALaneFit<Lanes, 3>::PutSums, MALaneFit<Lanes, 4>::PutSums,
                                                MALaneFit<Lanes, 5>::PutSums, MALaneFit<Lanes, 6>::PutSums}};

} // namespace MA_NAMESPACE
