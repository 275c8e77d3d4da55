#include "messages.h"

#include "progress.h"

#include <stdarg.h>
#include <stdio.h>

static void say(const char *format, va_list arguments)
{
    char line[8192]; /* a path may take 4096 bytes */
    vsnprintf(line, sizeof line, format, arguments);
    for (char *c = line; *c != '\0'; ++c)
        if ((unsigned char) *c < 0x20 || *c == 0x7f)
            *c = '?';
    progressClear();
    fprintf(stderr, "%s\n", line);
}

bool refuse(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    say(format, arguments);
    va_end(arguments);
    return false;
}

void note(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    say(format, arguments);
    va_end(arguments);
}
