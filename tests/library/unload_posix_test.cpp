// Unloading and the end of the process wait for a preparation, and leave the host as it was.
#include "host.h"
#include "support/threads.h"

#include <algorithm>
#include <cfenv>
#include <clocale>
#include <csignal>
#include <set>
#include <sstream>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>
#ifdef __x86_64__
#include <xmmintrin.h>
#endif

using namespace host;
using namespace support;

namespace
{

std::set<std::string> entriesOf(const char *folder)
{
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename());
    return names;
}

// Everything that a host would notice if a library changed it.
struct Host {
    std::string text; // comparable and printable

    Host()
    {
        std::ostringstream out;
        out << "locale " << std::setlocale(LC_ALL, nullptr) << ", decimal point "
            << std::localeconv()->decimal_point << "\nrounding " << std::fegetround();
#ifdef __x86_64__
        uint16_t x87 = 0;
        __asm__("fnstcw %0" : "=m"(x87));
        constexpr unsigned flags = _MM_EXCEPT_MASK; // rise in any arithmetic
        out << ", sse " << (_mm_getcsr() & ~flags) << ", x87 " << x87;
#endif
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        for (int number = 1; number < NSIG; ++number) {
            struct sigaction action = {};
            if (sigaction(number, nullptr, &action) == 0)
                out << "\nsignal " << number << (sigismember(&blocked, number) == 1 ? " blocked, " : ", ")
                    << reinterpret_cast<void *>(action.sa_handler) << ", flags " << action.sa_flags;
        }
        const mode_t mask = umask(0);
        umask(mask);
        out << "\numask " << mask << ", folder " << std::filesystem::current_path() << "\nthreads";
        for (const auto &name : entriesOf("/proc/self/task"))
            out << ' ' << name;
        out << "\nfiles";
        for (const auto &name : entriesOf("/proc/self/fd"))
            out << ' ' << name;
        out << "\nenvironment";
        for (char **variable = environ; *variable != nullptr; ++variable)
            out << '\n' << *variable;
        text = out.str();
    }
};

} // namespace

// In a child that ends without a look for leaks: such a host leaves the lock of the engine behind.
TEST(Unload, AfterOneInitializeTooManyLeavesTheLibraryUpButNoThread)
{
    const DataFolder folder;
    const auto unloadAndEnd = [&] {
        Loaded library;
        library.call<void>("ORVA_Initialize");
        library.unload();
        EXPECT_FALSE(folder.hasStore());

        Loaded again;
        again.call<void>("ORVA_Initialize");
        startPreparation(again);
        again.unload();
        EXPECT_FALSE(isMapped("liborva.so"));
        // A thread that ran on would run into nothing.
        std::this_thread::sleep_for(2 * untilThePreparationIsAtWork);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(unloadAndEnd(), testing::ExitedWithCode(0), "^$");
}

TEST(Unload, LeavesTheHostAsItWas)
{
    threadsAfterTheFirst();
    const Host before;
    {
        const Loaded library;
        EXPECT_EQ(Host().text, before.text);
    }
    EXPECT_EQ(Host().text, before.text);
    useOnce();
    EXPECT_EQ(Host().text, before.text);
}

TEST(Unload, LeavesAHostOfUnusualHabitsAsItWas)
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGTERM, [](int) {});
    sigset_t some;
    sigemptyset(&some);
    sigaddset(&some, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &some, nullptr);
    std::fesetround(FE_UPWARD);
    std::setlocale(LC_ALL, "C.UTF-8");
    threadsAfterTheFirst();

    const DataFolder folder;
    const Host before;
    {
        const Loaded library;
        startPreparation(library);
        std::this_thread::sleep_for(untilThePreparationIsAtWork);
    }
    EXPECT_EQ(Host().text, before.text);
    std::fesetround(FE_TONEAREST);
}

TEST(Unload, WaitsForThePreparationAndUnmapsAllTheSame)
{
    const DataFolder folder;
    const auto threads = threadsAfterTheFirst();
    for (int round = 0; round < 3; ++round) {
        std::filesystem::remove(folder.store());
        Loaded library;
        startPreparation(library);
        EXPECT_EQ(threadsOfTheProcess(), threads + 1);
        std::this_thread::sleep_for(untilThePreparationIsAtWork);
        library.unload();
        EXPECT_FALSE(isMapped("liborva.so"));
        EXPECT_FALSE(isMapped("libkett.so"));
        EXPECT_TRUE(threadsComeDownTo(threads));
        const std::string wisdom = support::readFile(folder.store());
        EXPECT_EQ(wisdom.substr(0, 6), "(fftw-");
        EXPECT_GT(std::count(wisdom.begin(), wisdom.end(), '\n'), 2) << "nothing was prepared";
    }
}

TEST(Unload, RightAfterTheStartOfAPreparationIsSafe)
{
    const DataFolder folder;
    Loaded library;
    startPreparation(library);
    library.unload();
    EXPECT_FALSE(isMapped("liborva.so"));
    EXPECT_TRUE(folder.hasStore());
}

TEST(Unload, WithAPreparationThatStillWaitsForTheFolderIsSafe)
{
    Loaded library;
    startPreparation(library);
    library.unload();
    EXPECT_FALSE(isMapped("liborva.so"));
}

TEST(ProcessEnd, WithAPreparationAtWorkWritesTheStore)
{
    const DataFolder folder;
    const auto endTheProcess = [] {
        auto *const library = new Loaded; // never unloaded by the host
        startPreparation(*library);
        std::this_thread::sleep_for(untilThePreparationIsAtWork);
        std::exit(0);
    };
    EXPECT_EXIT(endTheProcess(), testing::ExitedWithCode(0), "^$");
    EXPECT_TRUE(folder.hasStore());
}
