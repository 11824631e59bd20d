#include "meta_analysis/regression/design/MAWeightedFit.h"

#include <cmath>
#include <limits>
#include <numeric>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// A pivot or a difference may lose six of 53 bits before the rows take other coordinates.
constexpr double smallestShare = 1.0 / 64.0;

/// A leverage that leaves less of 1 is taken from other coordinates.
constexpr double smallestComplement = 0.125;

double Square(double x)
{
    return x * x;
}

double Dot(const double* left, const double* right, std::size_t count)
{
    return std::inner_product(left, left + count, right, 0.0);
}

/// Adds rows to two sums in turn, so that one addition need not wait for the other, and these to the total.
template <class Add>
void AddAlternately(std::size_t count, MAProjectionSums& total, Add add)
{
    MAProjectionSums even;
    MAProjectionSums odd;
    for (std::size_t i = 0; i + 1 < count; i += 2) {
        add(even, i);
        add(odd, i + 1);
    }
    if (count % 2 == 1)
        add(even, count - 1);
    total.yPy += even.yPy + odd.yPy;
    total.yPPy += even.yPPy + odd.yPPy;
    total.weights += even.weights + odd.weights;
    total.squaredWeights += even.squaredWeights + odd.squaredWeights;
    total.traceP += even.traceP + odd.traceP;
    total.tracePP += even.tracePP + odd.tracePP;
}

/// Zeros that nothing else can refer to; a few can so be held in registers.
template <std::size_t size>
std::array<double, size> ZeroRow(std::integral_constant<std::size_t, size>)
{
    return {};
}
Values ZeroRow(std::size_t size)
{
    return Values(size);
}

MASquareMatrix Product(const MASquareMatrix& left, const MASquareMatrix& right)
{
    const std::size_t n = left.Size();
    MASquareMatrix product(n);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t l = 0; l < n; ++l)
                product(i, j) += left(i, l) * right(l, j);
        }
    }
    return product;
}

MASquareMatrix Transposed(const MASquareMatrix& matrix)
{
    MASquareMatrix transposed(matrix.Size());
    for (std::size_t i = 0; i < matrix.Size(); ++i) {
        for (std::size_t j = 0; j < matrix.Size(); ++j)
            transposed(j, i) = matrix(i, j);
    }
    return transposed;
}

/// Householder reflections, which serve rows of any scale where the larger come first (Cox and Higham 1998,
/// in Numerical Analysis 1997, 57-73).
MASquareMatrix TriangularFactor(MASquareMatrix a)
{
    const std::size_t n = a.Size();
    Values v(n);
    for (std::size_t k = 0; k + 1 < n; ++k) {
        double norm = 0.0;
        for (std::size_t i = k; i < n; ++i)
            norm = std::hypot(norm, a(i, k));
        if (norm == 0.0)
            continue;
        const double diagonal = a(k, k) > 0.0 ? -norm : norm;
        for (std::size_t i = k; i < n; ++i)
            v[i] = a(i, k) / norm;
        v[k] -= diagonal / norm;
        for (std::size_t j = k + 1; j < n; ++j) {
            double share = 0.0;
            for (std::size_t i = k; i < n; ++i)
                share += v[i] * a(i, j);
            share /= std::abs(v[k]);
            for (std::size_t i = k; i < n; ++i)
                a(i, j) -= share * v[i];
        }
        a(k, k) = diagonal;
        for (std::size_t i = k + 1; i < n; ++i)
            a(i, k) = 0.0;
    }
    return a;
}

} // namespace

void MAWeightedFit::Fit(const Values& weights, bool withSquares)
{
    UseOrthonormalColumns(weights);
    Solve(withSquares);
    if (!(smallestPivot_ >= smallestShare))
        FitAboutBasicRows(weights, withSquares);
}

void MAWeightedFit::FitAboutBasicRows(const Values& weights, bool withSquares)
{
    UseBasicRows(weights);
    Solve(withSquares);
}

MAProjectionSums MAWeightedFit::FitAndSum(const Values& weights, bool withTraces, bool withCubic)
{
    Fit(weights, withTraces);
    const MAProjectionSums sums = Sums(withTraces, withCubic);
    if (HasBasicRows() || IsExact(sums, withTraces))
        return sums;
    FitAboutBasicRows(weights, withTraces);
    return Sums(withTraces, withCubic);
}

/// Whether the sums are large enough a part of those that they are differences of: the residuals, whose
/// error counts once in each factor, of y'WWy.
bool MAWeightedFit::IsExact(const MAProjectionSums& sums, bool withTraces) const
{
    double uncorrected = withTraces ? squaredProducts_.Get(Rank(), Rank()) : 0.0;
    for (std::size_t i = 0; !withTraces && i < given_->size(); ++i)
        uncorrected += Square((*given_)[i] * Row(i)[Rank()]);
    const bool hasResiduals = sums.yPPy >= Square(smallestShare) * uncorrected;
    const bool hasTraces =
        sums.traceP >= smallestShare * sums.weights && sums.tracePP >= smallestShare * sums.squaredWeights;
    return hasResiduals && (!withTraces || hasTraces);
}

void MAWeightedFit::UseOrthonormalColumns(const Values& weights)
{
    given_ = &weights;
    basicRows_.clear();
    basicWeights_.clear();
}

void MAWeightedFit::UseBasicRows(const Values& weights)
{
    UseOrthonormalColumns(weights);
    ChooseBasicRows();
    otherWeights_ = weights;
    for (const std::size_t row : basicRows_) {
        basicWeights_.push_back(weights[row]);
        otherWeights_[row] = 0.0;
    }
    StoreBasicCoordinates();
}

/// Takes p times the row of which, weighted, most is left beside those taken (a QR factorization of √W Z with
/// its rows as columns, pivoted). E holds the directions that the rows added.
void MAWeightedFit::ChooseBasicRows()
{
    const std::size_t p = Rank();
    const std::size_t rowCount = given_->size();
    Values left(rowCount * p);
    for (std::size_t i = 0; i < rowCount; ++i)
        std::copy_n(columns_->Row(i), p, left.data() + i * p);
    directions_ = MASquareMatrix(p);
    for (std::size_t s = 0; s < p; ++s) {
        basicRows_.push_back(HeaviestRow(left));
        double* const direction = p == 0 ? nullptr : &directions_(s, 0);
        std::copy_n(left.data() + basicRows_[s] * p, p, direction);
        for (std::size_t earlier = 0; earlier < s; ++earlier) {
            const double share = Dot(direction, &directions_(earlier, 0), p);
            for (std::size_t j = 0; j < p; ++j)
                direction[j] -= share * directions_(earlier, j);
        }
        const double norm = std::sqrt(Dot(direction, direction, p));
        std::for_each(direction, direction + p, [norm](double& value) { value /= norm; });
        for (std::size_t i = 0; i < rowCount; ++i) {
            const double share = Dot(left.data() + i * p, direction, p);
            for (std::size_t j = 0; j < p; ++j)
                left[i * p + j] -= share * direction[j];
        }
    }
}

/// The row with the largest w |z|²; where all weights are 0, the largest z.
std::size_t MAWeightedFit::HeaviestRow(const Values& left) const
{
    const std::size_t p = Rank();
    std::size_t heaviest = 0;
    double most = -1.0;
    double largest = -1.0;
    for (std::size_t i = 0; i < given_->size(); ++i) {
        if (std::find(basicRows_.begin(), basicRows_.end(), i) != basicRows_.end())
            continue;
        const double size = Dot(left.data() + i * p, left.data() + i * p, p);
        const double weight = (*given_)[i] * size;
        if (weight > most || (weight == most && size > largest)) {
            most = weight;
            largest = size;
            heaviest = i;
        }
    }
    return heaviest;
}

/// u' = z'Z_B⁻¹ = (Ez)'L⁻¹, by substitution; exact unit vectors for the basic rows themselves.
void MAWeightedFit::StoreBasicCoordinates()
{
    const std::size_t p = Rank();
    const auto along = [&](std::size_t row, double* shares) {
        for (std::size_t s = 0; s < p; ++s)
            shares[s] = Dot(columns_->Row(row), &directions_(s, 0), p);
    };
    basis_ = MASquareMatrix(p);
    Values shares(p);
    for (std::size_t b = 0; b < p; ++b) {
        along(basicRows_[b], shares.data());
        for (std::size_t s = 0; s <= b; ++s)
            basis_(s, b) = shares[s];
    }
    basicCells_.resize(given_->size() * (p + 1));
    for (std::size_t i = 0; i < given_->size(); ++i) {
        double* const row = basicCells_.data() + i * (p + 1);
        along(i, row);
        SolveUpper(basis_, row);
        row[p] = columns_->Row(i)[p];
        for (std::size_t b = 0; b < p; ++b)
            row[p] -= row[b] * columns_->Row(basicRows_[b])[p];
    }
    for (std::size_t b = 0; b < p; ++b) {
        double* const row = basicCells_.data() + basicRows_[b] * (p + 1);
        std::fill_n(row, p + 1, 0.0);
        row[b] = 1.0;
    }
}

void MAWeightedFit::Solve(bool withSquares)
{
    FormCrossProducts(withSquares);
    Factorize();
    Invert();
    if (withSquares)
        FormHat();
    fitted_.resize(Rank());
    for (std::size_t j = 0; j < Rank(); ++j)
        fitted_[j] = crossProducts_.Get(Rank(), j);
    SolveTransposed(factor_, fitted_.data());
    SolveUpper(factor_, fitted_.data());
}

void MAWeightedFit::FormCrossProducts(bool withSquares)
{
    crossProducts_.Resize(Rank() + 1);
    squaredProducts_.Resize(withSquares ? Rank() + 1 : 0);
    std::array<double, stretch> squares;
    for (std::size_t first = 0; first < given_->size(); first += stretch) {
        const std::size_t count = std::min(stretch, given_->size() - first);
        crossProducts_.UpdateXX(Row(first), Weights(first), count);
        if (!withSquares)
            continue;
        std::transform(Weights(first), Weights(first) + count, squares.data(), Square);
        squaredProducts_.UpdateXX(Row(first), squares.data(), count);
    }
}

/// Cholesky. A pivot that underflowed, of weights that did, becomes the smallest that can divide: what it
/// stands for is not known, and its variance the largest.
void MAWeightedFit::Factorize()
{
    if (factor_.Size() != Rank())
        factor_ = MASquareMatrix(Rank());
    smallestPivot_ = 1.0;
    for (std::size_t j = 0; j < Rank(); ++j) {
        for (std::size_t i = 0; i <= j; ++i) {
            const double basic = i == j && HasBasicRows() ? basicWeights_[j] : 0.0;
            const double element = crossProducts_.Get(i, j) + basic;
            double left = element;
            for (std::size_t l = 0; l < i; ++l)
                left -= factor_(l, i) * factor_(l, j);
            if (i < j) {
                factor_(i, j) = left / factor_(i, i);
                continue;
            }
            smallestPivot_ = left >= smallestPivot_ * element ? smallestPivot_ : left / element;
            factor_(j, j) = std::sqrt(left > 0.0 ? left : std::numeric_limits<double>::min());
        }
    }
}

void MAWeightedFit::Invert()
{
    inverse_.Resize(Rank());
    Values column(Rank());
    for (std::size_t j = 0; j < Rank(); ++j) {
        std::fill(column.begin(), column.end(), 0.0);
        column[j] = 1.0;
        SolveTransposed(factor_, column.data());
        SolveUpper(factor_, column.data());
        for (std::size_t i = j; i < Rank(); ++i)
            inverse_.Set(i, j, column[i]);
    }
}

void MAWeightedFit::ComputeResiduals(std::size_t first, std::size_t count, double* residuals) const
{
    const double* const rows = Row(first);
    const double* const fitted = fitted_.data();
    WithUnrolledSize(Rank() + 1, [=](auto size) {
        for (std::size_t i = 0; i < count; ++i) {
            const double* const row = rows + i * size;
            double explained = 0.0;
            for (std::size_t j = 0; j + 1 < size; ++j)
                explained += row[j] * fitted[j];
            residuals[i] = row[size - 1] - explained;
        }
    });
}

void MAWeightedFit::ComputeComplements(std::size_t first, std::size_t count, double* complements) const
{
    inverse_.QuadraticForms(Row(first), Rank() + 1, count, complements);
    const double* const weights = Weights(first);
    for (std::size_t i = 0; i < count; ++i)
        complements[i] = 1.0 - complements[i] * weights[i];
    for (std::size_t b = 0; b < basicRows_.size(); ++b) {
        if (basicRows_[b] >= first && basicRows_[b] < first + count)
            complements[basicRows_[b] - first] = BasicComplement(b, b);
    }
}

/// (GM)_jl.
double MAWeightedFit::BasicComplement(std::size_t j, std::size_t l) const
{
    double sum = 0.0;
    for (std::size_t i = 0; i < Rank(); ++i)
        sum += crossProducts_.Get(j, i) * inverse_.Get(i, l);
    return sum;
}

std::vector<double> MAWeightedFit::LeverageComplements()
{
    Values complements(given_->size());
    const auto collect = [&] {
        for (std::size_t first = 0; first < complements.size(); first += stretch)
            ComputeComplements(first, std::min(stretch, complements.size() - first),
                               complements.data() + first);
    };
    collect();
    const auto isSmall = [](double complement) { return !(complement >= smallestComplement); };
    if (!HasBasicRows() && std::any_of(complements.begin(), complements.end(), isSmall)) {
        FitAboutBasicRows(*given_, false);
        collect();
    }
    return complements;
}

/// Sums over the rows that are not basic. With v = Py and, of basic rows, s = v - U v_B, which is v in Z.
struct MAWeightedFit::RowSums
{
    MAProjectionSums sums;
    Values shift;         ///< -v_B
    Values products;      ///< U'Ws
    double squares = 0.0; ///< s'Ws
};

MAProjectionSums MAWeightedFit::Sums(bool withTraces, bool withCubic) const
{
    RowSums rowSums;
    rowSums.shift.resize(withCubic ? Rank() : 0);
    rowSums.products.resize(withCubic ? Rank() : 0);
    for (std::size_t b = 0; withCubic && b < basicRows_.size(); ++b)
        rowSums.shift[b] = basicWeights_[b] * fitted_[b];
    VisitRows(withTraces, [&](const MAFittedRows& rows) {
        AddResiduals(rows, rowSums.sums);
        if (withCubic)
            AddProducts(rows, rowSums);
        if (withTraces)
            AddLeverages(rows, rowSums.sums);
    });
    rowSums.sums.count = static_cast<double>(given_->size());
    if (withCubic)
        rowSums.sums.yPPPy = CubicForm(rowSums);
    AddBasicRows(rowSums.sums);
    if (withTraces)
        AddTraces(rowSums.sums);
    return rowSums.sums;
}

void MAWeightedFit::AddResiduals(const MAFittedRows& rows, MAProjectionSums& total) const
{
    const double* const weights = Weights(rows.first);
    AddAlternately(rows.count, total, [=, residuals = rows.residuals](MAProjectionSums& sums, std::size_t i) {
        const double weight = weights[i];
        const double weighted = weight * residuals[i];
        sums.yPy += weighted * residuals[i];
        sums.yPPy += weighted * weighted;
        sums.weights += weight;
        sums.squaredWeights += weight * weight;
    });
}

/// What `CubicForm` takes.
void MAWeightedFit::AddProducts(const MAFittedRows& rows, RowSums& total) const
{
    const double* const weights = Weights(rows.first);
    const double* const shift = total.shift.data();
    WithUnrolledSize(Rank() + 1, [&](auto size) {
        auto products = ZeroRow(size);
        double squares = 0.0;
        const double* row = Row(rows.first);
        for (std::size_t i = 0; i < rows.count; ++i, row += size) {
            double s = weights[i] * rows.residuals[i];
            for (std::size_t j = 0; j + 1 < size; ++j)
                s += row[j] * shift[j];
            const double weighted = weights[i] * s;
            squares += weighted * s;
            for (std::size_t j = 0; j + 1 < size; ++j)
                products[j] += weighted * row[j];
        }
        for (std::size_t j = 0; j + 1 < size; ++j)
            total.products[j] += products[j];
        total.squares += squares;
    });
}

void MAWeightedFit::AddLeverages(const MAFittedRows& rows, MAProjectionSums& total) const
{
    const double* const weights = Weights(rows.first);
    AddAlternately(rows.count, total,
                   [=, complements = rows.leverageComplements](MAProjectionSums& sums, std::size_t i) {
                       sums.traceP += complements[i] * weights[i];
                       sums.tracePP += (2.0 * complements[i] - 1.0) * weights[i] * weights[i];
                   });
}

/// y'PPPy = s'(W - WUMU'W)s; where the difference cancels, as the residual sum of the regression of s.
double MAWeightedFit::CubicForm(const RowSums& sums) const
{
    const double difference = sums.squares - inverse_.QuadraticForm(sums.products);
    if (difference >= smallestShare * sums.squares)
        return difference;
    const std::size_t p = Rank();
    Values fitted = sums.products;
    SolveTransposed(factor_, fitted.data());
    SolveUpper(factor_, fitted.data());
    double form = 0.0;
    for (std::size_t b = 0; b < basicRows_.size(); ++b)
        form += basicWeights_[b] * Square(fitted[b]);
    for (std::size_t j = 0; j < p; ++j)
        fitted[j] -= sums.shift[j];
    VisitRows(false, [&](const MAFittedRows& rows) {
        for (std::size_t i = 0; i < rows.count; ++i) {
            const double weight = *Weights(rows.first + i);
            form += weight * Square(weight * rows.residuals[i] - Dot(Row(rows.first + i), fitted.data(), p));
        }
    });
    return form;
}

void MAWeightedFit::AddBasicRows(MAProjectionSums& sums) const
{
    for (std::size_t b = 0; b < basicRows_.size(); ++b) {
        const double weight = basicWeights_[b];
        sums.weights += weight;
        sums.squaredWeights += Square(weight);
        sums.yPy += weight * Square(fitted_[b]);
        sums.yPPy += Square(weight * fitted_[b]);
    }
}

/// What the rows' own terms leave: tr MJMJ, and the basic rows with their columns.
void MAWeightedFit::AddTraces(MAProjectionSums& sums) const
{
    for (std::size_t i = 0; i < Rank(); ++i) {
        for (std::size_t j = 0; j < Rank(); ++j)
            sums.tracePP += hat_(i, j) * hat_(j, i);
    }
    for (std::size_t b = 0; b < basicRows_.size(); ++b) {
        sums.traceP += BasicComplement(b, b) * basicWeights_[b];
        sums.tracePP += SquaredProjection(basicRows_[b]) + Square(basicWeights_[b]) * HatSquare(b);
    }
}

/// MJ with J = U'W²U.
void MAWeightedFit::FormHat()
{
    hat_ = MASquareMatrix(Rank());
    for (std::size_t i = 0; i < Rank(); ++i) {
        for (std::size_t j = 0; j < Rank(); ++j) {
            for (std::size_t l = 0; l < Rank(); ++l)
                hat_(i, j) += inverse_.Get(i, l) * squaredProducts_.Get(l, j);
        }
    }
}

/// (MJM)_jj.
double MAWeightedFit::HatSquare(std::size_t j) const
{
    double sum = 0.0;
    for (std::size_t l = 0; l < Rank(); ++l)
        sum += hat_(j, l) * inverse_.Get(l, j);
    return sum;
}

/// w²(1 - 2h + m'(J + B²)m) with m = Mu; of a basic row the squares of its columns P_NB and P_BB.
double MAWeightedFit::SquaredProjection(std::size_t row) const
{
    const auto found = std::find(basicRows_.begin(), basicRows_.end(), row);
    if (found != basicRows_.end()) {
        const auto basic = static_cast<std::size_t>(found - basicRows_.begin());
        double sum = Square(basicWeights_[basic]) * HatSquare(basic);
        for (std::size_t l = 0; l < Rank(); ++l)
            sum += Square(BasicComplement(basic, l) * basicWeights_[l]);
        return sum;
    }
    Values solved(Row(row), Row(row) + Rank());
    SolveTransposed(factor_, solved.data());
    const double weight = (*given_)[row];
    double sum = 1.0 - 2.0 * weight * Dot(solved.data(), solved.data(), Rank());
    SolveUpper(factor_, solved.data());
    for (std::size_t i = 0; i < Rank(); ++i) {
        for (std::size_t j = 0; j < Rank(); ++j)
            sum += solved[i] * squaredProducts_.Get(i, j) * solved[j];
        sum += HasBasicRows() ? Square(basicWeights_[i] * solved[i]) : 0.0;
    }
    return Square(weight) * sum;
}

/// Of basic rows from the fitted values y_B + a there, Z_B g = L E g.
std::vector<double> MAWeightedFit::Coordinates() const
{
    if (!HasBasicRows())
        return fitted_;
    const std::size_t p = Rank();
    Values shares(p);
    for (std::size_t b = 0; b < p; ++b)
        shares[b] = columns_->Row(basicRows_[b])[p] + fitted_[b];
    SolveTransposed(basis_, shares.data());
    Values coordinates(p);
    for (std::size_t s = 0; s < p; ++s) {
        for (std::size_t j = 0; j < p; ++j)
            coordinates[j] += shares[s] * directions_(s, j);
    }
    return coordinates;
}

/// Of basic rows that of (R_S L) E, not of its cross products.
MASquareMatrix MAWeightedFit::Factor() const
{
    if (!HasBasicRows())
        return factor_;
    return TriangularFactor(Product(Product(factor_, Transposed(basis_)), directions_));
}

double MAWeightedFit::LogDeterminant() const
{
    double sum = 0.0;
    for (std::size_t j = 0; j < Rank(); ++j)
        sum += std::log(factor_(j, j)) + (HasBasicRows() ? std::log(std::abs(basis_(j, j))) : 0.0);
    return 2.0 * sum;
}

} // namespace MA_NAMESPACE
