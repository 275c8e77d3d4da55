// The Debian packages, as far as they can be looked at without installing them. That they are made and that lintian finds
// no error in them is the test by which ctest makes them.
#include "installed.h"

#include <map>
#include <sstream>

using namespace installed;

namespace
{

std::string field(const std::string &package, const std::string &name)
{
    const support::Folder folder;
    std::string text = outputOf({"dpkg-deb", "--field", package, name}, folder);
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

// The packages by name.
std::map<std::string, std::string> packages()
{
    std::map<std::string, std::string> files;
    for (const auto &entry : fs::directory_iterator(DEB_FOLDER))
        if (entry.path().extension() == ".deb")
            files[field(entry.path(), "Package")] = entry.path();
    return files;
}

std::string multiarch()
{
    const support::Folder folder;
    std::string name = outputOf({"dpkg-architecture", "-qDEB_HOST_MULTIARCH"}, folder);
    name.pop_back();
    return name;
}

// What a package holds, without the many headers and pages of the reference.
std::set<std::string> filesOf(const std::string &package)
{
    const support::Folder folder;
    std::istringstream lines(outputOf({"dpkg-deb", "--contents", package}, folder));
    std::set<std::string> files;
    for (std::string line; std::getline(lines, line);) {
        const bool isFolder = line[0] == 'd';
        const bool isLink = line[0] == 'l';
        const bool isProgram = line.find(" ./usr/bin/") != std::string::npos;
        EXPECT_EQ(line.substr(0, 10), isFolder    ? "drwxr-xr-x"
                                      : isLink    ? "lrwxrwxrwx"
                                      : isProgram ? "-rwxr-xr-x"
                                                  : "-rw-r--r--")
            << line;
        EXPECT_NE(line.find(" root/root "), std::string::npos) << line;
        const std::string path = line.substr(line.find(" ./") + 3);
        if (!isFolder && path.find("/html/") == std::string::npos && !path.starts_with("usr/include/"))
            files.insert(path);
    }
    return files;
}

std::string controlFile(const std::string &package, const std::string &name)
{
    const support::Folder folder;
    return outputOf({"dpkg-deb", "--info", package, name}, folder);
}

std::string library(const std::string &name)
{
    return "usr/lib/" + multiarch() + "/" + name;
}

std::set<std::string> documentsOf(const std::string &package)
{
    const std::string folder = "usr/share/doc/" + package + "/";
    return {folder + "changelog.Debian.gz", folder + "changelog.gz", folder + "copyright"};
}

// All of them, unpacked together.
struct Root {
    support::Folder folder;

    Root()
    {
        for (const auto &[name, file] : packages())
            outputOf({"dpkg-deb", "--extract", file, folder.path}, folder);
    }
};

} // namespace

TEST(DebianPackages, AreFive)
{
    std::set<std::string> names;
    for (const auto &[name, file] : packages()) {
        names.insert(name);
        EXPECT_EQ(field(file, "Version"), "3.7.18-1");
    }
    EXPECT_EQ(names, (std::set<std::string>{"liborva-dev", "liborva-doc", "liborva3", "orva-tools",
                                            "python3-orva"}));
}

TEST(DebianPackages, HoldWhatBelongsInThem)
{
    auto expected = documentsOf("liborva3");
    for (const char *name : {"libkett.so.1 -> libkett.so.1.0.0", "libkett.so.1.0.0",
                             "liborva.so.3 -> liborva.so.3.7.18", "liborva.so.3.7.18"})
        expected.insert(library(name));
    EXPECT_EQ(filesOf(packages()["liborva3"]), expected);

    expected = documentsOf("liborva-dev");
    for (const char *name :
         {"cmake/orva/orva-config-version.cmake", "cmake/orva/orva-config.cmake",
          "cmake/orva/orva-shared-targets-release.cmake", "cmake/orva/orva-shared-targets.cmake",
          "cmake/orva/orva-static-targets-release.cmake", "cmake/orva/orva-static-targets.cmake", "libkett.a",
          "libkett.so -> libkett.so.1", "liborva.a", "liborva.so -> liborva.so.3", "pkgconfig/kett.pc",
          "pkgconfig/orva.pc"})
        expected.insert(library(name));
    EXPECT_EQ(filesOf(packages()["liborva-dev"]), expected);

    EXPECT_EQ(filesOf(packages()["liborva-doc"]), documentsOf("liborva-doc"));

    const auto tools = filesOf(packages()["orva-tools"]);
    for (const char *name : {"usr/bin/orva", "usr/share/bash-completion/completions/orva",
                             "usr/share/man/man1/orva.1.gz", "usr/share/man/man1/orva-spectrogram.1.gz"})
        EXPECT_EQ(tools.count(name), 1U) << name;
    const Root root;
    EXPECT_TRUE(fs::exists(root.folder / "usr/share/doc/liborva-doc/html/index.html"));
    EXPECT_TRUE(fs::exists(root.folder / "usr/include/orva/orva.h"));
    EXPECT_TRUE(fs::exists(root.folder / "usr/include/kett/kett.h"));
}

TEST(DebianPackages, AskForWhatTheyNeed)
{
    const std::string needs = field(packages()["liborva3"], "Depends") + ",";
    for (const char *package :
         {"libc6 (", "libfftw3-single3 (", "libstdc++6 (", "libwebrtc-audio-processing1"})
        EXPECT_NE(needs.find(package), std::string::npos) << package << " is not in " << needs;
    EXPECT_EQ(needs.find("liborva"), std::string::npos) << "needs itself: " << needs;
    EXPECT_EQ(field(packages()["liborva-dev"], "Depends"),
              "liborva3 (= 3.7.18-1), libfftw3-dev, libwebrtc-audio-processing-dev, "
              "libstdc++-12-dev | libstdc++-dev");
    const std::string tools = field(packages()["orva-tools"], "Depends");
    EXPECT_TRUE(tools.starts_with("liborva3 (= 3.7.18-1), ")) << tools;
    for (const char *package : {"libc6 (", "libcairo2 (", "libsndfile1 ("})
        EXPECT_NE(tools.find(package), std::string::npos) << package << " is not in " << tools;
    EXPECT_EQ(field(packages()["liborva-doc"], "Depends"), "");
    EXPECT_EQ(field(packages()["liborva-doc"], "Architecture"), "all");
}

TEST(DebianPackages, TellDpkgAndTheLoaderOfTheLibraries)
{
    const std::string package = packages()["liborva3"];
    EXPECT_EQ(controlFile(package, "shlibs"),
              "liborva 3 liborva3 (>= 3.7.18)\nlibkett 1 liborva3 (>= 3.7.18)\n");
    EXPECT_EQ(controlFile(package, "triggers"), "activate-noawait ldconfig\n");
}

TEST(DebianPackages, CarryTheSumsOfTheirFiles)
{
    for (const auto &[name, file] : packages()) {
        const Root root;
        support::writeFile(root.folder / "sums", controlFile(file, "md5sums"));
        outputOf({"md5sum", "--check", "--quiet", "--strict", "sums"}, root.folder);
    }
}

TEST(DebianPackages, ServeOutsideProjects)
{
    const Root root;
    const std::string usr = root.folder / "usr";
    const std::string libraries = usr + "/lib/" + multiarch();

    const Project findPackage("find_package");
    EXPECT_EQ(findPackage.cmake(usr), foundPackage);
    EXPECT_TRUE(needs("build/host", "liborva.so.3", findPackage.folder));
    EXPECT_EQ(findPackage.cmake(usr, {"-Dorva_USE_STATIC_LIBS=ON"}), foundPackage);
    EXPECT_FALSE(needs("build/host", "liborva", findPackage.folder));

    const Project makefile("makefile");
    const std::vector<std::string> place = {"LDFLAGS=-Wl,-rpath," + libraries};
    EXPECT_EQ(makefile.make(libraries + "/pkgconfig", place, root.folder.path), madeFile);
    EXPECT_TRUE(needs("host", "liborva.so.3", makefile.folder));
}

// The hum of 50 Hz goes, the tone of 1 kHz stays.
const char *const fiveLines = "import numpy as np, orva\n"
                              "t = np.arange(48000) / 48000\n"
                              "x = np.sin(2 * np.pi * 1000 * t) + np.sin(2 * np.pi * 50 * t)\n"
                              "y = orva.Filter('type=highpass; order=4; fpass=200', fs=48000)(x)\n"
                              "print(orva.__file__, orva.energy_db(x).round(1), orva.energy_db(y).round(1))";

TEST(PythonPackage, HoldsTheModuleAndWhatPythonKnowsOfIt)
{
    const std::string package = packages()["python3-orva"];
    const std::string folder = "usr/lib/python3/dist-packages/";
    auto expected = documentsOf("python3-orva");
    for (const auto &entry : fs::recursive_directory_iterator(SOURCE_DIR "/python/orva"))
        if (entry.path().extension() == ".py" || entry.path().extension() == ".typed")
            expected.insert(folder + fs::relative(entry.path(), SOURCE_DIR "/python").string());
    for (const char *name : {"METADATA", "WHEEL", "top_level.txt"})
        expected.insert(folder + "orva-3.7.18.dist-info/" + name);
    EXPECT_EQ(filesOf(package), expected);
    EXPECT_EQ(field(package, "Architecture"), "all");
    EXPECT_EQ(field(package, "Depends"),
              "liborva3 (>= 3.7.18), python3 (>= 3.9), python3-cffi-backend, python3-numpy (>= 1:1.22)");
    EXPECT_EQ(field(package, "Recommends"), "python3-soundfile");
    EXPECT_EQ(field(package, "Suggests"), "python3-dask, python3-distributed, python3-zarr");
}

TEST(PythonPackage, RunsWithTheLibraryBesideIt)
{
    const Root root;
    const std::string place = root.folder / "usr/lib/python3/dist-packages";
    EXPECT_EQ(outputOf({"env", "PYTHONPATH=" + place, "LD_LIBRARY_PATH=" + root.folder / library(""),
                        "/usr/bin/python3", "-B", "-c", fiveLines},
                       root.folder),
              place + "/orva/__init__.py 4.8 1.8\n");
}

TEST(PythonPackage, MakesARecipeOfARecording)
{
    const Root root;
    support::writeFile(root.folder / "recipe.toml", "steps = [{do = \"resample\", fs = 16000}]");
    EXPECT_EQ(outputOf({"env", "PYTHONPATH=" + (root.folder / "usr/lib/python3/dist-packages"),
                        "LD_LIBRARY_PATH=" + root.folder / library(""), "DASK_NUM_WORKERS=1",
                        "/usr/bin/python3", "-B", "-m", "orva.corpus", "recipe.toml",
                        "/usr/share/sounds/alsa/Front_Center.wav", "--out", "out"},
                       root.folder),
              "1 complete, 1 of them new, 0 failed\n");
}

TEST(PythonPackage, InstallsFromTheWheelAndFromTheSourcesWithoutANetwork)
{
    for (const char *file : {"orva-3.7.18-py3-none-any.whl", "orva-3.7.18.tar.gz"}) {
        const Root root;
        outputOf({"/usr/bin/python3", "-m", "venv", "--system-site-packages", "venv"}, root.folder);
        outputOf({"venv/bin/pip", "--disable-pip-version-check", "--quiet", "install", "--no-index",
                  "--no-build-isolation", std::string(DEB_FOLDER) + "/" + file},
                 root.folder);
        const std::string said = outputOf(
            {"env", "LD_LIBRARY_PATH=" + root.folder / library(""), "venv/bin/python", "-c", fiveLines},
            root.folder);
        EXPECT_EQ(said.find(fs::canonical(root.folder / "venv").string()), 0U) << said;
        EXPECT_NE(said.find("/orva/__init__.py 4.8 1.8\n"), std::string::npos) << said;
    }
}

// In the place that it is made for, the compiler needs no option to find the headers and the linker none for the folder.
TEST(DebianPackages, NameNoFolderThatTheCompilerKnows)
{
    const Root root;
    EXPECT_EQ(outputOf({"env", "PKG_CONFIG_PATH=" + root.folder / library("pkgconfig"), "pkg-config",
                        "--cflags", "--libs", "orva", "kett"},
                       root.folder),
              "-lorva -lkett \n");
}
