/* A host written in C that includes all of both libraries. */
#include <kett/kett.h>
#include <orva/orva.h>

int32_t majorVersionsSum(void);

int32_t majorVersionsSum(void)
{
    int32_t own = 0;
    int32_t registered = 0;
    ORVAVERSION_Number(&own, 0, 0, 0);
    KTVERSION_Find("liborva", &registered, 0, 0, 0);
    return own + registered;
}
