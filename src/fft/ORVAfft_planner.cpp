// Who is at FFTW's planner, and what becomes of it where they are gone.
//
// A child of fork has the memory of its parent, but of the threads only the one that forked. If another was at the
// planner, its lock stays held in the child for ever, and the planner stays in the middle of a change. The child then
// does without it: whatever would plan is refused, and nothing waits.
//
// A fork could instead take the lock first, which would give every child a whole planner. But each fork of the host,
// also one that only starts a program, would wait for as long as a plan or the writing of the store takes. It would
// wait for ever in a signal handler that has interrupted the planner, and where the host's own step before a fork takes
// a lock that the host also holds while it creates a processor.
#include "fft/ORVAfft_internal.h"

#include <cstdlib>

namespace orva
{

KT_MUTEX *__FFTW_PlanLock = nullptr;

namespace
{

// The threads that hold the lock or are on their way to it or from it, so never zero while it is held.
std::atomic<int32_t> threadsAtPlanner = 0;

// Of 1400 lengths up to 300000, primes among them, and three kinds of plan, none took more than 350 KiB besides 32 bytes a
// sample, the planner itself included, which its first use makes. Its table of wisdom grows with use.
constexpr size_t plannerBytes = size_t{1} << 20;
constexpr size_t planBytesPerSample = 32;

// A line of 70 characters takes an entry of 24 bytes in a table that may be a third full.
constexpr size_t wisdomBytesPerCharacter = 2;

bool heapHolds(size_t bytes)
{
    void *volatile block = std::malloc(bytes); // volatile, or the compiler leaves both calls out
    const bool isHad = block != nullptr;
    std::free(block);
    return isHad;
}

bool isPlannerLost = false; // set before a process has a second thread, and never cleared

} // namespace

bool enterPlanner()
{
    if (isPlannerLost)
        return false;
    threadsAtPlanner.fetch_add(1);
    MutexLock(__FFTW_PlanLock);
    return true;
}

void leavePlanner()
{
    MutexUnlock(__FFTW_PlanLock);
    threadsAtPlanner.fetch_sub(1);
}

bool heapHoldsPlan(int32_t length)
{
    return heapHolds(plannerBytes + static_cast<size_t>(length) * planBytesPerSample);
}

bool heapHoldsWisdom(int32_t size)
{
    return heapHolds(plannerBytes + static_cast<size_t>(size) * wisdomBytesPerCharacter);
}

void leaveOutAbsentThreads()
{
    if (threadsAtPlanner.load() != 0)
        isPlannerLost = true;
    __FFTW_InitThread = nullptr; // its record belongs to libkett
}

} // namespace orva
