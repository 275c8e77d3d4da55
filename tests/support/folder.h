// A folder of one's own for the files of a test, gone with all its content at the end.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace support
{

class Folder
{
public:
    Folder()
    {
        std::random_device random;
        do {
            path = std::filesystem::temp_directory_path() / ("orva_" + std::to_string(random()));
        } while (!std::filesystem::create_directory(path)); // false for one that is there already
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }

    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    // The path of an entry.
    std::string operator/(const std::string &name) const
    {
        return (path / name).string();
    }

    // The names of all entries, sorted.
    std::vector<std::string> entries() const
    {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(path))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    std::filesystem::path path;
};

inline void writeFile(const std::filesystem::path &path, const std::string &content)
{
    if (!(std::ofstream(path, std::ios::binary) << content << std::flush))
        throw std::runtime_error(path.string() + ": not written");
}

inline std::string readFile(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(path.string() + ": not there");
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace support
