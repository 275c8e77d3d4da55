// The log of libkett. What a message costs inside is the log's own affair: one call counts as one log call
// and nothing else.
#include "support/interposer_internal.h"

#include <kett/KTdebug.h>

#include <cstdarg>
#include <cstdio>

using namespace support::interposer;

namespace
{

template <auto *ours> void logCall(const char *name, int32_t code, const char *format, va_list arguments)
{
    count(&support::Counts::log);
    const bool before = state.silenced;
    state.silenced = true;
    char *text = nullptr;
    if (vasprintf(&text, format, arguments) >= 0) {
        next<ours>(name)(code, "%s", text);
        free(text);
    }
    state.silenced = before;
}

} // namespace

extern "C" {

void KTDEBUG_Log(int32_t code, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    logCall<KTDEBUG_Log>("KTDEBUG_Log", code, format, arguments);
    va_end(arguments);
}

void KTDEBUG_Warning(int32_t code, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    logCall<KTDEBUG_Warning>("KTDEBUG_Warning", code, format, arguments);
    va_end(arguments);
}

void KTDEBUG_Error(int32_t code, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    logCall<KTDEBUG_Error>("KTDEBUG_Error", code, format, arguments);
    va_end(arguments);
}

void KTDEBUG_TerminalError(int32_t code, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    logCall<KTDEBUG_TerminalError>("KTDEBUG_TerminalError", code, format, arguments);
    va_end(arguments);
}

} // extern "C"
