#include "fft/ORVAfft_wisdom_grammar.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace orva
{
namespace
{

// A text of which the beginning is taken away bit by bit. Every step tells whether it fitted; after one that
// did not, the rest is of no use.
struct Rest {
    std::string_view text;

    bool take(std::string_view expected)
    {
        if (!text.starts_with(expected))
            return false;
        text.remove_prefix(expected.size());
        return true;
    }

    // As many characters of a kind as there are, at least one.
    bool takeAll(bool (*isOfKind)(char), std::string_view &taken)
    {
        const auto end = std::find_if_not(text.begin(), text.end(), isOfKind);
        taken = {text.begin(), end};
        text.remove_prefix(taken.size());
        return !taken.empty();
    }
};

bool isDecimalDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c)
{
    return isDecimalDigit(c) || (c >= 'a' && c <= 'f');
}

bool isNameCharacter(char c)
{
    return isDecimalDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isVersionCharacter(char c)
{
    return isNameCharacter(c) || c == '.' || c == '-' || c == '+';
}

bool takeVersion(Rest &rest)
{
    std::string_view version;
    return rest.takeAll(isVersionCharacter, version);
}

// A number as a machine writes it, without leading zeros.
bool takeNumber(Rest &rest, uint32_t base, uint32_t largest, uint32_t &number)
{
    std::string_view digits;
    if (!rest.takeAll(base == 10 ? isDecimalDigit : isHexDigit, digits))
        return false;
    if (digits.size() > 5 || (digits.size() > 1 && digits.front() == '0'))
        return false;
    number = 0;
    for (const char digit : digits)
        number =
            number * base + static_cast<uint32_t>(isDecimalDigit(digit) ? digit - '0' : digit - 'a' + 10);
    return number <= largest;
}

bool takeSum(Rest &rest)
{
    for (int word = 0; word < 4; ++word) {
        std::string_view digits;
        if (!rest.take(" #x") || !rest.takeAll(isHexDigit, digits) || digits.size() != 8)
            return false;
    }
    return true;
}

bool takeEntry(Rest &rest)
{
    constexpr size_t longestName = 63;         // FFTW reads a name into 64 characters
    constexpr uint32_t largestNumber = 4095;   // solvers are counted in 12 bits
    constexpr uint32_t largestFlags = 0xfffff; // 20 bits
    constexpr uint32_t largestTime = 0x1ff;    // 9 bits
    std::string_view solver;
    uint32_t number;
    uint32_t lower;
    uint32_t upper;
    uint32_t time;
    if (!rest.take("  (") || !rest.takeAll(isNameCharacter, solver) || solver.size() > longestName)
        return false;
    if (!rest.take(" ") || !takeNumber(rest, 10, largestNumber, number))
        return false;
    if (!rest.take(" #x") || !takeNumber(rest, 16, largestFlags, lower))
        return false;
    if (!rest.take(" #x") || !takeNumber(rest, 16, largestFlags, upper))
        return false;
    if (!rest.take(" #x") || !takeNumber(rest, 16, largestTime, time))
        return false;
    // Both hold for all that FFTW has ever planned, and it counts on them when it plans on.
    const bool timedOut = solver == "TIMEOUT" && number == 0;
    if ((lower & ~upper) != 0 || (time != 0 && !timedOut))
        return false;
    return takeSum(rest) && rest.take(")\n");
}

} // namespace

bool fitsWisdomGrammar(std::span<const char> text)
{
    Rest rest{{text.data(), text.size()}};
    if (!rest.take("(fftw-") || !takeVersion(rest) || !rest.take(" fftwf_wisdom") || !takeSum(rest) ||
        !rest.take("\n"))
        return false;
    while (!rest.take(")"))
        if (!takeEntry(rest))
            return false;
    return true;
}

} // namespace orva
