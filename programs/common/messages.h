/* What the programs say on stderr: one line a message, whatever control characters its text holds (a file's
   name may hold a line feed). */
#ifndef PROGRAMS_MESSAGES_H
#define PROGRAMS_MESSAGES_H

#include <stdbool.h>

/* Says why a program gives up, and gives false, so that a check reads: return refuse("%s: no such file",
 * path); */
bool refuse(const char *format, ...) __attribute__((format(printf, 1, 2)));

/* Says what a program made of an input that it goes on with. */
void note(const char *format, ...) __attribute__((format(printf, 1, 2)));

#endif
