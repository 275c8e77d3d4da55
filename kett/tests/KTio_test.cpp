#include "KTio_replace.h"
#include "support/folder.h"

#include <kett/KTio.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using support::Folder;
using support::readFile;
using support::writeFile;
using Names = std::vector<std::string>;

// All bytes, many of them no text.
std::string bytes(size_t size)
{
    std::string content(size, '\0');
    for (size_t i = 0; i < size; ++i)
        content[i] = static_cast<char>(i * 31 + i / 256);
    return content;
}

} // namespace

TEST(IoRead, GivesBackExactlyWhatWasWritten)
{
    const Folder folder;
    for (const size_t size : {0u, 1u, 255u, 4096u, 1000003u}) {
        const std::string content = bytes(size);
        EXPECT_TRUE(replace(folder / "file", content));
        EXPECT_EQ(readFile(folder / "file"), content) << size;
        KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "r");
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(KTIO_FileSize(file), static_cast<int64_t>(size));
        std::string read(size, 'x');
        EXPECT_EQ(KTIO_ReadData(file, read.data(), size), size);
        EXPECT_EQ(read, content) << size;
        EXPECT_TRUE(KTIO_CloseFile(file));
    }
    EXPECT_EQ(folder.entries(), Names{"file"});
}

TEST(IoRead, GoesOnWhereTheLastReadEndedAndStopsAtTheEnd)
{
    const Folder folder;
    writeFile(folder / "file", "0123456789");
    KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "r");
    ASSERT_NE(file, nullptr);
    char buffer[9] = "........";
    EXPECT_EQ(KTIO_ReadData(file, buffer, 4), 4u);
    EXPECT_STREQ(buffer, "0123....");
    EXPECT_EQ(KTIO_ReadData(file, buffer, 0), 0u);
    EXPECT_EQ(KTIO_ReadData(file, nullptr, 3), 0u);
    EXPECT_EQ(KTIO_ReadData(file, buffer + 4, 3), 3u);
    EXPECT_STREQ(buffer, "0123456.");
    EXPECT_EQ(KTIO_ReadData(file, buffer, 8), 3u);
    EXPECT_STREQ(buffer, "7893456.") << "what stands after the end of the file is untouched";
    EXPECT_EQ(KTIO_ReadData(file, buffer, 8), 0u);
    EXPECT_EQ(KTIO_FileSize(file), 10);
    EXPECT_TRUE(KTIO_CloseFile(file));
}

TEST(IoRead, MayAskForMoreThanAnyFileHas)
{
    const Folder folder;
    writeFile(folder / "file", "abc");
    KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "r");
    ASSERT_NE(file, nullptr);
    std::vector<char> room(1 << 20);
    EXPECT_EQ(KTIO_ReadData(file, room.data(), room.size()), 3u);
    EXPECT_TRUE(KTIO_CloseFile(file));
}

TEST(IoWrite, LeavesTheTargetUntilItIsClosed)
{
    const Folder folder;
    writeFile(folder / "file", "old");
    KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "w");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(KTIO_FileSize(file), 0);
    EXPECT_EQ(KTIO_WriteData(file, "new ", 4), 4u);
    EXPECT_EQ(KTIO_WriteData(file, "", 0), 0u);
    EXPECT_EQ(KTIO_WriteData(file, nullptr, 0), 0u);
    EXPECT_EQ(KTIO_WriteData(file, "content", 7), 7u);
    EXPECT_EQ(KTIO_FileSize(file), 11);
    EXPECT_EQ(readFile(folder / "file"), "old");
    EXPECT_TRUE(KTIO_CloseFile(file));
    EXPECT_EQ(readFile(folder / "file"), "new content");
    EXPECT_EQ(folder.entries(), Names{"file"});
}

TEST(IoWrite, ShrinksAndEmptiesToo)
{
    const Folder folder;
    for (const auto &content : {bytes(10000), bytes(10), std::string(), bytes(5)}) {
        EXPECT_TRUE(replace(folder / "file", content));
        EXPECT_EQ(readFile(folder / "file"), content);
    }
}

TEST(IoWrite, OfANullBufferLosesTheFile)
{
    const Folder folder;
    writeFile(folder / "file", "old");
    KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "w");
    EXPECT_EQ(KTIO_WriteData(file, "new", 3), 3u);
    EXPECT_EQ(KTIO_WriteData(file, nullptr, 3), 0u);
    EXPECT_EQ(KTIO_WriteData(file, "er", 2), 2u);
    EXPECT_FALSE(KTIO_CloseFile(file));
    EXPECT_EQ(readFile(folder / "file"), "old");
    EXPECT_EQ(folder.entries(), Names{"file"});
}

TEST(IoFile, DoesOnlyWhatItWasOpenedFor)
{
    const Folder folder;
    writeFile(folder / "file", "old");
    char buffer[4] = "...";
    KT_FILE *const reader = KTIO_Open((folder / "file").c_str(), "r");
    EXPECT_EQ(KTIO_WriteData(reader, "new", 3), 0u);
    EXPECT_EQ(KTIO_ReadData(reader, buffer, 3), 3u);
    EXPECT_TRUE(KTIO_CloseFile(reader));
    KT_FILE *const writer = KTIO_Open((folder / "file").c_str(), "w");
    EXPECT_EQ(KTIO_ReadData(writer, buffer, 3), 0u);
    EXPECT_STREQ(buffer, "old");
    EXPECT_EQ(KTIO_WriteData(writer, "new", 3), 3u);
    EXPECT_TRUE(KTIO_CloseFile(writer));
    EXPECT_EQ(readFile(folder / "file"), "new");
}

TEST(IoFile, ANullOneDoesNothing)
{
    char buffer[4] = "...";
    EXPECT_EQ(KTIO_FileSize(nullptr), 0);
    EXPECT_EQ(KTIO_ReadData(nullptr, buffer, 3), 0u);
    EXPECT_EQ(KTIO_WriteData(nullptr, buffer, 3), 0u);
    EXPECT_FALSE(KTIO_CloseFile(nullptr));
    EXPECT_STREQ(buffer, "...");
}

TEST(IoOpen, TakesTheTwoModesOnly)
{
    const Folder folder;
    writeFile(folder / "file", "old");
    for (const char *mode : {"", "rb", "wb", "a", "r+", "w+", "R", "W", "rw", " r"})
        EXPECT_EQ(KTIO_Open((folder / "file").c_str(), mode), nullptr) << mode;
    EXPECT_EQ(KTIO_Open((folder / "file").c_str(), nullptr), nullptr);
    EXPECT_EQ(KTIO_Open(nullptr, "r"), nullptr);
    EXPECT_EQ(KTIO_Open(nullptr, "w"), nullptr);
    EXPECT_EQ(folder.entries(), Names{"file"});
}

TEST(IoWrite, EndsInTheFolderWhereItBegan)
{
    const Folder folder, other;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    KT_FILE *const file = KTIO_Open("file", "w");
    ASSERT_NE(file, nullptr);
    std::filesystem::current_path(other.path);
    KTIO_WriteData(file, "new", 3);
    EXPECT_TRUE(KTIO_CloseFile(file));
    std::filesystem::current_path(before);
    EXPECT_EQ(readFile(folder / "file"), "new");
    EXPECT_TRUE(other.entries().empty());
}

TEST(IoWrite, ReplacesAFileOfTheLongestName)
{
    const Folder folder;
    const std::string name(255, 'n');
    EXPECT_TRUE(replace(folder / name, "one"));
    EXPECT_TRUE(replace(folder / name, "two"));
    EXPECT_EQ(readFile(folder / name), "two");
    EXPECT_EQ(folder.entries(), Names{name});
}
