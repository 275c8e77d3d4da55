// Unloading takes the use of the load away and leaves nothing of ours behind. FFTW and its planner stay.
#include "host.h"

using namespace host;

TEST(Unload, TakesTheUseAwayAndWritesTheStore)
{
    const DataFolder folder;
    Loaded library;
    EXPECT_FALSE(folder.hasStore());
    library.unload();
    EXPECT_TRUE(folder.hasStore());
}

TEST(Unload, AfterOneFinalizeTooManyDoesNothingMore)
{
    const DataFolder folder;
    Loaded library;
    library.call<void>("ORVA_Finalize");
    EXPECT_TRUE(std::filesystem::remove(folder.store()));
    library.unload();
    EXPECT_FALSE(folder.hasStore());
}

TEST(Unload, UnmapsBothLibraries)
{
    EXPECT_FALSE(isMapped("liborva.so"));
    Loaded library;
    EXPECT_TRUE(isMapped("liborva.so"));
    EXPECT_TRUE(isMapped("libkett.so"));
    library.unload();
    EXPECT_FALSE(isMapped("liborva.so"));
    EXPECT_FALSE(isMapped("libkett.so"));
    useOnce();
    EXPECT_FALSE(isMapped("liborva.so"));
    EXPECT_FALSE(isMapped("libkett.so"));
}
