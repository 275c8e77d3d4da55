// The static libraries as they are installed.
#include "installed.h"

#include <sstream>

using namespace installed;

namespace
{

const std::vector<std::string> statically = {"PKG_CONFIG=pkg-config --static"};

std::vector<std::string> wordsOf(const std::string &text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// A small program, linked with the static libraries.
class Program
{
public:
    Program(const std::string &source, const Prefix &prefix, const std::string &option = "")
        : project("static")
    {
        std::vector<std::string> words = {"cc", "-o", "host", source};
        for (const auto &word : wordsOf(outputOf({"env", "PKG_CONFIG_PATH=" + prefix.pkgconfig(),
                                                  "pkg-config", "--static", "--cflags", "--libs", "orva"},
                                                 project.folder)))
            words.push_back(word == "-lfftw3f" && option == "-l:libfftw3f.a" ? option : word);
        if (option == "-static")
            words.push_back(option);
        const support::Outcome built = support::run(words, project.folder);
        EXPECT_EQ(built.status, 0) << built.err;
    }

    // Runs with a folder for the wisdom store, which is written by a library that has come up and gone down.
    bool comesUpAndGoesDown() const
    {
        fs::remove(project.folder / "ruko.optimization");
        outputOf({"env", "KT_DATA_PATH=" + project.folder.path.string(), "./host"}, project.folder);
        return fs::exists(project.folder / "ruko.optimization");
    }

    bool needs(const std::string &library) const
    {
        return installed::needs("host", library, project.folder);
    }

private:
    Project project;
};

} // namespace

TEST(StaticInstall, LaysOutArchivesAndNoSharedLibrary)
{
    const Prefix prefix(STATIC_BUILD);
    std::set<std::string> names;
    for (const auto &entry : fs::directory_iterator(prefix / "lib"))
        names.insert(entry.path().filename());
    EXPECT_EQ(names, (std::set<std::string>{"cmake", "libkett.a", "liborva.a", "pkgconfig"}));
    EXPECT_TRUE(fs::exists(prefix / "include/orva/orva.h"));
}

TEST(StaticInstall, ServesOutsideProjectsAlsoWhereItIsMoved)
{
    Prefix prefix(STATIC_BUILD);
    const Project makefile("makefile");
    const Project findPackage("find_package");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(makefile.make(prefix.pkgconfig(), statically), madeFile);
        EXPECT_FALSE(needs("host", "liborva", makefile.folder));
        EXPECT_FALSE(needs("host", "libkett", makefile.folder));
        EXPECT_EQ(findPackage.cmake(prefix.path()), foundPackage);
        EXPECT_FALSE(needs("build/host", "liborva", findPackage.folder));
        EXPECT_TRUE(fs::remove(findPackage.folder / "ruko.optimization"))
            << "not written: libkett has gone down before liborva";
        prefix.move();
    }
}

TEST(StaticInstall, ServesAProjectInCAlone)
{
    const Prefix prefix(STATIC_BUILD);
    const Project project("makefile");
    support::writeFile(project.folder / "CMakeLists.txt",
                       "cmake_minimum_required(VERSION 3.25)\n"
                       "project(host LANGUAGES C)\n"
                       "find_package(orva 3.7 REQUIRED CONFIG)\n"
                       "add_executable(host host.c)\n"
                       "target_link_libraries(host orva::orva orva::kett m)\n");
    EXPECT_EQ(project.cmake(prefix.path()), madeFile);
}

TEST(StaticInstall, AnyUseBringsTheLifeCycle)
{
    const Prefix prefix(STATIC_BUILD);
    for (const char *source : {"fft_only.c", "window_only.c"})
        EXPECT_TRUE(Program(source, prefix).comesUpAndGoesDown()) << source;
}

TEST(StaticInstall, WorksWithFftwInTheProgramAndWithNothingShared)
{
    const Prefix prefix(STATIC_BUILD);
    EXPECT_TRUE(Program("fft_only.c", prefix).needs("libfftw3f.so"));

    const Program withFftw("fft_only.c", prefix, "-l:libfftw3f.a");
    EXPECT_FALSE(withFftw.needs("libfftw3f"));
    EXPECT_TRUE(withFftw.needs("libc.so"));
    EXPECT_TRUE(withFftw.comesUpAndGoesDown());

    const Program alone("fft_only.c", prefix, "-static");
    EXPECT_FALSE(alone.needs("libc.so"));
    EXPECT_TRUE(alone.comesUpAndGoesDown());
}

// Names that only the parts of a library share cannot meet those of a host.
TEST(StaticInstall, ShowsTheNamesOfTheListsAndNoOther)
{
    const Prefix prefix(STATIC_BUILD);
    const support::Folder folder;
    const struct {
        const char *archive;
        const char *list;
    } cases[] = {{"lib/liborva.a", "/src/exports.txt"}, {"lib/libkett.a", "/kett/exports.txt"}};
    for (const auto &[archive, list] : cases) {
        std::set<std::string> shown;
        std::istringstream lines(outputOf({"nm", "-g", "--defined-only", "-j", prefix / archive}, folder));
        for (std::string line; std::getline(lines, line);)
            if (!line.empty() && line.back() != ':')
                shown.insert(line);
        const auto listed = listedNames(std::string(SOURCE_DIR) + list);
        EXPECT_EQ(shown, std::set<std::string>(listed.begin(), listed.end())) << archive;
    }
}

TEST(FindPackage, DoesNotTakeSharedLibrariesForStaticOnes)
{
    const Prefix prefix(SHARED_BUILD);
    const Project project("find_package");
    const support::Outcome outcome =
        support::run({"cmake", "-S", ".", "-B", "build", "-Dorva_USE_STATIC_LIBS=ON",
                      "-DCMAKE_PREFIX_PATH=" + prefix.path()},
                     project.folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("only shared libraries are installed"), std::string::npos) << outcome.err;
}

TEST(BothInstalled, SharedLibrariesAreTakenUnlessStaticOnesAreAskedFor)
{
    const Project project("find_package");
    for (const auto &[first, second] :
         {std::pair{SHARED_BUILD, STATIC_BUILD}, std::pair{STATIC_BUILD, SHARED_BUILD}}) {
        Prefix prefix(first);
        prefix.add(second);
        EXPECT_EQ(project.cmake(prefix.path()), foundPackage);
        EXPECT_TRUE(needs("build/host", "liborva.so.3", project.folder));
        EXPECT_EQ(project.cmake(prefix.path(), {"-Dorva_USE_STATIC_LIBS=ON"}), foundPackage);
        EXPECT_FALSE(needs("build/host", "liborva", project.folder));
    }
}
