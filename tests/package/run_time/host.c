/* A host that loads the library at run time, if it is there, and looks up every name. */
#include <stdio.h>
#include <stdlib.h>

#include <dlfcn.h>

static const char *const names[] = {
#include "names.h"
};

int main(void)
{
    void *library = dlopen("liborva.so.3", RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return EXIT_FAILURE;
    }
    const size_t count = sizeof names / sizeof *names;
    size_t found = 0;
    for (size_t i = 0; i < count; ++i) {
        if (dlsym(library, names[i]) != NULL)
            ++found;
        else
            fprintf(stderr, "%s\n", dlerror());
    }
    printf("%zu names found\n", found);
    return dlclose(library) == 0 && found == count ? EXIT_SUCCESS : EXIT_FAILURE;
}
