// The scripts: what each says of itself and refuses; what script/bootstrap does, with an apt, a sudo and a user of this
// test's making.
#include "support/program.h"

#include <gmock/gmock.h>

#include <set>
#include <sstream>

namespace
{

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string scripts = PROJECT_SOURCE_DIR "/script/";

std::vector<std::string> commands()
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(scripts))
        if ((entry.status().permissions() & fs::perms::owner_exec) != fs::perms::none)
            names.push_back(entry.path().filename());
    return names;
}

const char *const tools[] = {"awk",  "bash", "cat", "dirname", "env", "grep",
                             "head", "ls",   "rm",  "mktemp",  "sed", "tr"};

// A system without any package, its user an ordinary one with sudo. Its apt-get and sudo write down how they are called
// and then do what the files `update` and `install` say.
class System
{
public:
    System()
    {
        fs::create_directory(folder / "bin");
        for (const std::string tool : tools) {
            for (const char *place : {"/usr/bin/", "/bin/"})
                if (fs::exists(place + tool) && !fs::exists(folder / ("bin/" + tool)))
                    fs::create_symlink(place + tool, folder / ("bin/" + tool));
        }
        program("id", "echo 1000");
        program("sleep", "");
        program("sudo", "echo sudo >>calls\nexec \"$@\"");
        program("dpkg-query", "grep -qx \"${@: -1}\" installed && echo installed");
        program("apt-get",
                "echo \"$*\" >>calls\nfor word; do [ ! -f \"$word\" ] || source \"./$word\"; done");
        support::writeFile(folder / "installed", "");
        support::writeFile(folder / "calls", "");
    }

    void program(const std::string &name, const std::string &text) const
    {
        const std::string file = folder / ("bin/" + name);
        support::writeFile(file, "#!/usr/bin/env bash\n" + text + "\n");
        fs::permissions(file, fs::perms::owner_all);
    }

    void remove(const std::string &name) const
    {
        fs::remove(folder / ("bin/" + name));
    }

    support::Outcome bootstrap(std::vector<std::string> groups) const
    {
        groups.insert(groups.begin(), {"env", "PATH=" + folder / "bin", scripts + "bootstrap"});
        return support::run(groups, folder);
    }

    // How apt-get and sudo were called.
    std::vector<std::string> calls() const
    {
        std::istringstream lines(support::readFile(folder / "calls"));
        std::vector<std::string> all;
        for (std::string line; std::getline(lines, line);)
            all.push_back(line);
        return all;
    }

    // The packages that a group asks for.
    std::vector<std::string> packagesOf(const std::vector<std::string> &groups) const
    {
        const support::Outcome outcome = bootstrap(groups);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        std::istringstream words(calls().back());
        std::vector<std::string> packages;
        for (std::string word; words >> word;)
            if (word.find('=') == std::string::npos && word[0] != '-')
                packages.push_back(word);
        packages.erase(std::remove(packages.begin(), packages.end(), "install"), packages.end());
        std::sort(packages.begin(), packages.end());
        return packages;
    }

    support::Folder folder;
};

} // namespace

TEST(Scripts, SayWhatTheyDo)
{
    ASSERT_THAT(commands(), testing::SizeIs(testing::Ge(11u)));
    for (const auto &command : commands())
        for (const char *option : {"--help", "-h"}) {
            const support::Outcome outcome = support::run({scripts + command, option}, support::Folder());
            EXPECT_EQ(outcome.status, 0) << command;
            EXPECT_EQ(outcome.err, "") << command;
            const std::string source = support::readFile(scripts + command);
            const size_t text = source.find("\n# ") + 3;
            EXPECT_THAT(outcome.out, StartsWith(source.substr(text, source.find('\n', text) - text)))
                << command;
            EXPECT_THAT(outcome.out, Not(HasSubstr("#"))) << command;
            EXPECT_THAT(outcome.out, Not(HasSubstr("set -euo"))) << command;
        }
}

TEST(Scripts, RefuseWhatTheyDoNotKnow)
{
    for (const auto &command : commands()) {
        const support::Outcome outcome = support::run({scripts + command, "--nonsense"}, support::Folder());
        EXPECT_EQ(outcome.status, 2) << command;
        EXPECT_EQ(outcome.out, "") << command;
        const std::string what = command == "bootstrap" ? "group" : "option";
        EXPECT_EQ(outcome.err,
                  command + ": unknown " + what + " '--nonsense'; see script/" + command + " --help\n");
    }
    const struct {
        std::vector<std::string> words;
        const char *says;
    } cases[] = {
        {{"abi", "nonsense"}, "abi: unknown action 'nonsense'"},
        {{"abi", "compare", "a", "b", "c"}, "abi: unknown argument 'c'"},
        {{"avx512", "not one's name"}, "avx512: 'not one's name' is no filter of tests"},
        {{"bench", "nonsense"}, "bench: no benchmarks of a family 'nonsense'"},
        {{"bits", "gcc-O2", "nonsense"}, "bits: unknown build 'nonsense'"},
        {{"bootstrap", "build", "nonsense"}, "bootstrap: unknown group 'nonsense'"},
        {{"coverage", "nonsense"}, "coverage: unknown argument 'nonsense'"},
        {{"demo", "a", "b"}, "demo: unknown argument 'b'"},
        {{"docs", "nonsense"}, "docs: unknown argument 'nonsense'"},
        {{"figures", "nonsense"}, "figures: no figures 'nonsense'"},
        {{"fuzz", "KTstring_fuzz", "nonsense"}, "fuzz: 'nonsense' is no number of seconds"},
        {{"lint", "nonsense"}, "lint: unknown check 'nonsense'"},
        {{"package", "a", "b"}, "package: unknown argument 'b'"},
        {{"sysroot"}, "sysroot: unknown architecture ''"},
        {{"sysroot", "nonsense"}, "sysroot: unknown architecture 'nonsense'"},
        {{"sysroot", "arm64", "a", "b"}, "sysroot: unknown argument 'b'"},
        {{"test", "nonsense"}, "test: unknown preset 'nonsense'"},
    };
    for (auto [words, says] : cases) {
        const std::string command = words[0];
        words[0] = scripts + command;
        const support::Outcome outcome = support::run(words, support::Folder());
        EXPECT_EQ(outcome.status, 2) << says;
        EXPECT_EQ(outcome.out, "") << says;
        EXPECT_THAT(outcome.err, StartsWith(says));
        EXPECT_THAT(outcome.err, EndsWith("; see script/" + command + " --help\n"));
    }
}

TEST(Scripts, LeaveNothingToRootUnderSudo)
{
    const System system;
    system.program("id", "echo 0");
    system.program("chown", "echo chown \"$@\" >>calls");
    fs::create_directory(system.folder / "script");
    fs::copy_file(scripts + "common.sh", system.folder / "script/common.sh");
    support::writeFile(system.folder / "script/any", "source \"${0%/*}/common.sh\"\nfail reason\n");
    const auto run = [&](const std::vector<std::string> &environment) {
        std::vector<std::string> words = {"env", "-u", "SUDO_UID", "PATH=" + system.folder / "bin"};
        words.insert(words.end(), environment.begin(), environment.end());
        words.insert(words.end(), {"bash", system.folder / "script/any"});
        EXPECT_EQ(support::run(words, system.folder).err, "any: reason\n");
    };
    const std::vector<std::string> user = {"SUDO_UID=1000", "SUDO_GID=1001"};
    run(user);
    EXPECT_THAT(system.calls(), IsEmpty()) << "there is no build";
    fs::create_directory(system.folder / "build");
    run({});
    EXPECT_THAT(system.calls(), IsEmpty()) << "there is no sudo";
    run(user);
    EXPECT_THAT(system.calls(),
                ElementsAre("chown -R --no-dereference --from=0 1000:1001 " + system.folder / "build"));
}

TEST(Bootstrap, InstallsWhatEachGroupNeeds)
{
    const System system;
    const std::vector<std::string> build = {
        "cmake", "g++", "libfftw3-dev", "libwebrtc-audio-processing-dev", "ninja-build", "pkg-config"};
    const std::vector<std::string> examples = {"alsa-utils", "fonts-dejavu-core", "libcairo2-dev",
                                               "libcli11-dev", "libsndfile1-dev"};
    EXPECT_EQ(system.packagesOf({"build"}), build);
    EXPECT_EQ(system.packagesOf({"examples"}), examples);
    std::vector<std::string> both = build;
    both.insert(both.end(), examples.begin(), examples.end());
    std::sort(both.begin(), both.end());
    EXPECT_EQ(system.packagesOf({"build", "examples"}), both);

    // None named is all of them.
    std::set<std::string> every;
    for (const char *group : {"build", "examples", "long", "tests", "bench", "documents", "packages",
                              "emulator", "arm64", "windows"})
        for (const auto &package : system.packagesOf({group}))
            every.insert(package);
    const auto all = system.packagesOf({});
    EXPECT_EQ(std::set<std::string>(all.begin(), all.end()), every);
    for (const char *package :
         {"libgtest-dev", "libbenchmark-dev", "doxygen", "lintian", "bochs", "qemu-user"})
        EXPECT_EQ(every.count(package), 1u) << package;
}

TEST(Bootstrap, AsksSudoOnlyForWhatIsMissing)
{
    const System system;
    support::writeFile(system.folder / "installed",
                       "alsa-utils\nfonts-dejavu-core\nlibcairo2-dev\nlibcli11-dev\n");
    const support::Outcome outcome = system.bootstrap({"examples"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "bootstrap: for examples, installing libsndfile1-dev\n"
                           "bootstrap: reading the lists of packages\n"
                           "bootstrap: done\n");
    EXPECT_THAT(system.calls(),
                ElementsAre("sudo", EndsWith("update"), "sudo",
                            testing::AllOf(HasSubstr("DPkg::Lock::Timeout=900"),
                                           HasSubstr("install -y --no-install-recommends"),
                                           HasSubstr("APT::Status-Fd=3"), EndsWith("libsndfile1-dev"))));

    support::writeFile(system.folder / "calls", "");
    support::writeFile(system.folder / "installed",
                       "alsa-utils\nfonts-dejavu-core\nlibcairo2-dev\nlibcli11-dev\nlibsndfile1-dev\n");
    EXPECT_EQ(system.bootstrap({"examples"}).out, "bootstrap: every package for examples is installed\n");
    EXPECT_THAT(system.calls(), IsEmpty());
}

TEST(Bootstrap, NeedsNoSudoWhereItIsRoot)
{
    const System system;
    system.program("id", "echo 0");
    system.remove("sudo");
    EXPECT_EQ(system.bootstrap({"bench"}).status, 0);
    EXPECT_THAT(system.calls(), ElementsAre(EndsWith("update"), HasSubstr("install")));
}

TEST(Bootstrap, SaysWhatToDoWithoutSudoAndWithoutApt)
{
    const System system;
    system.remove("sudo");
    support::Outcome outcome = system.bootstrap({"examples"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "bootstrap: for examples, installing libcairo2-dev libsndfile1-dev libcli11-dev "
                           "alsa-utils fonts-dejavu-core\n");
    EXPECT_EQ(
        outcome.err,
        "bootstrap: installing needs root, and there is no sudo; as root, run: script/bootstrap examples\n");

    system.remove("apt-get");
    outcome = system.bootstrap({"examples"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "bootstrap: needs Debian's apt; install by hand what corresponds to: libcairo2-dev "
              "libsndfile1-dev libcli11-dev alsa-utils fonts-dejavu-core\n");
}

TEST(Bootstrap, ShowsHowFarItIs)
{
    const System system;
    support::writeFile(system.folder / "install",
                       "echo 'Need to get 124 MB of archives.'\n"
                       "echo 'dlstatus:1:3.5:Retrieving file 1 of 9 (1min left)' >&3\n"
                       "echo 'dlstatus:2:50.0:Retrieving file 2 of 9' >&3\n"
                       "echo 'dlstatus:3:51.2:Retrieving file 3 of 9' >&3\n"
                       "echo 'Setting up alsa-utils'\n"
                       "echo 'pmstatus:alsa-utils:99.9:Installing alsa-utils' >&3\n"
                       "echo 'pmstatus:dpkg-exec:100:Running dpkg' >&3\n");
    EXPECT_THAT(system.bootstrap({"examples"}).out, EndsWith("bootstrap: need to get 124 MB of archives.\n"
                                                             "bootstrap: downloaded 50 %\n"
                                                             "bootstrap: installed 90 %\n"
                                                             "bootstrap: installed 100 %\n"
                                                             "bootstrap: done\n"));
}

TEST(Bootstrap, WaitsForAnotherApt)
{
    const System system;
    support::writeFile(
        system.folder / "update",
        "if [ ! -f waited ]; then\n"
        "    echo x >waited\n"
        "    echo 'E: Could not get lock /var/lib/apt/lists/lock. It is held by process 1' >&2\n"
        "    exit 100\n"
        "fi\n");
    support::writeFile(system.folder / "install", "echo 'Waiting for cache lock: Could not get lock'\n");
    const support::Outcome outcome = system.bootstrap({"examples"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.out, EndsWith("bootstrap: reading the lists of packages\n"
                                      "bootstrap: waiting for another apt\n"
                                      "bootstrap: waiting for another apt\n"
                                      "bootstrap: done\n"));
}

TEST(Bootstrap, TellsWhatAptSaysWhenItFails)
{
    const System noNetwork;
    support::writeFile(noNetwork.folder / "update", "echo 'Could not resolve the host' >&2\nexit 100\n");
    support::Outcome outcome = noNetwork.bootstrap({"examples"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              "Could not resolve the host\nbootstrap: apt-get update failed; is the network up?\n");

    const System noPackage;
    support::writeFile(noPackage.folder / "install", "echo 'E: Unable to locate package' >&2\nexit 100\n");
    outcome = noPackage.bootstrap({"examples"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "E: Unable to locate package\nbootstrap: apt-get could not install: libcairo2-dev "
                           "libsndfile1-dev libcli11-dev alsa-utils fonts-dejavu-core\n");
}
