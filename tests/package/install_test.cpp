// The shared libraries as they are installed, seen by projects that know nothing but the prefix.
#include "installed.h"

using namespace installed;

namespace
{

// "path" or "path -> target" of every file below the prefix that is no header, and the headers by folder.
std::set<std::string> filesIn(const std::string &folder)
{
    std::set<std::string> files;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        const std::string path = entry.path().lexically_relative(folder);
        if (entry.is_symlink())
            files.insert(path + " -> " + fs::read_symlink(entry.path()).string());
        else if (entry.is_regular_file())
            files.insert(path);
    }
    return files;
}

} // namespace

TEST(Install, LaysOutLibrariesHeadersAndPackageFiles)
{
    const Prefix prefix(SHARED_BUILD);
    EXPECT_EQ(filesIn(prefix / "include/orva"), filesIn(SOURCE_DIR "/include/orva"));
    EXPECT_EQ(filesIn(prefix / "include/kett"), filesIn(SOURCE_DIR "/kett/include/kett"));
    EXPECT_EQ(filesIn(prefix / "lib"), (std::set<std::string>{
                                           "cmake/orva/orva-config-version.cmake",
                                           "cmake/orva/orva-config.cmake",
                                           "cmake/orva/orva-shared-targets-release.cmake",
                                           "cmake/orva/orva-shared-targets.cmake",
                                           "libkett.so -> libkett.so.1",
                                           "libkett.so.1 -> libkett.so.1.0.0",
                                           "libkett.so.1.0.0",
                                           "liborva.so -> liborva.so.3",
                                           "liborva.so.3 -> liborva.so.3.7.18",
                                           "liborva.so.3.7.18",
                                           "pkgconfig/kett.pc",
                                           "pkgconfig/orva.pc",
                                       }));
}

TEST(Install, NamesNoFolderThatItWasBuiltIn)
{
    const Prefix prefix(SHARED_BUILD);
    for (const auto &entry : fs::recursive_directory_iterator(prefix.path()))
        if (entry.is_regular_file()) {
            const std::string content = support::readFile(entry.path());
            EXPECT_EQ(content.find(SHARED_BUILD), std::string::npos) << entry.path();
            EXPECT_EQ(content.find(prefix.path()), std::string::npos) << entry.path();
        }
}

TEST(Install, ServesOutsideProjectsAlsoWhereItIsMoved)
{
    Prefix prefix(SHARED_BUILD);
    const Project makefile("makefile");
    const Project findPackage("find_package");
    const Project runTime("run_time");
    const auto names = listedNames(SOURCE_DIR "/src/exports.txt");
    ASSERT_FALSE(names.empty());
    const auto buildAndRunAll = [&] {
        EXPECT_EQ(makefile.make(prefix.pkgconfig()), madeFile);
        EXPECT_EQ(findPackage.cmake(prefix.path()), foundPackage);
        EXPECT_EQ(runTime.make(prefix.pkgconfig(), {"NAMES=" SOURCE_DIR "/src/exports.txt"}),
                  std::to_string(names.size()) + " names found\n");
    };
    buildAndRunAll();
    EXPECT_TRUE(needs("host", "liborva.so.3", makefile.folder));
    EXPECT_TRUE(needs("build/host", "liborva.so.3", findPackage.folder));
    EXPECT_FALSE(needs("host", "liborva", runTime.folder));

    prefix.move();
    EXPECT_EQ(support::run({"./host"}, makefile.folder).status, 127) << "runs without its library";
    buildAndRunAll();
}

// The host names the folder inside its process; the library has to know it when it goes down, after main.
TEST(Install, WritesTheStoreAtTheEndOfAnOutsideProgram)
{
    const Prefix prefix(SHARED_BUILD);
    const Project project("find_package");
    project.cmake(prefix.path());
    EXPECT_TRUE(fs::exists(project.folder / "ruko.optimization"));
}

TEST(FindPackage, TakesTheVersionsThatTheLibraryReplaces)
{
    const Prefix prefix(SHARED_BUILD);
    const struct {
        const char *version;
        bool found;
    } cases[] = {
        {"", true},     {"3", true},  {"3.7", true},  {"3.7.18", true},  {"3.7.19", false},
        {"3.8", false}, {"4", false}, {"2.9", false}, {"3...3.9", true}, {"3.0...<3.7", false},
    };
    for (const auto &[version, found] : cases) {
        const support::Folder folder;
        support::writeFile(
            folder / "CMakeLists.txt",
            "cmake_minimum_required(VERSION 3.25)\nproject(asks LANGUAGES NONE)\nfind_package(orva " +
                std::string(version) +
                " CONFIG)\nfile(WRITE ${CMAKE_BINARY_DIR}/answer \"${orva_FOUND}\")\n");
        support::run({"cmake", "-S", ".", "-B", "build", "-DCMAKE_PREFIX_PATH=" + prefix.path()}, folder);
        EXPECT_EQ(support::readFile(folder / "build/answer"), found ? "1" : "0") << version;
    }
}

TEST(PkgConfig, TellsTheVersionsAndNoOptionOfOthers)
{
    const Prefix prefix(SHARED_BUILD);
    const support::Folder folder;
    const std::string path = "PKG_CONFIG_PATH=" + prefix.pkgconfig();
    EXPECT_EQ(outputOf({"env", path, "pkg-config", "--modversion", "orva"}, folder), "3.7.18\n");
    EXPECT_EQ(outputOf({"env", path, "pkg-config", "--modversion", "kett"}, folder), "1.0.0\n");
    EXPECT_EQ(outputOf({"env", path, "pkg-config", "--validate", "orva", "kett"}, folder), "");
    EXPECT_EQ(outputOf({"env", path, "pkg-config", "--cflags-only-other", "orva", "kett"}, folder), "\n");
    EXPECT_EQ(outputOf({"env", path, "pkg-config", "--libs-only-l", "orva"}, folder), "-lorva \n");
}
