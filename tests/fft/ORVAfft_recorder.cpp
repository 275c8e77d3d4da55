#include "fft/ORVAfft_recorder.h"

#include <kett/KTdebug.h>
#include <kett/KTenv.h>
#include <kett/KTio.h>
#include <kett/KTmutex.h>
#include <kett/KTsettings.h>
#include <kett/KTthread.h>
#include <kett/KTutils.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

namespace recorder
{

Answers answers;

namespace
{

Calls calls;
bool isLocked = false;
bool isWriting = false;
char things[100]; // handles point into it
size_t thingCount = 0;

template <class Thing> Thing *newThing()
{
    return reinterpret_cast<Thing *>(&things[thingCount++]);
}

} // namespace

void note(const std::string &call)
{
    calls.push_back(call);
}

Calls takeCalls()
{
    return std::exchange(calls, {});
}

} // namespace recorder

using namespace recorder;

KT_MUTEX *MutexInit(void)
{
    note("make lock");
    return newThing<KT_MUTEX>();
}

void MutexLock(KT_MUTEX *)
{
    note(isLocked ? "WRONG lock" : "lock");
    isLocked = true;
}

void MutexUnlock(KT_MUTEX *)
{
    note(isLocked ? "unlock" : "WRONG unlock");
    isLocked = false;
}

void MutexDestroy(KT_MUTEX *)
{
    note(isLocked ? "WRONG destroy lock" : "destroy lock");
}

const char *KTENV_GetEnvValue(const char *name)
{
    note(std::string("ask ") + name);
    return answers.folder();
}

bool KTSETTINGS_GetBoolEx(KT_SETTINGS *settings, const char *keyWithDefault)
{
    note((settings == nullptr ? "setting " : "WRONG store ") + std::string(keyWithDefault));
    return std::strstr(keyWithDefault, "use_wisdom") != nullptr ? answers.useWisdom : answers.preparePlans;
}

int64_t KTSETTINGS_GetIntEx(KT_SETTINGS *settings, const char *keyWithDefault)
{
    note((settings == nullptr ? "setting " : "WRONG store ") + std::string(keyWithDefault));
    return answers.maxPlanLength();
}

bool KTIO_FileExists(const char *path)
{
    note(std::string("exists ") + path);
    return answers.fileExists;
}

KT_FILE *KTIO_Open(const char *path, const char *mode)
{
    note(std::string("open ") + mode + ' ' + path);
    isWriting = mode[0] == 'w';
    return (isWriting ? answers.opensToWrite : answers.opensToRead) ? newThing<KT_FILE>() : nullptr;
}

int64_t KTIO_FileSize(KT_FILE *file)
{
    note("size");
    if (file == nullptr)
        return 0;
    return answers.fileSize ? answers.fileSize() : static_cast<int64_t>(answers.content.size());
}

uint64_t KTIO_ReadData(KT_FILE *file, void *buffer, uint64_t size)
{
    note("read " + std::to_string(size));
    if (file == nullptr)
        return 0;
    const uint64_t count = std::min<uint64_t>(size, answers.content.size());
    std::memcpy(buffer, answers.content.data(), count);
    return count;
}

uint64_t KTIO_WriteData(KT_FILE *, const void *buffer, uint64_t size)
{
    note("write " + std::to_string(size));
    answers.content.assign(static_cast<const char *>(buffer), size);
    return size;
}

bool KTIO_CloseFile(KT_FILE *file)
{
    note(file == nullptr ? "close nothing" : "close");
    return file != nullptr;
}

KT_THREAD *KTTHREAD_AddThread(KTTHREAD_FUNCTION, void *argument, int32_t flags)
{
    note(argument == nullptr && flags == 0 ? "start thread" : "WRONG thread");
    return answers.threadStarts ? newThing<KT_THREAD>() : nullptr;
}

int32_t KTTHREAD_JoinThreadEx(KT_THREAD *, int32_t flags)
{
    note(flags == 0 && !isLocked ? "join" : "WRONG join");
    answers.duringJoin();
    return 1;
}

void KTUTILS_sleep_msec(int32_t milliseconds)
{
    note("sleep " + std::to_string(milliseconds));
}

void KTDEBUG_Warning(int32_t code, const char *format, ...)
{
    char text[200];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    note("warning " + std::to_string(code) + " " + text);
}
