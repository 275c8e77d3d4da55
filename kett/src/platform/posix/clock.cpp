#include "platform/clock.h"

#include <cerrno>
#include <time.h>

namespace kett
{

void sleepFor(int32_t milliseconds)
{
    // Until a moment, not for a time, so that a signal neither shortens nor stretches the sleep.
    timespec end;
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += milliseconds / 1000;
    end.tv_nsec += milliseconds % 1000 * 1000000L;
    if (end.tv_nsec >= 1000000000L) {
        end.tv_nsec -= 1000000000L;
        ++end.tv_sec;
    }
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
    }
}

} // namespace kett
