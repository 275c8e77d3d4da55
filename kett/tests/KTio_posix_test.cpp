// Links, pipes, modes and descriptors.
#include "KTio_replace.h"
#include "support/folder.h"

#include <kett/KTio.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
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

// A pipe that nobody has opened would hold up whoever opens it.
TEST(IoOpen, RefusesWhatIsNoFileWithoutWaiting)
{
    const Folder folder;
    mkfifo((folder / "pipe").c_str(), 0600);
    std::filesystem::create_directory(folder / "sub");
    symlink("pipe", (folder / "to pipe").c_str());
    symlink("sub", (folder / "to sub").c_str());
    symlink("circle", (folder / "circle").c_str());
    for (const char *link : {"to pipe", "to sub", "circle"})
        EXPECT_EQ(KTIO_Open((folder / link).c_str(), "r"), nullptr) << link;
    const Names before = folder.entries();
    const size_t descriptors = openDescriptors();
    for (const auto &path :
         {folder / "pipe", folder / "sub", folder.path.string(), folder / "", folder / "sub/",
          folder / "to sub/", folder / "missing/", folder / ".", folder / "..", folder / "circle/file",
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

// Whoever may write to the folder could otherwise choose the file that another user overwrites.
TEST(IoWrite, ReplacesASymbolicLinkAndLeavesWhereItLeads)
{
    const Folder folder;
    std::filesystem::create_directory(folder / "sub");
    symlink("sub", (folder / "link to sub").c_str());
    for (const std::string content : {"file", "sub/file", "/file", "link to sub/file", "missing",
                                      "missing/file", "link", "sub", "link to sub"}) {
        SCOPED_TRACE(content);
        writeFile(folder / "file", "old");
        writeFile(folder / "sub/file", "old");
        const std::string leadsTo = content.front() == '/' ? folder.path.string() + content : content;
        for (const std::string path : {"link", "link to sub/link", "sub/link"}) {
            symlink(leadsTo.c_str(), (folder / path).c_str());
            EXPECT_TRUE(replace(folder / path, "new")) << path;
            EXPECT_FALSE(std::filesystem::is_symlink(folder / path)) << path;
            EXPECT_EQ(readFile(folder / path), "new");
            std::filesystem::remove(folder / path);
        }
        EXPECT_EQ(readFile(folder / "file"), "old");
        EXPECT_EQ(readFile(folder / "sub/file"), "old");
        EXPECT_EQ(folder.entries(), (Names{"file", "link to sub", "sub"}));
    }
}

// The folder is held from the open on; its path may lead elsewhere at the close.
TEST(IoWrite, StaysInTheFolderThatWasOpened)
{
    const Folder folder;
    std::filesystem::create_directory(folder / "sub");
    std::filesystem::create_directory(folder / "other");
    writeFile(folder / "other/file", "other");
    KT_FILE *const file = KTIO_Open((folder / "sub/file").c_str(), "w");
    EXPECT_EQ(KTIO_WriteData(file, "new", 3), 3u);
    std::filesystem::rename(folder / "sub", folder / "moved");
    symlink("other", (folder / "sub").c_str());
    EXPECT_TRUE(KTIO_CloseFile(file));
    EXPECT_EQ(readFile(folder / "moved/file"), "new");
    EXPECT_EQ(readFile(folder / "other/file"), "other");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "other"), {}), 1);
}

// What killed processes have left. Only such files go as this library itself has made, and that nobody can be writing to.
TEST(IoWrite, RemovesTemporaryFilesThatAreOlderThanADay)
{
    const Folder folder;
    constexpr time_t day = 24 * 60 * 60;
    const auto make = [&](const std::string &name, time_t age) {
        writeFile(folder / name, "left");
        const time_t then = time(nullptr) - age;
        const timespec times[] = {{then, 0}, {then, 0}};
        utimensat(AT_FDCWD, (folder / name).c_str(), times, AT_SYMLINK_NOFOLLOW);
    };
    make(".kett-1-0.tmp", day + 60);
    make(".kett-4194304-4294967295.tmp", 400 * day);
    make(".kett-2-0.tmp", day - 60);
    make(".kett-2-1.tmp", 0);
    Names expected = {".kett-2-0.tmp", ".kett-2-1.tmp"};
    for (const char *name :
         {".kett-.tmp", ".kett--.tmp", ".kett-1-.tmp", ".kett--1.tmp", ".kett-1-0.tmp2", ".kett-1.tmp",
          ".kett-1-0-0.tmp", ".kett-x-0.tmp", ".kett-1-x.tmp", "kett-1-0.tmp", ".kett-1-0", ".kett.tmp"}) {
        make(name, 400 * day);
        expected.push_back(name);
    }
    std::filesystem::create_directory(folder / ".kett-3-0.tmp");
    const timespec longAgo[] = {{1, 0}, {1, 0}};
    utimensat(AT_FDCWD, (folder / ".kett-3-0.tmp").c_str(), longAgo, 0);
    symlink("file", (folder / ".kett-3-1.tmp").c_str());
    utimensat(AT_FDCWD, (folder / ".kett-3-1.tmp").c_str(), longAgo, AT_SYMLINK_NOFOLLOW);
    EXPECT_TRUE(replace(folder / "file", "new"));
    expected.insert(expected.end(), {".kett-3-0.tmp", ".kett-3-1.tmp", "file"});
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(folder.entries(), expected);
}

// A process whose standard input is closed gets descriptor 0 for the first file that it opens.
TEST(IoFile, MayHaveTheDescriptorZero)
{
    const Folder folder;
    const int before = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    EXPECT_TRUE(replace(folder / "file", "new"));
    KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "r");
    char text[4] = {};
    EXPECT_EQ(KTIO_FileSize(file), 3);
    EXPECT_EQ(KTIO_ReadData(file, text, 3), 3u);
    EXPECT_STREQ(text, "new");
    EXPECT_NE(fcntl(0, F_GETFD), -1);
    EXPECT_TRUE(KTIO_CloseFile(file));
    EXPECT_EQ(fcntl(0, F_GETFD), -1) << "closed";
    dup2(before, STDIN_FILENO);
    close(before);
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
    EXPECT_EQ(inFolder, 3) << "and the folder of the writer";
    EXPECT_TRUE(KTIO_CloseFile(reader));
    EXPECT_TRUE(KTIO_CloseFile(writer));
}

TEST(IoWrite, LetsWhoHasTheOldFileOpenReadOnInIt)
{
    const Folder folder;
    writeFile(folder / "file", "old");
    KT_FILE *const reader = KTIO_Open((folder / "file").c_str(), "r");
    EXPECT_TRUE(replace(folder / "file", "new content"));
    EXPECT_EQ(readFile(folder / "file"), "new content");
    char buffer[4] = {};
    EXPECT_EQ(KTIO_ReadData(reader, buffer, 3), 3u);
    EXPECT_STREQ(buffer, "old");
    EXPECT_TRUE(KTIO_CloseFile(reader));
    EXPECT_EQ(folder.entries(), Names{"file"});
}
