// The public headers as the compiler of Visual C++ would read them, in C and in C++.
#include "support/program.h"

#include <gtest/gtest.h>

TEST(PublicHeaders, CompileAsVisualCReadsThem)
{
    const support::Folder folder;
    int count = 0;
    for (const std::string library : {"/include/orva", "/kett/include/kett"})
        for (const auto &entry : std::filesystem::directory_iterator(SOURCE_DIR + library)) {
            ++count;
            for (const std::string language : {"c", "c++"}) {
                const auto outcome =
                    support::run({"clang", "-x", language, language == "c" ? "-std=c99" : "-std=c++20",
                                  "--target=x86_64-pc-windows-msvc", "-fms-compatibility",
                                  "-ffreestanding", // whose headers are the compiler's own
                                  "-fsyntax-only", "-Wall", "-Werror", "-I" SOURCE_DIR "/include",
                                  "-I" SOURCE_DIR "/kett/include", entry.path().string()},
                                 folder);
                EXPECT_EQ(outcome.status, 0) << language << ": " << outcome.err;
            }
        }
    EXPECT_GT(count, 20);
}
