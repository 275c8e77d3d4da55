// The wisdom store as it is read: when, how often, and what of it reaches FFTW.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_store.h"
#include "support/log.h"
#include "support/process.h"
#include "support/random.h"

#include <kett/KTsettings.h>

#include <algorithm>
#include <sstream>

using namespace orva;

using store::plan;
using store::Store;
using store::wisdom;
using support::inOwnProcess;
using support::readFile;
using support::writeFile;

namespace
{

// FFTW keeps wisdom in a hash table, so the order of the lines says nothing.
std::string sortedLines(const std::string &text)
{
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    std::string sorted;
    for (const auto &line : lines)
        sorted += line + '\n';
    return sorted;
}

} // namespace

TEST(WisdomLoad, WithoutAFolderPlansAreMadeAndNothingIsKept)
{
    inOwnProcess([] {
        const support::Log log;
        const Store store;
        ORVA_InitializeFFT();
        EXPECT_FALSE(__FFTW_LoadWisdom());
        plan(64);
        EXPECT_FALSE(__FFTW_WisdomLoaded);
        ORVA_FinalizeFFT();
        store.announce();
        EXPECT_FALSE(store.exists());
        EXPECT_TRUE(log.messages.empty());
    });
}

TEST(WisdomLoad, AMissingStoreCountsAsLoadedAndIsCreatedAtTheEnd)
{
    inOwnProcess([] {
        const Store store;
        store.announce();
        EXPECT_FALSE(__FFTW_LoadWisdom());
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        ORVA_InitializeFFT();
        plan(64);
        EXPECT_FALSE(store.exists());
        ORVA_FinalizeFFT();
        EXPECT_EQ(readFile(store.path), wisdom());
        EXPECT_TRUE(store.isTidy());
    });
}

TEST(WisdomLoad, AStoreIsImportedOnceAndWhole)
{
    inOwnProcess([] {
        const Store store;
        const std::string kept = store::wisdomOf({16, 360, 1009});
        writeFile(store.path, kept);
        store.announce();
        EXPECT_TRUE(__FFTW_LoadWisdom());
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        EXPECT_EQ(sortedLines(wisdom()), sortedLines(kept));
        writeFile(store.path, store::wisdomOf({4096}));
        const std::string known = wisdom();
        EXPECT_FALSE(__FFTW_LoadWisdom());
        EXPECT_EQ(wisdom(), known);
    });
}

TEST(WisdomLoad, AFolderSetLateIsUsedByTheNextPlan)
{
    inOwnProcess([] {
        const Store store;
        const std::string kept = store::wisdomOf({360});
        writeFile(store.path, kept);
        ORVA_InitializeFFT();
        plan(16);
        EXPECT_FALSE(__FFTW_WisdomLoaded);
        store.announce();
        plan(16);
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        const std::string known = wisdom();
        plan(360); // teaches nothing new any more
        EXPECT_EQ(wisdom(), known);
        ORVA_FinalizeFFT();
        EXPECT_EQ(readFile(store.path), known);
    });
}

TEST(WisdomLoad, TheFolderMayComeFromTheEnvironment)
{
    inOwnProcess([] {
        const Store store;
        support::setVariable("KT_DATA_PATH", store.folder.path.string());
        writeFile(store.path, store::wisdomOf({16}));
        EXPECT_TRUE(__FFTW_LoadWisdom());
    });
}

TEST(WisdomLoad, WaitsForTheSettingToo)
{
    inOwnProcess([] {
        const Store store;
        const std::string kept = store::wisdomOf({360});
        writeFile(store.path, kept);
        store.announce();
        KTSETTINGS_SetEx(nullptr, "orva.fftw.use_wisdom=%d", 0);
        ORVA_InitializeFFT();
        plan(16);
        EXPECT_FALSE(__FFTW_WisdomLoaded);
        KTSETTINGS_SetEx(nullptr, "orva.fftw.use_wisdom=%d", 1);
        plan(16);
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        ORVA_FinalizeFFT();
    });
}

// Refused stores count as loaded all the same, leave FFTW's wisdom as it was and are passed over without a
// word.
TEST(WisdomLoad, ACorruptStoreIsPassedOverInSilence)
{
    const std::string good = store::wisdomOf({16});
    const std::pair<const char *, std::string> cases[] = {
        {"empty", ""},
        {"a line feed", "\n"},
        {"other text", "no wisdom here\n"},
        {"cut in a line", good.substr(0, good.size() / 2)},
        {"cut after the first line", good.substr(0, good.find('\n') + 1)},
        {"a null byte first", std::string(1, '\0') + good},
        {"a null byte inside", good.substr(0, 100) + std::string(1, '\0') + good.substr(101)},
        {"null bytes alone", std::string(good.size(), '\0')},
        {"flags that FFTW would abort on", "(fftw-3.3.10 fftwf_wisdom" +
                                               good.substr(25, good.find('\n') - 24) +
                                               "  (fftwf_rdft_nop_register 0 #xfffffff #xfffffff #x0 "
                                               "#x00000000 #x00000000 #x00000000 #x00000000)\n)\n"},
    };
    for (const auto &[name, text] : cases) {
        SCOPED_TRACE(name);
        inOwnProcess([&] {
            const support::Log log;
            const Store store;
            writeFile(store.path, text);
            store.announce();
            store::learn(100);
            const std::string known = wisdom();
            EXPECT_TRUE(__FFTW_LoadWisdom());
            EXPECT_TRUE(__FFTW_WisdomLoaded);
            EXPECT_EQ(wisdom(), known);
            ORVA_InitializeFFT();
            ORVA_FinalizeFFT();
            EXPECT_EQ(readFile(store.path), known);
            EXPECT_TRUE(log.messages.empty());
        });
    }
}

TEST(WisdomLoad, WhatStandsAfterTheWisdomIsNotRead)
{
    const std::string good = store::wisdomOf({16});
    for (const std::string &appended : {std::string("x"), std::string(1, '\0'), std::string("\n\n"), good}) {
        inOwnProcess([&] {
            const Store store;
            writeFile(store.path, good + appended);
            store.announce();
            EXPECT_TRUE(__FFTW_LoadWisdom());
            EXPECT_EQ(sortedLines(wisdom()), sortedLines(good));
        });
    }
}

TEST(WisdomLoad, AFolderInTheStoresPlaceIsNoStore)
{
    inOwnProcess([] {
        const Store store;
        std::filesystem::create_directory(store.path);
        store.announce();
        EXPECT_FALSE(__FFTW_LoadWisdom());
        EXPECT_TRUE(__FFTW_WisdomLoaded);
        EXPECT_FALSE(__FFTW_SaveWisdom());
        EXPECT_TRUE(std::filesystem::is_directory(store.path));
        EXPECT_TRUE(store.isTidy());
    });
}

TEST(WisdomLoad, AStoreOfManyMegabytesIsTaken)
{
    inOwnProcess([] {
        const std::string genuine = store::wisdomOf({1024});
        const size_t firstEntry = genuine.find('\n') + 1;
        support::Random random;
        std::string large = genuine.substr(0, firstEntry);
        while (large.size() < 6'000'000) {
            char sums[64];
            std::snprintf(sums, sizeof sums, " #x%08x #x%08x #x%08x #x%08x)\n",
                          static_cast<unsigned>(random.integer(0, UINT32_MAX)),
                          static_cast<unsigned>(random.integer(0, UINT32_MAX)),
                          static_cast<unsigned>(random.integer(0, UINT32_MAX)),
                          static_cast<unsigned>(random.integer(0, UINT32_MAX)));
            large += std::string("  (fftwf_rdft_nop_register 0 #x30bff #x31bff #x0") + sums;
        }
        large += genuine.substr(firstEntry);

        const Store store;
        writeFile(store.path, large);
        store.announce();
        ORVA_InitializeFFT();
        EXPECT_EQ(sortedLines(wisdom()), sortedLines(large));
        plan(1024);
        ORVA_FinalizeFFT();
        EXPECT_EQ(sortedLines(readFile(store.path)), sortedLines(large));
    });
}
