#define _POSIX_C_SOURCE 200809L
#include "output.h"

#include "memory.h"
#include "messages.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <sys/stat.h>
#include <unistd.h>

char *outputBegin(const char *path, const char *ending)
{
    const size_t length = strlen(path);
    const size_t tail = strlen(ending);
    if (length < tail || strcmp(path + length - tail, ending) != 0) {
        refuse("%s: the name of this file must end in %s", path, ending);
        return NULL;
    }
    struct stat present;
    if (stat(path, &present) == 0 && !S_ISREG(present.st_mode)) {
        refuse("%s: is not an ordinary file", path);
        return NULL;
    }
    const size_t room = length + 32;
    char *part = allocate(room, 1);
    snprintf(part, room, "%s.%ld.part", path, (long) getpid());
    FILE *file = fopen(part, "wb"); /* tells better than most libraries why it cannot be written */
    if (file == NULL) {
        refuse("%s: %s", path, strerror(errno));
        free(part);
        return NULL;
    }
    fclose(file);
    return part;
}

bool outputEnd(const char *path, char *part, bool complete)
{
    if (part == NULL)
        return false;
    if (complete && rename(part, path) != 0)
        complete = refuse("%s: %s", path, strerror(errno));
    if (!complete)
        remove(part);
    free(part);
    return complete;
}
