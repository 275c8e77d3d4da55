// What the life cycle needs of libkett beyond the FFT engine, and what transforms would. All of it fails, which nobody
// looks at.
#include "fft/ORVAfft_recorder.h"

#include <kett/KTcore.h>
#include <kett/KTdebug.h>
#include <kett/KTsettings.h>
#include <kett/KTvector.h>
#include <kett/KTversion.h>

#include <cstdarg>

using recorder::note;

int32_t KTCORE_Initialize()
{
    note("libkett up");
    return 0;
}

int32_t KTCORE_Finalize()
{
    note("libkett down");
    return 0;
}

bool KTVERSION_Register(const char *name, int32_t major, int32_t minor, int32_t release, int32_t build)
{
    std::string call = "register ";
    call += name;
    call += ' ' + std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(release) + '.' +
            std::to_string(build);
    note(call);
    return false;
}

bool KTSETTINGS_SetDefaultEx(KT_SETTINGS *settings, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int value = va_arg(arguments, int);
    va_end(arguments);
    note((settings == nullptr ? "default " : "WRONG store ") + std::string(format) + ", " +
         std::to_string(value));
    return false;
}

void KTDEBUG_TerminalError(int32_t, const char *format, ...)
{
    note(std::string("WRONG terminal error ") + format);
}

void FVectorMulScalar(float *, int32_t, float)
{
    note("WRONG multiplication");
}
