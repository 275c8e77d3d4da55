// Each first program is built, against what is installed, by the line in its own comment.
#include "example.h"

#include <gtest/gtest.h>

TEST(ExamplesBuild, ByTheLineInTheirComment)
{
    const support::Folder folder;
    const std::string prefix = folder / "prefix";
    ASSERT_EQ(support::run({"cmake", "--install", BUILD_DIR, "--prefix", prefix}, folder).status, 0);
    writeSounds(folder);
    const std::vector<std::string> environment{"env", "PKG_CONFIG_PATH=" + prefix + "/lib/pkgconfig",
                                               "LD_LIBRARY_PATH=" + prefix + "/lib", "/bin/sh", "-c"};
    const auto run = [&](const std::string &command) {
        std::vector<std::string> words = environment;
        words.push_back(command);
        return support::run(words, folder);
    };

    for (const auto &example : examples()) {
        const std::string source = example.name + ".c";
        std::filesystem::copy(PROJECT_SOURCE_DIR "/examples/" + source, folder / source);
        ASSERT_NE(example.build, "") << example.name;
        const support::Outcome build = run(example.build);
        EXPECT_EQ(build.status, 0) << example.build;
        EXPECT_EQ(build.err, "") << example.build;
    }
    for (const auto &example : examples()) {
        const support::Outcome outcome = run(example.command);
        EXPECT_EQ(outcome.status, 0) << example.command << ": " << outcome.err;
        EXPECT_EQ(outcome.out, example.output) << example.command;
    }
}
