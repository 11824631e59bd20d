#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>
#include <vector>

/// A folder that the destructor removes.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::random_device random;
        do
            path_ = std::filesystem::temp_directory_path() / ("meta-analysis-" + std::to_string(random()));
        while (!std::filesystem::create_directory(path_));
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string PathOf(const std::string& file) const { return (path_ / file).string(); }

    /// The names in the folder or in one below it, in ascending order.
    std::vector<std::string> Files(const std::string& below = "") const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_ / below))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    std::string Write(const std::string& file, const std::string& content) const
    {
        std::ofstream(PathOf(file), std::ios::binary) << content;
        return PathOf(file);
    }

    std::string Read(const std::string& file) const
    {
        std::ifstream stream(PathOf(file), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path path_;
};
