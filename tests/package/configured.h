// A build that is configured and not built, seen through what CMake has written.
#pragma once

#include "installed.h"

#include <sstream>

namespace installed
{

// Configures the project in `source` with pkg-config's files of the modules named and of no other.
class Configured
{
public:
    Configured(const std::string &source, const std::vector<std::string> &settings,
               const std::vector<std::string> &modules, const std::string &generator = "Ninja")
    {
        fs::create_directory(folder / "modules");
        for (const auto &module : modules) {
            std::string file = outputOf({"pkg-config", "--variable=pcfiledir", module}, folder);
            file.pop_back();
            fs::create_symlink(file + "/" + module + ".pc", folder / ("modules/" + module + ".pc"));
        }
        call = {"env",
                "-u",
                "CMAKE_BUILD_TYPE",
                "-u",
                "CXXFLAGS",
                "-u",
                "CFLAGS",
                "PKG_CONFIG_LIBDIR=" + folder / "modules",
                "cmake",
                "-S",
                source,
                "-B",
                build(""),
                "-G",
                generator,
                "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"};
        configure(settings);
    }

    // Once more, with these settings on top of those before.
    void configure(const std::vector<std::string> &settings)
    {
        call.insert(call.end(), settings.begin(), settings.end());
        outcome = support::run(call, folder);
    }

    std::string build(const std::string &entry) const
    {
        return folder / ("build/" + entry);
    }

    // The value of an entry of the cache, empty where there is none.
    std::string cached(const std::string &name) const
    {
        std::istringstream lines(support::readFile(build("CMakeCache.txt")));
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with(name + ":"))
                return line.substr(line.find('=') + 1);
        return "";
    }

    // What the compiler of a source is told last about optimisation: nothing or one option.
    std::vector<std::string> optimisation(const std::string &source) const
    {
        std::istringstream lines(support::readFile(build("compile_commands.json")));
        std::string command;
        for (std::string line; std::getline(lines, line);) {
            if (line.find("\"command\": ") != std::string::npos)
                command = line;
            if (line.find("\"file\": \"" + source + "\"") != std::string::npos)
                break;
            if (line.starts_with("}"))
                command.clear();
        }
        EXPECT_NE(command, "") << source << " is not compiled";
        std::istringstream words(command);
        std::vector<std::string> last;
        for (std::string word; words >> word;)
            if (word.starts_with("-O"))
                last = {word};
        return last;
    }

    support::Folder folder;
    support::Outcome outcome;

private:
    std::vector<std::string> call;
};

} // namespace installed
