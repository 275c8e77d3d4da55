// A locale whose decimal sign is the comma, for tests that it changes nothing.
#pragma once

#include "support/command.h"
#include "support/folder.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace support
{

// In force for the whole process as long as it lives. It is generated, since a system need not have one; where
// that fails the constructor throws, for a test without its locale has failed.
class CommaLocale
{
public:
    CommaLocale()
    {
        linesOf("localedef -i pt_BR -f UTF-8 '" + (folder / "pt_BR.UTF-8") + "'");
        setenv("LOCPATH", folder.path.c_str(), 1);
        char text[8];
        if (std::setlocale(LC_ALL, "pt_BR.UTF-8") == nullptr ||
            std::snprintf(text, sizeof text, "%.1f", 1.5) < 0 || std::string(text) != "1,5")
            throw std::runtime_error("no comma in the locale of " + folder.path.string());
    }

    ~CommaLocale()
    {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
    }

    CommaLocale(const CommaLocale &) = delete;
    CommaLocale &operator=(const CommaLocale &) = delete;

private:
    Folder folder;
};

} // namespace support
