#include "platform/pinning.h"

#include <cstring>

#include <windows.h>

namespace orva
{

void pinFFTW()
{
    // By its name, since the address of one of its functions would be that of a stub of our own. Linked statically it has
    // none, and there is nothing to pin.
    HMODULE fftw = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN, L"libfftw3f-3.dll", &fftw))
        return;
    // There if FFTW was built with its threads in the same DLL, as it is for Windows as a rule.
    const FARPROC address = GetProcAddress(fftw, "fftwf_make_planner_thread_safe");
    void (*share)() = nullptr;
    std::memcpy(&share, &address, sizeof share);
    if (share != nullptr)
        share();
}

} // namespace orva
