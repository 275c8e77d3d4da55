// A locale whose decimal sign is the comma, for tests that it changes nothing.
#pragma once

#include <clocale>
#include <stdexcept>
#include <string>

namespace support
{

// In force for the numbers of the whole process as long as it lives. Where it cannot be had the constructor throws, for a
// test without its locale has failed. The C runtime is asked for its sign, since no formatter of a test need be its own.
class CommaLocale
{
public:
    CommaLocale()
    {
        if (std::setlocale(LC_NUMERIC, "German_Germany.1252") == nullptr ||
            std::string(std::localeconv()->decimal_point) != ",")
            throw std::runtime_error("no locale with a comma");
    }

    ~CommaLocale()
    {
        std::setlocale(LC_NUMERIC, "C");
    }

    CommaLocale(const CommaLocale &) = delete;
    CommaLocale &operator=(const CommaLocale &) = delete;
};

} // namespace support
