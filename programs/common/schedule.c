#include "schedule.h"

#include "messages.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

static const char separators[] = " ,\t\n";

/* A plain decimal number with a digit in it; what follows it is left in *text. */
static bool readNumber(const char **text, double *number)
{
    const char *from = *text;
    const size_t length = strspn(from, "0123456789.");
    char *end = NULL;
    *number = strtod(from, &end);
    *text = from + length;
    return length > 0 && end == from + length;
}

/* One word: value or seconds:value. */
static bool readValue(Schedule *values, const char *word, int length, float initial)
{
    const char *rest = word;
    double seconds = 0, value = 0;
    bool isRead = readNumber(&rest, &value);
    const bool hasTime = isRead && *rest == ':';
    if (hasTime) {
        seconds = value;
        ++rest;
        isRead = readNumber(&rest, &value);
    }
    if (!isRead || rest != word + length || (!hasTime && values->count > 0))
        return refuse("%s: \"%.*s\" is not seconds:%s", values->name, length, word, values->name);
    if (!(value >= values->least && value <= values->most))
        return refuse("%s: %g is not from %g to %g", values->name, value, values->least, values->most);
    if (values->count == 0 && seconds > 0) {
        values->values[0] = initial;
        values->seconds[values->count++] = 0;
    }
    if (values->count == mostValues)
        return refuse("%s: more than %d values", values->name, mostValues);
    if (values->count > 0 && seconds <= values->seconds[values->count - 1])
        return refuse("%s: the time of \"%.*s\" does not come after the one before", values->name, length,
                      word);
    values->seconds[values->count] = seconds;
    values->values[values->count++] = (float) value;
    return true;
}

bool scheduleRead(Schedule *values, const char *text, float initial)
{
    values->count = 0;
    for (const char *word = text + strspn(text, separators); *word != '\0';) {
        const size_t length = strcspn(word, separators);
        if (!readValue(values, word, (int) length, initial))
            return false;
        word += length;
        word += strspn(word, separators);
    }
    return values->count > 0 || refuse("%s: no value is given", values->name);
}

float scheduleAt(const Schedule *values, int64_t sample, double rate, int64_t *count)
{
    int at = 0;
    for (; at + 1 < values->count; ++at) {
        const double left = round(values->seconds[at + 1] * rate) - (double) sample;
        if (left > 0) {
            *count = left < (double) *count ? (int64_t) left : *count;
            break;
        }
    }
    return values->values[at];
}
