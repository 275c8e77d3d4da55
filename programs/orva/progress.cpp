#include "progress.h"

#include <chrono>
#include <cstdio>

#include <unistd.h>

namespace orva
{
namespace
{

using Clock = std::chrono::steady_clock;

struct Line {
    bool started = false;
    bool terminal = false;
    bool shown = false;    // there is a line to take away
    Clock::time_point due; // when the line may be written next
};

Line line;

} // namespace

void showProgress(int64_t done, int64_t total)
{
    if (!line.started) {
        line.started = true;
        line.terminal = isatty(STDERR_FILENO) != 0;
        line.due = Clock::now() + std::chrono::milliseconds(333);
    }
    if (!line.terminal || total < 0)
        return;
    if (done >= total) {
        clearProgress();
        return;
    }
    const auto now = Clock::now();
    if (now < line.due)
        return;
    line.due = now + std::chrono::milliseconds(100);
    line.shown = true;
    std::fprintf(stderr, "\r%3.0f %%", 100.0 * static_cast<double>(done) / static_cast<double>(total));
}

void clearProgress()
{
    if (!line.shown)
        return;
    line.shown = false;
    std::fputs("\r\033[K", stderr); // back to the first column, and erase to the end of the line
}

} // namespace orva
