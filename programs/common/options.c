#include "options.h"

#include "messages.h"

#include <kett/KTstring.h>
#include <orva/ORVAwinfnc.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char blanks[] = " \t\n\v\f\r";
static const char separators[] = " \t\n\v\f\r;,";
static const char notInKey[] = " \t\n\v\f\r;,=\"[]";

/* The end of the value that starts at text, or null if there is none there. */
static const char *valueEnd(const char *text)
{
    if (*text == '"') {
        const char *quote = strchr(text + 1, '"');
        return quote != NULL ? quote + 1 : NULL;
    }
    if (*text == '[') {
        int depth = 0;
        for (; *text != '\0'; ++text) {
            depth += (*text == '[') - (*text == ']');
            if (depth == 0)
                return text + 1;
        }
        return NULL;
    }
    const size_t length = strcspn(text, separators);
    return length > 0 ? text + length : NULL;
}

static bool keyKnown(const char *key, size_t length, const Option *options, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        if (strlen(options[i].key) == length && strncmp(options[i].key, key, length) == 0)
            return true;
    return false;
}

static void append(char *list, size_t size, const char *name)
{
    const size_t used = strlen(list);
    snprintf(list + used, size - used, "%s%s", used > 0 ? ", " : "", name);
}

static bool refuseKey(const char *key, size_t length, const Option *options, size_t count)
{
    char known[256] = "";
    for (size_t i = 0; i < count; ++i)
        append(known, sizeof known, options[i].key);
    return refuse("configuration: unknown key \"%.*s\"; the keys are %s", (int) length, key, known);
}

/* What looks up one key passes over whatever is no pair, so the string is first read as a whole. */
static bool checkPairs(const char *config, const Option *options, size_t count)
{
    const char *text = config;
    while (*(text += strspn(text, separators)) != '\0') {
        const size_t length = strcspn(text, notInKey);
        const char *equals = text + length + strspn(text + length, blanks);
        const char *end = NULL;
        if (length > 0 && *equals == '=')
            end = valueEnd(equals + 1 + strspn(equals + 1, blanks));
        if (end == NULL || (*end != '\0' && strchr(separators, *end) == NULL))
            return refuse("configuration: no key=value pair at \"%s\"", text);
        if (!keyKnown(text, length, options, count))
            return refuseKey(text, length, options, count);
        text = end;
    }
    return true;
}

static bool readInteger(const char *config, const Option *asked)
{
    /* A text that is no number gives the default, whichever it is. */
    const int32_t value = KTSTRING_GetIntegerValueFromString(config, asked->key, 0);
    if (value != KTSTRING_GetIntegerValueFromString(config, asked->key, 1) || value < asked->least ||
        value > asked->most)
        return false;
    if (asked->value != NULL)
        *(int32_t *) asked->value = value;
    return true;
}

static bool readReal(const char *config, const Option *asked)
{
    const float value = KTSTRING_GetFloatValueFromString(config, asked->key, 0.0f);
    if (value != KTSTRING_GetFloatValueFromString(config, asked->key, 1.0f) || value < (float) asked->least ||
        value > (float) asked->most)
        return false;
    if (asked->value != NULL)
        *(float *) asked->value = value;
    return true;
}

static bool sameName(const char *name, const char *text)
{
    const size_t longer = strlen(name) > strlen(text) ? strlen(name) : strlen(text);
    return KTSTRING_CompareInsensitiveN(name, text, (int64_t) longer) == 0;
}

/* A name that the library does not know gives the type of "Rectangular", so the name is compared once more. */
static bool readWindow(const char *config, const Option *asked, const char *text)
{
    const int32_t type = ORVA_GetWindowTypeFromStringConfig(config, asked->key, 0);
    if (sameName(ORVA_GetWindowName(type), text)) {
        *(int32_t *) asked->value = type;
        return true;
    }
    char names[512] = "";
    const char *name;
    for (int32_t i = 0; (name = ORVA_GetWindowName(i)) != NULL; ++i)
        append(names, sizeof names, name);
    return refuse("configuration: %s=%s is no window; the windows are %s", asked->key, text, names);
}

/* The case counts. */
static bool isOneOf(const char *words, const char *text)
{
    const size_t length = strlen(text);
    for (const char *word = words; *word != '\0'; word += strspn(word, " ")) {
        const size_t ended = strcspn(word, " ");
        if (ended == length && strncmp(word, text, length) == 0)
            return true;
        word += ended;
    }
    return false;
}

static bool readOption(const char *config, const Option *asked)
{
    char text[128];
    if (KTSTRING_GetStringValueFromString(config, asked->key, NULL, text, sizeof text) == 0)
        return true;
    bool good = false;
    switch (asked->kind) {
    case integerOption:
        good = readInteger(config, asked);
        break;
    case realOption:
        good = readReal(config, asked);
        break;
    case textOption:
        good = asked->value == NULL || isOneOf(asked->value, text);
        break;
    case windowOption:
        return readWindow(config, asked, text);
    case vectorOption:
        good = KTSTRING_GetVectorSizeFromString(config, asked->key, NULL) != 0;
        break;
    case matrixOption:
        good = KTSTRING_GetMatrixSizeFromString(config, asked->key, NULL, NULL) != 0;
        break;
    }
    return good || refuse("configuration: %s=%s is not %s", asked->key, text, asked->meaning);
}

bool optionsRead(const char *config, const Option *options, size_t count)
{
    if (config == NULL)
        return true;
    if (!checkPairs(config, options, count))
        return false;
    for (size_t i = 0; i < count; ++i)
        if (!readOption(config, &options[i]))
            return false;
    return true;
}

int32_t optionsNumber(const char *argument, int32_t most)
{
    char *end;
    const long number = strtol(argument, &end, 10);
    return *end == '\0' && number >= 1 && number <= most ? (int32_t) number : 0;
}
