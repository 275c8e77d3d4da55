// Operations on plain text. Letters are those of ASCII, whatever the locale.
#include "KTtext.h"

#include <kett/KTstring.h>

using kett::toLower;

void KTSTRING_Strlwr(char *text, int32_t)
{
    if (text == nullptr)
        return;
    for (; *text != '\0'; ++text)
        *text = toLower(*text);
}

int32_t KTSTRING_CompareInsensitiveN(const char *first, const char *second, int64_t count)
{
    if (first == nullptr)
        first = "";
    if (second == nullptr)
        second = "";
    for (; count > 0; --count, ++first, ++second) {
        const auto a = static_cast<unsigned char>(toLower(*first));
        const auto b = static_cast<unsigned char>(toLower(*second));
        if (a != b)
            return a < b ? -1 : 1;
        if (a == '\0')
            break;
    }
    return 0;
}
