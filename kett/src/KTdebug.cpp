#include <kett/KTdebug.h>

#include "KTdebug_internal.h"
#include "KTformat.h"
#include "KTlock.h"

#include <cstdarg>

using kett::Data;
using kett::Hold;

// Both under the lock of Data::log, which is held during the sink's call as well: it serialises the calls,
// and a sink that has been replaced is not running any more.
static KTDEBUG_SINK currentSink = nullptr;
static void *currentContext = nullptr;

void KTDEBUG_SetSink(KTDEBUG_SINK sink, void *context)
{
    const Hold hold(Data::log);
    currentSink = sink;
    currentContext = context;
}

static void report(int32_t level, int32_t code, const char *format, va_list arguments)
{
    if (format == nullptr)
        return;
    const kett::FormattedText message(format, arguments);
    const Hold hold(Data::log);
    if (currentSink != nullptr)
        currentSink(currentContext, level, code, message.text);
    else
        kett::writeToStandardError(message.text, message.length);
}

void KTDEBUG_Log(int32_t code, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    report(KTDEBUG_LEVEL_LOG, code, format, arguments);
    va_end(arguments);
}

void KTDEBUG_Warning(int32_t code, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    report(KTDEBUG_LEVEL_WARNING, code, format, arguments);
    va_end(arguments);
}

void KTDEBUG_Error(int32_t code, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    report(KTDEBUG_LEVEL_ERROR, code, format, arguments);
    va_end(arguments);
}

void KTDEBUG_TerminalError(int32_t code, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    report(KTDEBUG_LEVEL_TERMINAL, code, format, arguments);
    va_end(arguments);
}
