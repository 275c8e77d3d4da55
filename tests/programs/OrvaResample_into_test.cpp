// Many files resampled side by side, by threads.
#include "orva.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

using testing::HasSubstr;

TEST(OrvaResampleInto, WritesAFolderOfFilesWithALineEach)
{
    const support::Folder folder;
    for (int i = 0; i < 12; ++i)
        writeSound(folder / ("in" + std::to_string(i) + ".wav"),
                   sine(440, 0.5, 2000 + static_cast<size_t>(i)));
    support::writeFile(folder / "in6.wav", "no sound");
    const support::Outcome outcome =
        orvaShell("orva resample in*.wav --into out --rate 8k --format flac", folder);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "orva resample: in6.wav: Format not recognised.\n");
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 11);
    for (int i = 0; i < 12; ++i) {
        SF_INFO info{};
        const std::string name = "out/in" + std::to_string(i) + ".flac";
        EXPECT_EQ(std::filesystem::exists(folder / name), i != 6);
        if (i != 6) {
            EXPECT_EQ(std::ssize(support::readSamples(folder / name, info)), (2000 + i + 5) / 6);
            EXPECT_THAT(outcome.out,
                        HasSubstr(name + ": " + std::to_string(2000 + i) + " frames at 48000 Hz became "));
        }
    }
}
