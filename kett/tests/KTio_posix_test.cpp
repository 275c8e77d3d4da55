// Links, pipes, modes and descriptors.
#include "KTio_replace.h"
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
