#include "host.h"

#include <math.h>

enum { rate = 8000, count = 4000 };

void use_time_scaling(void)
{
    static float input[count], output[count];
    for (int n = 0; n < count; ++n)
        input[n] = (float) sin(0.1 * n);
    ORVA_SOLAFS *solafs = ORVA_SolafsCreate(20, rate, 1);
    check(solafs != NULL, "a time scaler");
    check(ORVA_SolafsInputData(solafs, 0, input, count, 2.0f) == count, "samples taken");
    const int32_t written = ORVA_SolafsOutputData(solafs, 0, output, count);
    check(written == 1760,
          "half of them, less the tail, in whole hops"); /* least h 80 with 160 h >= 4000 - 560 */
    float most = 0;
    for (int n = 0; n < written; ++n)
        most = fmaxf(most, fabsf(output[n]));
    check(near((double) most, 1, 0.05), "as loud as before");
    check(ORVA_SolafsTranslateCursorPosition(solafs, 500) == 1000, "a place in the input");
    ORVA_SolafsDestroy(solafs);
}
