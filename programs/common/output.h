/* Files that appear whole or not at all: they are written beside their place and renamed when they are
 * complete. */
#ifndef PROGRAMS_OUTPUT_H
#define PROGRAMS_OUTPUT_H

#include <stdbool.h>

/* The name to write to until the file at path is complete; the caller frees it. Refuses, with null, a path
   that does not end in ending (".png"), and one at which something other than an ordinary file stands. */
char *outputBegin(const char *path, const char *ending);

/* Puts the file in its place if it is complete, throws it away otherwise, and frees its name. False if the
   file did not get there; what stood at the path before is then untouched. Null for part is a begin that
   refused. */
bool outputEnd(const char *path, char *part, bool complete);

#endif
