#include "host.h"

#include <string.h>

void use_windows(void)
{
    float hanning[5], rectangular[5], data[5] = {2, 2, 2, 2, 2};
    const int32_t type = ORVA_GetWindowType("Hanning");
    check(type == 3, "type of a window");
    check(strcmp(ORVA_GetWindowName(type), "Hanning") == 0, "name of a window");
    check(ORVA_GetWindowTypeFromStringConfig("size=5; window=hamming", "window", 0) == 5, "window in a text");
    check(ORVA_CreateWindow(type, hanning, 5) && ORVA_CreateWindow(0, rectangular, 5), "windows made");
    check(near((double) hanning[1], 0.5, 1e-6) && near((double) hanning[2], 1, 1e-6), "their values");
    check(ORVA_ApplyWindow(hanning, data, 5) && near((double) data[2], 2, 1e-6) && data[0] == 0, "applied");
    check(near(ORVA_GetWindowNormFactor(hanning, 5), 0.4, 1e-6), "mean of a window");
    check(near(ORVA_GetTwoWindowNormFactor(hanning, hanning, 5), 0.3, 1e-6), "mean of two windows");
    check(ORVA_GetTwoWindowNormFactor(hanning, rectangular, 5) == ORVA_GetWindowNormFactor(hanning, 5),
          "a rectangular window changes no mean");
}
