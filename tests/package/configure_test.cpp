// What `cmake -B build` makes of this project: its defaults, what it says of a package that is missing; and the target
// that takes an installation away.
#include "configured.h"

#include <gmock/gmock.h>

using namespace installed;
using testing::HasSubstr;

namespace
{

const std::vector<std::string> librariesAlone = {"-DORVA_BUILD_TESTS=OFF", "-DORVA_BUILD_EXAMPLES=OFF",
                                                 "-DORVA_BUILD_PROGRAMS=OFF"};

std::vector<std::string> together(std::vector<std::string> settings, const std::vector<std::string> &others)
{
    settings.insert(settings.end(), others.begin(), others.end());
    return settings;
}

} // namespace

TEST(Configure, IsReleaseUnlessToldOtherwise)
{
    const struct {
        std::vector<std::string> settings;
        std::string type;
        std::vector<std::string> optimisation;
    } cases[] = {
        {{}, "Release", {"-O3"}},
        {{"-DCMAKE_BUILD_TYPE="}, "Release", {"-O3"}},
        {{"-DCMAKE_BUILD_TYPE=Debug"}, "Debug", {}},
        {{"-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-O2"}, "None", {"-O2"}},
    };
    Configured project(SOURCE_DIR, librariesAlone, {"fftw3f"});
    for (const auto &[settings, type, optimisation] : cases) {
        project.configure(settings);
        ASSERT_EQ(project.outcome.status, 0) << project.outcome.err;
        EXPECT_EQ(project.cached("CMAKE_BUILD_TYPE"), type);
        EXPECT_EQ(project.optimisation(SOURCE_DIR "/src/fft/ORVAfft.cpp"), optimisation) << type;
    }
}

TEST(Configure, NamesThePackagesThatAreMissingAndTheOptionsThatDoWithout)
{
    const std::string noGTest = "-DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON";
    const std::string noWebrtc = "-DCMAKE_SYSTEM_IGNORE_PATH=/usr/lib/x86_64-linux-gnu;/lib/x86_64-linux-gnu";
    const struct {
        std::vector<std::string> settings;
        std::vector<std::string> modules;
        std::string says;
    } cases[] = {
        {{"-DCMAKE_DISABLE_FIND_PACKAGE_PkgConfig=ON"},
         {},
         "  Not found:\n\n"
         "    pkg-config: Debian's pkg-config\n\n"
         "  On Debian:\n\n"
         "    sudo apt install pkg-config\n"},
        {librariesAlone,
         {},
         "  Not found:\n\n"
         "    FFTW 3 in single precision (fftw3f): Debian's libfftw3-dev\n\n"
         "  On Debian:\n\n"
         "    sudo apt install libfftw3-dev\n"},
        {together(librariesAlone, {noWebrtc}),
         {"fftw3f"},
         "    WebRTC audio processing 0.3, its noise suppressor included: Debian's "
         "libwebrtc-audio-processing-dev\n\n"
         "  On Debian:\n\n"
         "    sudo apt install libwebrtc-audio-processing-dev\n"},
        {{noGTest},
         {"fftw3f"},
         "    GoogleTest: Debian's libgtest-dev libgmock-dev, or do without it by -DORVA_BUILD_TESTS=OFF\n"
         "    libsndfile: Debian's libsndfile1-dev, or do without it by -DORVA_BUILD_TESTS=OFF "
         "-DORVA_BUILD_EXAMPLES=OFF -DORVA_BUILD_PROGRAMS=OFF\n"
         "    Cairo: Debian's libcairo2-dev, or do without it by -DORVA_BUILD_PROGRAMS=OFF\n\n"
         "  On Debian:\n\n"
         "    sudo apt install libgtest-dev libgmock-dev libsndfile1-dev libcairo2-dev\n"},
        {{"-DORVA_BUILD_TESTS=OFF", "-DORVA_BUILD_EXAMPLES=OFF"},
         {"fftw3f"},
         "    libsndfile: Debian's libsndfile1-dev, or do without it by -DORVA_BUILD_PROGRAMS=OFF\n"},
        {together(librariesAlone,
                  {"-DORVA_BUILD_BENCHMARKS=ON", "-DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON"}),
         {"fftw3f"},
         "    Google Benchmark: Debian's libbenchmark-dev, or do without it by "
         "-DORVA_BUILD_BENCHMARKS=OFF\n"},
    };
    for (const auto &[settings, modules, says] : cases) {
        const Configured project(SOURCE_DIR, settings, modules);
        EXPECT_EQ(project.outcome.status, 1);
        EXPECT_THAT(project.outcome.err, HasSubstr(says));
    }
}

TEST(Uninstall, TakesAwayWhatWasInstalledAndNothingElse)
{
    const Configured project(SOURCE_DIR, librariesAlone, {"fftw3f"});
    const std::vector<std::string> uninstall = {"cmake", "--build", project.build(""), "--target",
                                                "uninstall"};
    const support::Outcome tooEarly = support::run(uninstall, project.folder);
    EXPECT_NE(tooEarly.status, 0);
    EXPECT_THAT(tooEarly.out + tooEarly.err, HasSubstr("Nothing is installed from this build"));

    const Prefix prefix(STATIC_BUILD);
    // What `cmake --install` would write, had it installed all at once.
    std::ofstream manifest(project.build("install_manifest.txt"));
    for (const auto &entry : fs::recursive_directory_iterator(prefix.path()))
        if (!entry.is_directory())
            manifest << entry.path().string() << "\n";
    manifest.close();
    support::writeFile(prefix / "include/other.h", "");
    const support::Outcome outcome = support::run(uninstall, project.folder);
    EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;

    std::set<std::string> left;
    for (const auto &entry : fs::recursive_directory_iterator(prefix.path()))
        left.insert(entry.path().lexically_relative(prefix.path()));
    EXPECT_EQ(left,
              (std::set<std::string>{"include", "include/other.h", "lib", "lib/cmake", "lib/pkgconfig"}));
    EXPECT_NE(support::run(uninstall, project.folder).status, 0);
}
