#include "host/batch/BatchPlaces.h"

#include "host/output/OutputPlaces.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <utility>

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

/// By device and inode, which links share: names of thousands of files would be too many to compare in pairs.
void RequireDifferentData(const std::vector<std::string>& files)
{
    std::set<std::pair<dev_t, ino_t>> known;
    for (const std::string& file : files) {
        struct stat status
        {};
        const bool isStream = file == STANDARD_STREAM;
        const bool isThere = (isStream ? fstat(STDIN_FILENO, &status) : stat(file.c_str(), &status)) == 0;
        const bool isUsedUp = isStream || !S_ISCHR(status.st_mode); // devices such as /dev/null are not
        if (isThere && isUsedUp && !known.emplace(status.st_dev, status.st_ino).second)
            throw UnusableInput(fmt::format("'{}' is given twice: its studies would count twice.", file));
    }
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
