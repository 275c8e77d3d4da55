/* A host without a runtime library: the exit status tells how it went. */
#include <kett/KTversion.h>
#include <orva/orva.h>

/* What the compiler calls where floating point is used. */
int _fltused;

int start(void);

int start(void)
{
    float block[4] = {1.0f, 0.0f, 1.0f, 1.0f};
    static const float expected[4] = {0.5f, 0.5f, 0.5f, 1.0f};
    int32_t major = 0;
    KTVERSION_Find("liborva", &major, 0, 0, 0);
    if (major != 3)
        return 1;
    _ORVA_FILTER *filter = ORVA_CreateFilter("biquads=[0, 0, 0.5, 0.5, 0]");
    ORVA_Filter(filter, block, block, 4);
    ORVA_DestroyFilter(filter);
    for (int i = 0; i < 4; ++i)
        if (block[i] != expected[i])
            return 2;
    return 42;
}
