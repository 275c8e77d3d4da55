#include "fft/ORVAfft_internal.h"

#include <unistd.h>

int64_t currentProcess()
{
    return getpid();
}
