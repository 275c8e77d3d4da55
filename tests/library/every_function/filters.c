#include "host.h"

static const double smooth[] = {-0.5, 0, 0.5, 0, 0}; /* y[n] = 0.5 x[n] + 0.5 y[n-1] */
static const double copy[] = {0, 0, 1, 0, 0};

static void use_coefficients(void)
{
    const double b[] = {0.5, 0.25}, a[] = {1};
    float block[4] = {1, 0, 0, 8}, stereo[4] = {1, 1, 0, 0};
    _ORVA_FILTER *filter = ORVA_CreateFilterFromCoefs(1, 2, b, 1, a);
    check(filter != NULL, "a filter from coefficients");
    check(ORVA_Filter(filter, block, block, 4) == 1, "a block filtered");
    check(block[0] == 0.5f && block[1] == 0.25f && block[2] == 0 && block[3] == 4, "its samples");
    check(ORVA_ResetFilter(filter) == 1, "the memories cleared");
    check(ORVA_FilterEx(filter, stereo, stereo, 4, 1, 2) == 1, "one channel filtered");
    check(stereo[0] == 1 && stereo[1] == 0.5f && stereo[2] == 0 && stereo[3] == 0.25f, "and that one alone");
    check(ORVA_DestroyFilter(filter) == 1, "the filter destroyed");
}

static void use_biquads(void)
{
    const float one[] = {1}, zero[] = {0};
    float first[1] = {0}, second[1] = {0};
    _ORVA_FILTER *source = ORVA_CreateFilterFromBiquads(1, 1, smooth);
    _ORVA_FILTER *destination = ORVA_CreateFilterFromBiquads(1, 1, smooth);
    check(source != NULL && destination != NULL, "filters from biquads");
    ORVA_Filter(source, one, first, 1);
    check(first[0] == 0.5f, "a section at work");
    check(ORVA_CopyFilterMemories(destination, source) == 1, "memories copied");
    ORVA_Filter(destination, zero, second, 1);
    check(second[0] == 0.25f, "the copy goes on where the source stands");
    check(ORVA_UpdateFilterBiquads(destination, 1, copy) == 1, "sections replaced");
    ORVA_Filter(destination, one, second, 1);
    check(second[0] == 1, "the new ones are at work");
    check(ORVA_DestroyFilter(source) == 1 && ORVA_DestroyFilter(destination) == 1, "the filters destroyed");
}

void use_filters(void)
{
    use_coefficients();
    use_biquads();
    float step[400];
    for (int n = 0; n < 400; ++n)
        step[n] = 1;
    _ORVA_FILTER *filter = ORVA_CreateFilter("type=lowpass; order=%d; fpass=1000; fs=%d", 4, 8000);
    check(filter != NULL, "a filter from text");
    check(ORVA_Filter(filter, step, step, 400) == 1 && step[0] < 0.2f, "it rises slowly");
    check(near((double) step[399], 1, 1e-4), "and passes a constant");
    check(ORVA_DestroyFilter(filter) == 1, "the filter destroyed");
}
