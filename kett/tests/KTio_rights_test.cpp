// What becomes of the target when writing it is not allowed, falls short, or is done by several at once.
#include "KTio_users.h"
#include "support/folder.h"

#include <kett/KTio.h>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using support::Folder;
using support::readFile;
using support::writeFile;
using Names = std::vector<std::string>;

} // namespace

TEST(IoRights, AFileThatMayNotBeWrittenFailsAtTheOpen)
{
    const Folder folder;
    giveAway(folder.path);
    writeFile(folder / "file", "old");
    giveAway(folder / "file");
    const OrdinaryUser user;
    for (const mode_t mode : {0400, 0444, 0000}) {
        chmod((folder / "file").c_str(), mode);
        EXPECT_EQ(KTIO_Open((folder / "file").c_str(), "w"), nullptr) << mode;
        EXPECT_EQ(folder.entries(), Names{"file"});
    }
    EXPECT_EQ(KTIO_Open((folder / "file").c_str(), "r"), nullptr) << "mode 0";
    chmod((folder / "file").c_str(), 0600);
    EXPECT_EQ(readFile(folder / "file"), "old");
    EXPECT_TRUE(replace(folder / "file", "new"));
}

TEST(IoRights, AClosedFolderFailsAtTheOpen)
{
    const Folder folder;
    giveAway(folder.path);
    writeFile(folder / "file", "old");
    giveAway(folder / "file");
    const OrdinaryUser user;
    for (const mode_t mode : {0500, 0000}) {
        chmod(folder.path.c_str(), mode);
        EXPECT_EQ(KTIO_Open((folder / "file").c_str(), "w"), nullptr) << mode;
        EXPECT_EQ(KTIO_Open((folder / "fresh").c_str(), "w"), nullptr) << mode;
    }
    EXPECT_FALSE(KTIO_FileExists((folder / "file").c_str()));
    EXPECT_EQ(KTIO_Open((folder / "file").c_str(), "r"), nullptr);
    chmod(folder.path.c_str(), 0300); // cannot be listed, nor opened for a flush
    EXPECT_TRUE(replace(folder / "file", "new"));
    chmod(folder.path.c_str(), 0700);
    EXPECT_EQ(readFile(folder / "file"), "new");
    EXPECT_EQ(folder.entries(), Names{"file"});
}

// The limit on the size of a file would end the process by SIGXFSZ.
TEST(IoFailure, AShortWriteLeavesTheTarget)
{
    const Folder folder;
    writeFile(folder / "file", "old");
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{10000, before.rlim_max};
    const std::string content(8000, 'x');
    for (const char *name : {"file", "fresh"}) {
        KT_FILE *const file = KTIO_Open((folder / name).c_str(), "w");
        ASSERT_NE(file, nullptr);
        setrlimit(RLIMIT_FSIZE, &small);
        EXPECT_EQ(KTIO_WriteData(file, content.data(), content.size()), 8000u);
        EXPECT_EQ(KTIO_WriteData(file, content.data(), content.size()), 2000u);
        EXPECT_EQ(KTIO_WriteData(file, content.data(), content.size()), 0u);
        EXPECT_EQ(KTIO_FileSize(file), 10000);
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_FALSE(KTIO_CloseFile(file));
    }
    EXPECT_EQ(readFile(folder / "file"), "old");
    EXPECT_EQ(folder.entries(), Names{"file"});
}

TEST(IoFailure, AFolderRemovedMeanwhileFailsTheClose)
{
    const Folder folder;
    std::filesystem::create_directory(folder / "sub");
    KT_FILE *const file = KTIO_Open((folder / "sub/file").c_str(), "w");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(KTIO_WriteData(file, "new", 3), 3u);
    std::filesystem::remove_all(folder / "sub");
    EXPECT_FALSE(KTIO_CloseFile(file));
    EXPECT_TRUE(folder.entries().empty());
}

TEST(IoWriters, OfOneTargetLeaveOneWholeContent)
{
    const Folder folder;
    const std::string path = folder / "file";
    ASSERT_TRUE(replace(path, std::string(30000, '-')));
    std::atomic<int> running = 3;
    std::vector<std::thread> writers;
    for (const char letter : {'a', 'b', 'c'})
        writers.emplace_back([&, letter] {
            EXPECT_TRUE(replaceOften(path, letter, 15));
            --running;
        });
    while (running > 0)
        EXPECT_TRUE(isWhole(readFile(path)));
    for (auto &writer : writers)
        writer.join();
    EXPECT_TRUE(isWhole(readFile(path)));
    EXPECT_EQ(folder.entries(), Names{"file"});
}

TEST(IoWriters, InSeveralProcessesLeaveOneWholeContent)
{
    const Folder folder;
    const std::string path = folder / "file";
    ASSERT_TRUE(replace(path, std::string(30000, '-')));
    std::vector<pid_t> children;
    for (const char letter : {'a', 'b'}) {
        const pid_t child = fork();
        if (child == 0)
            _exit(replaceOften(path, letter, 15) ? 0 : 1);
        children.push_back(child);
    }
    for (int i = 0; i < 50; ++i)
        EXPECT_TRUE(isWhole(readFile(path)));
    for (const pid_t child : children) {
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_TRUE(isWhole(readFile(path)));
    EXPECT_EQ(folder.entries(), Names{"file"});
}

TEST(IoCrash, LeavesTheOldContent)
{
    const Folder folder;
    writeFile(folder / "file", "old");
    const pid_t child = fork();
    if (child == 0) {
        KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "w");
        KTIO_WriteData(file, "half of the new", 15);
        _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(readFile(folder / "file"), "old");
    EXPECT_TRUE(replace(folder / "file", "new"));
    EXPECT_EQ(readFile(folder / "file"), "new");
}
