// Loading counts one use, and fails for no reason that stands in the files of the library.
#include "host.h"

#include <fstream>
#include <thread>

using namespace host;

TEST(Load, CountsOneUse)
{
    const DataFolder folder;
    Loaded library;
    library.call<void>("ORVA_Initialize");
    library.call<void>("ORVA_Finalize");
    EXPECT_FALSE(folder.hasStore()) << "down before the use of the load was taken away";
    library.call<void>("ORVA_Finalize");
    EXPECT_TRUE(folder.hasStore());
}

TEST(Load, RegistersTheVersionAndTheDefault)
{
    const Loaded library;
    std::array<int32_t, 4> version = {};
    EXPECT_TRUE(
        library.call<bool>("KTVERSION_Find", "liborva", &version[0], &version[1], &version[2], &version[3]));
    EXPECT_EQ(version, (std::array<int32_t, 4>{3, 7, 18, 0}));
    EXPECT_FALSE(library.call<bool>("KTSETTINGS_GetBoolEx", nullptr, "orva.fftw.prepare_plans=[1]"));
}

TEST(Load, ASecondHandleCountsNoSecondUse)
{
    const DataFolder folder;
    Loaded first;
    {
        const Loaded second;
    }
    EXPECT_TRUE(isMapped("liborva.so"));
    first.call<void>("ORVA_Finalize");
    EXPECT_TRUE(folder.hasStore());
}

TEST(Load, ThreadsThatComeAndGoLeaveTheCount)
{
    const DataFolder folder;
    const Loaded library;
    for (int i = 0; i < 5; ++i)
        std::thread([] {}).join();
    EXPECT_FALSE(folder.hasStore());
    library.call<void>("ORVA_Finalize");
    EXPECT_TRUE(folder.hasStore()) << "a thread has added a use";
}

TEST(Load, SucceedsWhateverStandsInTheFolder)
{
    const DataFolder folder;
    for (const char *store : {"", "no wisdom", "(fftw-3.3.10 fftwf_wisdom #x0"}) {
        std::ofstream(folder.store()) << store;
        EXPECT_NO_THROW(useOnce()) << store;
    }
    std::filesystem::remove(folder.store());
    std::filesystem::create_directory(folder.store());
    EXPECT_NO_THROW(useOnce());
    support::setVariable("KT_DATA_PATH", "/no/such/folder");
    EXPECT_NO_THROW(useOnce());
    support::setVariable("KT_DATA_PATH", std::string(5000, 'x'));
    EXPECT_NO_THROW(useOnce());
}
