// The wisdom store in the place of a pipe, of a size that no file has, under a name that none has, and on a disk that fills up.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_store.h"
#include "support/log.h"
#include "support/process.h"

#include <kett/KTenv.h>

#include <csignal>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace orva;

using store::plan;
using store::Store;
using store::wisdom;
using support::inOwnProcess;
using support::readFile;
using support::writeFile;

// A pipe exists and is no folder, but cannot be opened as a file.
TEST(WisdomLoad, AStoreThatCannotBeOpenedReadsAsEmpty)
{
    inOwnProcess([] {
        const Store store;
        ASSERT_EQ(mkfifo(store.path.c_str(), 0600), 0);
        store.announce();
        const std::string known = wisdom();
        EXPECT_TRUE(__FFTW_LoadWisdom());
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        EXPECT_EQ(wisdom(), known);
        EXPECT_FALSE(__FFTW_SaveWisdom());
        EXPECT_TRUE(std::filesystem::is_fifo(store.path));
        EXPECT_TRUE(store.isTidy());
    });
}

// Sizes of which the lowest 32 bits are negative, too large or those of a genuine store.
TEST(WisdomLoad, ASizeThatDoesNotFitCountsAsCorrupt)
{
    const std::string good = store::wisdomOf({16});
    const auto goodSize = static_cast<int64_t>(good.size());
    for (const int64_t size : {(int64_t{64} << 20) + 1, int64_t{INT32_MAX}, int64_t{INT32_MAX} + 1,
                               int64_t{UINT32_MAX}, (int64_t{1} << 32) + goodSize, int64_t{1} << 40}) {
        SCOPED_TRACE(size);
        inOwnProcess([&] {
            const Store store;
            writeFile(store.path, good);
            ASSERT_EQ(truncate(store.path.c_str(), size), 0); // a sparse file
            store.announce();
            rusage before, after;
            getrusage(RUSAGE_SELF, &before);
            const std::string known = wisdom();
            EXPECT_TRUE(__FFTW_LoadWisdom());
            EXPECT_TRUE(__FFTW_WisdomLoaded);
            EXPECT_EQ(wisdom(), known);
            EXPECT_TRUE(__FFTW_SaveWisdom());
            EXPECT_EQ(readFile(store.path), known);
            getrusage(RUSAGE_SELF, &after);
            EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 * 1024) << "kilobytes";
        });
    }
}

TEST(WisdomLoad, AStoreMayHave64Mebibytes)
{
    const std::string good = store::wisdomOf({16});
    inOwnProcess([&] {
        const Store store;
        writeFile(store.path, good);
        ASSERT_EQ(truncate(store.path.c_str(), int64_t{64} << 20), 0); // nobody reads past the wisdom
        store.announce();
        EXPECT_NE(wisdom(), good);
        EXPECT_TRUE(__FFTW_LoadWisdom());
        EXPECT_EQ(wisdom(), good);
    });
}

// A limit on the length of files stands in for a disk that fills up in the middle of the writing.
TEST(WisdomSave, AFullDiskLeavesTheOldStore)
{
    inOwnProcess([] {
        const support::Log log;
        const Store store;
        const std::string old = store::wisdomOf({16});
        writeFile(store.path, old);
        store.announce();
        ORVA_InitializeFFT();
        plan(1009);
        const rlimit limit{old.size() + 100, RLIM_INFINITY};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        ASSERT_GT(wisdom().size(), limit.rlim_cur);
        EXPECT_TRUE(__FFTW_SaveWisdom()); // tells of the open alone
        ORVA_FinalizeFFT();
        const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);
        EXPECT_EQ(readFile(store.path), old);
        EXPECT_TRUE(store.isTidy());
        EXPECT_TRUE(log.messages.empty());
    });
}

TEST(WisdomPath, AFolderNameLongerThanAPathFindsNothing)
{
    inOwnProcess([] {
        const support::Log log;
        KTENV_SetEnvValue("KT_DATA_PATH", ("/" + std::string(5000, 'f')).c_str());
        ORVA_InitializeFFT();
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        plan(16);
        EXPECT_FALSE(__FFTW_SaveWisdom());
        ORVA_FinalizeFFT();
        EXPECT_TRUE(log.messages.empty());
    });
}
