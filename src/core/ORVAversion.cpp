#include <orva/ORVAversion.h>

#include "core/ORVAversion_internal.h"

#include <cstdio>

static char version_string[256];

const char *ORVAVERSION_String(void)
{
    std::snprintf(version_string, sizeof version_string, "liborva version %d.%d.%d.%d (built in %s)",
                  versionMajor, versionMinor, versionRelease, versionBuild, __DATE__);
    return version_string;
}

static void store(int32_t *target, int32_t number)
{
    if (target != nullptr)
        *target = number;
}

void ORVAVERSION_Number(int32_t *major, int32_t *minor, int32_t *release, int32_t *build)
{
    store(major, versionMajor);
    store(minor, versionMinor);
    store(release, versionRelease);
    store(build, versionBuild);
}
