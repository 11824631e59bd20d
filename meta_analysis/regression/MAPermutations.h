#pragma once

#include "meta_analysis/regression/design/MADesignRow.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// The permutations of a design under the hypothesis that its moderators have no effect.
///
/// A model of an intercept alone has the signs of its effect sizes changed: 2^k permutations. In any other
/// the studies exchange their rows of predictors: as many permutations as there are different orders of these
/// rows, k! over the product of n! for n equal rows. When there are no more than asked for, `Apply` goes
/// through all, the data themselves included; otherwise it draws, each permutation from the seed and its own
/// number, so that neither the order nor the machine matters.
class MAPermutations
{
public:
    /// The rows must outlive the object.
    MAPermutations(const MADesignRows& rows, bool changesSigns, int most, int seed);

    bool IsExact() const { return isExact_; }
    int Count() const { return count_; }
    /// Makes permutation `number` of the rows. Exact orders of rows come one after the other, from number 0.
    void Apply(int number, MADesignRows& permuted);

private:
    void CountSigns(int most);
    void CountOrders(int most);
    void SortIntoKinds();
    void ChangeSigns(int number, MADesignRows& permuted) const;
    void NextOrder(int number);
    void DrawOrder(int number);

    const MADesignRows* rows_;
    bool changesSigns_;
    int seed_;
    bool isExact_ = false;
    int count_ = 0;
    std::vector<std::size_t> firstOfKind_; ///< a row for each kind of equal rows of predictors
    std::vector<std::size_t> kinds_; ///< of the rows; while all orders are gone through, those of the order
    std::vector<std::size_t> order_; ///< the row whose predictors each study gets
};

} // namespace MA_NAMESPACE
