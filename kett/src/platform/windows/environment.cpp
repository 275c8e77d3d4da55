#include "platform/environment.h"

#include "KTnamed.h"
#include "platform/lock.h"
#include "platform/windows/environment.h"
#include "platform/windows/wide.h"

#include <cstdlib>

#include <windows.h>

namespace kett
{

namespace
{

// A value that was given out. It is kept, since a caller may still hold it.
struct Value {
    Value *next;
    char *name; // the value itself
};

constinit NamedTable<Value> values;
constinit SystemLock valuesLock;

// The system's environment and not that of a C runtime: a host with another runtime than ours changes only the former.
wchar_t *newWideValue(const wchar_t *name)
{
    wchar_t *value = nullptr;
    DWORD room = 0;
    for (;;) {
        SetLastError(ERROR_SUCCESS);
        const DWORD length = GetEnvironmentVariableW(name, value, room);
        const bool isThere = length > 0 || GetLastError() == ERROR_SUCCESS; // or is it empty
        if (isThere && length < room)
            return value;
        std::free(value);
        if (!isThere)
            return nullptr;
        room = length + 1; // another thread may lengthen it meanwhile, hence the loop
        value = static_cast<wchar_t *>(std::malloc(room * sizeof(wchar_t)));
        if (value == nullptr)
            return nullptr;
    }
}

char *newValue(const char *name)
{
    wchar_t *wideName = newWide(name);
    wchar_t *wideValue = wideName != nullptr ? newWideValue(wideName) : nullptr;
    char *value = wideValue != nullptr ? newNarrow(wideValue) : nullptr;
    std::free(wideValue);
    std::free(wideName);
    return value;
}

} // namespace

const char *findSystemVariable(const char *name)
{
    char *value = newValue(name);
    if (value == nullptr)
        return nullptr;
    lock(valuesLock);
    const Value *kept = values.findOrAdd(value);
    unlock(valuesLock);
    std::free(value);
    return kept != nullptr ? kept->name : nullptr;
}

void discardSystemVariables()
{
    values.removeAll([](Value &) {});
}

} // namespace kett
