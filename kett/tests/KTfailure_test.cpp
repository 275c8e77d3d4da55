// Each allocation and each file call fails once: the operation then gives its failure result, and all is as
// it was.
#include "support/folder.h"
#include "support/interposer.h"

#include <kett/kett.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <string>
#include <vector>

namespace
{

using support::Folder;
using Names = std::vector<std::string>;

// Calls `operation` with its first allocation failing, then its second, until it has had all it wants. Gives
// the number of failures.
int eachAllocation(const std::function<bool()> &operation)
{
    for (int n = 1;; ++n) {
        support::failAllocation(static_cast<uint64_t>(n));
        const bool succeeded = operation();
        const bool failed = support::endFailure();
        EXPECT_NE(succeeded, failed) << "allocation " << n;
        if (!failed)
            return n - 1;
    }
}

} // namespace

TEST(OutOfMemory, VersionsStayAsTheyWere)
{
    const int failures = eachAllocation([] {
        const bool done = KTVERSION_Register("new", 1, 2, 3, 4);
        EXPECT_EQ(KTVERSION_Find("new", nullptr, nullptr, nullptr, nullptr), done);
        return done;
    });
    EXPECT_GE(failures, 1);
    support::begin();
    EXPECT_TRUE(KTVERSION_Register("new", 5, 6, 7, 8));
    EXPECT_EQ(support::end().heap, 0u) << "replacing the numbers allocates nothing";
}

TEST(OutOfMemory, SettingsStayAsTheyWere)
{
    const std::string key(2000, 'k'); // longer than what is formatted without the heap
    KTSETTINGS_SetEx(nullptr, "old=1");
    struct Case {
        bool (*set)(KT_SETTINGS *, const char *, ...);
        const char *key;
        int64_t before;
    };
    for (const auto &c : {Case{KTSETTINGS_SetEx, "old", 1},
                          {KTSETTINGS_SetEx, "new", 0},
                          {KTSETTINGS_SetEx, key.c_str(), 0},
                          {KTSETTINGS_SetDefaultEx, "default", 0}}) {
        const int failures = eachAllocation([&] {
            const bool done = c.set(nullptr, "%s=%d", c.key, 2);
            EXPECT_EQ(KTSETTINGS_GetIntEx(nullptr, c.key), done ? 2 : c.before);
            return done;
        });
        EXPECT_GE(failures, 1);
    }
}

TEST(OutOfMemory, EnvValuesStayAsTheyWere)
{
    KTENV_SetEnvValue("OLD", "before");
    for (const char *name : {"OLD", "NEW"}) {
        const char *const before = KTENV_GetEnvValue(name);
        const int failures = eachAllocation([&] {
            const bool done = KTENV_SetEnvValue(name, "after");
            if (done) {
                EXPECT_STREQ(KTENV_GetEnvValue(name), "after");
            } else {
                EXPECT_EQ(KTENV_GetEnvValue(name), before);
            }
            return done;
        });
        EXPECT_GE(failures, 1);
        support::begin();
        KTENV_SetEnvValue(name, nullptr);
        KTENV_SetEnvValue(name, "after");
        EXPECT_EQ(support::end().heap, 0u) << "a text published before allocates nothing";
    }
}

TEST(OutOfMemory, DescriptorsBlocksMutexesAndThreadsAreNull)
{
    EXPECT_GE(eachAllocation([] { return KTMEM_DisposeMemDescr(KTMEM_CreateMemDescrEx("name", 0, 0)) == 1; }),
              1);
    KT_MEM *const memory = KTMEM_CreateMemDescrEx("name", 0, 0);
    EXPECT_EQ(eachAllocation([&] { return KTMEM_NewEx(memory, 100, 0) != nullptr; }), 1);
    EXPECT_EQ(eachAllocation([&] { return KTMEM_NewAligned(memory, 64, 100) != nullptr; }), 1);
    EXPECT_EQ(eachAllocation([&] { return KTMEM_NewFloatVector(memory, 100) != nullptr; }), 1);
    KTMEM_DisposeMemDescr(memory);
    EXPECT_EQ(eachAllocation([] {
                  KT_MUTEX *const mutex = MutexInit();
                  MutexDestroy(mutex);
                  return mutex != nullptr;
              }),
              1);
    const auto body = [](void *) { return int32_t{0}; };
    EXPECT_GE(
        eachAllocation([&] { return KTTHREAD_JoinThreadEx(KTTHREAD_AddThread(body, nullptr, 0), 0) == 1; }),
        1);
}

TEST(OutOfMemory, AFileIsNotOpened)
{
    const Folder folder;
    support::writeFile(folder / "file", "old");
    symlink("fresh", (folder / "dangling").c_str());
    for (const std::string &path : {folder / "file", folder / "new", folder / "dangling"}) {
        KT_FILE *writer = nullptr;
        const int failures =
            eachAllocation([&] { return (writer = KTIO_Open(path.c_str(), "w")) != nullptr; });
        EXPECT_GE(failures, 1);
        EXPECT_TRUE(KTIO_CloseFile(writer));
        const int readFailures = eachAllocation([&] {
            KT_FILE *const file = KTIO_Open(path.c_str(), "r");
            KTIO_CloseFile(file);
            return file != nullptr;
        });
        EXPECT_GE(readFailures, 1);
    }
    EXPECT_EQ(folder.entries(), (Names{"dangling", "file", "new"}));
}

// Whatever fails, the target holds the old content or, where the failure did no harm, the new one.
TEST(FileFailure, LeavesTheTargetAndNoTemporaryFile)
{
    const Folder folder;
    int atOpen = 0, atWrite = 0, atClose = 0, harmless = 0;
    for (uint64_t n = 1;; ++n) {
        support::writeFile(folder / "file", "old");
        support::failFileCall(n, EIO);
        KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "w");
        const bool written = KTIO_WriteData(file, "new", 3) == 3;
        const bool closed = KTIO_CloseFile(file);
        const bool failed = support::endFailure();
        EXPECT_EQ(support::readFile(folder / "file"), closed ? "new" : "old") << "file call " << n;
        EXPECT_EQ(folder.entries(), (Names{"file"})) << "file call " << n;
        if (!failed) {
            EXPECT_TRUE(closed);
            break;
        }
        if (file == nullptr)
            ++atOpen;
        else if (!written)
            ++atWrite;
        else
            ++(closed ? harmless : atClose);
    }
    EXPECT_GE(atOpen, 4) << "resolve, look, create, set the mode";
    EXPECT_EQ(atWrite, 1);
    EXPECT_EQ(atClose, 3) << "flush, close, rename";
    EXPECT_EQ(harmless, 6)
        << "give the file its owner; open, flush and close the folder; list it; release it";
}

TEST(FileFailure, AnInterruptedCallIsMadeAgain)
{
    const Folder folder;
    support::writeFile(folder / "file", "old");
    for (uint64_t n = 1;; ++n) {
        support::failFileCall(n, EINTR);
        KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "r");
        char buffer[3] = {};
        if (file != nullptr) {
            EXPECT_EQ(KTIO_ReadData(file, buffer, 3), 3u) << "file call " << n;
            EXPECT_TRUE(KTIO_CloseFile(file));
        }
        const bool failed = support::endFailure();
        EXPECT_TRUE(file != nullptr || n == 2)
            << "only the look at the open file is never interrupted: file call " << n;
        if (!failed)
            break;
    }
    KT_FILE *const file = KTIO_Open((folder / "file").c_str(), "w");
    support::failFileCall(1, EINTR);
    EXPECT_EQ(KTIO_WriteData(file, "new", 3), 3u);
    EXPECT_TRUE(support::endFailure());
    EXPECT_TRUE(KTIO_CloseFile(file));
    EXPECT_EQ(support::readFile(folder / "file"), "new");
}
