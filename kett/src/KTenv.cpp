#include <kett/KTenv.h>

#include "KTlock.h"
#include "KTnamed.h"
#include "KTunload.h"
#include "platform/environment.h"

namespace kett
{

namespace
{

// A published text. It is kept after it has been replaced, since a caller may still hold it.
struct Text {
    Text *next;
    char *name;
};

struct Variable {
    Variable *next;
    char *name;
    NamedList<Text> texts; // all that were ever published, each once
    const Text *value;     // the one in force, or null
};

constinit NamedList<Variable> variables;

const char *published(const char *name)
{
    const Hold hold(Data::environment);
    const Variable *variable = variables.find(name);
    return variable != nullptr && variable->value != nullptr ? variable->value->name : nullptr;
}

} // namespace

void discardEnvironment()
{
    const Hold hold(Data::environment);
    while (variables.first != nullptr) {
        while (variables.first->texts.first != nullptr)
            variables.first->texts.remove(variables.first->texts.first);
        variables.remove(variables.first);
    }
}

} // namespace kett

using namespace kett;

bool KTENV_SetEnvValue(const char *name, const char *value)
{
    if (name == nullptr || *name == '\0')
        return false;
    const Hold hold(Data::environment);
    if (value == nullptr) {
        if (Variable *variable = variables.find(name); variable != nullptr)
            variable->value = nullptr;
        return true;
    }
    Variable *variable = variables.findOrAdd(name);
    if (variable == nullptr)
        return false;
    const Text *text = variable->texts.findOrAdd(value);
    if (text == nullptr)
        return false;
    variable->value = text;
    return true;
}

const char *KTENV_GetEnvValue(const char *name)
{
    if (name == nullptr || *name == '\0')
        return nullptr;
    const char *value = published(name);
    return value != nullptr ? value : findSystemVariable(name);
}
