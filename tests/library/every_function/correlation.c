#include "host.h"

enum { length = 32, delay = 3 };

static int32_t peak(const float *values, int32_t count)
{
    int32_t best = 0;
    for (int32_t i = 1; i < count; ++i)
        best = values[i] > values[best] ? i : best;
    return best;
}

void use_correlation(void)
{
    float y[length] = {0}, x[length] = {0}, r[2 * length - 1] = {0};
    y[5] = 1, y[9] = -0.5f, y[10] = 0.25f;
    for (int n = delay; n < length; ++n)
        x[n] = y[n - delay];
    const double power = (1 + 0.25 + 0.0625) / length;

    ORVA_XCORR *xcorr = ORVA_XcorrProcCreate(length, length);
    check(xcorr != NULL, "a correlation processor");
    check(ORVA_XcorrVectorLength(xcorr) == 2 * length - 1, "its values");
    check(ORVA_XcorrProcExecute(xcorr, x, y, r) == 2 * length - 1, "values of a plain correlation");
    check(peak(r, 2 * length - 1) == length - 1 + delay, "its peak stands at the delay");
    check(near((double) r[length - 1 + delay], power, 1e-6), "and is the mean power");
    check(ORVA_XcorrPhatProcess(xcorr, x, y, r) == 2 * length - 1, "values with phase transform");
    check(peak(r, 2 * length - 1) == length - 1 + delay, "their peak stands at the delay");
    check(near((double) r[length - 1 + delay], 1, 1e-5), "and is 1");
    check(ORVA_XcorrProcDestroy(xcorr), "the processor destroyed");

    int32_t lag = 0;
    check(near(ORVA_XcorrCoef(x, length, y, length, &lag), 1, 1e-5), "the coefficient of a delay");
    check(lag == delay, "and its lag");
}
