// The wisdom store as it is written: when, where, and what it then holds.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_store.h"
#include "support/log.h"
#include "support/process.h"

#include <kett/KTsettings.h>

#include <algorithm>
#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace orva;

using store::plan;
using store::Store;
using store::wisdom;
using support::inOwnProcess;
using support::readFile;
using support::writeFile;

namespace
{

// Gives a file a time long past, so that any later writing shows.
void makeOld(const std::filesystem::path &path)
{
    const timespec past[2] = {{1000000000, 0}, {1000000000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), past, 0), 0);
}

bool isOld(const std::filesystem::path &path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && status.st_mtim.tv_sec == 1000000000 &&
           status.st_mtim.tv_nsec == 0;
}

} // namespace

TEST(WisdomSave, AnEqualStoreIsNotTouched)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        ORVA_InitializeFFT();
        plan(360);
        writeFile(store.path, wisdom());
        makeOld(store.path);
        ORVA_FinalizeFFT();
        EXPECT_TRUE(isOld(store.path));
        EXPECT_TRUE(store.isTidy());
    });
}

TEST(WisdomSave, AnyDifferenceRewritesTheStore)
{
    const std::pair<const char *, std::string (*)(std::string)> changes[] = {
        {"one byte longer", [](std::string text) { return text + '\n'; }},
        {"one byte shorter", [](std::string text) { return text.substr(0, text.size() - 1); }},
        {"first byte changed", [](std::string text) { return '[' + text.substr(1); }},
        {"last byte changed", [](std::string text) { return text.substr(0, text.size() - 1) + ' '; }},
        {"one byte in the middle changed",
         [](std::string text) {
             text[text.size() / 2] = '\0';
             return text;
         }},
        {"empty", [](std::string) { return std::string(); }},
    };
    for (const auto &[name, change] : changes) {
        SCOPED_TRACE(name);
        inOwnProcess([&change = change] {
            const Store store;
            store.announce();
            ORVA_InitializeFFT();
            plan(360);
            writeFile(store.path, change(wisdom()));
            makeOld(store.path);
            ORVA_FinalizeFFT();
            EXPECT_EQ(readFile(store.path), wisdom());
            EXPECT_FALSE(isOld(store.path));
            EXPECT_TRUE(store.isTidy());
        });
    }
}

TEST(WisdomSave, TellsWhetherTheStoreHoldsTheWisdom)
{
    inOwnProcess([] {
        const support::Log log;
        const Store store;
        store::learn(16);
        EXPECT_FALSE(__FFTW_SaveWisdom()) << "no folder";
        store.announce();
        KTSETTINGS_SetEx(nullptr, "orva.fftw.use_wisdom=%s", "off");
        EXPECT_FALSE(__FFTW_SaveWisdom()) << "setting off";
        EXPECT_FALSE(store.exists());
        KTSETTINGS_SetEx(nullptr, "orva.fftw.use_wisdom=%s", "on");
        EXPECT_TRUE(__FFTW_SaveWisdom()) << "written";
        EXPECT_EQ(readFile(store.path), wisdom());
        EXPECT_TRUE(__FFTW_SaveWisdom()) << "equal";
        KTENV_SetEnvValue("KT_DATA_PATH", (store.folder.path / "missing").c_str());
        EXPECT_FALSE(__FFTW_SaveWisdom()) << "no such folder";
        EXPECT_TRUE(store.isTidy());
        EXPECT_TRUE(log.messages.empty());
    });
}

TEST(WisdomSave, TheFolderIsAskedAnew)
{
    inOwnProcess([] {
        const Store first, second;
        first.announce();
        ORVA_InitializeFFT();
        plan(16);
        second.announce();
        ORVA_FinalizeFFT();
        EXPECT_FALSE(first.exists());
        EXPECT_EQ(readFile(second.path), wisdom());
    });
}

// The load never came to its end, so there is nothing to compare a store with.
TEST(WisdomSave, NothingIsSavedWithoutALoad)
{
    inOwnProcess([] {
        const Store store;
        ORVA_InitializeFFT();
        plan(16);
        store.announce();
        ORVA_FinalizeFFT();
        EXPECT_FALSE(store.exists());
    });
}

TEST(WisdomSave, AStoreThatVanishedIsWrittenAnew)
{
    inOwnProcess([] {
        const Store store;
        writeFile(store.path, store::wisdomOf({16}));
        store.announce();
        ORVA_InitializeFFT();
        std::filesystem::remove(store.path);
        ORVA_FinalizeFFT();
        EXPECT_EQ(readFile(store.path), wisdom());
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
        signal(SIGXFSZ, SIG_IGN);
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

// 511 characters is all that a path holds.
TEST(WisdomPath, ALongerPathIsCut)
{
    for (const size_t nameLength : {1, 4, 5, 16, 17}) {
        SCOPED_TRACE(nameLength);
        inOwnProcess([&] {
            const Store store;
            // Leaves room for a separator and part of the name.
            const size_t folderLength = 511 - 1 - nameLength;
            std::string folder = store.folder.path;
            while (folder.size() < folderLength) {
                // Never so that a single character, a separator, is left over.
                size_t step = std::min<size_t>(folderLength - folder.size() - 1, 200);
                if (folderLength - folder.size() - 1 - step == 1)
                    --step;
                folder += '/' + std::string(step, 'f');
            }
            ASSERT_EQ(folder.size(), folderLength);
            std::filesystem::create_directories(folder);
            KTENV_SetEnvValue("KT_DATA_PATH", folder.c_str());
            ORVA_InitializeFFT();
            ORVA_FinalizeFFT();
            const std::string name = std::string("ruko.optimization").substr(0, nameLength);
            EXPECT_EQ(readFile(folder + '/' + name), wisdom());
        });
    }
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
