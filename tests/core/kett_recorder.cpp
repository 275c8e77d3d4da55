// What the life cycle and the FFT engine need of libkett.
#include "kett_recorder.h"

#include <cstdarg>
#include <kett/kett.h>

using recorder::calls;

// Handles are looked at by nobody but their owner; these two are only told apart from null.
struct KT_MUTEX {
};
struct KT_THREAD {
};
struct KT_FILE {
};
static KT_MUTEX mutex;
static KT_THREAD thread;
static KT_FILE file;

static void record(const std::string &call)
{
    calls.push_back(call);
}

static std::string numbers(std::initializer_list<int32_t> values)
{
    std::string text;
    for (const int32_t value : values)
        (text += ' ') += std::to_string(value);
    return text;
}

int32_t KTCORE_Initialize()
{
    record("KTCORE_Initialize");
    return 0; // as a failure would be
}

int32_t KTCORE_Finalize()
{
    record("KTCORE_Finalize");
    return 0;
}

bool KTVERSION_Register(const char *name, int32_t major, int32_t minor, int32_t release, int32_t build)
{
    record(std::string("KTVERSION_Register ") + name + numbers({major, minor, release, build}));
    return false;
}

bool KTSETTINGS_SetDefaultEx(KT_SETTINGS *settings, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record(std::string("KTSETTINGS_SetDefaultEx ") + (settings == nullptr ? "null " : "store ") + format +
           numbers({va_arg(arguments, int)}));
    va_end(arguments);
    return false;
}

bool KTSETTINGS_GetBoolEx(KT_SETTINGS *, const char *keyWithDefault)
{
    record(std::string("KTSETTINGS_GetBoolEx ") + keyWithDefault);
    return true;
}

int64_t KTSETTINGS_GetIntEx(KT_SETTINGS *, const char *keyWithDefault)
{
    record(std::string("KTSETTINGS_GetIntEx ") + keyWithDefault);
    return 0;
}

const char *KTENV_GetEnvValue(const char *name)
{
    record(std::string("KTENV_GetEnvValue ") + name);
    return recorder::dataPath;
}

KT_MUTEX *MutexInit()
{
    record("MutexInit");
    return &mutex;
}

void MutexLock(KT_MUTEX *)
{
    record("MutexLock");
}

void MutexUnlock(KT_MUTEX *)
{
    record("MutexUnlock");
}

void MutexDestroy(KT_MUTEX *)
{
    record("MutexDestroy");
}

KT_THREAD *KTTHREAD_AddThread(KTTHREAD_FUNCTION, void *, int32_t)
{
    record("KTTHREAD_AddThread");
    return &thread;
}

int32_t KTTHREAD_JoinThreadEx(KT_THREAD *, int32_t)
{
    record("KTTHREAD_JoinThreadEx");
    return 1;
}

void KTUTILS_sleep_msec(int32_t milliseconds)
{
    record("KTUTILS_sleep_msec" + numbers({milliseconds}));
}

bool KTIO_FileExists(const char *path)
{
    record(std::string("KTIO_FileExists ") + path);
    return false;
}

KT_FILE *KTIO_Open(const char *path, const char *mode)
{
    record(std::string("KTIO_Open ") + path + " " + mode);
    return &file;
}

int64_t KTIO_FileSize(KT_FILE *)
{
    record("KTIO_FileSize");
    return 0;
}

uint64_t KTIO_ReadData(KT_FILE *, void *, uint64_t)
{
    record("KTIO_ReadData");
    return 0;
}

uint64_t KTIO_WriteData(KT_FILE *, const void *, uint64_t size)
{
    record("KTIO_WriteData");
    return size;
}

bool KTIO_CloseFile(KT_FILE *)
{
    record("KTIO_CloseFile");
    return true;
}

void KTDEBUG_Log(int32_t, const char *format, ...)
{
    record(std::string("KTDEBUG_Log ") + format);
}

void KTDEBUG_Warning(int32_t, const char *format, ...)
{
    record(std::string("KTDEBUG_Warning ") + format);
}

void KTDEBUG_Error(int32_t, const char *format, ...)
{
    record(std::string("KTDEBUG_Error ") + format);
}

void KTDEBUG_TerminalError(int32_t, const char *format, ...)
{
    record(std::string("KTDEBUG_TerminalError ") + format);
}

void FVectorMulScalar(float *, int32_t, float)
{
    record("FVectorMulScalar");
}
