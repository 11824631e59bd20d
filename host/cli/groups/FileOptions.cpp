#include "host/cli/OptionGroups.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

/// A character by its name, or as itself.
struct NamedCharacter
{
    char character;
    const char* name;
};

constexpr NamedCharacter SEPARATORS[] = {{',', "comma"}, {';', "semicolon"}, {'\t', "tab"}};
constexpr NamedCharacter BATCH_SEPARATORS[] = {
    {',', "comma"}, {';', "semicolon"}, {'\t', "tab"}, {' ', "blanks"}};
constexpr NamedCharacter DECIMAL_MARKS[] = {{'.', "point"}, {',', "comma"}};

template <std::size_t N>
std::vector<std::string> NamesOf(const NamedCharacter (&characters)[N])
{
    std::vector<std::string> names = {"auto"};
    for (const NamedCharacter& one : characters)
        names.emplace_back(one.name);
    return names;
}

/// None for "auto".
template <std::size_t N>
std::optional<char> CharacterOf(const std::string& text, const NamedCharacter (&characters)[N])
{
    if (text == "auto")
        return std::nullopt;
    for (const NamedCharacter& one : characters)
        if (text == one.name || text == std::string(1, one.character))
            return one.character;
    if (text == "\\t")
        return CharacterOf("tab", characters);
    throw UnusableInput(
        fmt::format("'{}' is unknown; known are {}.", text, fmt::join(NamesOf(characters), ", ")));
}

template <std::size_t N>
OptionDefinition CharacterOption(const char* name, const char* help, std::optional<char>& target,
                                 const NamedCharacter (&characters)[N])
{
    return {
        .name = name,
        .argument = "NAME",
        .help = fmt::format("{}: {} (default auto)", help, fmt::join(NamesOf(characters), ", ")),
        .choices = NamesOf(characters),
        .store = [&target, &characters](const std::string& text) { target = CharacterOf(text, characters); },
        .value =
            [&target, &characters] {
                for (const NamedCharacter& one : characters)
                    if (target == one.character)
                        return Json(one.name);
                return Json("auto");
            }};
}

OptionDefinition MissingOption(FileFormat& file)
{
    return {.name = "missing",
            .argument = "LIST",
            .help = "texts of missing values in any case, separated by commas; empty fields always are "
                    "missing (default NA,N/A,NaN,.)",
            .store =
                [&file](const std::string& text) {
                    const std::vector<std::string_view> parts = PartsOfList(text);
                    file.missing = {parts.begin(), parts.end()};
                },
            .value = [&file] { return Json(file.missing); }};
}

} // namespace

OptionGroup FileOptions(Options& options)
{
    FileFormat& file = options.file;
    const bool isBatch = options.command == Command::BATCH;
    return {
        .heading = "Data file",
        .options = {
            isBatch
                ? CharacterOption("separator", "what separates the fields", file.separator, BATCH_SEPARATORS)
                : CharacterOption("separator", "what separates the fields", file.separator, SEPARATORS),
            CharacterOption("decimal", "decimal mark of the numbers", file.decimalMark, DECIMAL_MARKS),
            MissingOption(file)}};
}

} // namespace host
