#include "filter_numbers.h"

#include "memory.h"
#include "messages.h"
#include "options.h"

#include <kett/KTstring.h>
#include <stdlib.h>

static _ORVA_FILTER *from_biquads(const char *config, int channels)
{
    int32_t rows = 0, columns = 0;
    KTSTRING_GetMatrixSizeFromString(config, "biquads", &rows, &columns);
    if (columns != 5) {
        refuse("configuration: a row of biquads has 5 numbers, a1, a2, b0, b1 and b2, not %d", columns);
        return NULL;
    }
    double *records = allocate((size_t) rows * 5, sizeof *records);
    KTSTRING_GetDoubleMatrixValuesFromString(config, "biquads", records, rows, 5);
    _ORVA_FILTER *filter = ORVA_CreateFilterFromBiquads(channels, (uint32_t) rows, records);
    free(records);
    return filter;
}

static _ORVA_FILTER *from_vectors(const char *config, int channels, int32_t bCount, int32_t aCount)
{
    double *b = allocate((size_t) bCount, sizeof *b), *a = allocate((size_t) aCount, sizeof *a);
    KTSTRING_GetDoubleVectorValuesFromString(config, "numerator", b, bCount);
    KTSTRING_GetDoubleVectorValuesFromString(config, "denominator", a, aCount);
    _ORVA_FILTER *filter = ORVA_CreateFilterFromCoefs((uint32_t) channels, bCount, b, (uint32_t) aCount, a);
    free(b);
    free(a);
    return filter;
}

_ORVA_FILTER *filter_from_numbers(const char *config, int channels)
{
    const option options[] = {
        {"biquads", OPTION_MATRIX, NULL, 0, 0, "a matrix such as [a1 a2 b0 b1 b2; a1 a2 b0 b1 b2]"},
        {"numerator", OPTION_VECTOR, NULL, 0, 0, "a vector such as [1 -1]"},
        {"denominator", OPTION_VECTOR, NULL, 0, 0, "a vector such as [1 -0.9]"}};
    int32_t bCount = 0, aCount = 0;
    if (!options_read(config, options, sizeof options / sizeof *options))
        return NULL;
    if (KTSTRING_GetMatrixSizeFromString(config, "biquads", NULL, NULL))
        return from_biquads(config, channels);
    if (KTSTRING_GetVectorSizeFromString(config, "numerator", &bCount) &&
        KTSTRING_GetVectorSizeFromString(config, "denominator", &aCount))
        return from_vectors(config, channels, bCount, aCount);
    refuse("configuration: give biquads, or numerator and denominator");
    return NULL;
}
