#include <kett/KTversion.h>

#include "KTlock.h"
#include "KTnamed.h"
#include "KTunload.h"

namespace kett
{

namespace
{

struct Version {
    Version *next;
    char *name;
    int32_t major, minor, release, build;
};

constinit NamedTable<Version> versions;

void store(int32_t *target, int32_t number)
{
    if (target != nullptr)
        *target = number;
}

} // namespace

void discardVersions()
{
    const Hold hold(Data::versions);
    versions.removeAll([](Version &) {});
}

} // namespace kett

using namespace kett;

bool KTVERSION_Register(const char *name, int32_t major, int32_t minor, int32_t release, int32_t build)
{
    if (name == nullptr)
        return false;
    const Hold hold(Data::versions);
    Version *version = versions.findOrAdd(name);
    if (version == nullptr)
        return false;
    version->major = major;
    version->minor = minor;
    version->release = release;
    version->build = build;
    return true;
}

bool KTVERSION_Find(const char *name, int32_t *major, int32_t *minor, int32_t *release, int32_t *build)
{
    if (name == nullptr)
        return false;
    const Hold hold(Data::versions);
    const Version *version = versions.find(name);
    if (version == nullptr)
        return false;
    store(major, version->major);
    store(minor, version->minor);
    store(release, version->release);
    store(build, version->build);
    return true;
}
