/* A line on the terminal that says how far a long run has come. */
#ifndef PROGRAMS_PROGRESS_H
#define PROGRAMS_PROGRESS_H

#include <stdint.h>

/* Shows done of total as a percentage. Writes nothing unless stderr is a terminal, nothing during the first
   third of a second, and ten times a second at most, so it may be called for every frame. */
void progressShow(int64_t done, int64_t total);

/* Takes the line away before that. */
void progressClear(void);

#endif
