#include "support/interposer_internal.h"

#include <cerrno>
#include <csignal>

namespace support
{

namespace interposer
{

constinit thread_local State state;

void count(uint64_t Counts::*kind)
{
    if (state.counting && !state.silenced)
        ++(state.counts.*kind);
}

namespace
{

bool isPlannedFailure(Failure kind)
{
    if (state.planned != kind || state.silenced || state.callsToFailure == 0 || --state.callsToFailure > 0)
        return false;
    state.failed = true;
    errno = state.error;
    return true;
}

void plan(Failure kind, uint64_t n, int error)
{
    state.planned = kind;
    state.callsToFailure = n;
    state.error = error;
    state.failed = false;
}

} // namespace

bool allocationFails()
{
    count(&Counts::heap);
    return isPlannedFailure(Failure::allocation);
}

bool fileCallFails()
{
    count(&Counts::file);
    if (isPlannedFailure(Failure::kill))
        raise(SIGKILL);
    return isPlannedFailure(Failure::fileCall);
}

} // namespace interposer

void begin()
{
    interposer::state.counts = {};
    interposer::state.counting = true;
}

Counts end()
{
    interposer::state.counting = false;
    return interposer::state.counts;
}

void failAllocation(uint64_t n)
{
    interposer::plan(interposer::Failure::allocation, n, ENOMEM);
}

void limitHeap(uint64_t bytes)
{
    interposer::state.heapLeft = bytes;
    interposer::state.isLimited = true;
}

void endLimit()
{
    interposer::state.isLimited = false;
}

void failFileCall(uint64_t n, int error)
{
    interposer::plan(interposer::Failure::fileCall, n, error);
}

void killAtFileCall(uint64_t n)
{
    interposer::plan(interposer::Failure::kill, n, 0);
}

bool endFailure()
{
    interposer::state.planned = interposer::Failure::none;
    return interposer::state.failed;
}

} // namespace support
