#include "support/folder.h"

#include <kett/KTio.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using support::Folder;
using support::readFile;
using support::writeFile;
using Names = std::vector<std::string>;

mode_t modeOf(const std::string &path)
{
    struct stat status;
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

bool replace(const std::string &path, const std::string &content)
{
    KT_FILE *const file = KTIO_Open(path.c_str(), "w");
    return file != nullptr && KTIO_WriteData(file, content.data(), content.size()) == content.size() &&
           KTIO_CloseFile(file);
}

// All bytes, many of them no text.
std::string bytes(size_t size)
{
    std::string content(size, '\0');
    for (size_t i = 0; i < size; ++i)
        content[i] = static_cast<char>(i * 31 + i / 256);
    return content;
}

size_t openDescriptors()
{
    size_t count = 0;
    for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

} // namespace

TEST(IoFileExists, IsTrueForWhatIsNoFolder)
{
    const Folder folder;
    writeFile(folder / "file", "x");
    symlink("file", (folder / "link").c_str());
    symlink("missing", (folder / "dangling").c_str());
    symlink(".", (folder / "to folder").c_str());
    mkfifo((folder / "pipe").c_str(), 0600);
    EXPECT_TRUE(KTIO_FileExists((folder / "file").c_str()));
    EXPECT_TRUE(KTIO_FileExists((folder / "link").c_str()));
    EXPECT_TRUE(KTIO_FileExists((folder / "pipe").c_str()));
    EXPECT_TRUE(KTIO_FileExists("/dev/null"));
    for (const auto &path : {folder / "missing", folder / "dangling", folder / "to folder", folder / "",
                             folder / "file/x", folder.path.string(), std::string()})
        EXPECT_FALSE(KTIO_FileExists(path.c_str())) << path;
    EXPECT_FALSE(KTIO_FileExists(nullptr));
}

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
    KT_FILE *const reader = KTIO_Open((folder / "file").c_str(), "r");
    EXPECT_TRUE(KTIO_CloseFile(file));
    EXPECT_EQ(readFile(folder / "file"), "new content");
    char buffer[4] = {};
    EXPECT_EQ(KTIO_ReadData(reader, buffer, 3), 3u);
    EXPECT_STREQ(buffer, "old") << "who has the old file open reads on in it";
    EXPECT_TRUE(KTIO_CloseFile(reader));
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

// A pipe that nobody has opened would hold up whoever opens it.
TEST(IoOpen, RefusesWhatIsNoFileWithoutWaiting)
{
    const Folder folder;
    mkfifo((folder / "pipe").c_str(), 0600);
    std::filesystem::create_directory(folder / "sub");
    symlink("pipe", (folder / "to pipe").c_str());
    symlink("sub", (folder / "to sub").c_str());
    symlink("circle", (folder / "circle").c_str());
    const Names before = folder.entries();
    const size_t descriptors = openDescriptors();
    for (const auto &path :
         {folder / "pipe", folder / "to pipe", folder / "sub", folder / "to sub", folder / "circle",
          folder.path.string(), folder / "", folder / "sub/", folder / "missing/", folder / ".",
          folder / "missing/..", folder / "missing/file", folder / "pipe/file", std::string("/"),
          std::string("/dev/null"), std::string("/dev/full"), std::string("/dev/zero"), std::string()}) {
        EXPECT_EQ(KTIO_Open(path.c_str(), "r"), nullptr) << path;
        EXPECT_EQ(KTIO_Open(path.c_str(), "w"), nullptr) << path;
    }
    EXPECT_EQ(KTIO_Open((folder / "missing").c_str(), "r"), nullptr);
    EXPECT_EQ(KTIO_Open(("/" + std::string(5000, 'x')).c_str(), "w"), nullptr) << "a name too long";
    EXPECT_EQ(KTIO_Open("/proc/version", "w"), nullptr) << "a folder where no file can be made";
    EXPECT_EQ(folder.entries(), before);
    EXPECT_TRUE(std::filesystem::is_empty(folder / "sub"));
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST(IoWrite, FollowsSymbolicLinks)
{
    const Folder folder;
    std::filesystem::create_directory(folder / "sub");
    struct Link {
        std::string name, content,
            target; // paths below the folder; a content that starts with / below it, too
    };
    const Link links[] = {
        {"relative", "file", "file"},
        {"absolute", "/file", "file"},
        {"into sub", "sub/file", "sub/file"},
        {"sub/upward", "../file", "file"},
        {"chain", "relative", "file"},
        {"sub/chain", "upward", "file"},
        {"through folder", "link to sub/upward", "file"},
        {"dangling", "new 1", "new 1"},
        {"dangling absolute", "/new 2", "new 2"},
        {"sub/dangling upward", "../new 3", "new 3"},
        {"dangling chain", "sub/dangling to 4", "sub/new 4"},
    };
    symlink("sub", (folder / "link to sub").c_str());
    symlink("new 4", (folder / "sub/dangling to 4").c_str());
    for (const auto &link : links) {
        const bool isAbsolute = link.content.front() == '/';
        symlink((isAbsolute ? folder.path.string() + link.content : link.content).c_str(),
                (folder / link.name).c_str());
    }
    for (const auto &link : links) {
        EXPECT_TRUE(replace(folder / link.name, "through " + link.name)) << link.name;
        EXPECT_EQ(readFile(folder / link.target), "through " + link.name);
        EXPECT_TRUE(std::filesystem::is_symlink(folder / link.name)) << link.name;
        EXPECT_FALSE(std::filesystem::is_symlink(folder / link.target)) << link.name;
    }
    symlink("missing folder/file", (folder / "nowhere").c_str());
    EXPECT_EQ(KTIO_Open((folder / "nowhere").c_str(), "w"), nullptr);
}

TEST(IoWrite, KeepsTheModeOfTheOldFile)
{
    const Folder folder;
    const mode_t before = umask(027);
    for (const mode_t mode : {0600, 0644, 0640, 0666, 0755, 0777, 0200}) {
        writeFile(folder / "file", "old");
        chmod((folder / "file").c_str(), mode);
        EXPECT_TRUE(replace(folder / "file", "new"));
        EXPECT_EQ(modeOf(folder / "file"), mode);
        chmod((folder / "file").c_str(), 0600);
    }
    EXPECT_TRUE(replace(folder / "fresh", "new"));
    EXPECT_EQ(modeOf(folder / "fresh"), 0640u) << "0666 less the umask";
    umask(before);
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

TEST(IoFile, IsNotInheritedByOtherPrograms)
{
    const Folder folder;
    writeFile(folder / "file", "old");
    KT_FILE *const reader = KTIO_Open((folder / "file").c_str(), "r");
    KT_FILE *const writer = KTIO_Open((folder / "file").c_str(), "w");
    int inFolder = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        if (!std::filesystem::read_symlink(entry.path(), ignored).string().starts_with(folder.path.string()))
            continue;
        ++inFolder;
        EXPECT_TRUE(fcntl(std::stoi(entry.path().filename().string()), F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_EQ(inFolder, 2);
    EXPECT_TRUE(KTIO_CloseFile(reader));
    EXPECT_TRUE(KTIO_CloseFile(writer));
}
