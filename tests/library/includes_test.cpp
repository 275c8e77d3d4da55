// One order of includes in all C and C++ files: the file's own header, private headers, those of the two libraries, those
// of others, the standard library, the system; an empty line between two groups. clang-format sorts each group.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;

enum Group { own, ours, libraries, others, standard, system };

const std::set<std::string> standardHeaders = {
    // of C
    "assert.h", "ctype.h",  "errno.h", "fenv.h",   "float.h",  "inttypes.h",
    "limits.h", "locale.h", "math.h",  "signal.h", "stdarg.h", "stdbool.h",
    "stddef.h", "stdint.h", "stdio.h", "stdlib.h", "string.h", "time.h"};

bool isStandard(const std::string &name)
{
    return standardHeaders.contains(name) || name.find_first_of("./") == std::string::npos;
}

const std::set<std::string> otherLibraries = {"fftw3.h",     "sndfile.h", "samplerate.h", "soxr.h",
                                              "sox.h",       "sleef.h",   "SoundTouch.h", "zlib.h",
                                              "kiss_fftr.h", "cairo.h"};

bool isOther(const std::string &name)
{
    const size_t slash = name.find('/');
    static const std::set<std::string> folders = {"gtest",          "gmock",      "benchmark", "cairo",
                                                  "speex",          "liquid",     "gsl",       "soundtouch",
                                                  "zita-resampler", "rubberband", "kissfft"};
    return otherLibraries.contains(name) ||
           (slash != std::string::npos && folders.contains(name.substr(0, slash)));
}

struct Include {
    std::string name;
    Group group;
    bool isAfterEmptyLine;
};

Group groupOf(const std::string &name, bool isQuoted, bool isFirst, const fs::path &file)
{
    const std::string stem = fs::path(name).stem();
    const bool isSource = file.extension() != ".h" && file.stem().string().find("_test") == std::string::npos;
    if (isFirst && isSource && !stem.empty() && file.stem().string().starts_with(stem))
        return own;
    if (isQuoted)
        return ours;
    if (name.starts_with("kett/") || name.starts_with("orva/"))
        return libraries;
    if (isOther(name))
        return others;
    return isStandard(name) ? standard : system;
}

// The includes that stand at the top of a file, up to the first line of another kind.
std::vector<Include> includesOf(const fs::path &file)
{
    std::vector<Include> includes;
    std::ifstream text(file);
    bool isAfterEmptyLine = false;
    for (std::string line; std::getline(text, line);) {
        const size_t begin = line.find_first_of("<\"");
        if (line.starts_with("#include") && begin != std::string::npos) {
            const bool isQuoted = line[begin] == '"';
            const size_t end = line.find(isQuoted ? '"' : '>', begin + 1);
            const std::string name = line.substr(begin + 1, end - begin - 1);
            includes.push_back({name, groupOf(name, isQuoted, includes.empty(), file), isAfterEmptyLine});
            isAfterEmptyLine = false;
        } else if (line.empty()) {
            isAfterEmptyLine = true;
        } else if (!includes.empty()) {
            break;
        }
    }
    // The own header of a source may carry another name; it then stands alone.
    if (includes.size() > 1 && includes[0].group == ours && includes[1].isAfterEmptyLine &&
        file.extension() != ".h")
        includes[0].group = own;
    return includes;
}

} // namespace

TEST(Includes, StandInOneOrder)
{
    size_t count = 0;
    for (const char *folder : {"src", "kett", "tests", "bench", "programs", "examples"}) {
        for (const auto &entry : fs::recursive_directory_iterator(fs::path(SOURCE_DIR) / folder)) {
            const fs::path &file = entry.path();
            if (file.extension() != ".cpp" && file.extension() != ".h" && file.extension() != ".c")
                continue;
            const auto includes = includesOf(file);
            count += includes.size();
            for (size_t i = 1; i < includes.size(); ++i) {
                const Include &before = includes[i - 1];
                const Include &here = includes[i];
                const bool isNewGroup = here.group != before.group;
                EXPECT_EQ(here.isAfterEmptyLine, isNewGroup) << file << ": " << here.name;
                EXPECT_LE(before.group, here.group) << file << ": " << here.name;
            }
        }
    }
    EXPECT_GT(count, 1000u);
}
