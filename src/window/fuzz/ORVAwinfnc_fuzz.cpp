// Fuzz target: the code of any name, alone and in a configuration string, beside a plain look-up.
#include "support/fuzz.h"

#include <orva/ORVAwinfnc.h>

namespace
{

std::string lower(std::string text)
{
    for (char &c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    return text;
}

int32_t plainType(const std::string &name)
{
    for (int32_t type = 0; ORVA_GetWindowName(type) != nullptr; ++type)
        if (lower(name) == lower(ORVA_GetWindowName(type)))
            return type;
    return 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string name = std::string(reinterpret_cast<const char *>(data), size).c_str();
    const int32_t type = ORVA_GetWindowType(name.c_str());
    support::require(type == plainType(name), "the code is that of the name");
    const bool isWord = !name.empty() && name.find_first_of(" \t\n\v\f\r;,\"[]") == std::string::npos;
    if (isWord)
        support::require(ORVA_GetWindowTypeFromStringConfig(("a=1; window=" + name).c_str(), "window", -7) ==
                             type,
                         "a word in a configuration has the code of the name");
    const int32_t any = ORVA_GetWindowTypeFromStringConfig(name.c_str(), "window", -7);
    support::require(any == -7 || (any >= 0 && any <= 10), "any text gives a code or the default");
    return 0;
}
