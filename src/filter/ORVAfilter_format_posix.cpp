#include "filter/ORVAfilter_format.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <locale.h>

namespace
{

// The C numeric locale for the calling thread, as long as it lives.
class NumericLocaleC
{
public:
    NumericLocaleC() : before(uselocale(nullptr)), here(nullptr)
    {
        const locale_t base = duplocale(before);
        if (base == nullptr)
            return;
        here = newlocale(LC_NUMERIC_MASK, "C", base);
        if (here != nullptr)
            uselocale(here);
        else
            freelocale(base);
    }

    ~NumericLocaleC()
    {
        if (here == nullptr)
            return;
        uselocale(before);
        freelocale(here);
    }

    NumericLocaleC(const NumericLocaleC &) = delete;
    NumericLocaleC &operator=(const NumericLocaleC &) = delete;

    bool isInForce() const
    {
        return here != nullptr;
    }

private:
    locale_t before;
    locale_t here;
};

int formatInto(char *room, size_t size, const char *format, va_list arguments)
{
    va_list copy;
    va_copy(copy, arguments);
    const int length = std::vsnprintf(room, size, format, copy);
    va_end(copy);
    return length;
}

} // namespace

char *newFormattedText(const char *format, va_list arguments)
{
    constexpr size_t usualSize = 1024;
    const NumericLocaleC locale;
    auto *text = static_cast<char *>(std::malloc(usualSize));
    int length = locale.isInForce() && text != nullptr ? formatInto(text, usualSize, format, arguments) : -1;
    if (length >= 0 && static_cast<size_t>(length) >= usualSize) {
        const auto size = static_cast<size_t>(length) + 1;
        auto *longer = static_cast<char *>(std::realloc(text, size));
        length = longer != nullptr ? formatInto(longer, size, format, arguments) : -1;
        text = longer != nullptr ? longer : text;
    }
    if (length >= 0)
        return text;
    std::free(text);
    return nullptr;
}
