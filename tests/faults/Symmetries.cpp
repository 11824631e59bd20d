#include "faults/Symmetries.h"

#include "support/Compare.h"

void ExpectFollows(const Change& change, std::span<const Trait> traits, const Expectations& before,
                   const Expectations& after)
{
    for (const Trait& trait : traits) {
        const bool isMoved = change.isNegation && trait.opposite != nullptr;
        const double factor = std::pow(change.unit, trait.degree) * (change.isNegation ? trait.sign : 1);
        std::vector<double> expected = before.Values(trait.name);
        const std::vector<double> actual = after.Values(isMoved ? trait.opposite : trait.name);
        for (double& value : expected)
            value *= KXMV::IsMissing(value) ? 1.0 : factor;
        bool isSame = actual.size() == expected.size();
        for (std::size_t i = 0; isSame && i < expected.size(); ++i)
            isSame = bool(Close(actual[i], expected[i], change.tolerance, 1.0));
        if (!isSame)
            before.violations.Add(change.name + " leaves or moves " + trait.name +
                                  " as it should: " + testing::PrintToString(actual) + ", not " +
                                  testing::PrintToString(expected));
    }
}
