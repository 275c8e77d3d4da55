#include <kett/KTenv.h>

#include "KTlock.h"
#include "KTnamed.h"
#include "KTunload.h"
#include "platform/environment.h"

namespace kett
{

namespace
{

// A published text. One that was given out is kept after it has been replaced, since a caller may still hold it.
struct Text {
    Text *next;
    char *name;
    bool isGiven;
};

struct Variable {
    Variable *next;
    char *name;
    NamedTable<Text> texts; // the one in force and all that were given out, each once
    Text *value;            // the one in force, or null
};

constinit NamedTable<Variable> variables;

const char *published(const char *name)
{
    const Hold hold(Data::environment);
    const Variable *variable = variables.find(name);
    if (variable == nullptr || variable->value == nullptr)
        return nullptr;
    variable->value->isGiven = true;
    return variable->value->name;
}

void putInForce(Variable &variable, Text *text)
{
    Text *before = variable.value;
    variable.value = text;
    if (before != nullptr && before != text && !before->isGiven)
        variable.texts.remove(before);
}

} // namespace

void discardEnvironment()
{
    const Hold hold(Data::environment);
    variables.removeAll([](Variable &variable) { variable.texts.removeAll([](Text &) {}); });
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
            putInForce(*variable, nullptr);
        return true;
    }
    Variable *variable = variables.findOrAdd(name);
    if (variable == nullptr)
        return false;
    Text *text = variable->texts.findOrAdd(value);
    if (text == nullptr)
        return false;
    putInForce(*variable, text);
    return true;
}

const char *KTENV_GetEnvValue(const char *name)
{
    if (name == nullptr || *name == '\0')
        return nullptr;
    const char *value = published(name);
    return value != nullptr ? value : findSystemVariable(name);
}
