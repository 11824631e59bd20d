#include "host/output/OutputPlaces.h"

#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

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

bool WritesJsonToStandardOutput(const Options& options)
{
    return options.jsonPath == "-";
}

std::string OtherUseOf(const std::string& path, const Options& options)
{
    if (IsSameFile(path, options.dataPath))
        return "the data file";
    if (options.jsonPath && !WritesJsonToStandardOutput(options) && IsSameFile(path, *options.jsonPath))
        return "the file of --json";
    if (options.htmlPath && IsSameFile(path, *options.htmlPath))
        return "the file of --html";
    return {};
}

void CheckOutputPlaces(const Options& options)
{
    if (options.jsonPath && !WritesJsonToStandardOutput(options))
        CheckFile("--json", *options.jsonPath, options);
    if (options.htmlPath)
        CheckFile("--html", *options.htmlPath, options);
    if (options.htmlPath && options.jsonPath && IsSameFile(*options.htmlPath, *options.jsonPath))
        throw UnusableInput(fmt::format("--html: '{}' is the file of --json.", *options.htmlPath));
    std::error_code noSuchFile;
    const auto status = std::filesystem::status(options.plotsFolder.value_or("."), noSuchFile);
    if (std::filesystem::exists(status) && !std::filesystem::is_directory(status))
        throw UnusableInput(fmt::format("--plots: '{}' is no folder.", *options.plotsFolder));
}

} // namespace host
