#include "messages.h"

#include "progress.h"

#include <cstdio>

namespace orva
{

std::string onOneLine(std::string text)
{
    for (char &letter : text)
        if (static_cast<unsigned char>(letter) < 0x20 || letter == 0x7f)
            letter = '?';
    return text;
}

void say(const std::string &text)
{
    std::puts(onOneLine(text).c_str());
}

void note(const std::string &text)
{
    clearProgress();
    std::fputs((onOneLine(text) + '\n').c_str(), stderr);
}

} // namespace orva
