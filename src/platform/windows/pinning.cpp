#include "platform/pinning.h"

#include <windows.h>

namespace orva
{

void pinFFTW()
{
    // By its name, since the address of one of its functions would be that of a stub of our own. Linked statically it has
    // none, and there is nothing to pin.
    HMODULE fftw = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN, L"libfftw3f-3.dll", &fftw);
}

} // namespace orva
