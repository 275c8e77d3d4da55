#include "fft/ORVAfft_internal.h"

#include <dlfcn.h>

void pinFFTW()
{
    // The name under which FFTW is loaded. Linked statically it has none, and there is nothing to pin.
    void *fftw = dlopen("libfftw3f.so.3", RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
    if (fftw != nullptr)
        dlclose(fftw); // it stays loaded all the same
}
