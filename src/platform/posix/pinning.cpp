#include "platform/pinning.h"

#include <dlfcn.h>

namespace orva
{

namespace
{

// FFTW calls into this library from then on, so it stays as well. It is looked for and not linked: it comes with FFTW, and
// without it all works that keeps to one copy of us.
void shareLock()
{
    void *threads = dlopen("libfftw3f_threads.so.3", RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
    if (threads == nullptr)
        return;
    const auto share = reinterpret_cast<void (*)()>(dlsym(threads, "fftwf_make_planner_thread_safe"));
    if (share != nullptr)
        share();
    dlclose(threads);
}

} // namespace

void pinFFTW()
{
    // The name under which FFTW is loaded. Linked statically it has none, and there is nothing to pin or to share.
    void *fftw = dlopen("libfftw3f.so.3", RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
    if (fftw == nullptr)
        return;
    dlclose(fftw); // it stays loaded all the same
    shareLock();
}

} // namespace orva
