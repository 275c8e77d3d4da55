// The public headers. That each compiles on its own, as C99 and as C++20, is seen where headers_alone is built.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

extern "C" int32_t majorVersionsSum(void);

TEST(Headers, AHostWrittenInCLinksAndRuns)
{
    EXPECT_EQ(majorVersionsSum(), 3 + 3);
}

TEST(Headers, TheUmbrellaIncludesEveryHeaderInAlphabeticalOrder)
{
    struct Umbrella {
        std::string folder, prefix, name;
    };
    const Umbrella umbrellas[] = {
        {SOURCE_DIR "/include/orva", "orva/", "orva.h"},
        {SOURCE_DIR "/kett/include/kett", "kett/", "kett.h"},
    };
    for (const auto &[folder, prefix, name] : umbrellas) {
        std::vector<std::string> expected;
        for (const auto &entry : std::filesystem::directory_iterator(folder))
            if (entry.path().filename() != name)
                expected.push_back("#include <" + prefix + entry.path().filename().string() + ">");
        std::sort(expected.begin(), expected.end());
        std::vector<std::string> included;
        std::ifstream file(folder + "/" + name);
        for (std::string line; std::getline(file, line);)
            if (line.starts_with("#include"))
                included.push_back(line);
        EXPECT_EQ(included, expected);
    }
}

// Headers travel without the files that tell the licence of the project.
TEST(Headers, EachTellsItsLicence)
{
    for (const char *folder : {SOURCE_DIR "/include/orva", SOURCE_DIR "/kett/include/kett"})
        for (const auto &entry : std::filesystem::directory_iterator(folder)) {
            std::ifstream file(entry.path());
            std::string line;
            std::getline(file, line);
            EXPECT_EQ(line, "/* SPDX-License-Identifier: GPL-2.0-or-later */") << entry.path();
        }
}
