#pragma once

#include <string>
#include <vector>

namespace host {

/// What the rules of the cautions of analyses and meta-regressions share.

/// A rule: the condition with its sentence, which has no full stop and is empty where the number does not
/// mislead; and who says so.
template <class Data>
struct CautionRule
{
    std::string (*sentence)(const Data&);
    const char* source;
};

/// The sentences of the rules that hold, with their sources.
template <class Rules, class Data>
std::vector<std::string> SentencesOf(const Rules& rules, const Data& data)
{
    std::vector<std::string> sentences;
    for (const auto& rule : rules)
        if (const std::string sentence = rule.sentence(data); !sentence.empty())
            sentences.push_back(sentence +
                                (*rule.source == '\0' ? "." : std::string(" (") + rule.source + ")."));
    return sentences;
}

/// The first few texts behind each other, and how many more there are.
std::string Listed(const std::vector<std::string>& texts);

} // namespace host
