#include "filter_text.h"

#include "messages.h"
#include "options.h"

#include <kett/KTdebug.h>
#include <kett/KTstring.h>

#include <stdio.h>
#include <string.h>

static bool check(const char *config, int rate)
{
    static const char edge[] = "a frequency below half the sampling rate";
    static const char decibels[] = "a number of decibels above 0";
    const double highest = rate / 2.0 - 0.5;
    const Option options[] = {
        {"type", textOption, NULL, 0, 0, ""},
        {"approximation", textOption, NULL, 0, 0, ""},
        {"order", integerOption, NULL, 1, 1000, "a whole number from 1 to 1000"},
        {"fpass", realOption, NULL, 0, highest, edge},
        {"fpass1", realOption, NULL, 0, highest, edge},
        {"fpass2", realOption, NULL, 0, highest, edge},
        {"fstop", realOption, NULL, 0, highest, edge},
        {"fstop1", realOption, NULL, 0, highest, edge},
        {"fstop2", realOption, NULL, 0, highest, edge},
        {"Ap", realOption, NULL, 1e-6, 1000, decibels},
        {"As", realOption, NULL, 1e-6, 1000, decibels},
        {"gain", realOption, NULL, 0, 1e6, "a number from 0 to 1000000"},
        {"biquads", matrixOption, NULL, 0, 0, "a matrix such as [a1 a2 b0 b1 b2; a1 a2 b0 b1 b2]"},
        {"numerator", vectorOption, NULL, 0, 0, "a vector such as [1 -1]"},
        {"denominator", vectorOption, NULL, 0, 0, "a vector such as [1 -0.9]"}};
    if (!optionsRead(config, options, sizeof options / sizeof *options))
        return false;
    int32_t rows = 0, columns = 0;
    if (KTSTRING_GetMatrixSizeFromString(config, "biquads", &rows, &columns) && columns != 5)
        return refuse("configuration: a row of biquads has 5 numbers, a1, a2, b0, b1 and b2, not %d",
                      columns);
    return true;
}

static void keep(void *context, int32_t level, int32_t code, const char *text)
{
    char *kept = context;
    (void) level;
    (void) code;
    snprintf(kept, 256, "%.*s", (int) strcspn(text, "\n"), text);
}

_ORVA_FILTER *filterFromText(const char *config, int rate, int channels)
{
    char message[256] = "configuration: no filter has these edges, attenuations and order";
    if (!check(config, rate))
        return NULL;
    KTDEBUG_SetSink(keep, message);
    _ORVA_FILTER *filter = ORVA_CreateFilter("%s; fs=%d; num_channels=%d", config, rate, channels);
    KTDEBUG_SetSink(NULL, NULL);
    if (filter == NULL)
        refuse("%s", message);
    return filter;
}
