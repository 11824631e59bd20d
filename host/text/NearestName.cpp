#include "host/text/NearestName.h"

#include "host/text/AsciiCase.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace host {

namespace {

constexpr std::size_t FEWEST_FOR_PREFIX = 3;
/// A longer text is no misspelt name. The limit bounds the work.
constexpr std::size_t LONGEST_TEXT = 100;

bool IsSame(char a, char b)
{
    return UpperCase(a) == UpperCase(b);
}

/// The steps from one text to the other, of which none changes what another has changed.
std::size_t StepsBetween(std::string_view one, std::string_view other)
{
    std::vector<std::size_t> beforeLast;
    std::vector<std::size_t> last(other.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= one.size(); ++i) {
        std::vector<std::size_t> row(other.size() + 1, i);
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (IsSame(one[i - 1], other[j - 1]) ? 0 : 1);
            row[j] = std::min({replaced, row[j - 1] + 1, last[j] + 1});
            if (i > 1 && j > 1 && IsSame(one[i - 1], other[j - 2]) && IsSame(one[i - 2], other[j - 1]))
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast = std::exchange(last, std::move(row));
    }
    return last.back();
}

bool BeginsWith(std::string_view name, std::string_view text)
{
    return EqualInAnyCase(name.substr(0, text.size()), text);
}

std::optional<std::string> OnlyOneWithPrefix(std::string_view text, const std::vector<std::string>& names)
{
    const auto begins = [text](const std::string& name) { return BeginsWith(name, text); };
    if (text.size() < FEWEST_FOR_PREFIX || std::count_if(names.begin(), names.end(), begins) != 1)
        return std::nullopt;
    return *std::find_if(names.begin(), names.end(), begins);
}

} // namespace

std::optional<std::string> NearestName(std::string_view text, const std::vector<std::string>& names)
{
    if (text.size() > LONGEST_TEXT)
        return std::nullopt;
    const std::string* nearest = nullptr;
    std::size_t fewest = std::max<std::size_t>(1, text.size() / 3) + 1;
    for (const std::string& name : names) {
        const std::size_t steps = StepsBetween(text, name);
        if (steps >= fewest || steps >= text.size())
            continue;
        nearest = &name;
        fewest = steps;
    }
    return nearest != nullptr ? *nearest : OnlyOneWithPrefix(text, names);
}

std::string DidYouMean(std::string_view text, const std::vector<std::string>& names, std::string_view prefix)
{
    const std::optional<std::string> name = NearestName(text, names);
    return name ? fmt::format(" Did you mean {}{}?", prefix, *name) : "";
}

} // namespace host
