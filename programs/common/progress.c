#define _POSIX_C_SOURCE 200809L
#include "progress.h"

#include <stdbool.h>
#include <stdio.h>
#include <time.h>

#include <unistd.h>

static const double quietSeconds = 1.0 / 3.0;
static const double intervalSeconds = 0.1;

static struct {
    bool started;
    bool terminal;
    bool shown; /* there is a line to take away */
    double due; /* when the line may be written next */
} state;

static double seconds(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double) now.tv_sec + 1e-9 * (double) now.tv_nsec;
}

void progressShow(int64_t done, int64_t total)
{
    if (!state.started) {
        state.started = true;
        state.terminal = isatty(STDERR_FILENO) != 0;
        state.due = seconds() + quietSeconds;
    }
    if (!state.terminal)
        return;
    if (done >= total) {
        progressClear();
        return;
    }
    const double now = seconds();
    if (now < state.due)
        return;
    state.due = now + intervalSeconds;
    state.shown = true;
    fprintf(stderr, "\r%3.0f %%", 100.0 * (double) done / (double) total);
}

void progressClear(void)
{
    if (state.shown)
        fputs("\r\033[K", stderr); /* back to the first column, and erase to the end of the line */
    state.shown = false;
}
