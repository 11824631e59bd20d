#pragma once

#include "host/cli/Choices.h"
#include "host/cli/OptionDefinition.h"
#include "host/data/ColumnName.h"
#include "host/text/TextParsing.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace host {

// The kinds of options there are. What an option is stored in must outlive its definition.

/// The numbers that an option accepts: as a test, and in words.
struct Domain
{
    bool (*contains)(double);
    const char* words;
};

inline constexpr Domain ANY_NUMBER = {[](double) { return true; }, "a number"};
inline constexpr Domain POSITIVE = {[](double x) { return x > 0; }, "above 0"};
inline constexpr Domain NOT_NEGATIVE = {[](double x) { return x >= 0; }, "0 or above"};
inline constexpr Domain BETWEEN_0_AND_1 = {[](double x) { return x > 0 && x < 1; }, "between 0 and 1"};

template <class Value>
Value RequireInside(const Domain& domain, Value value)
{
    if (!domain.contains(value))
        throw UnusableInput(fmt::format("{} is not {}.", value, domain.words));
    return value;
}

OptionDefinition Column(const char* name, ColumnName& target, const char* help);

/// A repeatable option whose arguments are texts, such as names of columns.
OptionDefinition TextList(const char* name, const char* argument, std::vector<std::string>& target,
                          const char* help);

OptionDefinition Flag(const char* name, bool& target, const char* help);

OptionDefinition Required(OptionDefinition option);

/// Exactly one of this option and those declared behind it, up to the first without this mark.
OptionDefinition ThisOrNext(OptionDefinition option);

/// Another word for an argument of an option.
struct OtherWord
{
    std::string word;
    std::string meaning;
};

/// The option, which takes these words as well.
OptionDefinition AlsoTaking(const std::vector<OtherWord>& words, OptionDefinition option);

// Options stored in a settings object of the library, which has a getter and a setter for each.

/// An option whose argument names a row of a table of choices.
template <class Value, class Row, std::size_t N, class Settings>
OptionDefinition OneOf(const char* name, const std::array<Row, N>& choices, Settings& settings,
                       Value (Settings::*get)() const, void (Settings::*set)(Value), const char* help)
{
    const std::string preset = NameOf(choices, (settings.*get)());
    return {.name = name,
            .argument = "NAME",
            .help = fmt::format("{}: {} (default {}){}", help, NamesOf(choices), preset,
                                AbbreviationsOf(choices)),
            .choices = ListOfNames(choices),
            .store = [&settings, &choices,
                      set](const std::string& text) { (settings.*set)(ValueOf(choices, text)); },
            .value = [&settings, &choices,
                      get] { return nlohmann::ordered_json(NameOf(choices, (settings.*get)())); }};
}

template <class Settings>
OptionDefinition Number(const char* name, const Domain& domain, Settings& settings,
                        double (Settings::*get)() const, void (Settings::*set)(double), const char* help)
{
    return {.name = name,
            .argument = "NUMBER",
            .help = fmt::format("{} (default {})", help, (settings.*get)()),
            .store =
                [&settings, &domain, set](const std::string& text) {
                    (settings.*set)(RequireInside(domain, ParseNumber(text)));
                },
            .value = [&settings, get] { return nlohmann::ordered_json((settings.*get)()); }};
}

/// A confidence level as a fraction. A number from 50 to below 100 is a percentage, of which a note tells.
double ParseLevel(const char* option, const std::string& text, std::vector<std::string>& notes);

template <class Settings>
OptionDefinition Level(const char* name, std::vector<std::string>& notes, Settings& settings,
                       double (Settings::*get)() const, void (Settings::*set)(double), const char* help)
{
    OptionDefinition option = Number(name, BETWEEN_0_AND_1, settings, get, set, help);
    option.store = [name, &notes, &settings, set](const std::string& text) {
        (settings.*set)(ParseLevel(name, text, notes));
    };
    return option;
}

template <class Settings>
OptionDefinition Count(const char* name, Settings& settings, int (Settings::*get)() const,
                       void (Settings::*set)(int), const char* help)
{
    return {.name = name,
            .argument = "COUNT",
            .help = fmt::format("{} (default {})", help, (settings.*get)()),
            .store =
                [&settings, set](const std::string& text) {
                    (settings.*set)(RequireInside(NOT_NEGATIVE, ParseWholeNumber(text)));
                },
            .value = [&settings, get] { return nlohmann::ordered_json((settings.*get)()); }};
}

template <class Settings>
OptionDefinition Flag(const char* name, Settings& settings, bool (Settings::*get)() const,
                      void (Settings::*set)(bool), const char* help)
{
    return {.name = name,
            .help = help,
            .store = [&settings, set](const std::string&) { (settings.*set)(true); },
            .value = [&settings, get] { return nlohmann::ordered_json((settings.*get)()); }};
}

} // namespace host
