#pragma once

#include <cstddef>
#include <vector>

/// The sums over all of `count` entries but one, for each in turn: those over the entries before it and after
/// it, so that nothing cancels. `none` are sums over no entry, to which `add(i, sums)` adds entry i, and
/// `Sums::Add` other sums. O(count).
template <class Sums, class AddEntry>
std::vector<Sums> SumsWithoutEach(std::size_t count, const Sums& none, AddEntry add)
{
    std::vector<Sums> without(count, none);
    Sums after = none;
    for (std::size_t i = count; i-- > 0;) {
        without[i] = after;
        add(i, after);
    }
    Sums before = none;
    for (std::size_t i = 0; i < count; ++i) {
        without[i].Add(before);
        add(i, before);
    }
    return without;
}
