// The scanner of configuration strings: walks the pairs of a text in one pass, without copying it. What the
// pairs look like stands in kett/KTstring.h.
#pragma once

#include <string_view>

namespace kett
{

enum class ValueKind { word, quoted, bracketed };

// Views into the scanned text.
struct ConfigPair {
    std::string_view key;
    ValueKind kind;
    std::string_view value; // a word; what stands between quotes; a bracketed text with its brackets
};

// Reads the next pair and moves `at` to its end; false when there is none left.
bool nextPair(const char *&at, ConfigPair &pair);

// The pair that holds for `key`, the last of its name. A null key or text has none.
bool findPair(const char *config, const char *key, ConfigPair &pair);

// A character that is neither a separator nor the terminating null.
bool isWordCharacter(char c);

// Moves `at` over the characters of a class, to which the terminating null must not belong, and gives them.
std::string_view take(const char *&at, bool (*belongs)(char));

} // namespace kett
