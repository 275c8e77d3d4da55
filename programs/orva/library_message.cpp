#include "library_message.h"

#include <kett/KTdebug.h>

namespace orva
{
namespace
{

thread_local std::string kept;

void keep(void *, int32_t, int32_t, const char *text)
{
    kept = text;
}

} // namespace

void keepLibraryMessages()
{
    KTDEBUG_SetSink(keep, nullptr);
}

std::string libraryMessage(const std::string &otherwise)
{
    const std::string text = kept.substr(0, kept.find('\n'));
    kept.clear();
    return text.empty() ? otherwise : text;
}

} // namespace orva
