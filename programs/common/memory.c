#include "memory.h"

#include "messages.h"

#include <stdlib.h>

void *allocate(size_t count, size_t size)
{
    void *block = calloc(count, size);
    if (block == NULL && count > 0) {
        refuse("out of memory");
        exit(EXIT_FAILURE);
    }
    return block;
}
