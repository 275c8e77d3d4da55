/* A host that knows libkett only by dlopen. Called as
 *
 *   KTunload_host rounds LIBRARY
 *
 * it loads, uses and unloads the library again and again, and succeeds if that leaves nothing. Called as
 *
 *   KTunload_host exit LIBRARY
 *
 * it ends while a thread still uses the library.
 */
#define _GNU_SOURCE
#include <kett/kett.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <dirent.h>
#include <dlfcn.h>
#include <malloc.h>
#include <unistd.h>

static void *library;

static int fail(const char *what)
{
    fprintf(stderr, "%s\n", what);
    return 1;
}

#define USE(name) __typeof__(&name) p##name = (__typeof__(&name)) dlsym(library, #name)

static int entriesOf(const char *path)
{
    int count = 0;
    DIR *folder = opendir(path);
    while (folder != NULL && readdir(folder) != NULL)
        ++count;
    closedir(folder);
    return count;
}

static int isMapped(const char *name)
{
    char line[4096];
    int found = 0;
    FILE *maps = fopen("/proc/self/maps", "r");
    while (fgets(line, sizeof line, maps) != NULL)
        found = found || strstr(line, name) != NULL;
    fclose(maps);
    return found;
}

/* Stores the number of the thread. */
static int32_t tell(void *argument)
{
    __atomic_store_n((int *) argument, gettid(), __ATOMIC_RELEASE);
    return 0;
}

static void waitForTheEndOf(const int *number)
{
    char path[64];
    while (__atomic_load_n(number, __ATOMIC_ACQUIRE) == 0)
        usleep(100);
    snprintf(path, sizeof path, "/proc/self/task/%d", *number);
    while (access(path, F_OK) == 0)
        usleep(100);
}

static void ignore(void *context, int32_t level, int32_t code, const char *text)
{
    (void) context, (void) level, (void) code, (void) text;
}

/* Leaves the library with one of everything that a host may not have given back. */
static int use(void)
{
    USE(KTSETTINGS_GetIntEx);
    USE(KTSETTINGS_SetEx);
    USE(KTSETTINGS_SetDefaultEx);
    USE(KTENV_SetEnvValue);
    USE(KTENV_GetEnvValue);
    USE(KTVERSION_Register);
    USE(KTVERSION_Find);
    USE(KTDEBUG_SetSink);
    USE(KTDEBUG_Log);
    USE(KTTHREAD_AddThread);
    USE(KTTHREAD_JoinThreadEx);
    USE(KTMEM_CreateMemDescrEx);
    USE(KTMEM_NewEx);
    USE(KTMEM_DisplayMemDescr);
    USE(KTIO_Open);
    USE(KTIO_WriteData);
    USE(KTIO_CloseFile);
    USE(KTCORE_Initialize);

    if (pKTSETTINGS_GetIntEx(NULL, "key=[3]") != 3 || pKTENV_GetEnvValue("KETT_KEY") != NULL ||
        pKTVERSION_Find("host", NULL, NULL, NULL, NULL) || pKTCORE_Initialize() != 1)
        return fail("something has outlived the unloading");
    for (int i = 0; i < 10; ++i) {
        char key[16];
        snprintf(key, sizeof key, "KEY_%d", i);
        pKTSETTINGS_SetEx(NULL, "key=%d", i);
        pKTSETTINGS_SetEx(NULL, "%s=%d", key, i);
        pKTSETTINGS_SetDefaultEx(NULL, "%s=%d", key, i);
        pKTENV_SetEnvValue("KETT_KEY", key);
        pKTENV_SetEnvValue(key, "value");
        pKTVERSION_Register(key, 1, 2, 3, i);
    }
    pKTVERSION_Register("host", 1, 2, 3, 4);
    pKTDEBUG_SetSink(ignore, NULL);
    pKTDEBUG_Log(-1, "%5000d", 1);

    int first = 0, second = 0;
    pKTTHREAD_JoinThreadEx(pKTTHREAD_AddThread(tell, &first, 0), 0);
    pKTTHREAD_AddThread(tell, &second, 0); /* nobody joins it */
    waitForTheEndOf(&second);

    KT_MEM *shown = pKTMEM_CreateMemDescrEx("not freed", 0, 0);
    pKTMEM_NewEx(shown, 1000, 0);
    pKTMEM_DisplayMemDescr(shown);

    KT_FILE *file = pKTIO_Open("file", "w");
    pKTIO_WriteData(file, "text", 4);
    return pKTIO_CloseFile(file) ? 0 : fail("the file was not written");
}

/* Until the process ends. */
static int32_t useWithoutEnd(void *argument)
{
    USE(KTSETTINGS_GetIntEx);
    USE(KTSETTINGS_SetEx);
    USE(KTENV_SetEnvValue);
    USE(KTENV_GetEnvValue);
    USE(KTVERSION_Register);
    for (int i = 0; library != NULL; ++i) {
        pKTSETTINGS_SetEx(NULL, "key%d=%d", i % 20, i);
        pKTSETTINGS_GetIntEx(NULL, "key3=[3]");
        pKTENV_SetEnvValue("KEY", i % 2 == 0 ? "even" : "odd");
        pKTENV_GetEnvValue("KEY");
        pKTVERSION_Register("host", 1, 2, 3, i);
        tell(argument);
    }
    return 0;
}

/* What the process holds. */
struct Holdings {
    size_t heap; /* bytes */
    int descriptors, threads;
};

static struct Holdings holdings(void)
{
    const struct Holdings now = {mallinfo2().uordblks, entriesOf("/proc/self/fd"),
                                 entriesOf("/proc/self/task")};
    return now;
}

/* The first rounds bring in what the C library keeps for itself; the others must need no more than they did.
 */
static int rounds(const char *path)
{
    enum { first = 6, all = 20 };
    struct Holdings most = {0, 0, 0};
    for (int round = 0; round < all; ++round) {
        library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        if (library == NULL)
            return fail(dlerror());
        if (use() != 0)
            return 1;
        dlclose(library);
        if (dlopen(path, RTLD_NOW | RTLD_NOLOAD) != NULL || isMapped("libkett"))
            return fail("the library is still there");
        const struct Holdings now = holdings();
        if (round < first) {
            most.heap = now.heap > most.heap ? now.heap : most.heap;
            most.descriptors = now.descriptors;
            most.threads = now.threads;
        } else if (now.heap > most.heap || now.descriptors != most.descriptors ||
                   now.threads != most.threads) {
            fprintf(stderr, "round %d: %zu bytes, %d descriptors, %d threads; before %zu, %d, %d\n", round,
                    now.heap, now.descriptors, now.threads, most.heap, most.descriptors, most.threads);
            return 1;
        }
    }
    return 0;
}

static int endEarly(const char *path)
{
    static int isRunning = 0;
    library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == NULL)
        return fail(dlerror());
    USE(KTTHREAD_AddThread);
    pKTTHREAD_AddThread(useWithoutEnd, &isRunning, 0);
    while (!__atomic_load_n(&isRunning, __ATOMIC_ACQUIRE))
        usleep(100);
    return 0; /* the library's destructor runs while the thread does */
}

int main(int argc, char **argv)
{
    if (argc != 3)
        return fail("usage: KTunload_host rounds|exit LIBRARY");
    return strcmp(argv[1], "rounds") == 0 ? rounds(argv[2]) : endEarly(argv[2]);
}
