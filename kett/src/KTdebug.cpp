#include <kett/KTdebug.h>

#include "KTformat.h"
#include "KTlock.h"
#include "platform/cancellation.h"
#include "platform/standard_error.h"

#include <cstdarg>
#include <cstdio>

namespace kett
{

namespace
{

// Both under the lock of Data::log, which is held during the sink's call as well: it serialises the calls,
// and a sink that has been replaced is not running any more. They change under that of Data::sink as
// well: a fork waits for the second lock, though not for the first, and so leaves its child a sink with its own context.
constinit KTDEBUG_SINK currentSink = nullptr;
constinit void *currentContext = nullptr;

void report(int32_t level, int32_t code, const char *format, va_list arguments)
{
    if (format == nullptr)
        return;
    const Uncancelled whole;
    const FormattedText message(std::vsnprintf, format, arguments);
    const Hold hold(Data::log);
    if (currentSink != nullptr)
        currentSink(currentContext, level, code, message.text);
    else
        writeToStandardError(message.text, message.length);
}

} // namespace

} // namespace kett

using namespace kett;

void KTDEBUG_SetSink(KTDEBUG_SINK sink, void *context)
{
    const Hold log(Data::log);
    const Hold pair(Data::sink);
    currentSink = sink;
    currentContext = context;
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
