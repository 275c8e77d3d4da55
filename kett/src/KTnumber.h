// Numbers as text: decimal, with the point as decimal sign in every locale, an optional sign, an optional
// fraction and an optional exponent; nothing else around it. No hexadecimal, infinity or not-a-number.
//
// Each function gives false, and leaves `value` alone, where the text is no such number or its value is out
// of range. Time grows with the length of the text, not with the value.
#pragma once

#include <cstdint>
#include <string_view>

namespace kett
{

// A fraction is cut off, toward zero, before the range is looked at.
bool parseInteger(std::string_view text, int64_t &value);

// Rounded once, to nearest; too small gives zero with its sign.
bool parseDouble(std::string_view text, double &value);
bool parseFloat(std::string_view text, float &value);

// true/false, yes/no, on/off in any case, or an integer, of which 0 is false.
bool parseBoolean(std::string_view text, bool &value);

} // namespace kett
