// A child of fork that tests of the engine make.
#pragma once

#include "fft/ORVAfft_internal.h"
#include "support/process.h"

#include <functional>

#include <unistd.h>

// A child of the library's parts, which lack the module entry. One that hangs is ended by a signal.
inline void inChild(const std::function<void()> &body)
{
    support::inOwnProcess([&] {
        alarm(60);
        orva::leaveOutAbsentThreads();
        body();
    });
}
