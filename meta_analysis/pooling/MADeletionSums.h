#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <vector>

namespace MA_NAMESPACE {

/// The rows of a weighted regression of which one is deleted at a time, in any unit: for each row its p
/// coordinates z, its dependent and a 1, and its variance.
struct MADeletionRows
{
    std::size_t rank = 0;          ///< p
    std::vector<double> cells;     ///< p + 2 numbers a row
    std::vector<double> variances; ///< positive and finite

    std::size_t Count() const { return variances.size(); }
    std::size_t Width() const { return rank + 2; }
    const double* Row(std::size_t i) const { return cells.data() + i * Width(); }
};

/// The sums S_n = sum(w^n u u'), n = 1, 2, 3, with weights w = 1 / (v + t), over rows u = (z, e, 1). All that
/// a regression's likelihood has at t is made of them.
class MAMomentSums
{
public:
    static constexpr std::size_t powers = 3;

    explicit MAMomentSums(std::size_t width = 0) : width_(width) { Clear(); }

    /// The lower triangle of S_{n+1}, row after row.
    double* Triangle(std::size_t n) { return sums_[n].data(); }
    const double* Triangle(std::size_t n) const { return sums_[n].data(); }
    /// An element of S_{n+1}.
    double operator()(std::size_t n, std::size_t i, std::size_t j) const
    {
        return sums_[n][i >= j ? i * (i + 1) / 2 + j : j * (j + 1) / 2 + i];
    }
    std::size_t Width() const { return width_; }
    std::size_t TriangleSize() const { return width_ * (width_ + 1) / 2; }
    /// Makes all sums 0.
    void Clear();

private:
    std::size_t width_;
    std::array<std::vector<double>, powers> sums_;
};

/// The moment sums over all rows, as functions of t >= 0 that are evaluated for one deletion after another.
///
/// A search visits the same t for every deletion until it closes in on a root: sums there are kept. The roots
/// lie near that of all rows. About such a centre c the sums have the power series
///
///     S_n(c + x) = sum over m of (n + m - 1 over m) (-x)^m S_{n+m}(c),
///
/// used within |x| <= (c + min v) / 64, where its first 12 powers leave less than 1e-16 of every term,
/// unless that of the largest weight underflows. So most evaluations cost O(p²), whatever the number of rows.
class MADeletionSums
{
public:
    MADeletionSums(MADeletionRows rows, const std::vector<double>& centres);

    const MADeletionRows& Rows() const { return rows_; }
    /// Writes the sums at t over what `sums` has, which must be as wide as the rows. Elsewhere than above
    /// O(k p²).
    void At(double t, MAMomentSums& sums);

private:
    static constexpr std::size_t terms = 12;
    static constexpr std::size_t mostKept = 128; ///< searches split at fewer places

    using Series = std::array<std::vector<double>, terms>;

    struct Centre
    {
        double at;
        double reach;
        Series series;
    };

    template <std::size_t count>
    std::array<std::vector<double>, count> Sum(double t) const;
    static void Expand(const Series& series, double x, MAMomentSums& sums);

    MADeletionRows rows_;
    std::vector<Centre> centres_;
    std::map<double, MAMomentSums> kept_;
};

} // namespace MA_NAMESPACE
