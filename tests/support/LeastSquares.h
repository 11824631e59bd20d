#pragma once

#include "support/Data.h"

#include <cmath>
#include <cstddef>
#include <utility>

/// Weighted least squares of records (effect, variance, moderators) on an intercept and all moderators, by
/// orthogonalization in extended precision: no cross products, whose condition is the square of the design's.
class LeastSquares
{
public:
    using Vector = std::vector<long double>;
    using Matrix = std::vector<Vector>;

    LeastSquares(const Rows& records, Vector weights) : weights_(std::move(weights))
    {
        const std::size_t p = records[0].size() - 1;
        effects_ = Column(records, 0);
        for (std::size_t j = 0; j < p; ++j)
            AddColumn(j == 0 ? Vector(records.size(), 1) : Column(records, j + 1));
        Solve();
    }

    const Vector& Coefficients() const { return coefficients_; }
    /// Of X'WX: a diagonal element, and that of the inverse.
    long double SquaredNorm(std::size_t column) const { return squaredNorms_[column]; }
    long double InverseDiagonal(std::size_t column) const { return inverseDiagonal_[column]; }
    /// What the moderators explain beside the intercept: the Wald statistic of all of them.
    long double ExplainedSum() const { return explained_; }

    /// P = W - WX(X'WX)^-1 X'W, k x k.
    Matrix P() const
    {
        Matrix p(effects_.size(), Vector(effects_.size()));
        for (std::size_t i = 0; i < p.size(); ++i) {
            for (std::size_t j = 0; j < p.size(); ++j) {
                p[i][j] = i == j ? 1 : 0;
                for (const Vector& column : q_)
                    p[i][j] -= column[i] * column[j];
                p[i][j] *= std::sqrt(weights_[i] * weights_[j]);
            }
        }
        return p;
    }

private:
    static Vector Column(const Rows& records, std::size_t position)
    {
        Vector values;
        for (const Row& record : records)
            values.push_back(record[position]);
        return values;
    }

    static long double Dot(const Vector& left, const Vector& right)
    {
        long double sum = 0;
        for (std::size_t i = 0; i < left.size(); ++i)
            sum += left[i] * right[i];
        return sum;
    }

    Vector Weighted(Vector values) const
    {
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] *= std::sqrt(weights_[i]);
        return values;
    }

    /// Gram-Schmidt, twice, which makes it as good as reflections.
    void AddColumn(const Vector& values)
    {
        Vector column = Weighted(values);
        Vector r(q_.size() + 1);
        squaredNorms_.push_back(Dot(column, column));
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t j = 0; j < q_.size(); ++j) {
                const long double share = Dot(q_[j], column);
                r[j] += share;
                for (std::size_t i = 0; i < column.size(); ++i)
                    column[i] -= share * q_[j][i];
            }
        }
        r.back() = std::sqrt(Dot(column, column));
        for (long double& value : column)
            value /= r.back();
        q_.push_back(column);
        r_.push_back(r);
    }

    /// From X = QR: R b = Q'y, and the columns of R^-1 sum up to the diagonal of R^-1 R^-T.
    void Solve()
    {
        const std::size_t p = q_.size();
        coefficients_.assign(p, 0);
        inverseDiagonal_.assign(p, 0);
        for (std::size_t column = 0; column < p; ++column) {
            const long double projection = Dot(q_[column], Weighted(effects_));
            explained_ += column == 0 ? 0 : projection * projection;
            Vector inverse(p);
            for (std::size_t i = column + 1; i-- > 0;) {
                inverse[i] = i == column ? 1 : 0;
                for (std::size_t j = i + 1; j <= column; ++j)
                    inverse[i] -= r_[j][i] * inverse[j];
                inverse[i] /= r_[i][i];
                coefficients_[i] += inverse[i] * projection;
                inverseDiagonal_[i] += inverse[i] * inverse[i];
            }
        }
    }

    Vector weights_;
    Vector effects_;
    Vector squaredNorms_;
    Matrix q_; ///< orthonormal columns
    Matrix r_; ///< column by column
    Vector coefficients_;
    Vector inverseDiagonal_;
    long double explained_ = 0;
};
