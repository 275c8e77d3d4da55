// Fuzz target: any text as a setting's literal. The first line is stored, the second set as a default, the third asked for.
// A stored value is found under its key, is gone after it is taken away, and a literal without a store gives its own default.
#include "support/fuzz.h"

#include <kett/KTsettings.h>

#include <algorithm>

namespace
{

constexpr const char *keyWithDefault = "k"; // which stays with it as long as the process lives

std::string takeLine(std::string &text)
{
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string line = text.substr(0, end);
    text.erase(0, end + 1);
    return line.c_str(); // up to the first null
}

// The key of a literal, without the blanks around it.
std::string keyOf(const std::string &literal)
{
    constexpr const char *blanks = " \t\n\v\f\r";
    const std::string key = literal.substr(0, literal.find('='));
    const size_t first = key.find_first_not_of(blanks);
    return first == std::string::npos ? "" : key.substr(first, key.find_last_not_of(blanks) - first + 1);
}

struct Values {
    int64_t integer;
    bool boolean;

    bool operator==(const Values &) const = default;
};

Values get(const std::string &literal)
{
    return {KTSETTINGS_GetIntEx(nullptr, literal.c_str()), KTSETTINGS_GetBoolEx(nullptr, literal.c_str())};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string text(reinterpret_cast<const char *>(data), size);
    const std::string stored = takeLine(text), otherwise = takeLine(text), asked = takeLine(text);
    const Values alone = get(stored);
    const bool isStored = KTSETTINGS_SetEx(nullptr, "%s", stored.c_str());
    if (isStored) {
        support::require(!keyOf(stored).empty(), "what is stored has a key");
        support::require(keyOf(stored) == keyWithDefault || get(stored) == alone,
                         "a stored value is what its literal says");
    }
    if (keyOf(otherwise) == keyWithDefault)
        KTSETTINGS_SetDefaultEx(nullptr, "%s", otherwise.c_str());
    const Values with = get(asked);
    support::require(with == get(asked), "the same question has the same answer");
    support::require(KTSETTINGS_UnsetEx(nullptr, keyOf(stored).c_str()) == isStored,
                     "what is stored is taken away");
    support::require(!KTSETTINGS_UnsetEx(nullptr, keyOf(stored).c_str()), "once");
    return 0;
}
