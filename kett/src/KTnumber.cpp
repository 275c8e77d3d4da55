#include "KTnumber.h"

#include "KTtext.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace kett
{

namespace
{

// Far more than any text has digits, and small enough that sums with their number cannot overflow.
constexpr int64_t exponentLimit = int64_t{1} << 60;

// The parts of a number, (negative ? -1 : 1) * whole.fraction * 10^exponent.
struct Decimal {
    bool negative;
    std::string_view whole;    // digits, may be empty
    std::string_view fraction; // digits, may be empty, but not both
    int64_t exponent;          // limited to +-exponentLimit

    size_t digitCount() const
    {
        return whole.size() + fraction.size();
    }

    int digit(size_t i) const
    {
        return (i < whole.size() ? whole[i] : fraction[i - whole.size()]) - '0';
    }

    // Place of the first digit that is not 0, or digitCount() for zero.
    size_t firstSignificant() const
    {
        size_t i = 0;
        while (i < digitCount() && digit(i) == 0)
            ++i;
        return i;
    }

    // Digits in front of the point, counted from the first significant one; zero or below for a value less
    // than 1.
    int64_t integerDigits() const
    {
        return static_cast<int64_t>(whole.size()) - static_cast<int64_t>(firstSignificant()) + exponent;
    }
};

std::string_view takeDigits(std::string_view &text)
{
    size_t count = 0;
    while (count < text.size() && text[count] >= '0' && text[count] <= '9')
        ++count;
    const auto digits = text.substr(0, count);
    text.remove_prefix(count);
    return digits;
}

bool takeSign(std::string_view &text)
{
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    return negative;
}

bool takeExponent(std::string_view &text, int64_t &exponent)
{
    text.remove_prefix(1);
    const bool negative = takeSign(text);
    const auto digits = takeDigits(text);
    exponent = 0;
    for (const char c : digits)
        if (exponent < exponentLimit / 16)
            exponent = exponent * 10 + (c - '0');
    if (negative)
        exponent = -exponent;
    return !digits.empty();
}

bool scan(std::string_view text, Decimal &decimal)
{
    decimal = {};
    decimal.negative = takeSign(text);
    decimal.whole = takeDigits(text);
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        decimal.fraction = takeDigits(text);
    }
    if (decimal.digitCount() == 0)
        return false;
    if ((text.starts_with('e') || text.starts_with('E')) && !takeExponent(text, decimal.exponent))
        return false;
    return text.empty();
}

template <class Real> bool parseReal(std::string_view text, Real &value)
{
    Decimal decimal;
    if (!scan(text, decimal))
        return false;
    if (text.starts_with('+'))
        text.remove_prefix(1);
    Real parsed = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (result.ec == std::errc::result_out_of_range) {
        // The same error for too large and too small: the place of the first digit tells which it is.
        if (decimal.integerDigits() > 0)
            return false;
        parsed = decimal.negative ? -Real{0} : Real{0};
    }
    value = parsed;
    return true;
}

struct BooleanWord {
    std::string_view text;
    bool value;
};

constexpr BooleanWord booleanWords[] = {{"true", true}, {"false", false}, {"yes", true},
                                        {"no", false},  {"on", true},     {"off", false}};

} // namespace

bool parseInteger(std::string_view text, int64_t &value)
{
    Decimal decimal;
    if (!scan(text, decimal))
        return false;
    const size_t first = decimal.firstSignificant();
    const int64_t digits = first < decimal.digitCount() ? decimal.integerDigits() : 0;
    if (digits > 19) // 2^63 has 19 digits
        return false;
    uint64_t magnitude = 0; // below 10^19, which 64 bits hold
    for (int64_t i = 0; i < digits; ++i) {
        const size_t place = first + static_cast<size_t>(i);
        const int digit = place < decimal.digitCount() ? decimal.digit(place) : 0;
        magnitude = magnitude * 10 + static_cast<uint64_t>(digit);
    }
    const uint64_t limit =
        static_cast<uint64_t>(std::numeric_limits<int64_t>::max()) + (decimal.negative ? 1 : 0);
    if (magnitude > limit)
        return false;
    value = static_cast<int64_t>(decimal.negative ? 0 - magnitude : magnitude);
    return true;
}

bool parseDouble(std::string_view text, double &value)
{
    return parseReal(text, value);
}

bool parseFloat(std::string_view text, float &value)
{
    return parseReal(text, value);
}

bool parseBoolean(std::string_view text, bool &value)
{
    for (const BooleanWord &word : booleanWords) {
        if (equalInsensitive(text, word.text)) {
            value = word.value;
            return true;
        }
    }
    int64_t number;
    if (!parseInteger(text, number))
        return false;
    value = number != 0;
    return true;
}

} // namespace kett
