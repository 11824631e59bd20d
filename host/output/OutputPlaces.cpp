#include "host/output/OutputPlaces.h"

#include "host/cli/ReportOutputOptions.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace host {

namespace {

/// The absolute path with all readable links resolved.
std::filesystem::path CanonicalPath(const std::string& path)
{
    std::error_code unreadable;
    const std::filesystem::path absolute = std::filesystem::absolute(path, unreadable);
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(absolute, unreadable);
    const std::filesystem::path found = unreadable ? absolute.lexically_normal() : canonical;
    return found.has_filename() ? found : found.parent_path(); // "folder/" is "folder"
}

struct NamedFile
{
    const char* option;
    std::string path;
};

/// The files that the options name, without standard output.
std::vector<NamedFile> FilesOf(const Options& options)
{
    const std::pair<const char*, const std::optional<std::string>&> all[] = {
        {"--json", options.jsonPath},
        {"--html", options.htmlPath},
        {"--table", options.report.tablePath},
        {"--output", options.report.output}};
    std::vector<NamedFile> files;
    for (const auto& [option, path] : all)
        if (path && *path != "-")
            files.push_back({option, *path});
    return files;
}

/// Throws UnusableInput when the file would replace the data or a folder, or has no folder.
void CheckFile(const char* option, const std::string& path, const Options& options)
{
    if (IsSameFile(path, options.dataPath))
        throw UnusableInput(fmt::format("{}: '{}' is the data file.", option, path));
    if (options.plotsFolder && IsSameFile(path, *options.plotsFolder))
        throw UnusableInput(fmt::format("{}: '{}' is the folder of --plots.", option, path));
    RequireFolderOf(option, path);
}

} // namespace

bool IsSameFile(const std::string& one, const std::string& other)
{
    std::error_code noSuchFile;
    return CanonicalPath(one) == CanonicalPath(other) || std::filesystem::equivalent(one, other, noSuchFile);
}

void RequireFolderOf(const char* option, const std::string& path)
{
    std::error_code noSuchFile;
    const std::filesystem::path folder = std::filesystem::absolute(path, noSuchFile).parent_path();
    if (!std::filesystem::is_directory(folder, noSuchFile))
        throw UnusableInput(fmt::format("{}: '{}' cannot be written: there is no folder '{}'.", option, path,
                                        folder.string()));
}

std::string OtherUseOf(const std::string& path, const Options& options)
{
    if (IsSameFile(path, options.dataPath))
        return "the data file";
    for (const NamedFile& file : FilesOf(options))
        if (IsSameFile(path, file.path))
            return fmt::format("the file of {}", file.option);
    return {};
}

void CheckOutputPlaces(const Options& options)
{
    CheckReportOutput(options);
    const std::vector<NamedFile> files = FilesOf(options);
    for (auto file = files.begin(); file != files.end(); ++file) {
        CheckFile(file->option, file->path, options);
        for (auto other = files.begin(); other != file; ++other)
            if (IsSameFile(file->path, other->path))
                throw UnusableInput(
                    fmt::format("{}: '{}' is the file of {}.", file->option, file->path, other->option));
    }
    std::error_code noSuchFile;
    const auto status = std::filesystem::status(options.plotsFolder.value_or("."), noSuchFile);
    if (std::filesystem::exists(status) && !std::filesystem::is_directory(status))
        throw UnusableInput(fmt::format("--plots: '{}' is no folder.", *options.plotsFolder));
}

} // namespace host
