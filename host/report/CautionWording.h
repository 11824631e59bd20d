#pragma once

#include "host/report/Cautions.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// What the rules of the cautions of analyses and meta-regressions share.

/// For a normal interval of random effects, for I², groups, and tests of asymmetry.
inline constexpr std::size_t FEW_STUDIES = 10;

/// A rule: the condition with its sentence, which has no full stop and is empty where the number does not
/// mislead; who says so; and the code of a warning that the sentence makes superfluous, or 0.
template <class Data>
struct CautionRule
{
    std::string (*sentence)(const Data&);
    const char* source;
    int saidWarning = 0;
};

/// Those of the rules that hold, with their sources.
template <class Rules, class Data>
Cautions CautionsBy(const Rules& rules, const Data& data)
{
    Cautions cautions;
    for (const auto& rule : rules) {
        const std::string sentence = rule.sentence(data);
        if (sentence.empty())
            continue;
        cautions.sentences.push_back(sentence +
                                     (*rule.source == '\0' ? "." : std::string(" (") + rule.source + ")."));
        cautions.saidWarnings.push_back(rule.saidWarning);
    }
    return cautions;
}

/// The first few texts behind each other, and how many more there are.
std::string Listed(const std::vector<std::string>& texts);

} // namespace host
