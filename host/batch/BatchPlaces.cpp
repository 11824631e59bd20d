#include "host/batch/BatchPlaces.h"

#include "host/output/OutputPlaces.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace host {

namespace {

constexpr const char* STANDARD_STREAM = "-";

bool IsFile(const std::optional<std::string>& place)
{
    return place && *place != STANDARD_STREAM;
}

/// Devices such as /dev/null may have several uses.
bool AreOneFile(const std::string& one, const std::string& other)
{
    std::error_code noSuchFile;
    return IsSameFile(one, other) && !std::filesystem::is_character_file(one, noSuchFile);
}

void RequireDifferentData(const std::vector<std::string>& files)
{
    for (auto file = files.begin(); file != files.end(); ++file)
        for (auto other = files.begin(); other != file; ++other)
            if (AreOneFile(*file, *other))
                throw UnusableInput(
                    fmt::format("'{}' is given twice: its studies would count twice.", *file));
}

void CheckPlace(const char* option, const std::optional<std::string>& place, const BatchOptions& batch)
{
    if (!IsFile(place))
        return;
    for (const std::string& file : batch.files)
        if (AreOneFile(file, *place))
            throw UnusableInput(fmt::format("{}: '{}' is a data file.", option, *place));
    RequireFolderOf(option, *place);
    std::error_code noSuchFile;
    if (std::filesystem::is_directory(*place, noSuchFile))
        throw UnusableInput(fmt::format("{}: '{}' is a folder.", option, *place));
}

} // namespace

void CheckBatchPlaces(const BatchOptions& batch)
{
    RequireDifferentData(batch.files);
    CheckPlace("--output", batch.output, batch);
    CheckPlace("--rejects", batch.rejects, batch);
    if (!batch.rejects)
        return;
    if (*batch.rejects == STANDARD_STREAM ? !IsFile(batch.output)
                                          : IsFile(batch.output) && AreOneFile(*batch.rejects, *batch.output))
        throw UnusableInput("--rejects and --output cannot be the same place.");
}

} // namespace host
