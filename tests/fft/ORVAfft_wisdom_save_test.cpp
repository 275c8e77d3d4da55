// The wisdom store as it is written: when, where, and what it then holds.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_store.h"
#include "support/log.h"
#include "support/process.h"

#include <kett/KTsettings.h>

#include <algorithm>
#include <chrono>

using namespace orva;

using store::plan;
using store::Store;
using store::wisdom;
using support::inOwnProcess;
using support::readFile;
using support::writeFile;

namespace
{

const auto longPast = std::filesystem::file_time_type(std::chrono::floor<std::chrono::seconds>(
    std::filesystem::file_time_type::clock::now().time_since_epoch() - std::chrono::hours(100'000)));

// Gives a file a time long past, so that any later writing shows.
void makeOld(const std::filesystem::path &path)
{
    std::filesystem::last_write_time(path, longPast);
}

bool isOld(const std::filesystem::path &path)
{
    return std::filesystem::last_write_time(path) == longPast;
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
        KTENV_SetEnvValue("KT_DATA_PATH", (store.folder.path / "missing").string().c_str());
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

// 511 characters is all that a path holds.
TEST(WisdomPath, ALongerPathIsCut)
{
    for (const size_t nameLength : {1, 4, 5, 16, 17}) {
        SCOPED_TRACE(nameLength);
        inOwnProcess([&] {
            const Store store;
            // Leaves room for a separator and part of the name.
            const size_t folderLength = 511 - 1 - nameLength;
            std::string folder = store.folder.path.string();
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
