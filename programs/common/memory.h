/* Memory for programs that have nothing sensible left to do without it. */
#ifndef PROGRAMS_MEMORY_H
#define PROGRAMS_MEMORY_H

#include <stddef.h>

/* count zeroed elements, to be freed by free(). Where memory is out, the program ends: one line on stderr,
 * status 1. */
void *allocate(size_t count, size_t size);

#endif
