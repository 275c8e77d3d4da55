// A locale whose decimal sign is the comma, for tests that it changes nothing.
#pragma once

#include "support/program.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace support
{

// In force for the numbers of the whole process as long as it lives. It is generated, since a system need not have
// one; where that fails the constructor throws, for a test without its locale has failed.
class CommaLocale
{
public:
    CommaLocale()
    {
        writeFile(folder / "source", "LC_NUMERIC\n"
                                     "decimal_point \",\"\n"
                                     "thousands_sep \".\"\n"
                                     "grouping 3;3\n"
                                     "END LC_NUMERIC\n");
        // A locale of numbers alone, in ASCII, takes no time. localedef complains of all that is not in it, and
        // fails; what counts is the look below.
        run({"localedef", "-c", "-i", folder / "source", "-f", "ANSI_X3.4-1968", folder / "comma"}, folder);
        setenv("LOCPATH", folder.path.c_str(), 1);
        char text[8];
        if (std::setlocale(LC_NUMERIC, "comma") == nullptr ||
            std::snprintf(text, sizeof text, "%.1f", 1.5) < 0 || std::string(text) != "1,5")
            throw std::runtime_error("no comma in the locale of " + folder.path.string());
    }

    ~CommaLocale()
    {
        std::setlocale(LC_NUMERIC, "C");
        unsetenv("LOCPATH");
    }

    CommaLocale(const CommaLocale &) = delete;
    CommaLocale &operator=(const CommaLocale &) = delete;

private:
    Folder folder;
};

} // namespace support
