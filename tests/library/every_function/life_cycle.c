#include "host.h"

#include <string.h>

void use_life_cycle(void)
{
    ORVA_Initialize();
    const char expected[] = "liborva version 3.7.18.0 (built in ";
    check(strncmp(ORVAVERSION_String(), expected, sizeof expected - 1) == 0, "version as text");
    int32_t major = 0, minor = 0, release = 0, build = -1;
    ORVAVERSION_Number(&major, &minor, &release, &build);
    check(major == 3 && minor == 7 && release == 18 && build == 0, "version as numbers");
    ORVA_Finalize();
    ORVA_FFT *fft = ORVA_FFTProcCreate(16);
    check(fft != NULL, "the library is up after a pair of calls");
    ORVA_FFTProcDestroy(fft);
}

void use_engine(void)
{
    check(ORVA_OptimizeFFT(true), "a preparation of plans that is waited for");
    check(ORVA_FinalizeFFT(), "stop of the engine");
    check(ORVA_InitializeFFT(), "new start of the engine");
}
