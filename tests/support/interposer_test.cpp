#include "support/interposer.h"
#include "support/log.h"

#include <kett/KTmem.h>
#include <kett/KTmutex.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <semaphore>
#include <string>
#include <thread>

#include <fcntl.h>
#include <malloc.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using support::Counts;

namespace
{

// What the calls of the table work on. Volatile where the compiler would otherwise take an allocation away.
void *volatile block = nullptr;
pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
pthread_rwlock_t rwlock = PTHREAD_RWLOCK_INITIALIZER;
pthread_cond_t condition = PTHREAD_COND_INITIALIZER;
pthread_once_t once = PTHREAD_ONCE_INIT;
const timespec past = {};
sem_t semaphore;
struct stat status;
char buffer[4096] = "/tmp/orva_interposer_XXXXXX";
int file = -1;

struct Call {
    const char *name;
    std::function<void()> make;
    Counts expected;
    std::function<void()> before = [] {};
    std::function<void()> after = [] {};
};

void keep(void *newBlock)
{
    block = newBlock;
}

void release()
{
    free(block);
}

void openScratch()
{
    strcpy(buffer, "/tmp/orva_interposer_XXXXXX");
    file = mkstemp(buffer);
    ASSERT_GE(file, 0);
}

void closeScratch()
{
    close(file);
    unlink(buffer);
}

const Counts oneHeap{.heap = 1}, oneLock{.lock = 1}, oneFile{.file = 1}, oneLog{.log = 1};

const Call calls[] = {
    {"nothing", [] {}, Counts{}},
    {"malloc", [] { keep(malloc(10)); }, oneHeap, [] {}, release},
    {"calloc", [] { keep(calloc(10, 10)); }, oneHeap, [] {}, release},
    {"realloc", [] { keep(realloc(block, 20)); }, oneHeap, [] { keep(malloc(10)); }, release},
    {"reallocarray", [] { keep(reallocarray(block, 20, 2)); }, oneHeap, [] { keep(malloc(10)); }, release},
    {"memalign", [] { keep(memalign(64, 10)); }, oneHeap, [] {}, release},
    {"aligned_alloc", [] { keep(aligned_alloc(64, 64)); }, oneHeap, [] {}, release},
    {"posix_memalign",
     [] {
         void *aligned = nullptr;
         EXPECT_EQ(posix_memalign(&aligned, 64, 10), 0);
         keep(aligned);
     },
     oneHeap, [] {}, release},
    {"free of null", [] { free(block); }, Counts{}, [] { keep(nullptr); }},
    {"free", [] { free(block); }, oneHeap, [] { keep(malloc(10)); }},
    {"new", [] { keep(operator new(10)); }, oneHeap, [] {}, [] { operator delete(block); }},
    {"delete", [] { operator delete(block); }, oneHeap, [] { keep(operator new(10)); }},

    {"pthread_mutex_lock", [] { pthread_mutex_lock(&mutex); }, oneLock, [] {},
     [] { pthread_mutex_unlock(&mutex); }},
    {"pthread_mutex_trylock", [] { pthread_mutex_trylock(&mutex); }, oneLock, [] {},
     [] { pthread_mutex_unlock(&mutex); }},
    {"pthread_mutex_timedlock", [] { pthread_mutex_timedlock(&mutex, &past); }, oneLock, [] {},
     [] { pthread_mutex_unlock(&mutex); }},
    {"pthread_mutex_unlock", [] { pthread_mutex_unlock(&mutex); }, oneLock,
     [] { pthread_mutex_lock(&mutex); }},
    {"pthread_rwlock_rdlock", [] { pthread_rwlock_rdlock(&rwlock); }, oneLock, [] {},
     [] { pthread_rwlock_unlock(&rwlock); }},
    {"pthread_rwlock_wrlock", [] { pthread_rwlock_wrlock(&rwlock); }, oneLock, [] {},
     [] { pthread_rwlock_unlock(&rwlock); }},
    {"pthread_rwlock_unlock", [] { pthread_rwlock_unlock(&rwlock); }, oneLock,
     [] { pthread_rwlock_rdlock(&rwlock); }},
    {"pthread_cond_timedwait", [] { pthread_cond_timedwait(&condition, &mutex, &past); }, oneLock,
     [] { pthread_mutex_lock(&mutex); }, [] { pthread_mutex_unlock(&mutex); }},
    {"pthread_cond_signal", [] { pthread_cond_signal(&condition); }, oneLock},
    {"pthread_cond_broadcast", [] { pthread_cond_broadcast(&condition); }, oneLock},
    {"pthread_once", [] { pthread_once(&once, [] {}); }, oneLock},
    {"sem_post", [] { sem_post(&semaphore); }, oneLock, [] { sem_init(&semaphore, 0, 0); }},
    {"sem_wait", [] { sem_wait(&semaphore); }, oneLock, [] { sem_init(&semaphore, 0, 1); }},
    {"sem_trywait", [] { sem_trywait(&semaphore); }, oneLock, [] { sem_init(&semaphore, 0, 1); }},
    {"sem_timedwait", [] { sem_timedwait(&semaphore, &past); }, oneLock, [] { sem_init(&semaphore, 0, 1); }},
    {"nanosleep", [] { nanosleep(&past, nullptr); }, oneLock},
    {"clock_nanosleep", [] { clock_nanosleep(CLOCK_MONOTONIC, 0, &past, nullptr); }, oneLock},
    {"usleep", [] { usleep(0); }, oneLock},

    {"open", [] { file = open("/dev/null", O_RDONLY); }, oneFile, [] {}, [] { close(file); }},
    {"open64", [] { file = open64("/dev/null", O_RDONLY); }, oneFile, [] {}, [] { close(file); }},
    {"openat", [] { file = openat(AT_FDCWD, "/dev/null", O_RDONLY); }, oneFile, [] {}, [] { close(file); }},
    {"close", [] { close(file); }, oneFile, [] { file = open("/dev/null", O_RDONLY); }},
    {"mkstemp", [] { file = mkstemp(buffer); }, oneFile, [] { strcpy(buffer, "/tmp/orva_XXXXXX"); },
     closeScratch},
    {"mkostemp", [] { file = mkostemp(buffer, O_CLOEXEC); }, oneFile,
     [] { strcpy(buffer, "/tmp/orva_XXXXXX"); }, closeScratch},
    {"read", [] { EXPECT_EQ(read(file, buffer + 100, 4), 0); }, oneFile, openScratch, closeScratch},
    {"pread", [] { EXPECT_EQ(pread(file, buffer + 100, 4, 0), 0); }, oneFile, openScratch, closeScratch},
    {"write", [] { EXPECT_EQ(write(file, "four", 4), 4); }, oneFile, openScratch, closeScratch},
    {"pwrite", [] { EXPECT_EQ(pwrite(file, "four", 4, 0), 4); }, oneFile, openScratch, closeScratch},
    {"lseek", [] { EXPECT_EQ(lseek(file, 2, SEEK_SET), 2); }, oneFile, openScratch, closeScratch},
    {"ftruncate", [] { EXPECT_EQ(ftruncate(file, 2), 0); }, oneFile, openScratch, closeScratch},
    {"fsync", [] { EXPECT_EQ(fsync(file), 0); }, oneFile, openScratch, closeScratch},
    {"fdatasync", [] { EXPECT_EQ(fdatasync(file), 0); }, oneFile, openScratch, closeScratch},
    {"rename", [] { EXPECT_EQ(rename(buffer, buffer), 0); }, oneFile, openScratch, closeScratch},
    {"renameat", [] { EXPECT_EQ(renameat(AT_FDCWD, buffer, AT_FDCWD, buffer), 0); }, oneFile, openScratch,
     closeScratch},
    {"unlink", [] { EXPECT_EQ(unlink(buffer), 0); }, oneFile, openScratch, closeScratch},
    {"unlinkat", [] { EXPECT_EQ(unlinkat(AT_FDCWD, buffer, 0), 0); }, oneFile, openScratch, closeScratch},
    {"remove", [] { EXPECT_EQ(remove(buffer), 0); }, oneFile, openScratch, closeScratch},
    {"stat", [] { EXPECT_EQ(stat("/dev/null", &status), 0); }, oneFile},
    {"lstat", [] { EXPECT_EQ(lstat("/dev/null", &status), 0); }, oneFile},
    {"fstat", [] { EXPECT_EQ(fstat(0, &status), 0); }, oneFile},
    {"fstatat", [] { EXPECT_EQ(fstatat(AT_FDCWD, "/dev/null", &status, 0), 0); }, oneFile},
    {"access", [] { EXPECT_EQ(access("/dev/null", R_OK), 0); }, oneFile},
    {"faccessat", [] { EXPECT_EQ(faccessat(AT_FDCWD, "/dev/null", R_OK, 0), 0); }, oneFile},
    {"chmod", [] { EXPECT_EQ(chmod(buffer, 0600), 0); }, oneFile, openScratch, closeScratch},
    {"fchmod", [] { EXPECT_EQ(fchmod(file, 0600), 0); }, oneFile, openScratch, closeScratch},
    {"chown", [] { EXPECT_EQ(chown(buffer, getuid(), getgid()), 0); }, oneFile, openScratch, closeScratch},
    {"fchown", [] { EXPECT_EQ(fchown(file, getuid(), getgid()), 0); }, oneFile, openScratch, closeScratch},
    {"readlink", [] { EXPECT_GT(readlink("/proc/self/exe", buffer, sizeof buffer), 0); }, oneFile},
    {"realpath", [] { EXPECT_NE(realpath("/dev/null", buffer), nullptr); }, oneFile},

    {"a message of libkett", [] { KTDEBUG_Log(-1, "%s", "one"); }, oneLog},
    {"a warning of libkett", [] { KTDEBUG_Warning(-1, "%s", "one"); }, oneLog},
    {"an error of libkett", [] { KTDEBUG_Error(-1, "%s", "one"); }, oneLog},
    {"a terminal error of libkett", [] { KTDEBUG_TerminalError(-1, "%s", "one"); }, oneLog},
};

Counts countOf(const Call &call)
{
    call.before();
    support::begin();
    call.make();
    const Counts counts = support::end();
    call.after();
    return counts;
}

} // namespace

TEST(InterposerCounts, EachCallIsCountedOnceUnderItsKind)
{
    support::Log log;
    for (const Call &call : calls)
        EXPECT_EQ(countOf(call), call.expected) << call.name;
}

TEST(InterposerCounts, ABufferedFileCountsItsAllocationToo)
{
    support::begin();
    FILE *const stream = fopen("/dev/null", "r+");
    EXPECT_EQ(support::end(), (Counts{.heap = 1, .file = 1}));
    support::begin();
    EXPECT_EQ(fwrite("x", 1, 1, stream), 1u);
    EXPECT_EQ(fflush(stream), 0);
    EXPECT_EQ(fread(buffer, 1, 1, stream), 0u);
    EXPECT_EQ(support::end().file, 3u);
    support::begin();
    EXPECT_EQ(fclose(stream), 0);
    EXPECT_EQ(support::end().file, 1u);
}

// The positive control for all tests that expect nothing: calls made inside a library of ours are seen.
TEST(InterposerCounts, CallsFromWithinALibraryAreSeen)
{
    support::begin();
    KT_MEM *const memory = KTMEM_CreateMemDescrEx("control", 0, 0);
    EXPECT_GT(support::end().heap, 0u);
    KTMEM_DisposeMemDescr(memory);

    KT_MUTEX *const lock = MutexInit();
    support::begin();
    MutexLock(lock);
    MutexUnlock(lock);
    EXPECT_EQ(support::end(), Counts{.lock = 2});
    MutexDestroy(lock);
}

TEST(InterposerCounts, CallsOutsideTheMarksDoNotCount)
{
    keep(malloc(10));
    support::begin();
    release();
    EXPECT_EQ(support::end(), oneHeap);
    keep(malloc(10));
    release();
    EXPECT_EQ(support::end(), oneHeap);
    support::begin();
    EXPECT_EQ(support::end(), Counts{});
}

TEST(InterposerCounts, CallsOfAnotherThreadDoNotCount)
{
    std::binary_semaphore go{0}, done{0};
    Counts other;
    std::thread thread([&] {
        go.acquire();
        support::begin();
        for (int i = 0; i < 10; ++i) {
            keep(malloc(10));
            release();
        }
        other = support::end();
        done.release();
    });
    support::begin();
    go.release();
    done.acquire();
    const Counts here = support::end();
    thread.join();
    EXPECT_EQ(here, Counts{});
    EXPECT_EQ(other, Counts{.heap = 20});
}

TEST(InterposerLog, MessagesArriveWholeAndWhatTheSinkDoesIsNotCounted)
{
    support::Log log;
    const std::string longText(5000, 'x');
    support::begin();
    KTDEBUG_Error(-1, "%s: %d%%\n", longText.c_str(), 42);
    EXPECT_EQ(support::end(), oneLog);
    ASSERT_EQ(log.messages.size(), 1u);
    EXPECT_EQ(log.messages[0], support::error(longText + ": 42%\n"));
}

TEST(InterposerFailure, TheChosenAllocationAloneFails)
{
    support::failAllocation(3);
    void *blocks[4];
    for (auto &b : blocks)
        b = malloc(10);
    EXPECT_TRUE(support::endFailure());
    EXPECT_NE(blocks[0], nullptr);
    EXPECT_NE(blocks[1], nullptr);
    EXPECT_EQ(blocks[2], nullptr);
    EXPECT_NE(blocks[3], nullptr);
    for (void *b : blocks)
        free(b);
}

TEST(InterposerFailure, EveryKindOfAllocationCanFail)
{
    const std::function<void *()> kinds[] = {
        [] { return malloc(10); },
        [] { return calloc(10, 1); },
        [] { return realloc(nullptr, 10); },
        [] { return memalign(64, 10); },
        [] { return aligned_alloc(64, 64); },
        [] { return operator new(10, std::nothrow); },
    };
    for (const auto &allocate : kinds) {
        support::failAllocation(1);
        errno = 0;
        keep(allocate());
        EXPECT_EQ(block, nullptr);
        EXPECT_EQ(errno, ENOMEM);
        EXPECT_TRUE(support::endFailure());
        release();
    }
    void *aligned = &aligned;
    support::failAllocation(1);
    EXPECT_EQ(posix_memalign(&aligned, 64, 10), ENOMEM);
    EXPECT_EQ(aligned, &aligned);
}

TEST(InterposerFailure, AFailedReallocLeavesTheBlock)
{
    keep(strdup("kept"));
    support::failAllocation(1);
    EXPECT_EQ(realloc(block, 100), nullptr);
    support::endFailure();
    EXPECT_STREQ(static_cast<char *>(block), "kept");
    release();
}

TEST(InterposerFailure, WithoutEnoughCallsNothingHasFailed)
{
    support::failAllocation(2);
    keep(malloc(10));
    EXPECT_FALSE(support::endFailure());
    release();
    keep(malloc(10));
    EXPECT_NE(block, nullptr);
    release();
}

TEST(InterposerFailure, AnotherThreadIsSpared)
{
    std::binary_semaphore go{0};
    void *result = nullptr;
    std::thread thread([&] {
        go.acquire();
        result = malloc(10);
    });
    support::failAllocation(1);
    go.release();
    thread.join();
    EXPECT_FALSE(support::endFailure());
    EXPECT_NE(result, nullptr);
    free(result);
}

TEST(InterposerFailure, TheChosenFileCallAloneFailsWithTheErrno)
{
    openScratch();
    support::failFileCall(2, ENOSPC);
    EXPECT_EQ(write(file, "one", 3), 3);
    errno = 0;
    EXPECT_EQ(write(file, "two", 3), -1);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(write(file, "three", 5), 5);
    EXPECT_TRUE(support::endFailure());
    EXPECT_EQ(std::filesystem::file_size(buffer), 8u);
    closeScratch();
}

TEST(InterposerFailure, AFailedCloseHasClosed)
{
    openScratch();
    support::failFileCall(1, EIO);
    EXPECT_EQ(close(file), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_TRUE(support::endFailure());
    EXPECT_EQ(fcntl(file, F_GETFD), -1);
    unlink(buffer);
}

TEST(InterposerFailure, TheProcessIsKilledInPlaceOfTheChosenFileCall)
{
    openScratch();
    const pid_t child = fork();
    if (child == 0) {
        support::killAtFileCall(2);
        (void) !write(file, "one", 3);
        (void) !write(file, "two", 3);
        _exit(0);
    }
    int how = 0;
    ASSERT_EQ(waitpid(child, &how, 0), child);
    EXPECT_TRUE(WIFSIGNALED(how) && WTERMSIG(how) == SIGKILL);
    EXPECT_EQ(std::filesystem::file_size(buffer), 3u);
    closeScratch();
}
