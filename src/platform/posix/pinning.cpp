#include "platform/pinning.h"

#include <dlfcn.h>

namespace orva
{

void pinFFTW()
{
    // The name under which FFTW is loaded. Linked statically it has none, and there is nothing to pin.
    void *fftw = dlopen("libfftw3f.so.3", RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
    if (fftw != nullptr)
        dlclose(fftw); // it stays loaded all the same
}

} // namespace orva
