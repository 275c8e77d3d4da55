// The sources as a part of another project, by add_subdirectory and by FetchContent.
#include "configured.h"

using namespace installed;

namespace
{

constexpr const char *ways[] = {"-DADD_SUBDIRECTORY=ON", "-DADD_SUBDIRECTORY=OFF"};

// Configured by a parent with these settings; of the packages that pkg-config knows there is FFTW alone.
struct Parent : Configured {
    explicit Parent(std::vector<std::string> settings, const std::string &generator = "Ninja")
        : Configured(SOURCE_DIR "/tests/package/subproject", withSources(std::move(settings)), {"fftw3f"},
                     generator)
    {
    }

    static std::vector<std::string> withSources(std::vector<std::string> settings)
    {
        settings.insert(settings.end(),
                        {"-DORVA_SOURCE=" SOURCE_DIR, "-DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON"});
        return settings;
    }
};

} // namespace

TEST(Subproject, BringsBothLibrariesAndNothingElse)
{
    for (const char *way : ways) {
        const Parent parent({way});
        ASSERT_EQ(parent.outcome.status, 0) << parent.outcome.err;
        EXPECT_EQ(support::readFile(parent.build("types")),
                  "orva::orva SHARED_LIBRARY\norva::kett SHARED_LIBRARY\nkett::kett SHARED_LIBRARY\n");
        for (const char *option :
             {"ORVA_BUILD_TESTS", "ORVA_BUILD_EXAMPLES", "ORVA_BUILD_PROGRAMS", "ORVA_INSTALL"})
            EXPECT_EQ(parent.cached(option), "OFF") << option;
        EXPECT_EQ(parent.cached("BUILD_SHARED_LIBS"), "") << "reaches the parent's own libraries";
        EXPECT_EQ(parent.cached("CMAKE_BUILD_TYPE"), "") << "is the parent's choice";

        // Nothing is built: an installation that had anything to do would fail.
        outputOf({"cmake", "--install", parent.build(""), "--prefix", parent.build("prefix")}, parent.folder);
        EXPECT_FALSE(fs::exists(parent.build("prefix")));
        EXPECT_NE(
            outputOf({"ctest", "--test-dir", parent.build(""), "-N"}, parent.folder).find("Total Tests: 0"),
            std::string::npos);
    }
}

TEST(Subproject, TakesTheKindOfLibrariesOfItsParent)
{
    Parent parent({});
    for (const auto &[setting, kind] : {std::pair{"-DBUILD_SHARED_LIBS=OFF", "STATIC_LIBRARY"},
                                        std::pair{"-DBUILD_SHARED_LIBS=ON", "SHARED_LIBRARY"}}) {
        parent.configure({setting});
        const std::string types = support::readFile(parent.build("types"));
        EXPECT_EQ(types.find(std::string("orva::orva ") + kind), 0u) << setting << "\n" << types;
    }
}

TEST(Subproject, IsOptimisedUnlessItsParentDecides)
{
    const struct {
        const char *type, *flags;
        std::vector<std::string> library, host; // options of optimisation of our sources and of the parent's
    } cases[] = {
        {"", "", {"-O3"}, {}}, {"", "-g", {"-O3"}, {}},           {"", "-g -Og", {"-Og"}, {"-Og"}},
        {"Debug", "", {}, {}}, {"Release", "", {"-O3"}, {"-O3"}}, {"RelWithDebInfo", "", {"-O2"}, {"-O2"}},
    };
    for (const char *generator : {"Ninja", "Unix Makefiles"}) {
        Parent parent({}, generator);
        for (const auto &[type, flags, library, host] : cases) {
            parent.configure(
                {std::string("-DCMAKE_BUILD_TYPE=") + type, std::string("-DCMAKE_CXX_FLAGS=") + flags});
            ASSERT_EQ(parent.outcome.status, 0) << parent.outcome.err;
            for (const char *source : {"/src/fft/ORVAfft.cpp", "/kett/src/KTvector.cpp"})
                EXPECT_EQ(parent.optimisation(SOURCE_DIR + std::string(source)), library) << type << flags;
            EXPECT_EQ(parent.optimisation(SOURCE_DIR "/tests/package/find_package/host.cpp"), host) << type;
        }
        EXPECT_EQ(support::readFile(parent.build("compile_commands.json")).find("-Werror"), std::string::npos)
            << "stops at what the parent's compiler warns of";
    }
}

// Built by the fixture as static libraries, with FetchContent and without a build type.
TEST(Subproject, ServesItsParent)
{
    const support::Folder folder;
    EXPECT_EQ(outputOf({STATIC_BUILD "/host", folder.path}, folder), foundPackage);
    EXPECT_FALSE(needs(STATIC_BUILD "/host", "liborva", folder));
    EXPECT_TRUE(fs::exists(folder / "ruko.optimization"));
}
