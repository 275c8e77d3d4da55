/* Loaded in front of a test program by script/locales: the program begins in the locale of its environment, as a host does
 * that calls setlocale. */
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>

static void take(void) __attribute__((constructor));

static void take(void)
{
    if (setlocale(LC_ALL, "") == NULL) {
        fputs("there is no such locale\n", stderr);
        exit(1);
    }
}
