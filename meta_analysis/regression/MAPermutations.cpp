#include "meta_analysis/regression/MAPermutations.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// SplitMix64 (Steele, Lea and Flood 2014, OOPSLA, 453-472): its n-th number depends on n and the key alone.
class Generator
{
public:
    Generator(int seed, int number)
        : state_(Mix(Mix(static_cast<std::uint64_t>(seed)) + static_cast<std::uint64_t>(number)))
    {}

    std::uint64_t Next() { return Mix(state_ += increment); }

    /// A number below `bound`, each equally likely: the upper half of a product, without the few numbers that
    /// would make some more likely (Lemire 2019, ACM Transactions on Modeling and Computer Simulation 29,
    /// article 3).
    std::size_t Below(std::size_t bound)
    {
        const auto range = static_cast<std::uint32_t>(bound);
        const std::uint32_t least = (0U - range) % range;
        std::uint64_t product = 0;
        do
            product = (Next() >> 32U) * range;
        while (static_cast<std::uint32_t>(product) < least);
        return product >> 32U;
    }

private:
    static constexpr std::uint64_t increment = 0x9E3779B97F4A7C15U;

    static std::uint64_t Mix(std::uint64_t x)
    {
        x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
        x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
        return x ^ (x >> 31U);
    }

    std::uint64_t state_;
};

} // namespace

MAPermutations::MAPermutations(const MADesignRows& rows, bool changesSigns, int most, int seed)
    : rows_(&rows), changesSigns_(changesSigns), seed_(seed)
{
    if (changesSigns)
        CountSigns(most);
    else
        CountOrders(most);
}

void MAPermutations::CountSigns(int most)
{
    const std::size_t count = rows_->Count();
    isExact_ = count < 31 && (std::int64_t{1} << count) <= most;
    count_ = isExact_ ? static_cast<int>(std::int64_t{1} << count) : most;
}

/// The number of orders is a product of binomial coefficients, each of which stays a whole number after every
/// division.
void MAPermutations::CountOrders(int most)
{
    SortIntoKinds();
    std::vector<std::int64_t> rowsOfKind(firstOfKind_.size());
    std::int64_t orders = 1;
    for (std::size_t i = 0; i < kinds_.size() && orders <= most; ++i)
        orders = orders * static_cast<std::int64_t>(i + 1) / ++rowsOfKind[kinds_[i]];
    isExact_ = orders <= most;
    count_ = isExact_ ? static_cast<int>(orders) : most;
    order_.resize(rows_->Count());
}

/// Kinds are numbered in the order of their rows of predictors.
void MAPermutations::SortIntoKinds()
{
    const std::size_t width = rows_->columnCount;
    const auto isBefore = [&](std::size_t left, std::size_t right) {
        return std::lexicographical_compare(rows_->Row(left), rows_->Row(left) + width, rows_->Row(right),
                                            rows_->Row(right) + width);
    };
    std::vector<std::size_t> sorted(rows_->Count());
    std::iota(sorted.begin(), sorted.end(), std::size_t{0});
    std::sort(sorted.begin(), sorted.end(), isBefore);
    kinds_.resize(sorted.size());
    for (const std::size_t row : sorted) {
        if (firstOfKind_.empty() || isBefore(firstOfKind_.back(), row))
            firstOfKind_.push_back(row);
        kinds_[row] = firstOfKind_.size() - 1;
    }
}

void MAPermutations::Apply(int number, MADesignRows& permuted)
{
    if (changesSigns_)
        return ChangeSigns(number, permuted);
    if (isExact_)
        NextOrder(number);
    else
        DrawOrder(number);
    const std::size_t width = rows_->columnCount;
    for (std::size_t i = 0; i < order_.size(); ++i)
        std::copy_n(rows_->Row(order_[i]), width, permuted.cells.data() + i * (width + 1));
}

/// The bits of the number, or of random numbers, are the signs.
void MAPermutations::ChangeSigns(int number, MADesignRows& permuted) const
{
    Generator generator(seed_, number);
    auto bits = static_cast<std::uint64_t>(number);
    const std::size_t width = rows_->columnCount;
    for (std::size_t i = 0; i < rows_->Count(); ++i, bits >>= 1U) {
        if (!isExact_ && i % 64 == 0)
            bits = generator.Next();
        const double effect = rows_->Dependent(i);
        permuted.cells[i * (width + 1) + width] = bits % 2 == 1 ? -effect : effect;
    }
}

void MAPermutations::NextOrder(int number)
{
    if (number == 0)
        std::sort(kinds_.begin(), kinds_.end());
    else
        std::next_permutation(kinds_.begin(), kinds_.end());
    for (std::size_t i = 0; i < order_.size(); ++i)
        order_[i] = firstOfKind_[kinds_[i]];
}

/// The shuffle of Fisher and Yates.
void MAPermutations::DrawOrder(int number)
{
    Generator generator(seed_, number);
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    for (std::size_t i = order_.size(); i > 1; --i)
        std::swap(order_[i - 1], order_[generator.Below(i)]);
}

} // namespace MA_NAMESPACE
