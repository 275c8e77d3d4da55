// A locale whose decimal sign is the comma, for tests that it changes nothing.
#pragma once

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace support
{

// In force for the whole process as long as it lives. It is generated, since a system need not have one, and a
// test without it has failed: the constructor throws then.
class CommaLocale
{
public:
    CommaLocale() : folder(testing::TempDir() + "comma_locale.XXXXXX")
    {
        if (mkdtemp(folder.data()) == nullptr)
            throw std::runtime_error(folder + ": cannot be made");
        const std::string command = "localedef -i pt_BR -f UTF-8 '" + folder + "/pt_BR.UTF-8'";
        if (std::system(command.c_str()) != 0)
            throw std::runtime_error(command + ": failed");
        setenv("LOCPATH", folder.c_str(), 1);
        char text[8];
        if (std::setlocale(LC_ALL, "pt_BR.UTF-8") == nullptr ||
            std::snprintf(text, sizeof text, "%.1f", 1.5) < 0 || std::string(text) != "1,5")
            throw std::runtime_error("no comma in the locale of " + folder);
    }

    ~CommaLocale()
    {
        std::setlocale(LC_ALL, "C");
        unsetenv("LOCPATH");
        std::filesystem::remove_all(folder);
    }

    CommaLocale(const CommaLocale &) = delete;
    CommaLocale &operator=(const CommaLocale &) = delete;

private:
    std::string folder;
};

} // namespace support
