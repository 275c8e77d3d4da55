#include "platform/process.h"

#include <windows.h>
#include <winternl.h>

// Of the system's own C runtimes it is known by this name; no header of MinGW-w64 declares it.
extern "C" NTSYSAPI BOOLEAN NTAPI RtlDllShutdownInProgress(void);

namespace kett
{

int64_t currentProcess()
{
    return static_cast<int64_t>(GetCurrentProcessId());
}

bool doesProcessEnd()
{
    return RtlDllShutdownInProgress() != FALSE;
}

} // namespace kett
