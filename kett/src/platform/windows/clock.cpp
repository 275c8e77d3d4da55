#include "platform/clock.h"

#include <windows.h>

namespace kett
{

void sleepFor(int32_t milliseconds)
{
    // Sleep() counts ticks of the scheduler, the one that runs included, and so ends up to one tick early.
    LARGE_INTEGER frequency; // per second
    LARGE_INTEGER start;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    const LONGLONG end = start.QuadPart + frequency.QuadPart * milliseconds / 1000;
    LARGE_INTEGER now = start;
    while (now.QuadPart < end) {
        const LONGLONG left = (end - now.QuadPart) * 1000 / frequency.QuadPart + 1;
        Sleep(static_cast<DWORD>(left));
        QueryPerformanceCounter(&now);
    }
}

} // namespace kett
