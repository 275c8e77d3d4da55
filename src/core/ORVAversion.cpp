#include <orva/ORVAversion.h>

#include "core/ORVAversion_internal.h"

#include <atomic>
#include <cstddef>
#include <cstdio>

namespace orva
{
namespace
{

char version_string[256];

void store(int32_t *target, int32_t number)
{
    if (target != nullptr)
        *target = number;
}

} // namespace
} // namespace orva

using namespace orva;

const char *ORVAVERSION_String(void)
{
    char text[sizeof version_string] = {};
    std::snprintf(text, sizeof text, "liborva version %d.%d.%d.%d (built in %s)", versionMajor, versionMinor,
                  versionRelease, versionBuild, __DATE__);

    // Each byte is only ever replaced by its equal, so that who reads the text while another thread asks for it
    // anew sees it whole. A formatted write would empty the buffer for a moment.
    for (size_t i = 0; i < sizeof text; ++i)
        std::atomic_ref(version_string[i]).store(text[i], std::memory_order_relaxed);
    return version_string;
}

void ORVAVERSION_Number(int32_t *major, int32_t *minor, int32_t *release, int32_t *build)
{
    store(major, versionMajor);
    store(minor, versionMinor);
    store(release, versionRelease);
    store(build, versionBuild);
}
