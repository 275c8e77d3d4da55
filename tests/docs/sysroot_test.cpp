// script/sysroot, with an apt of this test's making that has two packages to give.
#include "support/program.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace
{

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class System
{
public:
    System()
    {
        fs::create_directory(folder / "bin");
        // Writes down how it is called; downloads into the place that the configuration names.
        support::writeFile(folder / "bin/apt-get", R"sh(#!/bin/sh
echo "$*" >>calls
[ ! -f failure ] || { cat failure >&2; exit 100; }
case $* in *install*) cp *.deb "$(sed -n 's/^Dir::Cache "\(.*\)";/\1/p' "$3")/archives" ;; esac
)sh");
        fs::permissions(folder / "bin/apt-get", fs::perms::owner_all);
        support::writeFile(folder / "calls", "");

        fs::create_directories(folder / "library/DEBIAN");
        fs::create_directories(folder / "library/usr/lib");
        fs::create_directories(folder / "library/lib");
        support::writeFile(folder / "library/lib/libany.so.1", "a library");
        fs::create_symlink("/lib/libany.so.1", folder / "library/usr/lib/libany.so");
        support::writeFile(folder / "library/DEBIAN/shlibs", "libany 1 libany1\n");
        build("library", "libany1", "arm64", "Multi-Arch: same\n");

        fs::create_directories(folder / "data/DEBIAN");
        fs::create_directories(folder / "data/usr");
        support::writeFile(folder / "data/usr/data", "some data");
        build("data", "any-data", "all", "");
    }

    void build(const std::string &entry, const std::string &name, const std::string &architecture,
               const std::string &field) const
    {
        support::writeFile(folder / (entry + "/DEBIAN/control"),
                           "Package: " + name + "\nVersion: 1.2\nArchitecture: " + architecture + "\n" +
                               field + "Maintainer: nobody <nobody@orva.invalid>\nDescription: any\n");
        const auto outcome = support::run({"dpkg-deb", "--build", entry, name + ".deb"}, folder);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
    }

    support::Outcome sysroot() const
    {
        return support::run({"env", "PATH=" + (folder / "bin") + ":" + std::getenv("PATH"),
                             PROJECT_SOURCE_DIR "/script/sysroot", "arm64", "root"},
                            folder);
    }

    std::string query(std::vector<std::string> words) const
    {
        words.insert(words.begin(), {"dpkg-query", "--admindir=root/var/lib/dpkg"});
        const auto outcome = support::run(words, folder);
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }

    std::string calls() const
    {
        return support::readFile(folder / "calls");
    }

    support::Folder folder;
};

} // namespace

TEST(Sysroot, HoldsThePackagesAndTellsDpkgOfThem)
{
    const System system;
    const support::Outcome outcome = system.sysroot();
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(system.calls(), HasSubstr(" update\n"));
    EXPECT_THAT(system.calls(), HasSubstr(" install --download-only libc6-dev "));
    EXPECT_EQ(support::readFile(system.folder / "root/usr/data"), "some data");
    EXPECT_EQ(support::readFile(system.folder / "root/usr/lib/libany.so"), "a library") << "leads outside";
    EXPECT_EQ(system.query({"-W"}), "any-data\t1.2\nlibany1:arm64\t1.2\n");
    EXPECT_EQ(system.query({"-S", "/lib/libany.so.1"}), "libany1:arm64: /lib/libany.so.1\n");
    EXPECT_EQ(support::readFile(system.folder / "root/DEBIAN/shlibs"), "libany 1 libany1\n");
    EXPECT_FALSE(fs::exists(system.folder / "root.apt"));
}

TEST(Sysroot, StaysAsItIsWhereItIsComplete)
{
    const System system;
    EXPECT_EQ(system.sysroot().status, 0);
    support::writeFile(system.folder / "calls", "");
    const support::Outcome outcome = system.sysroot();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, EndsWith("/root has every package for arm64\n"));
    EXPECT_EQ(system.calls(), "");

    support::writeFile(system.folder / "root/packages", "fewer\n");
    EXPECT_EQ(system.sysroot().status, 0);
    EXPECT_THAT(system.calls(), HasSubstr("install")) << "it was made for fewer packages";
}

TEST(Sysroot, TellsWhatAptSaysWhenItFails)
{
    const System system;
    support::writeFile(system.folder / "failure", "Could not resolve the host\n");
    const support::Outcome outcome = system.sysroot();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("Could not resolve the host\n"));
    EXPECT_THAT(outcome.err, EndsWith("sysroot: apt-get update failed for arm64\n"));
    EXPECT_FALSE(fs::exists(system.folder / "root/packages")) << "would pass for complete";
}
