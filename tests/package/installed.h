// What `cmake --install` makes of a build, and projects outside this one that are built against it.
#pragma once

#include "support/program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace installed
{

namespace fs = std::filesystem;

// Of a program that has to succeed and to be silent on its error stream: what it wrote.
inline std::string outputOf(const std::vector<std::string> &words, const support::Folder &folder)
{
    std::string command;
    for (const auto &word : words)
        command += word + ' ';
    const support::Outcome outcome = support::run(words, folder);
    EXPECT_EQ(outcome.status, 0) << command << "\n" << outcome.out;
    EXPECT_EQ(outcome.err, "") << command;
    return outcome.out;
}

// A prefix with an installed build in it.
class Prefix
{
public:
    explicit Prefix(const std::string &build)
    {
        add(build);
    }

    // All but the reference, which may be in the making.
    void add(const std::string &build)
    {
        for (const char *component : {"runtime", "development", "archives"})
            outputOf({"cmake", "--install", build, "--prefix", path(), "--component", component}, parent);
    }

    std::string path() const
    {
        return parent / name;
    }

    std::string pkgconfig() const
    {
        return path() + "/lib/pkgconfig";
    }

    std::string operator/(const std::string &entry) const
    {
        return path() + "/" + entry;
    }

    void move()
    {
        fs::rename(path(), parent / "elsewhere");
        name = "elsewhere";
    }

private:
    support::Folder parent;
    std::string name = "prefix";
};

// A copy of one of the projects beside this file.
class Project
{
public:
    explicit Project(const std::string &name)
    {
        fs::copy(SOURCE_DIR "/tests/package/" + name, folder.path, fs::copy_options::recursive);
    }

    // Builds it by its Makefile and runs it. `root` stands for / where the pkg-config files say so.
    std::string make(const std::string &pkgconfigFolder, const std::vector<std::string> &settings = {},
                     const std::string &root = "") const
    {
        std::vector<std::string> words = {"env",
                                          "PKG_CONFIG_PATH=" + pkgconfigFolder,
                                          "PKG_CONFIG_SYSROOT_DIR=" + root,
                                          "make",
                                          "--always-make",
                                          "--silent",
                                          "host"};
        words.insert(words.end(), settings.begin(), settings.end());
        outputOf(words, folder);
        return outputOf({"./host"}, folder);
    }

    // Builds it by CMake and runs it with its folder as argument.
    std::string cmake(const std::string &prefix, const std::vector<std::string> &settings = {}) const
    {
        std::vector<std::string> words = {
            "cmake", "-S", ".", "-B", "build", "--fresh", "-DCMAKE_PREFIX_PATH=" + prefix};
        words.insert(words.end(), settings.begin(), settings.end());
        outputOf(words, folder);
        outputOf({"cmake", "--build", "build"}, folder);
        return outputOf({"build/host", folder.path}, folder);
    }

    support::Folder folder;
};

// The names in a list of exports.
inline std::vector<std::string> listedNames(const std::string &list)
{
    std::vector<std::string> names;
    std::ifstream file(list);
    for (std::string line; std::getline(file, line);)
        if (!line.empty() && line[0] != '#' && line[0] != '[')
            names.push_back(line);
    return names;
}

// Whether a program asks for a dynamic library whose name begins like this.
inline bool needs(const std::string &program, const std::string &library, const support::Folder &folder)
{
    return outputOf({"readelf", "-d", "-W", program}, folder).find("[" + library) != std::string::npos;
}

constexpr const char *madeFile = "3.7: band 5 of 33\n";
constexpr const char *foundPackage = "up before main, filtered 0.5 0.5 0.5 1\n";

} // namespace installed
