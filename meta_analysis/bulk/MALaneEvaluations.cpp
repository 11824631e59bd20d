#include "meta_analysis/bulk/MALaneEvaluations.h"

#include "meta_analysis/pooling/MATau2Interval.h"
#include "meta_analysis/pooling/MATau2Search.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace MA_NAMESPACE {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// A search that does not ask twice in a row for the same.
template <class Search>
class RememberingSearch
{
public:
    RememberingSearch(Search search, double t, const MAGeneralizedQ& q)
        : search_(std::move(search)), t_(t), q_(q)
    {
        TakeRemembered();
    }

    bool IsWaiting() const { return search_.IsWaiting(); }
    double Wanted() const { return search_.Wanted(); }
    void Take(const MAGeneralizedQ& q)
    {
        t_ = search_.Wanted();
        q_ = q;
        search_.Take(q);
        TakeRemembered();
    }

private:
    /// At most once: a search that has taken a value asks for another place.
    void TakeRemembered()
    {
        if (search_.IsWaiting() && search_.Wanted() == t_)
            search_.Take(q_);
    }

    Search search_;
    double t_;
    MAGeneralizedQ q_;
};

MAGeneralizedQ QOf(const MAProjectionSums& sums)
{
    return {sums.yPy, -sums.yPPy};
}

} // namespace

void MALaneEvaluations::Evaluate(std::span<MASetRegression* const> regressions)
{
    regressions_ = regressions;
    if (!Load())
        return;
    const MASetRegression& one = *regressions.front();
    if (one.IsSearched() && HasLikelihood(one.Estimator()))
        SearchMaxima(LikelihoodOf(one.Estimator()));
    else if (one.IsSearched())
        SearchRoots();
    if (one.TakesSumsAtZero())
        SumAtZero();
    if (one.TakesProfileOfQ())
        FindProfiles();
}

/// All lanes have the rank of the first. False where there is none that can be evaluated.
bool MALaneEvaluations::Load()
{
    rank_ = count_ = 0;
    for (std::size_t lane = 0; lane < regressions_.size(); ++lane) {
        const MAOrthonormalColumns& columns = regressions_[lane]->Curve().Columns();
        rank_ = rank_ == 0 ? columns.Rank() : rank_;
        isLoaded_[lane] = regressions_[lane]->HasBegun() && columns.Rank() == rank_ && rank_ > 0 &&
                          rank_ <= mostLaneColumns && columns.RowCount() <= mostLaneRows;
        if (isLoaded_[lane])
            count_ = std::max(count_, columns.RowCount());
    }
    const std::size_t size = count_ * kernels_.laneCount;
    cells_.resize(size * (rank_ + 1));
    variances_.resize(size);
    weights_.resize(size);
    for (std::size_t lane = 0; lane < kernels_.laneCount; ++lane) {
        if (lane < regressions_.size() && isLoaded_[lane])
            LoadRows(lane);
        else
            LoadNothing(lane);
    }
    return count_ > 0;
}

void MALaneEvaluations::LoadRows(std::size_t lane)
{
    const MARegressionCurve& curve = regressions_[lane]->Curve();
    const MAOrthonormalColumns& columns = curve.Columns();
    const std::size_t lanes = kernels_.laneCount;
    unit_[lane] = curve.Unit();
    for (std::size_t i = 0; i < count_; ++i) {
        const bool isRow = i < columns.RowCount();
        variances_[i * lanes + lane] = isRow ? curve.Variances()[i] : infinity;
        double* const cells = cells_.data() + i * (rank_ + 1) * lanes + lane;
        const double* const row = isRow ? columns.Row(i) : nullptr;
        for (std::size_t j = 0; j <= rank_; ++j)
            cells[j * lanes] = isRow ? row[j] : 0.0;
    }
}

/// What is computed for the lane serves nothing.
void MALaneEvaluations::LoadNothing(std::size_t lane)
{
    unit_[lane] = 1.0;
    for (std::size_t i = 0; i < count_; ++i)
        variances_[i * kernels_.laneCount + lane] = 1.0;
    for (std::size_t i = 0; i < count_ * (rank_ + 1); ++i)
        cells_[i * kernels_.laneCount + lane] = 0.0;
}

void MALaneEvaluations::Compute(const MALaneValues& t, const Request& request)
{
    kernels_.sums[rank_ - 1]({cells_.data(), variances_.data(), unit_, weights_.data(), count_},
                             {t, request.withTraces, request.withCubic, sums_.data(), isExact_.data()});
}

/// False, and the lane is left, where the regression has to fit by itself.
bool MALaneEvaluations::Tell(std::size_t lane, double t, const Request& request)
{
    if (!isExact_[lane])
        return isLoaded_[lane] = false;
    MARegressionCurve& curve = regressions_[lane]->Curve();
    MAProjectionSums& sums = sums_[lane];
    sums.count = static_cast<double>(curve.Columns().RowCount());
    sums.yPy /= unit_[lane];
    sums.yPPy /= unit_[lane];
    sums.yPPPy /= unit_[lane];
    curve.Know(t, request.withTraces, request.withCubic, sums);
    if (t == 0.0)
        qAtZero_[lane] = QOf(sums);
    return true;
}

void MALaneEvaluations::SearchMaxima(MALikelihoodType type)
{
    const Request request{type == MALikelihoodType::Restricted, true};
    auto& searches = pointSearches_;
    for (std::size_t lane = 0; lane < regressions_.size(); ++lane) {
        const MACurveBounds& bounds = regressions_[lane]->Curve().Bounds();
        searches[lane].reset();
        if (isLoaded_[lane] && AreUsable(bounds) && CanRise(bounds))
            searches[lane].emplace(bounds, regressions_[lane]->StartOfSearch());
    }
    RunSideBySide<MAPointSearch, MALikelihoodTerms>(
        std::span(searches).first(regressions_.size()), [&](const MALaneValues& t, MALikelihoodTerms* terms) {
            Compute(t, request);
            for (std::size_t lane = 0; lane < regressions_.size(); ++lane) {
                if (!searches[lane] || !searches[lane]->IsWaiting())
                    continue;
                if (Tell(lane, t[lane], request))
                    terms[lane] = TermsOf(sums_[lane], type);
                else
                    searches[lane].reset();
            }
        });
}

template <class Searches>
void MALaneEvaluations::RunQSearches(Searches& searches)
{
    using Search = typename Searches::value_type::value_type;
    const Request request{false, false};
    RunSideBySide<Search, MAGeneralizedQ>(searches, [&](const MALaneValues& t, MAGeneralizedQ* q) {
        Compute(t, request);
        for (std::size_t lane = 0; lane < regressions_.size(); ++lane) {
            if (!searches[lane] || !searches[lane]->IsWaiting())
                continue;
            if (Tell(lane, t[lane], request))
                q[lane] = QOf(sums_[lane]);
            else
                searches[lane].reset();
        }
    });
}

void MALaneEvaluations::SearchRoots()
{
    std::array<std::optional<MAQRootSearch>, mostLanes> searches;
    for (std::size_t lane = 0; lane < regressions_.size(); ++lane) {
        const MACurveBounds& bounds = regressions_[lane]->Curve().Bounds();
        if (isLoaded_[lane])
            searches[lane].emplace(bounds, bounds.residualDf, regressions_[lane]->StartOfSearch());
    }
    RunQSearches(searches);
}

/// The search of a restricted likelihood begins there, and has all that is wanted.
void MALaneEvaluations::SumAtZero()
{
    const Request request{true, false};
    const MALaneValues zero{};
    Compute(zero, request);
    for (std::size_t lane = 0; lane < regressions_.size(); ++lane) {
        if (isLoaded_[lane])
            Tell(lane, 0.0, request);
    }
}

void MALaneEvaluations::FindProfiles()
{
    using Search = RememberingSearch<MAQProfileSearch>;
    std::array<std::optional<Search>, mostLanes> searches;
    for (std::size_t lane = 0; lane < regressions_.size(); ++lane) {
        MASetRegression& regression = *regressions_[lane];
        if (isLoaded_[lane])
            searches[lane].emplace(MAQProfileSearch(regression.Curve().Bounds(), regression.Quantiles()), 0.0,
                                   qAtZero_[lane]);
    }
    RunQSearches(searches);
}

} // namespace MA_NAMESPACE
