#include <orva/ORVAversion.h>

#include "core/ORVAversion_internal.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <string_view>

namespace orva
{
namespace
{

// A text, and what follows it cleared.
struct Line {
    std::array<char, 256> text{};
    size_t length = 0;

    constexpr void add(std::string_view part)
    {
        for (const char c : part)
            text[length++] = c;
    }

    constexpr void add(int32_t number)
    {
        if (number > 9)
            add(number / 10);
        text[length++] = static_cast<char>('0' + number % 10);
    }
};

constexpr Line versionLine()
{
    Line line;
    line.add("liborva version ");
    line.add(versionMajor);
    for (const int32_t number : {versionMinor, versionRelease, versionBuild}) {
        line.add(".");
        line.add(number);
    }
    line.add(" (built in ");
    line.add(__DATE__);
    line.add(")");
    return line;
}

constexpr Line line = versionLine();

constinit std::array<char, 256> version_string = line.text;

void store(int32_t *target, int32_t number)
{
    if (target != nullptr)
        *target = number;
}

} // namespace
} // namespace orva

using namespace orva;

const char *ORVAVERSION_String(void)
{
    // Only what a caller has defaced is written, so that who reads the text while another thread asks for it sees it whole.
    for (size_t i = 0; i < version_string.size(); ++i) {
        const std::atomic_ref character(version_string[i]);
        if (character.load(std::memory_order_relaxed) != line.text[i])
            character.store(line.text[i], std::memory_order_relaxed);
    }
    return version_string.data();
}

void ORVAVERSION_Number(int32_t *major, int32_t *minor, int32_t *release, int32_t *build)
{
    store(major, versionMajor);
    store(minor, versionMinor);
    store(release, versionRelease);
    store(build, versionBuild);
}
