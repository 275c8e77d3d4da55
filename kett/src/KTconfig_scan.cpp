#include "KTconfig_scan.h"

#include "KTtext.h"

namespace kett
{

namespace
{

bool isSeparator(char c)
{
    return c == ';' || c == ',' || isBlank(c);
}

bool isKeyCharacter(char c)
{
    return isWordCharacter(c) && c != '=' && c != '"' && c != '[' && c != ']';
}

// Takes an '=' with the blanks around it; without one, `at` stays before the blanks.
bool takeEquals(const char *&at)
{
    const char *next = at;
    take(next, isBlank);
    if (*next != '=')
        return false;
    at = next + 1;
    take(at, isBlank);
    return true;
}

// What stands between two quotes. Without the second there is no value, and `at` is at the end of the text.
bool takeQuoted(const char *&at, std::string_view &value)
{
    value = take(++at, [](char c) { return c != '"' && c != '\0'; });
    if (*at == '\0')
        return false;
    ++at;
    return true;
}

// From a bracket to the one that closes it, whatever stands between them. Unclosed as above.
bool takeBracketed(const char *&at, std::string_view &value)
{
    const char *begin = at;
    size_t open = 0;
    do {
        if (*at == '\0')
            return false;
        if (*at == '[')
            ++open;
        if (*at == ']')
            --open;
        ++at;
    } while (open > 0);
    value = {begin, at};
    return true;
}

// Without a value, `at` is where the skipping to the next separator begins.
bool takeValue(const char *&at, ConfigPair &pair)
{
    if (*at != '"' && *at != '[') {
        pair.kind = ValueKind::word;
        pair.value = take(at, isWordCharacter);
        return !pair.value.empty();
    }
    const bool quoted = *at == '"';
    pair.kind = quoted ? ValueKind::quoted : ValueKind::bracketed;
    const bool closed = quoted ? takeQuoted(at, pair.value) : takeBracketed(at, pair.value);
    return closed && !isWordCharacter(*at);
}

} // namespace

bool isWordCharacter(char c)
{
    return c != '\0' && !isSeparator(c);
}

std::string_view take(const char *&at, bool (*belongs)(char))
{
    const char *begin = at;
    while (belongs(*at))
        ++at;
    return {begin, at};
}

bool nextPair(const char *&at, ConfigPair &pair)
{
    take(at, isSeparator);
    while (*at != '\0') {
        pair.key = take(at, isKeyCharacter);
        if (!pair.key.empty() && takeEquals(at) && takeValue(at, pair))
            return true;
        take(at, isWordCharacter);
        take(at, isSeparator);
    }
    return false;
}

bool findPair(const char *config, const char *key, ConfigPair &pair)
{
    if (config == nullptr || key == nullptr)
        return false;
    const std::string_view asked(key);
    bool found = false;
    ConfigPair candidate;
    while (nextPair(config, candidate)) {
        if (candidate.key == asked) {
            pair = candidate;
            found = true;
        }
    }
    return found;
}

} // namespace kett
