#include "host/cli/OptionKinds.h"

#include "host/text/UnusableInput.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace host {

using Json = nlohmann::ordered_json;

namespace {

std::vector<std::string> NamesOfWords(const std::vector<OtherWord>& words)
{
    std::vector<std::string> names;
    names.reserve(words.size());
    for (const OtherWord& other : words)
        names.push_back(other.word);
    return names;
}

} // namespace

OptionDefinition Column(const char* name, ColumnName& target, const char* help)
{
    return {.name = name,
            .argument = "COLUMN",
            .help = help,
            .store = [&target](const std::string& text) { target = text; },
            .value = [&target] { return target ? Json(*target) : Json(); }};
}

OptionDefinition TextList(const char* name, const char* argument, std::vector<std::string>& target,
                          const char* help)
{
    return {.name = name,
            .argument = argument,
            .help = help,
            .isRepeatable = true,
            .store = [&target](const std::string& text) { target.push_back(text); },
            .value = [&target] { return Json(target); }};
}

OptionDefinition Flag(const char* name, bool& target, const char* help)
{
    return {.name = name,
            .help = help,
            .store = [&target](const std::string&) { target = true; },
            .value = [&target] { return Json(target); }};
}

OptionDefinition Required(OptionDefinition option)
{
    option.need = OptionDefinition::Need::REQUIRED;
    return option;
}

OptionDefinition ThisOrNext(OptionDefinition option)
{
    option.need = OptionDefinition::Need::THIS_OR_NEXT;
    return option;
}

OptionDefinition AlsoTaking(const std::vector<OtherWord>& words, OptionDefinition option)
{
    for (const OtherWord& other : words) {
        option.help += fmt::format("; {} is {}", other.word, other.meaning);
        option.choices.push_back(other.word);
    }
    option.store = [store = std::move(option.store), words](const std::string& text) {
        const auto found = std::find_if(words.begin(), words.end(), [&](const OtherWord& other) {
            return EqualInAnyCase(other.word, text);
        });
        try {
            store(found == words.end() ? text : found->meaning);
        } catch (const UnusableInput& problem) {
            throw UnusableInput(
                fmt::format("{} Also taken: {}.", problem.what(), fmt::join(NamesOfWords(words), ", ")));
        }
    };
    return option;
}

double ParseLevel(const char* option, const std::string& text, std::vector<std::string>& notes)
{
    const double level = ParseNumber(text);
    if (BETWEEN_0_AND_1.contains(level))
        return level;
    if (level < 50 || level >= 100)
        throw UnusableInput(
            fmt::format("{} is not between 0 and 1, and no percentage from 50 to below 100.", text));
    notes.push_back(fmt::format("--{} {} is a percentage: the confidence level is {}.", option, Trimmed(text),
                                level / 100));
    return level / 100;
}

} // namespace host
