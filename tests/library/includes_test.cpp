// One order of includes in all C and C++ files: the file's own header, private headers, those of the two libraries, those
// of others, the standard library, the system; an empty line between two groups. clang-format sorts each group.
// And each test includes what it takes its names from, although most builds hand all tests some headers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
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
                                              "kiss_fftr.h", "cairo.h",   "cairo-pdf.h",  "cairo-svg.h"};

bool isOther(const std::string &name)
{
    const size_t slash = name.find('/');
    static const std::set<std::string> folders = {"gtest",          "gmock",      "benchmark", "cairo",
                                                  "speex",          "liquid",     "gsl",       "soundtouch",
                                                  "zita-resampler", "rubberband", "kissfft",   "CLI"};
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

// Headers of the standard library, and names in std that need them.
const std::map<std::string, const char *> namesOfHeaders = {
    {"algorithm",
     "all_of any_of none_of find find_if find_if_not count count_if equal mismatch search copy copy_n "
     "copy_if transform replace replace_if fill fill_n generate generate_n remove_if unique reverse "
     "reverse_copy rotate shuffle sort stable_sort nth_element lower_bound upper_bound equal_range "
     "binary_search merge includes min max minmax min_element max_element minmax_element clamp "
     "next_permutation for_each is_sorted ranges"},
    {"array", "array to_array"},
    {"atomic", "atomic atomic_bool atomic_int atomic_flag"},
    {"bit", "bit_cast popcount countl_zero countr_zero endian"},
    {"charconv", "from_chars to_chars chars_format"},
    {"chrono", "chrono"},
    {"cmath",
     "sin cos tan exp exp2 log log2 log10 pow sqrt floor ceil round lround fabs hypot fmod isnan isinf "
     "isfinite signbit nextafter atan2 ldexp frexp rint nearbyint trunc copysign cosh sinh acosh asinh "
     "cbrt fma"},
    {"complex", "complex polar conj arg"},
    {"condition_variable", "condition_variable"},
    {"cstdio", "printf snprintf fprintf fopen fclose rename FILE fread fwrite"},
    {"cstdlib", "getenv malloc free calloc realloc abort exit strtod strtol system"},
    {"cstring", "memcpy memcmp memset strlen strcmp strncmp strstr memmove strchr strerror"},
    {"filesystem", "filesystem"},
    {"fstream", "ifstream ofstream fstream"},
    {"functional", "function bind ref cref plus multiplies less greater invoke"},
    {"iomanip", "setprecision setw setfill"},
    {"iostream", "cout cin"},
    {"limits", "numeric_limits"},
    {"map", "map multimap"},
    {"memory", "unique_ptr shared_ptr make_unique make_shared"},
    {"mutex", "mutex lock_guard unique_lock scoped_lock"},
    {"numbers", "numbers"},
    {"numeric", "accumulate iota inner_product gcd lcm"},
    {"optional", "optional nullopt"},
    {"random", "mt19937 mt19937_64 uniform_int_distribution uniform_real_distribution normal_distribution "
               "random_device"},
    {"regex", "regex smatch regex_search regex_match regex_replace sregex_iterator sregex_token_iterator"},
    {"set", "set multiset"},
    {"span", "span"},
    {"sstream", "ostringstream istringstream stringstream"},
    {"string", "string to_string stoi stol stoll stoul stod stof"},
    {"string_view", "string_view"},
    {"thread", "thread this_thread jthread"},
    {"tuple", "tuple make_tuple tie"},
    {"vector", "vector"},
};

// The headers that a file includes, itself or by private headers of this project.
void addIncludes(const fs::path &file, std::set<fs::path> &seen, std::set<std::string> &found)
{
    if (!seen.insert(file).second)
        return;
    const fs::path source(SOURCE_DIR);
    const fs::path folders[] = {file.parent_path(), source / "tests",    source / "tests/platform/posix",
                                source / "src",     source / "kett/src", source / "kett/twice",
                                source / "programs"};
    std::ifstream text(file);
    for (std::string line; std::getline(text, line);) {
        const size_t begin = line.find_first_of("<\"");
        if (!line.starts_with("#include") || begin == std::string::npos)
            continue;
        const std::string name = line.substr(begin + 1, line.find_first_of(">\"", begin + 1) - begin - 1);
        found.insert(name);
        for (const fs::path &folder : folders)
            if (fs::is_regular_file(folder / name))
                addIncludes(fs::canonical(folder / name), seen, found);
    }
}

std::set<std::string> standardNamesIn(const fs::path &file)
{
    const std::string prefix = "std::";
    std::set<std::string> names;
    std::ifstream text(file);
    for (std::string line; std::getline(text, line);) {
        line.resize(std::min(line.find("//"), line.size()));
        for (size_t at = 0; (at = line.find(prefix, at)) != std::string::npos;) {
            at += prefix.size();
            const auto begin = line.begin() + static_cast<std::ptrdiff_t>(at);
            names.emplace(begin, std::find_if_not(begin, line.end(),
                                                  [](char c) { return std::isalnum(c) || c == '_'; }));
        }
    }
    return names;
}

} // namespace

TEST(Includes, OfATestAreTheHeadersWhoseNamesItHas)
{
    size_t count = 0;
    for (const char *folder : {"kett/tests", "tests"}) {
        for (const auto &entry : fs::recursive_directory_iterator(fs::path(SOURCE_DIR) / folder)) {
            const fs::path &file = entry.path();
            if (file.extension() != ".cpp" && file.extension() != ".h")
                continue;
            const auto used = standardNamesIn(file);
            std::set<fs::path> seen;
            std::set<std::string> included;
            addIncludes(file, seen, included);
            for (const auto &[header, names] : namesOfHeaders) {
                std::istringstream words(names);
                for (std::string word; words >> word;)
                    if (used.contains(word)) {
                        ++count;
                        EXPECT_TRUE(included.contains(header))
                            << file << ": std::" << word << " of " << header;
                    }
            }
        }
    }
    EXPECT_GT(count, 500u);
}

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
